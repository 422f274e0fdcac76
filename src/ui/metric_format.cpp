#include "ui/metric_format.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace corvane::ui {

namespace {

// printf's "%.2f" without the locale. std::to_chars rounds the exact binary value like printf.
std::string fixedTwoDecimals(double value) {
    if (std::isnan(value)) {
        return "nan";
    }
    if (std::isinf(value)) {
        return value < 0 ? "-inf" : "inf";
    }
    // The largest double has 309 integer digits.
    std::array<char, 320> buffer{};
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                      std::chars_format::fixed, 2);
    return std::string(buffer.data(), result.ptr);
}

}  // namespace

std::string formatPercent(double value) {
    return fixedTwoDecimals(value) + " %";
}

std::string formatRate(double megabytesPerSecond) {
    return fixedTwoDecimals(megabytesPerSecond) + " MB/s";
}

std::string formatBattery(std::int64_t level, std::string_view state) {
    std::array<char, 24> digits{};
    const auto result = std::to_chars(digits.data(), digits.data() + digits.size(), level);
    std::string text(digits.data(), result.ptr);
    text += "% (";
    text += state;
    text += ')';
    return text;
}

std::string describeHistory(std::span<const double> history) {
    std::size_t count = 0;
    double lowest = 0.0;
    double highest = 0.0;
    double latest = 0.0;
    for (const double value : history) {
        if (!std::isfinite(value)) {
            continue;
        }
        lowest = count == 0 ? value : std::min(lowest, value);
        highest = count == 0 ? value : std::max(highest, value);
        latest = value;
        ++count;
    }
    if (count == 0) {
        return "no values yet";
    }
    return std::to_string(count) + (count == 1 ? " value, lowest " : " values, lowest ") +
           formatPercent(lowest) + ", highest " + formatPercent(highest) + ", latest " +
           formatPercent(latest);
}

}  // namespace corvane::ui
