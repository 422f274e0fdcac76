#include "monitor/system_monitor.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <cmath>
#include <memory>
#include <vector>

#include "platform/grid_timer.h"
#include "support/fake_machine.h"

namespace {

using corvane::monitor::SystemMonitor;
using corvane::testing::FakeMachine;

// What a reader of the monitor sees at the moment of each announcement: the values before
// the write that the announcement precedes.
struct Snapshot {
    double cpu;
    double ram;
    double disk;
    std::int64_t level;
    std::string state;
    double download;
    double upload;
    std::size_t historySize;
};

class MonitorTest : public ::testing::Test {
  protected:
    std::shared_ptr<SystemMonitor> makeMonitor() {
        auto monitor = std::make_shared<SystemMonitor>(machine.environment());
        QObject::connect(
            monitor.get(), &SystemMonitor::objectWillChange, [this, m = monitor.get()] {
                announcements.push_back({m->cpuUsage(), m->ramUsage(), m->diskUsage(),
                                         m->batteryLevel(), m->batteryState(), m->downloadSpeed(),
                                         m->uploadSpeed(), m->cpuHistory().size()});
            });
        return monitor;
    }

    FakeMachine machine;
    std::vector<Snapshot> announcements;
};

TEST_F(MonitorTest, ANewMonitorHoldsItsInitialValuesAndDoesNothing) {
    auto monitor = makeMonitor();
    EXPECT_EQ(monitor->cpuUsage(), 0.0);
    EXPECT_EQ(monitor->ramUsage(), 0.0);
    EXPECT_EQ(monitor->diskUsage(), 0.0);
    EXPECT_EQ(monitor->batteryLevel(), 0);
    EXPECT_EQ(monitor->batteryState(), "Unknown");
    EXPECT_EQ(monitor->downloadSpeed(), 0.0);
    EXPECT_EQ(monitor->uploadSpeed(), 0.0);
    EXPECT_TRUE(monitor->cpuHistory().empty());
    EXPECT_TRUE(announcements.empty());
    EXPECT_EQ(machine.timerCount(), 0u);
    EXPECT_TRUE(machine.posted().empty());
}

TEST_F(MonitorTest, StartingRunsOneTickAtOnceThenOneTimer) {
    machine.setCpuTicks(300, 100, 100, 1500);
    machine.setMemoryKb(16 * 1024 * 1024, 4 * 1024 * 1024, 2 * 1024 * 1024);
    machine.setVolume(500000000000.0, 125000000000.0);
    auto monitor = makeMonitor();
    monitor->startMonitoring();

    EXPECT_EQ(monitor->cpuUsage(), 25.0);
    EXPECT_EQ(monitor->ramUsage(), 37.5);
    EXPECT_EQ(monitor->diskUsage(), 75.0);
    EXPECT_EQ(monitor->cpuHistory(), std::vector<double>{25.0});
    EXPECT_EQ(machine.timerCount(), 1u);
    // CPU, RAM, disk and the history append; no battery here, and no network base yet.
    EXPECT_EQ(announcements.size(), 4u);
}

TEST_F(MonitorTest, EveryWriteIsAnnouncedBeforeItIsStoredEvenWhenUnchanged) {
    machine.setBattery(80, 100, true);
    machine.setNetTotals(1000, 1000);
    auto monitor = makeMonitor();
    monitor->startMonitoring();
    announcements.clear();
    machine.fireTimer();  // same numbers again: nothing changes, everything is announced

    // cpu, ram, disk, level, state, download, upload, history.
    ASSERT_EQ(announcements.size(), 8u);
    // Each announcement sees the state before its own write: the level is written first,
    // so the announcement of the state already sees the new level.
    EXPECT_EQ(announcements[3].historySize, 1u);
    EXPECT_EQ(monitor->batteryLevel(), 80);
    EXPECT_EQ(monitor->batteryState(), "Charging");
}

TEST_F(MonitorTest, BatteryLevelIsAnnouncedAndWrittenBeforeBatteryState) {
    machine.setBattery(29, 100, false);
    auto monitor = makeMonitor();
    monitor->startMonitoring();
    // cpu, ram, disk, level, state, history.
    ASSERT_EQ(announcements.size(), 6u);
    EXPECT_EQ(announcements[3].level, 0);  // before the level write
    EXPECT_EQ(announcements[3].state, "Unknown");
    EXPECT_EQ(announcements[4].level, 28);  // before the state write: the level is in
    EXPECT_EQ(announcements[4].state, "Unknown");
    EXPECT_EQ(monitor->batteryState(), "On Battery");
}

TEST_F(MonitorTest, HistoryKeepsTheLastThirtyValues) {
    auto monitor = makeMonitor();
    machine.setCpuPerMille(10);
    monitor->startMonitoring();
    for (std::uint64_t tick = 2; tick <= 30; ++tick) {
        machine.setCpuPerMille(tick * 10);
        machine.fireTimer();
    }
    ASSERT_EQ(monitor->cpuHistory().size(), 30u);
    EXPECT_EQ(monitor->cpuHistory().front(), monitor->cpuHistory().front());
    EXPECT_NEAR(monitor->cpuHistory().front(), 1.0, 1e-9);

    const double secondTick = monitor->cpuHistory()[1];
    announcements.clear();
    machine.setCpuPerMille(310);
    machine.fireTimer();
    ASSERT_EQ(monitor->cpuHistory().size(), 30u);
    EXPECT_EQ(monitor->cpuHistory().front(), secondTick);
    EXPECT_EQ(monitor->cpuHistory().back(), monitor->cpuUsage());
    // The append and the removal are two writes: cpu, ram, disk, append, remove.
    EXPECT_EQ(announcements.size(), 5u);
    EXPECT_EQ(announcements[3].historySize, 30u);
    EXPECT_EQ(announcements[4].historySize, 31u);
}

TEST_F(MonitorTest, StartingTwiceAddsASecondTimerAndBothKeepTicking) {
    auto monitor = makeMonitor();
    monitor->startMonitoring();
    monitor->startMonitoring();
    ASSERT_EQ(machine.timerCount(), 2u);
    EXPECT_EQ(monitor->cpuHistory().size(), 2u);
    machine.fireTimer(0);
    machine.fireTimer(1);
    EXPECT_EQ(monitor->cpuHistory().size(), 4u);
}

TEST_F(MonitorTest, RatesComeFromTheGrowthOverTwoSeconds) {
    machine.setNetTotals(1000, 2000);
    auto monitor = makeMonitor();
    monitor->startMonitoring();
    EXPECT_EQ(monitor->downloadSpeed(), 0.0);  // the first tick only stores the totals

    machine.setNetTotals(1000 + 6291456, 2000 + 1048576);
    machine.fireTimer();
    EXPECT_EQ(monitor->downloadSpeed(), 3.0);
    EXPECT_EQ(monitor->uploadSpeed(), 0.5);

    // An interface went away: the totals went down, and the call publishes 0.0 ...
    machine.setNetTotals(500, 600);
    machine.fireTimer();
    EXPECT_EQ(monitor->downloadSpeed(), 0.0);
    EXPECT_EQ(monitor->uploadSpeed(), 0.0);
    // ... and the next call measures from the new base.
    machine.setNetTotals(500 + 2097152, 600);
    machine.fireTimer();
    EXPECT_EQ(monitor->downloadSpeed(), 1.0);
    EXPECT_EQ(monitor->uploadSpeed(), 0.0);
}

TEST_F(MonitorTest, RatesStayWhileEitherStoredTotalIsZero) {
    machine.setNetTotals(1000, 2000);
    auto monitor = makeMonitor();
    monitor->startMonitoring();
    machine.setNetTotals(1000 + 2097152, 2000 + 2097152);
    machine.fireTimer();
    ASSERT_EQ(monitor->downloadSpeed(), 1.0);

    machine.setNetTotals(5000, 0);  // nothing sent: the base is gone
    machine.fireTimer();
    machine.setNetTotals(5000 + 6291456, 6291456);
    announcements.clear();
    machine.fireTimer();
    EXPECT_EQ(monitor->downloadSpeed(), 0.0);  // written by the call that saw the drop
    EXPECT_EQ(announcements.size(), 4u);       // no rate written without a base
}

TEST_F(MonitorTest, AZeroCpuTotalIsNotANumber) {
    machine.setCpuTicks(0, 0, 0, 0);
    auto monitor = makeMonitor();
    monitor->startMonitoring();
    EXPECT_TRUE(std::isnan(monitor->cpuUsage()));
    EXPECT_TRUE(std::isnan(monitor->cpuHistory().back()));
}

// With the production timer, the application object owns the timer and the timer's action
// owns the monitor: dropping every other reference keeps it ticking, and destroying the
// timer (as the application does at exit) frees it.
TEST(MonitorLifetime, TheTimerKeepsAStartedMonitorAliveUntilTheApplicationEnds) {
    FakeMachine machine;
    auto environment = machine.environment();
    environment.startTimer = nullptr;  // the real grid timer, owned by the application
    auto monitor = std::make_shared<SystemMonitor>(std::move(environment));
    std::weak_ptr<SystemMonitor> watch = monitor;

    const auto before = QCoreApplication::instance()->findChildren<corvane::platform::GridTimer*>();
    monitor->startMonitoring();
    monitor.reset();
    ASSERT_FALSE(watch.expired());

    auto timers = QCoreApplication::instance()->findChildren<corvane::platform::GridTimer*>();
    ASSERT_EQ(timers.size(), before.size() + 1);
    for (auto* timer : timers) {
        if (!before.contains(timer)) {
            delete timer;
        }
    }
    EXPECT_TRUE(watch.expired());
}

}  // namespace
