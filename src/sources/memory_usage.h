#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string_view>

#include "sources/kernel_file.h"

namespace corvane::sources {

struct MemorySample {
    std::uint64_t physicalBytes = 0;
    std::uint64_t pageSize = 0;
    std::uint64_t activePages = 0;
    std::uint64_t wiredPages = 0;
};

// Reads /proc/meminfo: physical memory from MemTotal, active pages from Active, wired pages
// from Unevictable + SUnreclaim + KernelStack + PageTables, each divided by pageSize.
std::optional<MemorySample> parseMeminfo(std::string_view meminfo, std::uint64_t pageSize);

// Active plus wired bytes as a share of physical memory, in percent. No guard against zero.
double ramUsagePercent(const MemorySample& sample);

// Fetches <root>/proc/meminfo, keeping the file open between reads. MemTotal x 1024 is the
// figure glibc turns into sysconf(_SC_PHYS_PAGES) x page size, so reading it here gives the
// same physical memory and keeps it under the root a test chooses.
class MemoryReader {
  public:
    MemoryReader(std::filesystem::path root, std::uint64_t pageSize);
    std::optional<MemorySample> read();

  private:
    KernelFile file_;
    std::uint64_t pageSize_;
};

// The running system's page size.
std::uint64_t systemPageSize();

}  // namespace corvane::sources
