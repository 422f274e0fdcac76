#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>
#include <string>

#include "monitor/alert_text.h"

namespace corvane::monitor {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

struct RuleCase {
    const char* name;
    AlertInputs in;
    std::optional<std::pair<std::string, std::string>> alert;
};

TEST(AlertRules, FirstRuleThatHoldsWinsWithItsExactText) {
    using P = std::pair<std::string, std::string>;
    const RuleCase cases[] = {
        {"all quiet", {10, 10, 10, 100, "On Battery"}, std::nullopt},
        {"CPU at the limit", {85.0, 0, 0, 100, "On Battery"}, std::nullopt},
        {"CPU just above",
         {85.4, 0, 0, 100, "On Battery"},
         P{"High CPU Usage", "CPU usage is at 85%."}},
        {"RAM at the limit", {0, 90.0, 0, 100, ""}, std::nullopt},
        {"RAM just above", {0, 90.5, 0, 100, ""}, P{"High RAM Usage", "RAM usage is at 90%."}},
        {"disk at the limit", {0, 0, 90.0, 100, ""}, std::nullopt},
        {"disk nearly full",
         {0, 0, 99.99, 100, ""},
         P{"Disk Almost Full", "Disk usage is at 99%."}},
        {"battery at the limit", {0, 0, 0, 20, "On Battery"}, std::nullopt},
        {"battery below", {0, 0, 0, 19, "On Battery"}, P{"Low Battery", "Battery at 19%"}},
        {"battery empty", {0, 0, 0, 0, "On Battery"}, P{"Low Battery", "Battery at 0%"}},
        {"battery negative", {0, 0, 0, -3, "On Battery"}, P{"Low Battery", "Battery at -3%"}},
        {"battery charging", {0, 0, 0, 5, "Charging"}, std::nullopt},
        {"battery on AC", {0, 0, 0, 5, "AC Power"}, std::nullopt},
        {"battery unknown", {0, 0, 0, 5, "Unknown"}, std::nullopt},
        {"state compared exactly", {0, 0, 0, 5, "on battery"}, std::nullopt},
        {"CPU before RAM",
         {95, 95, 95, 5, "On Battery"},
         P{"High CPU Usage", "CPU usage is at 95%."}},
        {"RAM before disk",
         {85, 95, 95, 5, "On Battery"},
         P{"High RAM Usage", "RAM usage is at 95%."}},
        {"disk before battery",
         {0, 90, 91, 5, "On Battery"},
         P{"Disk Almost Full", "Disk usage is at 91%."}},
        {"NaN never holds", {kNaN, kNaN, kNaN, 50, "On Battery"}, std::nullopt},
        {"NaN CPU passes on to RAM",
         {kNaN, 99, 0, 50, ""},
         P{"High RAM Usage", "RAM usage is at 99%."}},
        // A percentage with no integer value cannot be named: its rule is passed over.
        {"infinite CPU", {kInf, 0, 0, 100, ""}, std::nullopt},
        {"infinite CPU passes on",
         {kInf, 91, 0, 100, ""},
         P{"High RAM Usage", "RAM usage is at 91%."}},
        {"RAM beyond int64", {0, 1e19, 0, 100, ""}, std::nullopt},
        {"disk beyond int64 passes on",
         {0, 0, 9.3e18, 1, "On Battery"},
         P{"Low Battery", "Battery at 1%"}},
    };
    for (const RuleCase& c : cases) {
        SCOPED_TRACE(c.name);
        const auto alert = firstAlert(c.in);
        ASSERT_EQ(alert.has_value(), c.alert.has_value());
        if (alert) {
            EXPECT_EQ(alert->title, c.alert->first);
            EXPECT_EQ(alert->body, c.alert->second);
        }
    }
}

TEST(AlertRules, PercentRendersAsTruncatedInteger) {
    const std::pair<double, std::optional<std::string>> cases[] = {
        {93.7, "93"},
        {85.4, "85"},
        {99.999999, "99"},
        {100.0, "100"},
        {-0.5, "0"},
        {-1.5, "-1"},
        {9223372036854774784.0, "9223372036854774784"},  // the largest double below 2^63
        {-9223372036854775808.0, "-9223372036854775808"},
        {9223372036854775808.0, std::nullopt},
        {-9223372036854777856.0, std::nullopt},
        {kInf, std::nullopt},
        {-kInf, std::nullopt},
        {kNaN, std::nullopt},
    };
    for (const auto& [value, text] : cases) {
        SCOPED_TRACE(value);
        EXPECT_EQ(percentAsInteger(value), text);
    }
}

}  // namespace
}  // namespace corvane::monitor
