// The result text: SI prefixes and the two number formats, against hand-worked values.
#include "scope/scopeformat.h"

#include <gtest/gtest.h>

namespace dv::scope {
namespace {

TEST(ScopeFormat, ResultTextsInPrefixAndGeneralFormat)
{
    struct Row {
        double value;
        QString unit;
        bool prefix;
        QString expected;
    };
    const Row rows[] = {
        {0.0123, "V", true, "12.300 mV"},
        {1234567, "Hz", true, "1.235 MHz"},
        {-0.0000025, "s", true, "-2.500 µs"},
        {999.9996, "V", true, "1000.000 V"},  // the prefix is chosen before rounding
        {1, "%", true, "1.000 %"},
        {0, "V", true, "0 V"},  // zero is never scaled
        {0.0123, "V", false, "0.0123 V"},
        {1.41421356, "V", false, "1.41421 V"},
        {123456.7, "dB", false, "123457 dB"},
        {1234567, "Hz", false, "1.23457E+06 Hz"},
        {0.000012345, "s", false, "0.000012345 s"},  // fixed down to 1e-5
        {0.0000012345, "s", false, "1.2345E-06 s"},
        {-2.5, "", false, "-2.5 "},
    };
    for (const Row& r : rows) EXPECT_EQ(ResultText(r.value, r.unit, r.prefix), r.expected) << r.value;
}

}  // namespace
}  // namespace dv::scope
