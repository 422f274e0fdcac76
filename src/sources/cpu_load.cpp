#include "sources/cpu_load.h"

#include <array>

#include "sources/text_scan.h"

namespace corvane::sources {

// The aggregate line: "cpu  user nice system idle iowait irq softirq steal guest guest_nice".
// Kernels before 2.6 print only the first four; later kernels may append more. Every field
// must be a plain decimal, and at least the first four must be there. Interrupt and stolen
// time count as system time, I/O wait as idle; guest time is already inside user time.
std::optional<CpuTicks> parseCpuTicks(std::string_view procStat) {
    std::string_view line = scan::nextLine(procStat);
    if (!line.starts_with("cpu ")) {
        return std::nullopt;
    }
    line.remove_prefix(4);

    enum { kUser, kNice, kSystem, kIdle, kIowait, kIrq, kSoftirq, kSteal, kUsed };
    std::array<std::uint64_t, kUsed> field{};
    std::size_t count = 0;
    for (auto token = scan::nextToken(line); !token.empty(); token = scan::nextToken(line)) {
        const auto value = scan::decimal(token);
        if (!value) {
            return std::nullopt;
        }
        if (count < field.size()) {
            field[count] = *value;
        }
        ++count;
    }
    if (count <= kIdle) {
        return std::nullopt;
    }

    CpuTicks ticks{
        .user = field[kUser], .system = field[kSystem], .idle = field[kIdle], .nice = field[kNice]};
    std::uint64_t total = ticks.user;
    const bool fits = scan::addChecked(ticks.system, field[kIrq]) &&
                      scan::addChecked(ticks.system, field[kSoftirq]) &&
                      scan::addChecked(ticks.system, field[kSteal]) &&
                      scan::addChecked(ticks.idle, field[kIowait]) &&
                      scan::addChecked(total, ticks.system) &&
                      scan::addChecked(total, ticks.idle) && scan::addChecked(total, ticks.nice);
    if (!fits) {
        return std::nullopt;
    }
    return ticks;
}

double cpuUsagePercent(const CpuTicks& t) {
    const std::uint64_t total = t.user + t.system + t.idle + t.nice;
    const double quotient = static_cast<double>(t.idle) / static_cast<double>(total);
    return (1.0 - quotient) * 100.0;
}

}  // namespace corvane::sources
