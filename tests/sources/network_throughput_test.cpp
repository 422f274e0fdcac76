#include "sources/network_throughput.h"

#include <gtest/gtest.h>

#include <string>

#include "sources/temp_tree.h"

namespace corvane::sources {
namespace {

TEST(RateMegabytesPerSecond, GrowthOverTwoSecondsInMebibytes) {
    EXPECT_EQ(rateMegabytesPerSecond(1000 + 6291456, 1000), 3.0);
    EXPECT_EQ(rateMegabytesPerSecond(1000 + 1048576, 1000), 0.5);
    EXPECT_EQ(rateMegabytesPerSecond(1000, 1000), 0.0);
    EXPECT_EQ(rateMegabytesPerSecond(999, 1000), 0.0);  // an interface went away
}

TEST(IsCountedInterface, WiredAndWirelessUnderBothNamingSchemes) {
    for (const char* name : {"en0", "enp3s0", "ens3", "eno1", "eth0", "wlan0", "wlp2s0"}) {
        EXPECT_TRUE(isCountedInterface(name)) << name;
    }
    for (const char* name : {"", "e", "lo", "docker0", "veth1a2b3c4", "br-4f2e9c", "virbr0", "tun0",
                             "wg0", "En0", "ETH0"}) {
        EXPECT_FALSE(isCountedInterface(name)) << name;
    }
}

const std::string kHeader =
    "Inter-|   Receive                                                |  Transmit\n"
    " face |bytes    packets errs drop fifo frame compressed multicast|bytes    packets errs "
    "drop fifo colls carrier compressed\n";

TEST(ParseNetDev, SumsCountedInterfacesIn64Bits) {
    const testing::TempTree host("container-host");
    NetworkReader reader(host.root());
    const ByteTotals totals = reader.read();
    // enp3s0 + wlp2s0 + wlan0; lo, docker0, veth*, br-*, tun0 and virbr0 add nothing.
    EXPECT_EQ(totals.received, 5000000000000u + 6000000u + 1000000u);
    EXPECT_EQ(totals.sent, 40000000000u + 2000000u + 500000u);
}

// Truncated, negative and beyond-64-bit lines go through a monitor in the fault matrix.
TEST(ParseNetDev, MalformedLinesAddNothing) {
    // Old kernels wrote large counts right after the colon.
    const std::string good = "  eth0:4294967296 1 0 0 0 0 0 0 200 1 0 0 0 0 0 0\n";
    for (const std::string bad : {
             "",
             "  eth1: 5 1 0 0 0 0 0 0 7 1 0 0 0 0 0 0 0\n",  // one counter too many
             "  eth1: 5 1 0 0 0 x 0 0 7 1 0 0 0 0 0 0\n",
             "  eth1 5 1 0 0 0 0 0 0 7 1 0 0 0 0 0 0\n",
         }) {
        const ByteTotals totals = parseNetDev(kHeader + bad + good);
        EXPECT_EQ(totals.received, 4294967296u) << bad;
        EXPECT_EQ(totals.sent, 200u) << bad;
    }
}

}  // namespace
}  // namespace corvane::sources
