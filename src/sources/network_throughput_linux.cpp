#include "sources/network_throughput.h"

namespace corvane::sources {

NetworkReader::NetworkReader(std::filesystem::path root) : path_(root / "proc/net/dev") {}
ByteTotals NetworkReader::read() { return {}; }  // TODO

}  // namespace corvane::sources
