// Every bad input the machine can hand a reader, driven through a real monitor: the fault tick
// publishes the neutral value for the fields it touches and leaves every other field as the
// healthy ticks left it, and once the input is repaired the monitor is healthy again.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <iterator>
#include <limits>
#include <memory>
#include <optional>
#include <ostream>
#include <string>

#include "monitor/system_monitor.h"
#include "support/fake_machine.h"

namespace {

using namespace std::string_literals;
using corvane::monitor::SystemMonitor;
using corvane::sources::PowerSourceReader;
using corvane::testing::FakeMachine;

constexpr std::uint64_t kMiB = 1024 * 1024;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

const std::string kStat = "proc/stat";
const std::string kMeminfo = "proc/meminfo";
const std::string kNetDev = "proc/net/dev";
const std::string kBat = "sys/class/power_supply/BAT0";
const std::string kAc = "sys/class/power_supply/AC";
const std::string kEnergyNow = kBat + "/energy_now";
const std::string kEnergyFull = kBat + "/energy_full";
const std::string kChargeNow = kBat + "/charge_now";
const std::string kChargeFull = kBat + "/charge_full";
const std::string kCapacity = kBat + "/capacity";
const std::string kStatus = kBat + "/status";
const std::string kOnline = kAc + "/online";

const std::string kGarbage = "\x7f"s + "ELF\x02\x01\0\0\xff\xfe\n\x01:\x02\n"s;
const std::string kBeyond64Bits = "18446744073709551616";

// How the laptop reports its battery: which capacity pair, and whether a charger decides the
// state or the battery's own status does.
enum class Battery { Energy, Charge, Percent };

struct Published {
    double cpu, ram, disk;
    std::int64_t level;
    std::string state;
    double down, up;
    int writes;  // announcements during the tick

    friend bool operator==(const Published& a, const Published& b) {
        auto same = [](double x, double y) { return x == y || (std::isnan(x) && std::isnan(y)); };
        return same(a.cpu, b.cpu) && same(a.ram, b.ram) && same(a.disk, b.disk) &&
               a.level == b.level && a.state == b.state && same(a.down, b.down) &&
               same(a.up, b.up) && a.writes == b.writes;
    }
    friend void PrintTo(const Published& p, std::ostream* out) {
        *out << "cpu " << p.cpu << " ram " << p.ram << " disk " << p.disk << " battery " << p.level
             << " " << p.state << " rates " << p.down << "/" << p.up << " writes " << p.writes;
    }
};

// Where a tick differs from the healthy one; an empty outcome is the healthy tick.
struct Outcome {
    std::optional<double> cpu{}, ram{}, disk{};
    std::optional<std::int64_t> level{};
    std::optional<std::string> state{};
    std::optional<double> down{}, up{};
    bool batteryKept = false;  // neither battery field written
    bool ratesKept = false;    // no network base: neither rate written

    Published applyTo(Published p) const {
        p.cpu = cpu.value_or(p.cpu);
        p.ram = ram.value_or(p.ram);
        p.disk = disk.value_or(p.disk);
        p.level = level.value_or(p.level);
        p.state = state.value_or(p.state);
        p.down = down.value_or(p.down);
        p.up = up.value_or(p.up);
        p.writes -= (batteryKept ? 2 : 0) + (ratesKept ? 2 : 0);
        return p;
    }
};

const Outcome kCpuZero{.cpu = 0.0};
const Outcome kRamZero{.ram = 0.0};
const Outcome kDiskZero{.disk = 0.0};
const Outcome kBatteryKept{.batteryKept = true};
// The list counts as 0 bytes: below the stored totals, so 0.0, and the base is gone ...
const Outcome kListLost{.down = 0.0, .up = 0.0};
// ... so the next tick writes no rate, rather than the whole total as one burst.
const Outcome kNoBase{.down = 0.0, .up = 0.0, .ratesKept = true};
// Only wlan0 lost: the base is eth0 alone, and wlan0's return counts as growth.
const Outcome kWlanBack{.down = (6.0 + 64.0) / 2.0, .up = (1.0 + 32.0) / 2.0};

// A FakeMachine whose every file is rewritten healthy before each tick, eth0 moving 6 MiB in
// and 1 MiB out per tick (3.0 and 0.5 MiB/s), an idle wlan0, and the monitor reading it.
class Rig {
  public:
    explicit Rig(Battery battery)
        : battery_(battery), monitor_(std::make_shared<SystemMonitor>(machine.environment())) {
        QObject::connect(monitor_.get(), &SystemMonitor::objectWillChange, [this] { ++writes_; });
    }

