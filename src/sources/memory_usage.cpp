#include "sources/memory_usage.h"

#include "sources/text_scan.h"

namespace corvane::sources {

namespace {

// "      16314008 kB": a decimal count of kibibytes. Every key read here carries the unit.
std::optional<std::uint64_t> kibibytes(std::string_view value) {
    const auto number = scan::decimal(scan::nextToken(value));
    if (!number || scan::nextToken(value) != "kB" || !scan::nextToken(value).empty()) {
        return std::nullopt;
    }
    return number;
}

}  // namespace

// Lines are "Key:   value kB". MemTotal and Active must be there. The four wired keys came
// with different kernels (Unevictable 2.6.28, KernelStack 2.6.32, ...): one the kernel does
// not report adds nothing, so an old kernel still gives a reading. A key that is there with
// a value that does not read as kibibytes fails the whole read; the first occurrence counts.
std::optional<MemorySample> parseMeminfo(std::string_view meminfo, std::uint64_t pageSize) {
    if (pageSize == 0) {
        return std::nullopt;
    }
    enum { kMemTotal, kActive, kUnevictable, kSUnreclaim, kKernelStack, kPageTables, kKeys };
    constexpr std::string_view kNames[kKeys] = {"MemTotal",   "Active",      "Unevictable",
                                                "SUnreclaim", "KernelStack", "PageTables"};
    std::optional<std::uint64_t> kib[kKeys];

    while (!meminfo.empty()) {
        const std::string_view line = scan::nextLine(meminfo);
        const std::size_t colon = line.find(':');
        if (colon == std::string_view::npos) {
            continue;
        }
        const std::string_view key = line.substr(0, colon);
        for (int k = 0; k < kKeys; ++k) {
            if (key == kNames[k] && !kib[k]) {
                kib[k] = kibibytes(line.substr(colon + 1));
                if (!kib[k]) {
                    return std::nullopt;
                }
            }
        }
    }
    if (!kib[kMemTotal] || !kib[kActive]) {
        return std::nullopt;
    }

    std::uint64_t physical = *kib[kMemTotal];
    std::uint64_t active = *kib[kActive];
    std::uint64_t wired = 0;
    bool fits = scan::multiplyChecked(physical, 1024) && scan::multiplyChecked(active, 1024);
    for (int k = kUnevictable; k < kKeys; ++k) {
        fits = fits && scan::addChecked(wired, kib[k].value_or(0));
    }
    if (!fits || !scan::multiplyChecked(wired, 1024)) {
        return std::nullopt;
    }
    return MemorySample{.physicalBytes = physical,
                        .pageSize = pageSize,
                        .activePages = active / pageSize,
                        .wiredPages = wired / pageSize};
}

double ramUsagePercent(const MemorySample& s) {
    const std::uint64_t usedPages = s.activePages + s.wiredPages;
    const double usedBytes = static_cast<double>(usedPages) * static_cast<double>(s.pageSize);
    return usedBytes / static_cast<double>(s.physicalBytes) * 100.0;
}

}  // namespace corvane::sources
