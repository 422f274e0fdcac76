#include "sources/battery_info.h"

#include <cmath>

namespace corvane::sources {

std::optional<std::int64_t> batteryLevelPercent(std::int64_t current, std::int64_t max) {
    const double level = static_cast<double>(current) / static_cast<double>(max) * 100.0;
    constexpr double kLimit = 9223372036854775808.0;  // 2^63
    if (!std::isfinite(level) || level >= kLimit || level < -kLimit) {
        return std::nullopt;
    }
    return static_cast<std::int64_t>(level);
}

}  // namespace corvane::sources
