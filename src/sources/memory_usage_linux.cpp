#include <unistd.h>

#include "sources/memory_usage.h"

namespace corvane::sources {

MemoryReader::MemoryReader(std::filesystem::path root, std::uint64_t pageSize)
    : path_(root / "proc/meminfo"), pageSize_(pageSize) {}
std::optional<MemorySample> MemoryReader::read() { return std::nullopt; }  // TODO

std::uint64_t systemPageSize() {
    const long size = sysconf(_SC_PAGESIZE);
    return size > 0 ? static_cast<std::uint64_t>(size) : 4096;
}

}  // namespace corvane::sources
