#include "sources/cpu_load.h"

#include <gtest/gtest.h>

#include <cmath>

#include "sources/temp_tree.h"

namespace corvane::sources {
namespace {

TEST(CpuUsagePercent, SharesOfBusyTime) {
    EXPECT_EQ(cpuUsagePercent({.user = 300, .system = 100, .idle = 1500, .nice = 100}), 25.0);
    EXPECT_EQ(cpuUsagePercent({.idle = 1500}), 0.0);
    EXPECT_EQ(cpuUsagePercent({.user = 1, .system = 2, .nice = 3}), 100.0);
    EXPECT_TRUE(std::isnan(cpuUsagePercent({})));
}

TEST(ParseCpuTicks, FoldsTheLinuxStatesIntoFourInOldAndFutureLayouts) {
    const struct {
        const char* text;
        std::uint64_t user, nice, system, idle;
    } cases[] = {
        // irq, softirq and steal are system time, iowait is idle; guest (40) is already in user.
        {"cpu  300 100 60 1200 300 20 10 10 40 0\ncpu0 1 2 3 4\n", 300, 100, 100, 1500},
        {"cpu  1 2 3 4\n", 1, 2, 3, 4},                                     // before 2.5.41
        {"cpu  1 2 3 4 5 6 7 8 9 10 11 12\n", 1, 2, 3 + 6 + 7 + 8, 4 + 5},  // fields added later
        {"cpu  9223372036854775807 0 0 9223372036854775807\n", 9223372036854775807u, 0, 0,
         9223372036854775807u},
    };
    for (const auto& c : cases) {
        const auto ticks = parseCpuTicks(c.text);
        ASSERT_TRUE(ticks) << c.text;
        EXPECT_EQ(ticks->user, c.user) << c.text;
        EXPECT_EQ(ticks->nice, c.nice) << c.text;
        EXPECT_EQ(ticks->system, c.system) << c.text;
        EXPECT_EQ(ticks->idle, c.idle) << c.text;
    }
}

// Empty, cut, negative, beyond 64 bits and a sum past 64 bits go through a monitor in the
// fault matrix; these are the first-line shapes it does not write.
TEST(ParseCpuTicks, RejectsMalformedFirstLines) {
    for (const char* text : {
             "\ncpu  1 2 3 4\n",
             "intr 5\ncpu  1 2 3 4\n",
             "cpu0 1 2 3 4\n",
             "CPU  1 2 3 4\n",
             " cpu  1 2 3 4\n",
             "cpu  1 2 3\n4\n",
             "cpu  1 2 x 4\n",
             "cpu  1 2 3 4.5\n",
             "cpu  +1 2 3 4\n",
             "cpu  1 2 3 4 5 6 7 99999999999999999999999\n",
             // each counter fits, the system or idle sum does not
             "cpu  0 0 18446744073709551615 0 0 1 0 0\n",
             "cpu  0 0 0 18446744073709551615 1\n",
         }) {
        EXPECT_EQ(parseCpuTicks(text), std::nullopt) << text;
    }
}

TEST(CpuLoadReader, ReadsMachinesOfEveryShape) {
    const struct {
        const char* fixture;
        double usage;
    } machines[] = {
        {"laptop-energy", 25.0}, {"laptop-charge", 0.0}, {"desktop-mouse", 100.0}, {"vm", 37.5}};
    for (const auto& machine : machines) {
        const testing::TempTree tree(machine.fixture);
        CpuLoadReader reader(tree.root());
        const auto ticks = reader.read();
        ASSERT_TRUE(ticks) << machine.fixture;
        EXPECT_EQ(cpuUsagePercent(*ticks), machine.usage) << machine.fixture;
    }
}

}  // namespace
}  // namespace corvane::sources
