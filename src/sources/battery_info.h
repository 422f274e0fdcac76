#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace corvane::sources {

// The first power source as the monitor sees it: two capacities in one unit and the state
// text, "AC Power" when the machine runs on external power, "Battery Power" otherwise.
struct PowerSource {
    std::int64_t currentCapacity = 0;
    std::int64_t maxCapacity = 0;
    std::string powerSourceState;
};

// current / max * 100.0 in double precision, truncated toward zero. nullopt when the result
// has no 64-bit integer value (a maximum of 0, or a level beyond the range).
std::optional<std::int64_t> batteryLevelPercent(std::int64_t current, std::int64_t max);

// Scans <root>/sys/class/power_supply. nullopt when there is no battery that is a power
// source of the machine, or when its capacities or state cannot be read.
class PowerSourceReader {
public:
    explicit PowerSourceReader(std::filesystem::path root);
    std::optional<PowerSource> read();

private:
    std::filesystem::path dir_;
};

}  // namespace corvane::sources
