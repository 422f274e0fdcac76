#include "sources/cpu_load.h"

namespace corvane::sources {

CpuLoadReader::CpuLoadReader(std::filesystem::path root) : path_(root / "proc/stat") {}
std::optional<CpuTicks> CpuLoadReader::read() { return std::nullopt; }  // TODO

}  // namespace corvane::sources
