// Integration: the readers on the running machine. Only properties that hold on any Linux
// host are checked, never the figures themselves.
#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

#include <filesystem>

#include "sources/battery_info.h"
#include "sources/cpu_load.h"
#include "sources/disk_usage.h"
#include "sources/memory_usage.h"
#include "sources/network_throughput.h"

namespace corvane::sources {
namespace {

std::size_t openDescriptorCount() {
    return static_cast<std::size_t>(
        std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}));
}

TEST(LiveHost, CpuLoadIsAPercentage) {
    const auto ticks = CpuLoadReader("/").read();
    ASSERT_TRUE(ticks);
    const double usage = cpuUsagePercent(*ticks);
    EXPECT_GE(usage, 0.0);
    EXPECT_LE(usage, 100.0);
}

TEST(LiveHost, PhysicalMemoryMatchesSysconf) {
    const std::uint64_t pageSize = systemPageSize();
    const auto sample = MemoryReader("/", pageSize).read();
    ASSERT_TRUE(sample);
    EXPECT_EQ(sample->physicalBytes,
              static_cast<std::uint64_t>(sysconf(_SC_PHYS_PAGES)) * pageSize);
    EXPECT_GT(ramUsagePercent(*sample), 0.0);
}

TEST(LiveHost, HomeVolumeOfThePasswordEntry) {
    const auto home = userHomeDirectory();
    ASSERT_TRUE(home);
    EXPECT_EQ(*home, getpwuid(getuid())->pw_dir);
    const auto volume = statVolume(*home);
    ASSERT_TRUE(volume);
    EXPECT_GT(volume->sizeBytes, 0.0);
    EXPECT_GE(volume->freeBytes, 0.0);
    EXPECT_LE(volume->freeBytes, volume->sizeBytes);
}

TEST(LiveHost, RepeatedReadsKeepOneDescriptorPerFile) {
    const std::size_t before = openDescriptorCount();
    {
        CpuLoadReader cpu("/");
        MemoryReader memory("/", systemPageSize());
        NetworkReader network("/");
        PowerSourceReader power("/");
        for (int tick = 0; tick < 40; ++tick) {
            cpu.read();
            memory.read();
            network.read();
            power.read();
        }
        EXPECT_LE(openDescriptorCount(), before + 3 + 8);  // three procfs files, a few sysfs
    }
    EXPECT_EQ(openDescriptorCount(), before);
}

}  // namespace
}  // namespace corvane::sources
