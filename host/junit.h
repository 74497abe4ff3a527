#pragma once
// The JUnit XML report of one script run: one test case, failed with the run's failure text.
#include "host/runner.h"

namespace dv::host {

// false when the file cannot be written. attachments: files named in the test case's system-out
// as [[ATTACHMENT|path]], the form CI servers show as attached files.
bool WriteJUnitReport(const QString& path, const QString& scriptName, const TRunReport& report,
                      const QStringList& attachments = {});

}  // namespace dv::host
