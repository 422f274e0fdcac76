#include "monitor/alert_text.h"

#include <cmath>

namespace corvane::monitor {

namespace {

constexpr double kCpuThreshold = 85.0;
constexpr double kRamThreshold = 90.0;
constexpr double kDiskThreshold = 90.0;
constexpr std::int64_t kBatteryThreshold = 20;

std::optional<Alert> usageAlert(double value, double threshold, const char* title,
                                const char* what) {
    if (!(value > threshold)) {
        return std::nullopt;
    }
    const auto n = percentAsInteger(value);
    if (!n) {
        return std::nullopt;
    }
    return Alert{title, std::string(what) + " usage is at " + *n + "%."};
}

}  // namespace

std::optional<std::string> percentAsInteger(double percent) {
    // 2^63 is exact as a double; every finite value in [-2^63, 2^63) truncates to an int64.
    constexpr double kLimit = 9223372036854775808.0;
    if (!std::isfinite(percent) || percent >= kLimit || percent < -kLimit) {
        return std::nullopt;
    }
    return std::to_string(static_cast<std::int64_t>(percent));
}

std::optional<Alert> firstAlert(const AlertInputs& in) {
    if (auto a = usageAlert(in.cpuUsage, kCpuThreshold, "High CPU Usage", "CPU")) {
        return a;
    }
    if (auto a = usageAlert(in.ramUsage, kRamThreshold, "High RAM Usage", "RAM")) {
        return a;
    }
    if (auto a = usageAlert(in.diskUsage, kDiskThreshold, "Disk Almost Full", "Disk")) {
        return a;
    }
    if (in.batteryLevel < kBatteryThreshold && in.batteryState == "On Battery") {
        return Alert{"Low Battery", "Battery at " + std::to_string(in.batteryLevel) + "%"};
    }
    return std::nullopt;
}

}  // namespace corvane::monitor