    void writeHealthy() {
        rx += 6 * kMiB;
        tx += 1 * kMiB;
        machine.setCpuTicks(300, 100, 100, 1500);
        machine.setMemoryKb(16 * kMiB, 4 * kMiB, 2 * kMiB);
        machine.setVolume(500e9, 125e9);
        machine.setHomeDirectory("/home/user");
        writeNetDev(true);
        machine.writeFile(kBat + "/type", "Battery\n");
        switch (battery_) {
            case Battery::Energy:
                machine.writeFile(kEnergyNow, "40000000\n");
                machine.writeFile(kEnergyFull, "50000000\n");
                break;
            case Battery::Charge:
                machine.writeFile(kChargeNow, "4500000\n");
                machine.writeFile(kChargeFull, "5000000\n");
                break;
            case Battery::Percent:
                machine.writeFile(kCapacity, "57\n");
                break;
        }
        if (battery_ == Battery::Percent) {
            machine.writeFile(kStatus, "Discharging\n");
        } else {
            machine.writeFile(kStatus, "Charging\n");
            machine.writeFile(kAc + "/type", "Mains\n");
            machine.writeFile(kOnline, "1\n");
        }
    }

    void writeNetDev(bool withWlan) {
        auto row = [](const char* name, std::uint64_t in, std::uint64_t out) {
            return std::string(name) + ": " + std::to_string(in) + " 10 0 0 0 0 0 0 " +
                   std::to_string(out) + " 10 0 0 0 0 0 0\n";
        };
        machine.writeFile(kNetDev, "Inter-|   Receive  |  Transmit\n face |bytes packets|bytes\n" +
                                       row("    lo", 5000, 5000) + row("  eth0", rx, tx) +
                                       (withWlan ? row(" wlan0", 64 * kMiB, 32 * kMiB) : ""));
    }

    Published start() {
        writeHealthy();
        return measure([this] { monitor_->startMonitoring(); });
    }
    Published fire() {
        return measure([this] { machine.fireTimer(); });
    }
    Published tick() {
        writeHealthy();
        return fire();
    }

    FakeMachine machine;
    std::uint64_t rx = 10 * 1024 * kMiB;
    std::uint64_t tx = 2 * 1024 * kMiB;

  private:
    Published measure(const std::function<void()>& run) {
        writes_ = 0;
        run();
        const SystemMonitor& m = *monitor_;
        EXPECT_TRUE(m.cpuHistory().back() == m.cpuUsage() || std::isnan(m.cpuUsage()));
        return {m.cpuUsage(),     m.ramUsage(),      m.diskUsage(),   m.batteryLevel(),
                m.batteryState(), m.downloadSpeed(), m.uploadSpeed(), writes_};
    }

    Battery battery_;
    std::shared_ptr<SystemMonitor> monitor_;
    int writes_ = 0;
};

using Fault = std::function<void(Rig&)>;

Fault missing(const std::string& file) {
    return [=](Rig& r) { r.machine.removeFile(file); };
}
Fault holding(const std::string& file, const std::string& content) {
    return [=](Rig& r) { r.machine.writeFile(file, content); };
}
Fault directory(const std::string& file) {
    return [=](Rig& r) {
        r.machine.removeFile(file);
        std::filesystem::create_directories(r.machine.root() / file);
    };
}
// The healthy content cut right after the first `marker`.
Fault cutAfter(const std::string& file, const std::string& marker) {
    return [=](Rig& r) {
        const std::string content = r.machine.readFile(file);
        ASSERT_NE(content.find(marker), std::string::npos) << marker;
        r.machine.writeFile(file, content.substr(0, content.find(marker) + marker.size()));
    };
}
Fault replacing(const std::string& file, const std::string& from, const std::string& to) {
    return [=](Rig& r) {
        std::string content = r.machine.readFile(file);
        ASSERT_NE(content.find(from), std::string::npos) << from;
        r.machine.writeFile(file, content.replace(content.find(from), from.size(), to));
    };
}

struct Row {
    const char* name;
    Battery battery;
    Fault fault;
    Outcome faulty;
    Outcome healing = {};  // ticks after the repair, before the monitor is healthy again
    int healingTicks = 0;

