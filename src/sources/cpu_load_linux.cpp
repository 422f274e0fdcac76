#include "sources/cpu_load.h"

namespace corvane::sources {

CpuLoadReader::CpuLoadReader(std::filesystem::path root) : file_((root / "proc/stat").string()) {}

std::optional<CpuTicks> CpuLoadReader::read() {
    return readParsed(file_, parseCpuTicks);
}

}  // namespace corvane::sources
