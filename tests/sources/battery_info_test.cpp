#include "sources/battery_info.h"

#include <gtest/gtest.h>

#include <string>

#include "sources/temp_tree.h"

namespace corvane::sources {

// Beside the type, where std::optional's comparison and gtest's printer look for them.
static bool operator==(const PowerSource& a, const PowerSource& b) {
    return a.currentCapacity == b.currentCapacity && a.maxCapacity == b.maxCapacity &&
           a.powerSourceState == b.powerSourceState;
}

[[maybe_unused]] static void PrintTo(const PowerSource& s, std::ostream* out) {
    *out << s.currentCapacity << "/" << s.maxCapacity << " " << s.powerSourceState;
}

namespace {

using testing::TempTree;

TEST(BatteryLevelPercent, QuotientFirstThenTruncated) {
    const struct {
        std::int64_t current, max, level;
    } cases[] = {{80, 100, 80}, {4500, 5000, 90}, {29, 100, 28},  {57, 100, 56},
                 {58, 100, 57}, {1, 3, 33},       {100, 100, 100}};
    for (const auto& c : cases) {
        EXPECT_EQ(batteryLevelPercent(c.current, c.max), c.level) << c.current << "/" << c.max;
    }
    EXPECT_EQ(batteryLevelPercent(50, 0), std::nullopt);
    EXPECT_EQ(batteryLevelPercent(0, 0), std::nullopt);
    EXPECT_EQ(batteryLevelPercent(INT64_MAX, 1), std::nullopt);
}

TEST(ParseSysfsInteger, PlainNonNegativeDecimalWithItsNewline) {
    EXPECT_EQ(parseSysfsInteger("45120000\n"), 45120000);
    EXPECT_EQ(parseSysfsInteger("0\n"), 0);
    EXPECT_EQ(parseSysfsInteger("9223372036854775807\n"), INT64_MAX);
    // Empty, cut, negative, garbage and beyond 64 bits go through a monitor in the fault matrix.
    for (const char* bad :
         {"\n", "+5\n", " 5\n", "5 \n", "5\n\n", "4.5\n", "9223372036854775808\n"}) {
        EXPECT_EQ(parseSysfsInteger(bad), std::nullopt) << bad;
    }
}

TEST(PowerSourceReader, ReadsMachinesOfEveryShape) {
    const struct {
        const char* fixture;
        std::optional<PowerSource> expected;
    } machines[] = {
        {"laptop-energy", PowerSource{40000000, 50000000, "AC Power"}},
        {"laptop-charge", PowerSource{4500000, 5000000, "Battery Power"}},
        // The game pad's battery sorts first but belongs to a device; capacity only: 57/100.
        {"arm-laptop", PowerSource{57, 100, "Battery Power"}},
        {"desktop-mouse", std::nullopt},
        {"usb-charger-desktop", std::nullopt},
        {"vm", std::nullopt},
    };
    for (const auto& machine : machines) {
        const TempTree tree(machine.fixture);
        PowerSourceReader reader(tree.root());
        EXPECT_EQ(reader.read(), machine.expected) << machine.fixture;
    }
    TempTree empty;
    empty.makeDirectory("sys/class/power_supply");
    EXPECT_EQ(PowerSourceReader(empty.root()).read(), std::nullopt);
}

constexpr const char* kSupplies = "sys/class/power_supply/";

void writeSupply(const TempTree& tree, const std::string& name,
                 std::initializer_list<std::pair<const char*, const char*>> attributes) {
    for (const auto& [attribute, value] : attributes) {
        tree.write(kSupplies + name + "/" + attribute, value);
    }
}

TEST(PowerSourceReader, StateFromChargersElseFromTheBatteryStatus) {
    const struct {
        const char* status;
        const char* mainsOnline;  // nullptr: no such supply
        const char* usbOnline;
        const char* state;
    } cases[] = {
        {"Charging\n", nullptr, nullptr, "AC Power"},
        {"Full\n", nullptr, nullptr, "AC Power"},
        {"Not charging\n", nullptr, nullptr, "AC Power"},
        {"discharging\n", nullptr, nullptr, "AC Power"},
        {"Charging\n", "0\n", nullptr, "Battery Power"},  // chargers decide when there are any
        {"Discharging\n", "1\n", nullptr, "AC Power"},
        {"Discharging\n", "0\n", "0\n", "Battery Power"},
        {"Discharging\n", "0\n", "2\n", "AC Power"},  // USB PD: programmable supply online
        {"Discharging\n", nullptr, "1\n", "AC Power"},
        {"Discharging\n", "garbage\n", "1\n", "AC Power"},  // an unreadable one hides nothing
        {nullptr, "1\n", nullptr, "AC Power"},              // status is not needed then
    };
    for (const auto& c : cases) {
        const TempTree tree;
        writeSupply(tree, "BAT0",
                    {{"type", "Battery\n"}, {"energy_now", "1\n"}, {"energy_full", "2\n"}});
        if (c.status) {
            tree.write(std::string(kSupplies) + "BAT0/status", c.status);
        }
        if (c.mainsOnline) {
            writeSupply(tree, "AC", {{"type", "Mains\n"}, {"online", c.mainsOnline}});
        }
        if (c.usbOnline) {
            writeSupply(tree, "ucsi-source-psy-USBC000:001",
                        {{"type", "USB\n"}, {"online", c.usbOnline}});
        }
        const auto source = PowerSourceReader(tree.root()).read();
        ASSERT_TRUE(source) << c.status;
        EXPECT_EQ(source->powerSourceState, c.state)
            << (c.status ? c.status : "-") << (c.mainsOnline ? c.mainsOnline : "-")
            << (c.usbOnline ? c.usbOnline : "-");
    }
}

TEST(PowerSourceReader, CapacityPairFallsBackUntilBothValuesRead) {
    const struct {
        std::initializer_list<std::pair<const char*, const char*>> files;
        std::optional<std::pair<std::int64_t, std::int64_t>> capacities;
    } cases[] = {
        {{{"energy_now", "5\n"},
          {"energy_full", "10\n"},
          {"charge_now", "1\n"},
          {"charge_full", "4\n"}},
         {{5, 10}}},
        {{{"energy_now", "5\n"},
          {"energy_full", "x\n"},
          {"charge_now", "1\n"},
          {"charge_full", "4\n"}},
         {{1, 4}}},
        {{{"energy_now", "-5\n"}, {"energy_full", "10\n"}, {"capacity", "57\n"}}, {{57, 100}}},
        {{{"charge_now", "1\n"}, {"capacity", "57\n"}}, {{57, 100}}},
        {{{"energy_now", "0\n"}, {"energy_full", "0\n"}}, {{0, 0}}},  // the level has no value
        {{{"charge_now", "1\n"}, {"capacity", "x\n"}}, std::nullopt},
    };
    for (const auto& c : cases) {
        const TempTree tree;
        writeSupply(tree, "BAT0", {{"type", "Battery\n"}, {"status", "Discharging\n"}});
        writeSupply(tree, "BAT0", c.files);
        const auto source = PowerSourceReader(tree.root()).read();
        ASSERT_EQ(source.has_value(), c.capacities.has_value());
        if (source) {
            EXPECT_EQ(source->currentCapacity, c.capacities->first);
            EXPECT_EQ(source->maxCapacity, c.capacities->second);
        }
    }
}

TEST(PowerSourceReader, FollowsValuesThroughKeptDescriptorsWithOnlyTheNeededFilesOpen) {
    const TempTree tree("laptop-energy");
    PowerSourceReader reader(tree.root());
    ASSERT_TRUE(reader.read());
    // energy_now, energy_full and the charger's online; status is not needed with a charger.
    EXPECT_EQ(testing::openDescriptorsUnder(tree.root()).size(), 3u);

    tree.write(std::string(kSupplies) + "BAT0/energy_now", "25000000\n");
    tree.write(std::string(kSupplies) + "AC/online", "0\n");
    EXPECT_EQ(reader.read(), (PowerSource{25000000, 50000000, "Battery Power"}));
}

TEST(PowerSourceReader, BatteryThatVanishesComesBackAtThePeriodicScan) {
    const TempTree tree("laptop-energy");
    {
        PowerSourceReader reader(tree.root(), 3);
        ASSERT_TRUE(reader.read());
        tree.remove(std::string(kSupplies) + "BAT0");
        EXPECT_EQ(reader.read(), std::nullopt);
        EXPECT_EQ(testing::openDescriptorsUnder(tree.root() / "sys/class/power_supply/BAT0"),
                  std::vector<std::string>{});

        std::filesystem::copy(
            std::filesystem::path(CORVANE_FIXTURES) / "laptop-energy" / kSupplies / "BAT0",
            tree.root() / kSupplies / "BAT0");
        EXPECT_EQ(reader.read(), std::nullopt);  // not looked for before the next scan
        EXPECT_EQ(reader.read(), std::nullopt);
        EXPECT_EQ(reader.read(), (PowerSource{40000000, 50000000, "AC Power"}));
    }
    EXPECT_TRUE(testing::openDescriptorsUnder(tree.root()).empty());
}

TEST(PowerSourceReader, SecondBatteryTakesOverAtOnce) {
    const TempTree tree("laptop-energy");
    writeSupply(tree, "BAT1",
                {{"type", "Battery\n"}, {"charge_now", "3\n"}, {"charge_full", "4\n"}});
    PowerSourceReader reader(tree.root());
    ASSERT_EQ(reader.read()->currentCapacity, 40000000);
    tree.remove(std::string(kSupplies) + "BAT0");
    EXPECT_EQ(reader.read(), (PowerSource{3, 4, "AC Power"}));
}

TEST(PowerSourceReader, ChargerPluggedInLaterIsFoundAtThePeriodicScan) {
    const TempTree tree;
    writeSupply(tree, "BAT0",
                {{"type", "Battery\n"}, {"status", "Discharging\n"}, {"capacity", "50\n"}});
    PowerSourceReader reader(tree.root(), 2);
    EXPECT_EQ(reader.read()->powerSourceState, "Battery Power");
    writeSupply(tree, "ucsi-source-psy-USBC000:001", {{"type", "USB\n"}, {"online", "1\n"}});
    EXPECT_EQ(reader.read()->powerSourceState, "Battery Power");
    EXPECT_EQ(reader.read()->powerSourceState, "AC Power");
}

}  // namespace
}  // namespace corvane::sources
