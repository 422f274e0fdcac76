#include "ui/metric_format.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <limits>
#include <string>

#include "locale_guard.h"

namespace corvane::ui {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

TEST(MetricFormat, UsageRates) {
    const struct {
        double value;
        const char* percent;
        const char* rate;
    } cases[] = {
        {0.0, "0.00 %", "0.00 MB/s"},
        {7.0, "7.00 %", "7.00 MB/s"},
        {100.0, "100.00 %", "100.00 MB/s"},
        {250.125, "250.12 %", "250.12 MB/s"},  // unclamped; an exact tie rounds to even
        {37.25, "37.25 %", "37.25 MB/s"},
        {3.14159, "3.14 %", "3.14 MB/s"},
        {-3.5, "-3.50 %", "-3.50 MB/s"},
        {1234567.891, "1234567.89 %", "1234567.89 MB/s"},  // no grouping
        {kNaN, "nan %", "nan MB/s"},
        {std::copysign(kNaN, -1.0), "nan %", "nan MB/s"},  // its sign bit is not shown
        {kInf, "inf %", "inf MB/s"},
        {-kInf, "-inf %", "-inf MB/s"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.percent);
        EXPECT_EQ(formatPercent(c.value), c.percent);
        EXPECT_EQ(formatRate(c.value), c.rate);
    }
}

TEST(MetricFormat, Battery) {
    EXPECT_EQ(formatBattery(85, "Charging"), "85% (Charging)");
    EXPECT_EQ(formatBattery(0, "Unknown"), "0% (Unknown)");
    EXPECT_EQ(formatBattery(std::numeric_limits<std::int64_t>::min(), ""),
              "-9223372036854775808% ()");
}

// printf in the C locale is the reference for every finite value, rounding ties included.
TEST(MetricFormat, MatchesPrintfInTheCLocale) {
    const LocaleGuard c("C");
    const double values[] = {0.125,    0.375,   2.675,    0.005,        1.005, 99.995,
                             -0.0,     -0.001,  -0.005,   1e15 + 0.125, 1e22,  DBL_MAX,
                             -DBL_MAX, DBL_MIN, 4.9e-324, 12345.678,    85.4};
    for (const double value : values) {
        char expected[400];
        std::snprintf(expected, sizeof expected, "%.2f %%", value);
        EXPECT_EQ(formatPercent(value), expected) << "value " << value;
        std::snprintf(expected, sizeof expected, "%.2f MB/s", value);
        EXPECT_EQ(formatRate(value), expected) << "value " << value;
    }
}

TEST(MetricFormat, KeepsTheFullStopUnderAGermanLocale) {
    const LocaleGuard german("de_DE.UTF-8");
    ASSERT_TRUE(german.active()) << "generate de_DE.UTF-8 (locale-gen) to run this test";
    char printed[32];
    std::snprintf(printed, sizeof printed, "%.2f", 1.5);
    ASSERT_STREQ(printed, "1,50") << "the locale's decimal comma is not in effect";

    EXPECT_EQ(formatPercent(1.5), "1.50 %");
    EXPECT_EQ(formatRate(1234567.891), "1234567.89 MB/s");
    EXPECT_EQ(formatBattery(1234, "Charging"), "1234% (Charging)");
}

}  // namespace
}  // namespace corvane::ui
