#include "sources/battery_info.h"

#include <cmath>
#include <limits>

#include "sources/text_scan.h"

namespace corvane::sources {

std::optional<std::int64_t> batteryLevelPercent(std::int64_t current, std::int64_t max) {
    const double level = static_cast<double>(current) / static_cast<double>(max) * 100.0;
    constexpr double kLimit = 9223372036854775808.0;  // 2^63
    if (!std::isfinite(level) || level >= kLimit || level < -kLimit) {
        return std::nullopt;
    }
    return static_cast<std::int64_t>(level);
}

std::optional<std::int64_t> parseSysfsInteger(std::string_view bytes) {
    if (bytes.ends_with('\n')) {
        bytes.remove_suffix(1);
    }
    const auto value = scan::decimal(bytes);
    if (!value || *value > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
        return std::nullopt;
    }
    return static_cast<std::int64_t>(*value);
}

std::string_view sysfsText(std::string_view bytes) {
    if (bytes.ends_with('\n')) {
        bytes.remove_suffix(1);
    }
    return bytes;
}

}  // namespace corvane::sources
