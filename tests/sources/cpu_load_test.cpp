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

TEST(ParseCpuTicks, FoldsTenLinuxStatesIntoFour) {
    // irq, softirq and steal are system time, iowait is idle; guest (40) is already in user.
    const auto ticks = parseCpuTicks("cpu  300 100 60 1200 300 20 10 10 40 0\ncpu0 1 2 3 4\n");
    ASSERT_TRUE(ticks);
    EXPECT_EQ(ticks->user, 300u);
    EXPECT_EQ(ticks->nice, 100u);
    EXPECT_EQ(ticks->system, 100u);
    EXPECT_EQ(ticks->idle, 1500u);
}

TEST(ParseCpuTicks, AcceptsOldAndFutureLayouts) {
    EXPECT_TRUE(parseCpuTicks("cpu  1 2 3 4\n"));                     // before 2.5.41
    EXPECT_TRUE(parseCpuTicks("cpu  1 2 3 4 5 6 7 8 9 10 11 12\n"));  // fields added later
    EXPECT_TRUE(parseCpuTicks("cpu  1 2 3 4"));                       // no final newline
    const auto big = parseCpuTicks("cpu  9223372036854775807 0 0 9223372036854775807\n");
    ASSERT_TRUE(big);
    EXPECT_EQ(big->user, 9223372036854775807u);
}

TEST(ParseCpuTicks, RejectsMalformedFirstLines) {
    for (const char* text : {
             "",
             "\ncpu  1 2 3 4\n",
             "intr 5\ncpu  1 2 3 4\n",
             "cpu0 1 2 3 4\n",
             "CPU  1 2 3 4\n",
             " cpu  1 2 3 4\n",
             "cpu  1 2 3\n",
             "cpu  1 2 3\n4\n",
             "cpu  1 2 x 4\n",
             "cpu  1 2 3 4.5\n",
             "cpu  -1 2 3 4\n",
             "cpu  +1 2 3 4\n",
             "cpu  18446744073709551616 0 0 0\n",
             "cpu  1 2 3 4 5 6 7 99999999999999999999999\n",
             // each counter fits, their sums do not
             "cpu  0 0 18446744073709551615 0 0 1 0 0\n",
             "cpu  0 0 0 18446744073709551615 1\n",
             "cpu  18446744073709551615 0 0 1\n",
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
