// The five readers: each parser and formula against its case table, every reader over the
// fixture machines, and what the power-source reader and the kernel files make of changes.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>

#include "fuzz/fuzz_targets.h"

#include "sources/battery_info.h"
#include "sources/cpu_load.h"
#include "sources/disk_usage.h"
#include "sources/memory_usage.h"
#include "sources/network_throughput.h"
#include "support.h"

namespace corvane::sources {

// What the tables write for each reading.
std::string show(const CpuTicks& t) {
    return testing::join(t.user, t.nice, t.system, t.idle);
}
std::string show(const MemorySample& m) {
    return testing::join(m.physicalBytes, m.activePages, m.wiredPages);
}
std::string show(const ByteTotals& t) {
    return testing::join(t.received, t.sent);
}
std::string show(const PowerSource& s) {
    return testing::join(s.currentCapacity, s.maxCapacity, s.powerSourceState);
}

namespace {

using namespace corvane::testing;
using corvane::testing::show;

TEST(Sources, ParsersAndFormulasTables) {
    for (const auto& c : caseTable("parsers")) {
        EXPECT_EQ(c[0] == "stat"      ? show(parseCpuTicks(c[1]))
                  : c[0] == "meminfo" ? show(parseMeminfo(c[1], std::stoull(c[2])))
                  : c[0] == "netdev"  ? show(parseNetDev(c[1]))
                  : c[0] == "iface"   ? show(isCountedInterface(c[1]) ? "yes" : "no")
                                      : show(parseSysfsInteger(c[1])),
                  c.fields.back())
            << c.where;
    }
    // Doubles are compared exactly: each formula is fixed down to its order of operations.
    for (const auto& c : caseTable("formulas")) {
        const auto in = words(c[1]);
        const auto n = [&](int i) { return std::stoull(in[i]); };
        EXPECT_EQ(c[0] == "cpu"    ? show(cpuUsagePercent({n(0), n(1), n(2), n(3)}))
                  : c[0] == "ram"  ? show(ramUsagePercent({n(0), n(1), n(2), n(3)}))
                  : c[0] == "disk" ? show(diskUsagePercent({number(in[0]), number(in[1])}))
                  : c[0] == "battery"
                      ? show(batteryLevelPercent(std::stoll(in[0]), std::stoll(in[1])))
                      : show(rateMegabytesPerSecond(n(0), n(1))),
                  c[2])
            << c.where;
    }
}

TEST(Sources, FixtureMachinesAndPowerSuppliesTables) {
    for (const auto& c : caseTable("machines")) {
        const TempTree tree(c[0]);
        const auto ticks = CpuLoadReader(tree.root()).read();
        EXPECT_EQ(join(ticks ? show(cpuUsagePercent(*ticks)) : "-", "|",
                       MemoryReader(tree.root(), std::stoull(c[1])).read(), "|",
                       PowerSourceReader(tree.root()).read(), "|", NetworkReader(tree.root()).read()),
                  join(c[2], "|", c[3], "|", c[4], "|", c[5]))
            << c.where;
    }
    std::optional<TempTree> tree;
    std::optional<PowerSourceReader> reader;
    for (const auto& c : caseTable("power")) {
        if (!c[0].starts_with("then")) {
            reader.reset();
            EXPECT_TRUE(!tree || tree->openDescriptors() == 0) << "left open before " << c.where;
            reader.emplace(tree.emplace().root(), 3);
        }
        for (const std::string& change : words(c[0])) {
            const auto equals = change.find('=');
            if (change.starts_with('-')) {
                tree->remove("sys/class/power_supply/" + change.substr(1));
            } else if (equals != std::string::npos) {
                tree->write("sys/class/power_supply/" + change.substr(0, equals),
                            change.substr(equals + 1) + "\n");
            }
        }
        EXPECT_EQ(show(reader->read()), c[1]) << c.where;
        EXPECT_TRUE(c.fields.size() < 3 || tree->openDescriptors() == std::stoul(c[2])) << c.where;
    }
}

// What is not a kernel file fails at once and leaves nothing open; a FIFO must not block.
TEST(Sources, KernelFilesRefuseFifosAndWhatIsTooLarge) {
    const TempTree tree;
    ASSERT_EQ(::mkfifo((tree.root() / "fifo").c_str(), 0600), 0);
    KernelFile fifo((tree.root() / "fifo").string());
    EXPECT_EQ(fifo.read(), std::nullopt);
    EXPECT_FALSE(fifo.isOpen());
    tree.write("f", std::string(64, '1'));
    EXPECT_TRUE(KernelFile((tree.root() / "f").string(), 64).read());
    EXPECT_FALSE(KernelFile((tree.root() / "f").string(), 63).read());
    tree.write("f", std::string(10000, '2'));  // beyond the first buffer
    // Started with standard input closed, a program gets descriptor 0 for the first file.
    const int input = ::dup(0);
    ::close(0);
    {
        KernelFile zero((tree.root() / "f").string());
        EXPECT_EQ(zero.read(), std::string(10000, '2'));
        EXPECT_EQ(zero.read(), std::string(10000, '2')) << "read again through descriptor 0";
        EXPECT_TRUE(zero.isOpen()) << "0 is a descriptor like any other";
    }
    EXPECT_EQ(::fcntl(0, F_GETFD), -1) << "descriptor 0 left open";
    ::dup2(input, 0);
    ::close(input);
}

// The disk reader measures the home it is told of; the live queries agree with the C library.
TEST(Sources, DiskOfTheHomeDirectory) {
    DiskReader reader([] { return std::optional<std::string>("/home/ada"); },
                      [](const std::string& path) {
                          return std::optional<VolumeSize>({path == "/home/ada" ? 8.0 : 0.0, 2.0});
                      });
    EXPECT_EQ(reader.read()->sizeBytes, 8.0);
    const auto space = std::filesystem::space("/");
    errno = EINTR;  // left by an earlier call: a query that worked is not tried again
    const auto volume = statVolume("/");
    EXPECT_EQ(volume->sizeBytes, static_cast<double>(space.capacity));
    EXPECT_NEAR(volume->freeBytes, static_cast<double>(space.available), space.capacity / 100.0);
    EXPECT_EQ(statVolume("/nonexistent/corvane"), std::nullopt);
    const char* wrapped = std::getenv("NSS_WRAPPER_PASSWD");  // the long passwd entry's run
    EXPECT_EQ(userHomeDirectory(), wrapped ? "/home/long-entry" : ::getpwuid(::getuid())->pw_dir);
}

// Every input the fuzzers kept goes through its parser again: a parser change that breaks on a
// known-hard input fails here without a fuzzing session.
TEST(Sources, FuzzCorpusParsesCleanly) {
    for (const auto& target : corvane::fuzz::kTargets) {
        std::size_t inputs = 0;
        for (const auto& entry : std::filesystem::directory_iterator(
                 std::filesystem::path(CORVANE_FUZZ_CORPUS) / target.name)) {
            target.run(readFile(entry.path()));
            ++inputs;
        }
        EXPECT_GT(inputs, 0u) << target.name;
    }
}

}  // namespace
}  // namespace corvane::sources
