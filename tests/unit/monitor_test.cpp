// The monitor on fixture machines: what every tick announces and writes, the neutral values
// of bad input, the alert rules and their cool-down, and the timer that drives the ticks.
#include <gtest/gtest.h>

#include <QTest>

#include "monitor/alert_text.h"
#include "platform/grid_timer.h"
#include "support.h"

namespace corvane::monitor {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using namespace corvane::testing;

// The fields of `base` with the table's changes ("cpu=0 state=On_Battery") made.
std::map<std::string, std::string> changed(std::map<std::string, std::string> base,
                                           const std::string& changes) {
    for (std::string change : words(changes)) {
        std::replace(change.begin(), change.end(), '_', ' ');
        base.at(change.substr(0, change.find('='))) = change.substr(change.find('=') + 1);
    }
    return base;
}

TEST(Monitor, BadInputGivesTheNeutralValueAndHealsTable) {
    for (const auto& c : caseTable("faults")) {
        SCOPED_TRACE(c.where);
        Rig rig(c[0]);
        rig.tick();  // stores the network base
        const auto healthy = rig.tick();
        if (c[1] == "healthy") {
            EXPECT_EQ(healthy, changed(healthy, c[4]));
            EXPECT_TRUE(rig.posted.empty());
            continue;
        }
        const std::string file =
            c[1].starts_with("proc/") ? c[1] : "sys/class/power_supply/" + c[1];
        const auto fault = [&, &kind = c[2], &text = c[3]] {
            const std::string content =
                kind == "cut" || kind == "replace" ? readFile(rig.tree.root() / file) : "";
            const auto w = words(text);
            if (kind == "remove" || kind == "dir") {
                rig.tree.remove(file);
            }
            if (kind == "dir") {
                fs::create_directories(rig.tree.root() / file);
            } else if (kind == "write") {
                rig.tree.write(file, text);
            } else if (kind == "cut") {
                rig.tree.write(file, content.substr(0, content.find(text) + text.size()));
            } else if (kind == "replace") {
                rig.tree.write(file,
                               std::string(content).replace(content.find(w[0]), w[0].size(), w[1]));
            } else if (kind == "rename") {  // replaced, as a package update does
                rig.tree.write("new", text);
                fs::rename(rig.tree.root() / "new", rig.tree.root() / file);
            } else if (kind == "reset") {
                rig.rx = rig.tx = 0;
                rig.writeHealthy();
            } else if (kind == "fail") {
                c[1] == "home" ? rig.home.reset() : rig.volume.reset();
            } else if (kind == "empty") {
                rig.volume = sources::VolumeSize{};
            }
        };
        EXPECT_EQ(rig.tick(fault), changed(healthy, c[4])) << "the fault tick";
        const int healing = c.fields.size() > 6 ? std::stoi(c[6]) : c.fields.size() > 5 ? 1 : 0;
        for (int i = 0; i < healing; ++i) {
            EXPECT_EQ(rig.tick(), changed(healthy, c[5])) << "repaired, tick " << i + 1;
        }
        EXPECT_EQ(rig.tick(), healthy) << "recovered";
        EXPECT_TRUE(rig.posted.empty());
    }
}

TEST(Monitor, AlertRulesTable) {
    for (const auto& c : caseTable("alerts")) {
        const auto alert =
            firstAlert({number(c[0]), number(c[1]), number(c[2]), std::stoll(c[3]), c[4]});
        EXPECT_EQ(alert ? alert->title + " | " + alert->body : " | ", c[5] + " | " + c[6])
            << c.where;
    }
}

// Each row sets the machine and the wall clock, then ticks.
TEST(Monitor, AlertsUnderTheCoolDownTable) {
    Rig rig("laptop-energy");
    const auto start = rig.now;
    for (const auto& c : caseTable("cooldown")) {
        const auto posted = rig.posted.size();
        rig.tick([&] {
            rig.now = start + std::chrono::round<std::chrono::system_clock::duration>(
                                  std::chrono::duration<double>(number(c[0])));
            const auto busy = std::lround(number(c[1]) * 10);
            rig.tree.write("proc/stat", "cpu  " + join(busy, 0, 0, 1000 - busy) + "\n");
            rig.tree.write("proc/meminfo", "MemTotal: 1000000 kB\nActive: " +
                                               show(std::lround(number(c[2]) * 10000)) + " kB\n");
            rig.volume = sources::VolumeSize{1000.0, 1000.0 - number(c[3]) * 10};
            const auto battery = words(c[4]);
            rig.tree.write("sys/class/power_supply/BAT0/energy_now", battery[0]);
            rig.tree.write("sys/class/power_supply/BAT0/energy_full", "100");
            rig.tree.write("sys/class/power_supply/AC/online", battery[1] == "on" ? "1" : "0");
        });
        EXPECT_EQ(rig.posted.size() > posted ? rig.posted.back().title.toStdString() : "-", c[5])
            << c.where;
        EXPECT_LE(rig.posted.size(), posted + 1);
    }
    EXPECT_TRUE(rig.posted.back().defaultSound);
    while (rig.monitor->cpuHistory().size() < 30) {
        rig.tick();
    }
    rig.tick();
    EXPECT_EQ(rig.monitor->cpuHistory().size(), 30u) << "a minute of ticks";
    EXPECT_EQ(rig.periods, std::vector{2000ms});
}

// The grid of the creation time holds: a late firing runs once, missed points are skipped.
TEST(Monitor, TicksStayOnTheTwoSecondGrid) {
    const auto origin = std::chrono::steady_clock::time_point{} + 1000s;
    for (const auto& c : caseTable("grid")) {
        const auto at = [&](int i) { return origin + std::chrono::milliseconds(std::stoll(c[i])); };
        const auto period =
            std::chrono::milliseconds(c.fields.size() > 2 ? std::stoll(c[2]) : 2000);
        EXPECT_EQ(platform::nextGridPoint(origin, period, at(0)), at(1)) << c.where;
    }
    auto now = origin;
    std::vector<std::chrono::steady_clock::time_point> armedFor;
    std::unique_ptr<platform::GridTimer> timer;
    timer = std::make_unique<platform::GridTimer>(
        10ms,
        [&] {
            armedFor.push_back(timer->nextFiring());
            now = armedFor.size() == 1 ? origin + 65ms : timer->nextFiring();  // one 55 ms stall
        },
        nullptr, [&] { return now; });
    ASSERT_TRUE(QTest::qWaitFor([&] { return armedFor.size() >= 3; }, 5000));
    EXPECT_EQ(armedFor, (std::vector{origin + 10ms, origin + 70ms, origin + 80ms}));
}

}  // namespace
}  // namespace corvane::monitor
