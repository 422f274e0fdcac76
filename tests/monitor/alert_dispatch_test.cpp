#include <gtest/gtest.h>

#include <QRegularExpression>
#include <chrono>
#include <memory>
#include <set>

#include "monitor/system_monitor.h"
#include "support/fake_machine.h"

namespace corvane::monitor {
namespace {

using namespace std::chrono_literals;
using testing::FakeMachine;

// Alerts as the monitor raises them, through its own sampling of a fake machine.
class AlertDispatchTest : public ::testing::Test {
  protected:
    std::shared_ptr<SystemMonitor> start() {
        auto monitor = std::make_shared<SystemMonitor>(machine_.environment());
        monitor->startMonitoring();
        return monitor;
    }

    // One timer firing, 2 s after the previous one.
    void tick() {
        machine_.advance(2s);
        machine_.fireTimer();
    }

    FakeMachine machine_;
};

// Each rule once through a real monitor, which proves which value feeds which rule; limits,
// order and text are proved against the rules alone.
TEST_F(AlertDispatchTest, EachRuleFromTheValuesTheMonitorRead) {
    struct Case {
        const char* name;
        std::function<void(FakeMachine&)> set;
        const char* title;  // nullptr: no alert
        const char* body;
    };
    const Case cases[] = {
        {"CPU 85.4", [](FakeMachine& m) { m.setCpuPerMille(854); }, "High CPU Usage",
         "CPU usage is at 85%."},
        {"RAM 90.5", [](FakeMachine& m) { m.setMemoryKb(1000000, 905000); }, "High RAM Usage",
         "RAM usage is at 90%."},
        {"disk 99.99", [](FakeMachine& m) { m.setVolume(10000, 1); }, "Disk Almost Full",
         "Disk usage is at 99%."},
        {"battery 19 on battery", [](FakeMachine& m) { m.setBattery(19, 100, false); },
         "Low Battery", "Battery at 19%"},
        {"battery 5 charging", [](FakeMachine& m) { m.setBattery(5, 100, true, "Charging"); },
         nullptr, nullptr},
        {"no battery: level 0, state unknown", [](FakeMachine& m) { m.removeBattery(); }, nullptr,
         nullptr},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        FakeMachine machine;
        c.set(machine);
        auto monitor = std::make_shared<SystemMonitor>(machine.environment());
        monitor->startMonitoring();  // the first tick may alert at once
        if (c.title == nullptr) {
            EXPECT_TRUE(machine.posted().empty());
            continue;
        }
        ASSERT_EQ(machine.posted().size(), 1U);
        EXPECT_EQ(machine.posted()[0].title.toStdString(), c.title);
        EXPECT_EQ(machine.posted()[0].body.toStdString(), c.body);
        EXPECT_TRUE(machine.posted()[0].defaultSound);
    }
}

TEST_F(AlertDispatchTest, ThePersistingAlertRepeatsExactlyTenSecondsLater) {
    machine_.setCpuPerMille(900);
    auto monitor = start();
    ASSERT_EQ(machine_.posted().size(), 1U);
    machine_.advance(9.9s);
    machine_.fireTimer();
    EXPECT_EQ(machine_.posted().size(), 1U);
    machine_.advance(0.1s);  // T + 10.0 s
    machine_.fireTimer();
    EXPECT_EQ(machine_.posted().size(), 2U);
    // The cool-down runs from the evaluation that sent, not from the previous one.
    machine_.advance(9.9s);
    machine_.fireTimer();
    EXPECT_EQ(machine_.posted().size(), 2U);
}

TEST_F(AlertDispatchTest, AClockSetBackKeepsAlertsSuppressedUntilItPassesTheLastAlert) {
    machine_.setCpuPerMille(900);
    auto monitor = start();
    const auto sentAt = machine_.now();
    machine_.setNow(sentAt - 1h);
    machine_.fireTimer();
    machine_.setNow(sentAt + 9s);
    machine_.fireTimer();
    EXPECT_EQ(machine_.posted().size(), 1U);
    machine_.setNow(sentAt + 10s);
    machine_.fireTimer();
    EXPECT_EQ(machine_.posted().size(), 2U);
}

TEST_F(AlertDispatchTest, EveryRequestHasAFreshUpperCaseVersion4Identifier) {
    machine_.setCpuPerMille(900);
    auto monitor = start();
    for (int i = 0; i < 10; ++i) {
        tick();
    }
    ASSERT_GE(machine_.posted().size(), 2U);
    const QRegularExpression uuid4(
        QStringLiteral("^[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}$"));
    std::set<QString> seen;
    for (const auto& request : machine_.posted()) {
        EXPECT_TRUE(uuid4.match(request.identifier).hasMatch()) << request.identifier.toStdString();
        seen.insert(request.identifier);
    }
    EXPECT_EQ(seen.size(), machine_.posted().size());
}

}  // namespace
}  // namespace corvane::monitor
