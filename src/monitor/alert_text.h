#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace corvane::monitor {

// The values the alert rules look at, as one tick left them.
struct AlertInputs {
    double cpuUsage = 0.0;
    double ramUsage = 0.0;
    double diskUsage = 0.0;
    std::int64_t batteryLevel = 0;
    std::string batteryState;
};

struct Alert {
    std::string title;
    std::string body;
};

// The rule chain CPU, RAM, disk, battery: the first rule that holds wins. A percentage that
// has no 64-bit integer value (infinite, or beyond the range) cannot be named in a body, so
// its rule does not hold and the chain goes on; NaN fails every comparison anyway.
std::optional<Alert> firstAlert(const AlertInputs& inputs);

// "93" for 93.7: truncation toward zero, plain decimal digits. nullopt without an integer value.
std::optional<std::string> percentAsInteger(double percent);

}  // namespace corvane::monitor
