#include "monitor/system_monitor.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
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

// Initial values, the values of a tick and the eight announcements of every tick, changed or
// not, are proved by the dashboard tests and the fault matrix; here is what only a monitor shows.
TEST_F(MonitorTest, EachStartRunsOneTickAtOnceAndAddsATimerThatKeepsTicking) {
    auto monitor = makeMonitor();
    monitor->startMonitoring();
    EXPECT_EQ(monitor->cpuHistory().size(), 1u);
    EXPECT_EQ(machine.timerCount(), 1u);
    // CPU, RAM, disk and the history append; no battery here, and no network base yet.
    EXPECT_EQ(announcements.size(), 4u);

    monitor->startMonitoring();
    ASSERT_EQ(machine.timerCount(), 2u);
    EXPECT_EQ(monitor->cpuHistory().size(), 2u);
    machine.fireTimer(0);
    machine.fireTimer(1);
    EXPECT_EQ(monitor->cpuHistory().size(), 4u);
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

// The 31st value is appended before the oldest is dropped: two writes, each announced.
TEST_F(MonitorTest, HistoryDropsTheOldestOfThirtyAfterTheAppend) {
    auto monitor = makeMonitor();
    monitor->startMonitoring();
    for (int tick = 2; tick <= 30; ++tick) {
        machine.fireTimer();
    }
    ASSERT_EQ(monitor->cpuHistory().size(), 30u);
    announcements.clear();
    machine.fireTimer();
    EXPECT_EQ(monitor->cpuHistory().size(), 30u);
    // cpu, ram, disk, append, remove.
    ASSERT_EQ(announcements.size(), 5u);
    EXPECT_EQ(announcements[3].historySize, 30u);
    EXPECT_EQ(announcements[4].historySize, 31u);
}

// The fault matrix loses both totals at once; one at zero is already no base.
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
