#include <unistd.h>

#include "sources/memory_usage.h"

namespace corvane::sources {

MemoryReader::MemoryReader(std::filesystem::path root, std::uint64_t pageSize)
    : file_((root / "proc/meminfo").string()), pageSize_(pageSize) {}

std::optional<MemorySample> MemoryReader::read() {
    return readParsed(file_,
                      [this](std::string_view bytes) { return parseMeminfo(bytes, pageSize_); });
}

std::uint64_t systemPageSize() {
    const long size = sysconf(_SC_PAGESIZE);
    return size > 0 ? static_cast<std::uint64_t>(size) : 4096;
}

}  // namespace corvane::sources
