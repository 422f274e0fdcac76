#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sources/kernel_file.h"

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

// A sysfs integer attribute such as "45120000\n". Capacities are never negative: a sign, a
// blank, a value beyond 64 bits or anything but digits and the final newline gives nullopt.
std::optional<std::int64_t> parseSysfsInteger(std::string_view bytes);

// A sysfs text attribute without its final newline.
std::string_view sysfsText(std::string_view bytes);

// Reads <root>/sys/class/power_supply. nullopt when there is no battery that is a power
// source of the machine, or when its capacities or state cannot be read.
//
// The folder is scanned on the first read, again at every `rescanEveryReads`-th read (so a
// battery or charger plugged in later is found), and at once when a read that worked before
// fails (a battery was removed: another may take its place). Between scans only the chosen
// battery's capacity pair, its status when needed, and the chargers' `online` files are read,
// through descriptors kept open.
class PowerSourceReader {
  public:
    static constexpr int kRescanEveryReads = 15;  // 30 s at one read per 2 s tick

    explicit PowerSourceReader(std::filesystem::path root);
    PowerSourceReader(std::filesystem::path root, int rescanEveryReads);
    std::optional<PowerSource> read();

  private:
    enum class Capacity { Energy, Charge, Percent };
    struct Battery {
        Capacity capacity;
        KernelFile now;
        KernelFile full;  // unused for Percent, whose maximum is 100
        KernelFile status;
    };

    static Battery batteryFiles(const std::string& supply, Capacity capacity);
    void rescan();
    std::optional<PowerSource> readScanned();

    std::filesystem::path dir_;
    int rescanEveryReads_;
    int readsSinceScan_ = 0;
    bool scanned_ = false;
    bool lastReadWorked_ = false;
    std::optional<Battery> battery_;
    std::vector<KernelFile> chargerOnline_;  // `online` of every Mains and USB supply
};

}  // namespace corvane::sources
