#include "sources/network_throughput.h"

namespace corvane::sources {

bool isCountedInterface(std::string_view name) {
    return name.starts_with("en") || name.starts_with("eth") || name.starts_with("wl");
}

ByteTotals parseNetDev(std::string_view) { return {}; }  // TODO

double rateMegabytesPerSecond(std::uint64_t total, std::uint64_t lastTotal) {
    if (total < lastTotal) {
        return 0.0;
    }
    return static_cast<double>(total - lastTotal) / 2.0 / 1024.0 / 1024.0;
}

}  // namespace corvane::sources
