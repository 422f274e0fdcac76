#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string_view>

#include "sources/kernel_file.h"

namespace corvane::sources {

// Cumulative clock ticks since boot, summed over all processors. Linux splits processor time
// into more states than four; see parseCpuTicks for how they fold into these.
struct CpuTicks {
    std::uint64_t user = 0;
    std::uint64_t system = 0;
    std::uint64_t idle = 0;
    std::uint64_t nice = 0;
};

// Reads the aggregate "cpu" line of /proc/stat. nullopt when it is missing or malformed.
std::optional<CpuTicks> parseCpuTicks(std::string_view procStat);

// Share of non-idle time since boot, in percent. A zero total gives NaN, on purpose.
double cpuUsagePercent(const CpuTicks& ticks);

// Fetches the counters from <root>/proc/stat, keeping the file open between reads.
class CpuLoadReader {
  public:
    explicit CpuLoadReader(std::filesystem::path root);
    std::optional<CpuTicks> read();

  private:
    KernelFile file_;
};

}  // namespace corvane::sources
