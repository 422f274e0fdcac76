#include "fuzz/fuzz_targets.h"

#include <cmath>
#include <cstdlib>
#include <string>

#include "sources/battery_info.h"
#include "sources/cpu_load.h"
#include "sources/memory_usage.h"
#include "sources/network_throughput.h"
#include "ui/hex_scan.h"

namespace corvane::fuzz {

namespace {

// A broken invariant must stop the fuzzer with a report, in every build type.
void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

}  // namespace

void procStat(std::string_view bytes) {
    if (const auto ticks = sources::parseCpuTicks(bytes)) {
        const double usage = sources::cpuUsagePercent(*ticks);
        require(std::isnan(usage) || (usage >= 0.0 && usage <= 100.0));
    }
}

void meminfo(std::string_view bytes) {
    for (const std::uint64_t pageSize : {std::uint64_t{4096}, std::uint64_t{16384}}) {
        if (const auto sample = sources::parseMeminfo(bytes, pageSize)) {
            require(sample->pageSize == pageSize);
            (void)sources::ramUsagePercent(*sample);
        }
    }
}

void netDev(std::string_view bytes) {
    const sources::ByteTotals totals = sources::parseNetDev(bytes);
    // Rates from any pair of totals are finite and never negative.
    const double rate = sources::rateMegabytesPerSecond(totals.received, totals.sent);
    require(std::isfinite(rate) && rate >= 0.0);
}

void powerSupplyAttribute(std::string_view bytes) {
    (void)sources::sysfsText(bytes);
    if (const auto value = sources::parseSysfsInteger(bytes)) {
        require(*value >= 0);
        // Any pair of capacities gives a level or a clean refusal, never a trap.
        (void)sources::batteryLevelPercent(*value, 100);
        (void)sources::batteryLevelPercent(100, *value);
        (void)sources::batteryLevelPercent(*value, *value);
    }
}

void hexColour(std::string_view bytes) {
    const std::uint64_t value = ui::scanHexLongLong(bytes);
    // The scan stops at the first non-digit: appending one changes nothing.
    std::string extended(bytes);
    extended += 'g';
    require(ui::scanHexLongLong(extended) == value);
}

}  // namespace corvane::fuzz
