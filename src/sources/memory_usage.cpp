#include "sources/memory_usage.h"

namespace corvane::sources {

std::optional<MemorySample> parseMeminfo(std::string_view, std::uint64_t) { return std::nullopt; }  // TODO

double ramUsagePercent(const MemorySample& s) {
    const std::uint64_t usedPages = s.activePages + s.wiredPages;
    const double usedBytes = static_cast<double>(usedPages) * static_cast<double>(s.pageSize);
    return usedBytes / static_cast<double>(s.physicalBytes) * 100.0;
}

}  // namespace corvane::sources
