// The three readers of /proc share one way of reading: descriptors kept open, content taken
// anew at each read, a failing descriptor reopened once, a neutral result otherwise.
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "sources/cpu_load.h"
#include "sources/memory_usage.h"
#include "sources/network_throughput.h"
#include "sources/temp_tree.h"

namespace corvane::sources {
namespace {

using testing::TempTree;

struct ProcReader {
    const char* file;
    std::string content;
    // Builds a reader on a root; the returned call reads once and says what came out.
    std::function<std::function<std::string()>(const std::filesystem::path&)> make;
};

std::vector<ProcReader> procReaders() {
    return {
        {"proc/stat", "cpu  1 0 1 2 0 0 0 0 0 0\n",
         [](const std::filesystem::path& root) {
             return [reader = std::make_shared<CpuLoadReader>(root)] {
                 const auto ticks = reader->read();
                 return ticks ? std::to_string(cpuUsagePercent(*ticks)) : "none";
             };
         }},
        {"proc/meminfo", "MemTotal: 16 kB\nActive: 4 kB\n",
         [](const std::filesystem::path& root) {
             return [reader = std::make_shared<MemoryReader>(root, 4096)] {
                 const auto sample = reader->read();
                 return sample ? std::to_string(ramUsagePercent(*sample)) : "none";
             };
         }},
        {"proc/net/dev", "  eth0: 4 0 0 0 0 0 0 0 6 0 0 0 0 0 0 0\n",
         [](const std::filesystem::path& root) {
             return [reader = std::make_shared<NetworkReader>(root)] {
                 const ByteTotals totals = reader->read();
                 return std::to_string(totals.received) + "/" + std::to_string(totals.sent);
             };
         }},
    };
}

// What each reader gives for a file it cannot use: 0 bytes for the network, none otherwise.
// Missing, empty and directory files each go through a monitor in the fault matrix.
std::string neutral(const ProcReader& r) {
    return r.file == std::string("proc/net/dev") ? "0/0" : "none";
}

TEST(ProcReaders, FollowChangesVanishingAndReappearing) {
    for (const ProcReader& r : procReaders()) {
        TempTree tree;
        tree.write(r.file, r.content);
        const auto read = r.make(tree.root());
        const std::string first = read();
        ASSERT_NE(first, neutral(r)) << r.file;
        EXPECT_EQ(testing::openDescriptorsUnder(tree.root()).size(), 1u) << r.file;

        tree.write(r.file, "garbage\n");  // rewritten in place, read through the kept descriptor
        EXPECT_EQ(read(), neutral(r)) << r.file;

        tree.write(r.file, r.content);
        EXPECT_EQ(read(), first) << r.file;

        tree.remove("proc");
        EXPECT_EQ(read(), neutral(r)) << r.file << " vanished";
        EXPECT_TRUE(testing::openDescriptorsUnder(tree.root()).empty()) << r.file;

        tree.write(r.file, r.content);
        EXPECT_EQ(read(), first) << r.file << " reappeared";
    }
}

TEST(ProcReaders, CloseEverythingWhenDestroyed) {
    TempTree tree("laptop-energy");
    {
        std::vector<std::function<std::string()>> reads;
        for (const ProcReader& r : procReaders()) {
            reads.push_back(r.make(tree.root()));
            reads.back()();
        }
        EXPECT_EQ(testing::openDescriptorsUnder(tree.root()).size(), 3u);
    }
    EXPECT_TRUE(testing::openDescriptorsUnder(tree.root()).empty());
}

}  // namespace
}  // namespace corvane::sources
