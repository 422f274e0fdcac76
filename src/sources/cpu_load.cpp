#include "sources/cpu_load.h"

namespace corvane::sources {

std::optional<CpuTicks> parseCpuTicks(std::string_view) { return std::nullopt; }  // TODO

double cpuUsagePercent(const CpuTicks& t) {
    const std::uint64_t total = t.user + t.system + t.idle + t.nice;
    const double quotient = static_cast<double>(t.idle) / static_cast<double>(total);
    return (1.0 - quotient) * 100.0;
}

}  // namespace corvane::sources
