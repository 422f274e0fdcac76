#include "sources/battery_info.h"

namespace corvane::sources {

PowerSourceReader::PowerSourceReader(std::filesystem::path root)
    : dir_(root / "sys/class/power_supply") {}
std::optional<PowerSource> PowerSourceReader::read() { return std::nullopt; }  // TODO

}  // namespace corvane::sources