    friend void PrintTo(const Row& row, std::ostream* out) { *out << row.name; }
};

const Row kRows[] = {
    {"StatMissing", Battery::Energy, missing(kStat), kCpuZero},
    {"StatEmpty", Battery::Energy, holding(kStat, ""), kCpuZero},
    {"StatCutMidLine", Battery::Energy, cutAfter(kStat, "cpu  300 100 100 "), kCpuZero},
    {"StatCutMidNumber", Battery::Energy, cutAfter(kStat, "cpu  300 100 1"), kCpuZero},
    // Cut inside the idle counter it still reads as four counters: the formula's value.
    {"StatCutInIdle",
     Battery::Energy,
     cutAfter(kStat, "cpu  300 100 100 150"),
     {.cpu = (1.0 - 150.0 / 650.0) * 100.0}},
    {"StatGarbage", Battery::Energy, holding(kStat, kGarbage), kCpuZero},
    {"StatBeyond64Bits", Battery::Energy, replacing(kStat, "300", kBeyond64Bits), kCpuZero},
    {"StatSumBeyond64Bits", Battery::Energy, replacing(kStat, "1500", "18446744073709551615"),
     kCpuZero},
    {"StatNegative", Battery::Energy, replacing(kStat, "300", "-300"), kCpuZero},
    {"StatDirectory", Battery::Energy, directory(kStat), kCpuZero},
    // No earlier sample is kept: lower counters are just another since-boot average.
    {"StatBackwards",
     Battery::Energy,
     [](Rig& r) { r.machine.setCpuTicks(25, 0, 25, 50); },
     {.cpu = 50.0}},

    {"MeminfoMissing", Battery::Energy, missing(kMeminfo), kRamZero},
    {"MeminfoEmpty", Battery::Energy, holding(kMeminfo, ""), kRamZero},
    {"MeminfoCutMidLine", Battery::Energy, cutAfter(kMeminfo, "Active:"), kRamZero},
    {"MeminfoCutMidNumber", Battery::Energy, cutAfter(kMeminfo, "MemTotal:        1677"), kRamZero},
    {"MeminfoCutBeforeActive", Battery::Energy, cutAfter(kMeminfo, " kB\n"), kRamZero},
    {"MeminfoGarbage", Battery::Energy, holding(kMeminfo, kGarbage), kRamZero},
    {"MeminfoBeyond64Bits", Battery::Energy, replacing(kMeminfo, "16777216", kBeyond64Bits),
     kRamZero},
    {"MeminfoBytesBeyond64Bits", Battery::Energy,
     replacing(kMeminfo, "16777216", "18014398509481984"), kRamZero},
    {"MeminfoNegative", Battery::Energy, replacing(kMeminfo, "4194304", "-4194304"), kRamZero},
    {"MeminfoDirectory", Battery::Energy, directory(kMeminfo), kRamZero},

    {"HomeQueryFails", Battery::Energy, [](Rig& r) { r.machine.setHomeDirectory({}); }, kDiskZero},
    {"VolumeQueryFails", Battery::Energy, [](Rig& r) { r.machine.failVolume(); }, kDiskZero},
    {"VolumeOfSizeZero",
     Battery::Energy,
     [](Rig& r) { r.machine.setVolume(0.0, 0.0); },
     {.disk = kNaN}},

    {"NetDevMissing", Battery::Energy, missing(kNetDev), kListLost, kNoBase, 1},
    {"NetDevEmpty", Battery::Energy, holding(kNetDev, ""), kListLost, kNoBase, 1},
    {"NetDevGarbage", Battery::Energy, holding(kNetDev, kGarbage), kListLost, kNoBase, 1},
    {"NetDevDirectory", Battery::Energy, directory(kNetDev), kListLost, kNoBase, 1},
    {"NetDevCutInEth0", Battery::Energy, cutAfter(kNetDev, "  eth0: "), kListLost, kNoBase, 1},
    {"EveryCountedInterfaceVanished", Battery::Energy,
     cutAfter(kNetDev, "    lo: 5000 10 0 0 0 0 0 0 5000 10 0 0 0 0 0 0\n"), kListLost, kNoBase, 1},
    // A line that does not read drops that interface alone; its return counts as growth.
    {"NetDevCutMidLine", Battery::Energy, cutAfter(kNetDev, " wlan0: 67108864 10 0"), kListLost,
     kWlanBack, 1},
    {"NetDevCutMidNumber", Battery::Energy, cutAfter(kNetDev, " wlan0: 6710"), kListLost, kWlanBack,
     1},
    {"NetDevBeyond64Bits", Battery::Energy,
     replacing(kNetDev, " wlan0: 67108864", " wlan0: " + kBeyond64Bits), kListLost, kWlanBack, 1},
    {"NetDevNegative", Battery::Energy, replacing(kNetDev, " wlan0: 67108864", " wlan0: -67108864"),
     kListLost, kWlanBack, 1},
    {"InterfaceVanished", Battery::Energy, [](Rig& r) { r.writeNetDev(false); }, kListLost,
     kWlanBack, 1},
    // eth0's counters restart: the total went down, so 0.0, and the next growth is measured
    // from the lower base.
    {"NetCountersBackwards", Battery::Energy,
     [](Rig& r) {
         r.rx = r.tx = 0;
         r.writeNetDev(true);
     },
     kListLost},

    {"EnergyNowMissing", Battery::Energy, missing(kEnergyNow), kBatteryKept},
    {"EnergyNowEmpty", Battery::Energy, holding(kEnergyNow, ""), kBatteryKept},
    // A sysfs number cut short is still a number: the formula's level.
    {"EnergyNowCutMidNumber", Battery::Energy, holding(kEnergyNow, "4000"), {.level = 0}},
    {"EnergyNowGarbage", Battery::Energy, holding(kEnergyNow, kGarbage), kBatteryKept},
    {"EnergyNowBeyond64Bits", Battery::Energy, holding(kEnergyNow, kBeyond64Bits + "\n"),
     kBatteryKept},
    {"EnergyNowNegative", Battery::Energy, holding(kEnergyNow, "-40000000\n"), kBatteryKept},
    {"EnergyNowDirectory", Battery::Energy, directory(kEnergyNow), kBatteryKept},
    {"EnergyFullMissing", Battery::Energy, missing(kEnergyFull), kBatteryKept},
    {"EnergyFullZero", Battery::Energy, holding(kEnergyFull, "0\n"), kBatteryKept},
    {"EnergyFullGarbage", Battery::Energy, holding(kEnergyFull, kGarbage), kBatteryKept},
    {"EnergyFullBeyond64Bits", Battery::Energy, holding(kEnergyFull, kBeyond64Bits + "\n"),
     kBatteryKept},
    {"EnergyFullNegative", Battery::Energy, holding(kEnergyFull, "-50000000\n"), kBatteryKept},
    {"EnergyFullDirectory", Battery::Energy, directory(kEnergyFull), kBatteryKept},

    {"ChargeNowMissing", Battery::Charge, missing(kChargeNow), kBatteryKept},
    {"ChargeNowGarbage", Battery::Charge, holding(kChargeNow, kGarbage), kBatteryKept},
    {"ChargeNowDirectory", Battery::Charge, directory(kChargeNow), kBatteryKept},
    {"ChargeFullZero", Battery::Charge, holding(kChargeFull, "0\n"), kBatteryKept},
    {"ChargeFullBeyond64Bits", Battery::Charge, holding(kChargeFull, kBeyond64Bits + "\n"),
     kBatteryKept},
    {"ChargeFullNegative", Battery::Charge, holding(kChargeFull, "-5000000\n"), kBatteryKept},

    {"CapacityMissing", Battery::Percent, missing(kCapacity), kBatteryKept},
    {"CapacityEmpty", Battery::Percent, holding(kCapacity, ""), kBatteryKept},
    {"CapacityGarbage", Battery::Percent, holding(kCapacity, kGarbage), kBatteryKept},
    {"CapacityBeyond64Bits", Battery::Percent, holding(kCapacity, kBeyond64Bits + "\n"),
     kBatteryKept},
    {"CapacityNegative", Battery::Percent, holding(kCapacity, "-57\n"), kBatteryKept},
    {"CapacityDirectory", Battery::Percent, directory(kCapacity), kBatteryKept},

    {"StatusMissing", Battery::Percent, missing(kStatus), kBatteryKept},
    {"StatusEmpty", Battery::Percent, holding(kStatus, ""), kBatteryKept},
    {"StatusDirectory", Battery::Percent, directory(kStatus), kBatteryKept},
    // Any status but "Discharging" means external power, including one cut short.
    {"StatusGarbage", Battery::Percent, holding(kStatus, kGarbage), {.state = "Charging"}},
    {"StatusCutMidWord", Battery::Percent, holding(kStatus, "Discharg"), {.state = "Charging"}},

    {"OnlineMissing", Battery::Energy, missing(kOnline), kBatteryKept},
    {"OnlineEmpty", Battery::Energy, holding(kOnline, ""), kBatteryKept},
    {"OnlineGarbage", Battery::Energy, holding(kOnline, kGarbage), kBatteryKept},
    {"OnlineBeyond64Bits", Battery::Energy, holding(kOnline, kBeyond64Bits + "\n"), kBatteryKept},
    {"OnlineNegative", Battery::Energy, holding(kOnline, "-1\n"), kBatteryKept},
    {"OnlineDirectory", Battery::Energy, directory(kOnline), kBatteryKept},
    // Unplugged and its supply went away: the battery's own status decides at once.
    {"ChargerVanished",
     Battery::Energy,
     [](Rig& r) {
         r.machine.removeFile(kAc);
         r.machine.writeFile(kStatus, "Discharging\n");
     },
     {.state = "On Battery"}},
    // Not looked for again before the periodic scan, 15 reads after the one that lost it.
    {"BatteryVanished", Battery::Energy, missing(kBat), kBatteryKept, kBatteryKept,
     PowerSourceReader::kRescanEveryReads - 1},
};
static_assert(std::size(kRows) >= 40);

Published healthyFor(Battery battery) {
    switch (battery) {
        case Battery::Energy:
            return {25.0, 37.5, 75.0, 80, "Charging", 3.0, 0.5, 8};
        case Battery::Charge:
            return {25.0, 37.5, 75.0, 90, "Charging", 3.0, 0.5, 8};
        case Battery::Percent:
            break;
    }
    return {25.0, 37.5, 75.0, 56, "On Battery", 3.0, 0.5, 8};
}

class FaultMatrix : public ::testing::TestWithParam<Row> {};

TEST_P(FaultMatrix, NeutralOnTheFaultTickHealthyAfterTheRepair) {
    const Row& row = GetParam();
    Rig rig(row.battery);
    rig.start();  // stores the network base
    const Published healthy = rig.tick();
    ASSERT_EQ(healthy, healthyFor(row.battery));

    rig.writeHealthy();
    row.fault(rig);
    EXPECT_EQ(rig.fire(), row.faulty.applyTo(healthy)) << "the fault tick";
    for (int i = 0; i < row.healingTicks; ++i) {
        EXPECT_EQ(rig.tick(), row.healing.applyTo(healthy)) << "repaired, tick " << i + 1;
    }
    EXPECT_EQ(rig.tick(), healthy) << "recovered";
    EXPECT_TRUE(rig.machine.posted().empty());
}

INSTANTIATE_TEST_SUITE_P(Faults, FaultMatrix, ::testing::ValuesIn(kRows),
                         [](const ::testing::TestParamInfo<Row>& info) {
                             return std::string(info.param.name);
                         });

}  // namespace
