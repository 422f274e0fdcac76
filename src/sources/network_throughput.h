#pragma once

#include <cstdint>
#include <filesystem>
#include <string_view>

#include "sources/kernel_file.h"

namespace corvane::sources {

struct ByteTotals {
    std::uint64_t received = 0;
    std::uint64_t sent = 0;
};

// Ethernet and Wi-Fi under both of Linux's naming schemes: en*, eth*, wl*.
bool isCountedInterface(std::string_view name);

// Sums the counters of the counted interfaces in /proc/net/dev. Malformed lines add nothing.
ByteTotals parseNetDev(std::string_view netDev);

// Growth since the previous total over the fixed 2.0 s period, in MiB/s. A total that went
// down (an interface vanished or a counter reset) gives 0.0 for that call.
double rateMegabytesPerSecond(std::uint64_t total, std::uint64_t lastTotal);

// Reads <root>/proc/net/dev, keeping the file open between reads; a file that cannot be
// read counts as zero bytes.
class NetworkReader {
  public:
    explicit NetworkReader(std::filesystem::path root);
    ByteTotals read();

  private:
    KernelFile file_;
};

}  // namespace corvane::sources
