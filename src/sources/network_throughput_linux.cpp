#include "sources/network_throughput.h"

namespace corvane::sources {

NetworkReader::NetworkReader(std::filesystem::path root)
    : file_((root / "proc/net/dev").string()) {}

ByteTotals NetworkReader::read() {
    const auto totals =
        readParsed(file_, [](std::string_view bytes) { return std::optional(parseNetDev(bytes)); });
    return totals.value_or(ByteTotals{});
}

}  // namespace corvane::sources
