#include "sources/network_throughput.h"

#include <array>

#include "sources/text_scan.h"

namespace corvane::sources {

bool isCountedInterface(std::string_view name) {
    return name.starts_with("en") || name.starts_with("eth") || name.starts_with("wl");
}

// After two header lines, one line per interface: "  name: " and 16 decimal counters, eight
// for receive (bytes first) and eight for transmit (bytes first). Kernels before 2.6.x wrote
// large byte counts right after the colon, so the name ends at the colon, not at a blank.
// A line whose counters are not exactly 16 plain decimals adds nothing.
ByteTotals parseNetDev(std::string_view netDev) {
    constexpr std::size_t kCounters = 16;
    constexpr std::size_t kReceiveBytes = 0;
    constexpr std::size_t kTransmitBytes = 8;
    ByteTotals totals;
    while (!netDev.empty()) {
        const std::string_view line = scan::nextLine(netDev);
        const std::size_t colon = line.find(':');
        if (colon == std::string_view::npos ||
            !isCountedInterface(scan::trimmed(line.substr(0, colon)))) {
            continue;
        }
        std::string_view rest = line.substr(colon + 1);
        std::array<std::uint64_t, kCounters> counter{};
        std::size_t count = 0;
        for (auto token = scan::nextToken(rest); !token.empty(); token = scan::nextToken(rest)) {
            const auto value = scan::decimal(token);
            if (!value || count == kCounters) {
                count = 0;
                break;
            }
            counter[count++] = *value;
        }
        if (count == kCounters) {
            totals.received += counter[kReceiveBytes];
            totals.sent += counter[kTransmitBytes];
        }
    }
    return totals;
}

double rateMegabytesPerSecond(std::uint64_t total, std::uint64_t lastTotal) {
    if (total < lastTotal) {
        return 0.0;
    }
    return static_cast<double>(total - lastTotal) / 2.0 / 1024.0 / 1024.0;
}

}  // namespace corvane::sources
