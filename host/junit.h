#pragma once
// The JUnit XML report of one script run: one test case, failed with the run's failure text.
#include "host/runner.h"

namespace dv::host {

// false when the file cannot be written.
bool WriteJUnitReport(const QString& path, const QString& scriptName, const TRunReport& report);

}  // namespace dv::host
