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

TEST(ParseMeminfo, CountsActiveAndTheWiredKeysInPagesOfTheGivenSize) {
    const std::string full = meminfo(
        "Active:          4000000 kB\nActive(anon):    9999999 kB\nUnevictable:        1024 kB\n"
        "SUnreclaim:      2000000 kB\nKernelStack:       18432 kB\nPageTables:       980544 kB\n"
        "SecPageTables:   7777777 kB\n");
    const struct {
        std::string text;
        std::uint64_t pageSize, activePages, wiredPages;
    } cases[] = {
        {full, 4096, 1000000, 750000},
        {full, 16384, 250000, 187500},
        // Wired keys an old kernel lacks add nothing; keys not counted may hold anything.
        {meminfo("Active:  8 kB\nPageTables:  16 kB\n"), 4096, 2, 4},
        {meminfo("Active:  8 kB\nInactive:  x\nBroken line\n"), 4096, 2, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        const auto sample = parseMeminfo(c.text, c.pageSize);
        ASSERT_TRUE(sample);
        EXPECT_EQ(sample->physicalBytes, k16GiB);
        EXPECT_EQ(sample->pageSize, c.pageSize);
        EXPECT_EQ(sample->activePages, c.activePages);
        EXPECT_EQ(sample->wiredPages, c.wiredPages);
    }
}

// Empty, cut, negative and beyond-64-bit files go through a monitor in the fault matrix;
// these are the line shapes it does not write.
TEST(ParseMeminfo, FailsWithoutTotalActiveOrReadableCountedValues) {
    for (const std::string& text : {
             std::string("Active:  8 kB\n"),
             meminfo("Active(anon):  8 kB\n"),
             meminfo("Active:  x kB\n"),
             meminfo("Active:  8 MB\n"),
             meminfo("Active:  8 kB 9\n"),
             meminfo("Active:  18014398509481984 kB\n"),  // 2^54 kB: 2^64 bytes
             meminfo("Active:  8 kB\nKernelStack:  garbage\n"),
             meminfo("Active:  8 kB\nUnevictable:  9223372036854775807 kB\n"
                     "SUnreclaim:  9223372036854775807 kB\nKernelStack:  2 kB\n"),
         }) {
        EXPECT_EQ(parseMeminfo(text, 4096), std::nullopt) << text;
    }
    EXPECT_EQ(parseMeminfo(meminfo("Active:  8 kB\n"), 0), std::nullopt);
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
