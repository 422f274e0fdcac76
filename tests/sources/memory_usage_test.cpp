#include "sources/memory_usage.h"

#include <gtest/gtest.h>

#include <string>

#include "sources/temp_tree.h"

namespace corvane::sources {
namespace {

constexpr std::uint64_t k16GiB = 17179869184;

TEST(RamUsagePercent, ActivePlusWiredOverPhysical) {
    EXPECT_EQ(ramUsagePercent({k16GiB, 16384, 500000, 250000}), 71.52557373046875);
    EXPECT_EQ(ramUsagePercent({k16GiB, 16384, 262144, 131072}), 37.5);
}

std::string meminfo(const std::string& lines) {
    return "MemTotal:       16777216 kB\nMemFree:         1000000 kB\n" + lines +
           "HugePages_Total:       0\nHugepagesize:       2048 kB\n";
}

TEST(ParseMeminfo, ConvertsKibibytesToPagesOfTheGivenSize) {
    const std::string text = meminfo(
        "Active:          4000000 kB\nActive(anon):    9999999 kB\nUnevictable:        1024 kB\n"
        "SUnreclaim:      2000000 kB\nKernelStack:       18432 kB\nPageTables:       980544 kB\n"
        "SecPageTables:   7777777 kB\n");
    const auto small = parseMeminfo(text, 4096);
    ASSERT_TRUE(small);
    EXPECT_EQ(small->physicalBytes, k16GiB);
    EXPECT_EQ(small->pageSize, 4096u);
    EXPECT_EQ(small->activePages, 1000000u);
    EXPECT_EQ(small->wiredPages, 750000u);

    const auto large = parseMeminfo(text, 16384);
    ASSERT_TRUE(large);
    EXPECT_EQ(large->activePages, 250000u);
    EXPECT_EQ(large->wiredPages, 187500u);
}

TEST(ParseMeminfo, WiredKeysAnOldKernelLacksAddNothing) {
    const auto sample = parseMeminfo(meminfo("Active:  8 kB\nPageTables:  16 kB\n"), 4096);
    ASSERT_TRUE(sample);
    EXPECT_EQ(sample->activePages, 2u);
    EXPECT_EQ(sample->wiredPages, 4u);
}

TEST(ParseMeminfo, FailsWithoutTotalActiveOrReadableCountedValues) {
    for (const std::string& text : {
             std::string(),
             std::string("Active:  8 kB\n"),
             meminfo(""),
             meminfo("Active(anon):  8 kB\n"),
             meminfo("Active:\n"),
             meminfo("Active:  x kB\n"),
             meminfo("Active:  8\n"),
             meminfo("Active:  8 MB\n"),
             meminfo("Active:  -8 kB\n"),
             meminfo("Active:  8 kB 9\n"),
             meminfo("Active:  99999999999999999999 kB\n"),
             meminfo("Active:  18014398509481984 kB\n"),  // 2^54 kB: 2^64 bytes
             meminfo("Active:  8 kB\nKernelStack:  garbage\n"),
             meminfo("Active:  8 kB\nUnevictable:  9223372036854775807 kB\n"
                     "SUnreclaim:  9223372036854775807 kB\nKernelStack:  2 kB\n"),
         }) {
        EXPECT_EQ(parseMeminfo(text, 4096), std::nullopt) << text;
    }
    EXPECT_EQ(parseMeminfo(meminfo("Active:  8 kB\n"), 0), std::nullopt);
}

TEST(ParseMeminfo, IgnoresKeysItDoesNotCount) {
    EXPECT_TRUE(parseMeminfo(meminfo("Active:  8 kB\nInactive:  x\nBroken line\n"), 4096));
}

TEST(MemoryReader, ReadsMachinesOfEveryShape) {
    const struct {
        const char* fixture;
        std::uint64_t totalKb, activePages, wiredPages;
    } machines[] = {{"laptop-energy", 16314008, 1000000, 750000},
                    {"laptop-charge", 8040516, 262144, 0},
                    {"vm", 1016316, 65536, 512}};
    for (const auto& machine : machines) {
        const testing::TempTree tree(machine.fixture);
        MemoryReader reader(tree.root(), 4096);
        const auto sample = reader.read();
        ASSERT_TRUE(sample) << machine.fixture;
        EXPECT_EQ(sample->physicalBytes, machine.totalKb * 1024) << machine.fixture;
        EXPECT_EQ(sample->activePages, machine.activePages) << machine.fixture;
        EXPECT_EQ(sample->wiredPages, machine.wiredPages) << machine.fixture;
    }
}

}  // namespace
}  // namespace corvane::sources
