#include <gtest/gtest.h>

#include <QRegularExpression>
#include <QTest>
#include <chrono>
#include <memory>
#include <set>

#include "monitor/system_monitor.h"
#include "platform/notification_centre.h"
#include "support/fake_machine.h"
#include "support/fake_notification_server.h"
#include "support/private_bus.h"

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

    std::vector<std::string> titles() const {
        std::vector<std::string> out;
        for (const auto& request : machine_.posted()) {
            out.push_back(request.title.toStdString());
        }
        return out;
    }

    FakeMachine machine_;
};

TEST_F(AlertDispatchTest, EachThresholdAtAndJustAboveItsLimit) {
    struct Case {
        const char* name;
        std::function<void(FakeMachine&)> set;
        const char* title;  // nullptr: no alert
        const char* body;
    };
    const Case cases[] = {
        {"CPU 85.0", [](FakeMachine& m) { m.setCpuPerMille(850); }, nullptr, nullptr},
        {"CPU 85.4", [](FakeMachine& m) { m.setCpuPerMille(854); }, "High CPU Usage",
         "CPU usage is at 85%."},
        {"RAM 90.0", [](FakeMachine& m) { m.setMemoryKb(1000000, 900000); }, nullptr, nullptr},
        {"RAM 90.5", [](FakeMachine& m) { m.setMemoryKb(1000000, 905000); }, "High RAM Usage",
         "RAM usage is at 90%."},
        {"disk 90.0", [](FakeMachine& m) { m.setVolume(1000, 100); }, nullptr, nullptr},
        {"disk 99.99", [](FakeMachine& m) { m.setVolume(10000, 1); }, "Disk Almost Full",
         "Disk usage is at 99%."},
        {"battery 20 on battery", [](FakeMachine& m) { m.setBattery(20, 100, false); }, nullptr,
         nullptr},
        {"battery 19 on battery", [](FakeMachine& m) { m.setBattery(19, 100, false); },
         "Low Battery", "Battery at 19%"},
        {"battery 5 charging", [](FakeMachine& m) { m.setBattery(5, 100, true, "Charging"); },
         nullptr, nullptr},
        {"no battery: level 0, state unknown", [](FakeMachine& m) { m.removeBattery(); }, nullptr,
         nullptr},
        {"disk NaN", [](FakeMachine& m) { m.setVolume(0, 0); }, nullptr, nullptr},
        {"disk infinite, battery low",
         [](FakeMachine& m) {
             m.setVolume(0, -1);
             m.setBattery(15, 100, false);
         },
         "Low Battery", "Battery at 15%"},
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

TEST_F(AlertDispatchTest, CpuHoldsBackRamUntilItFallsAndTheCoolDownPasses) {
    machine_.setCpuPerMille(950);
    machine_.setMemoryKb(1000000, 950000);
    auto monitor = start();
    EXPECT_EQ(titles(), std::vector<std::string>{"High CPU Usage"});
    for (int i = 0; i < 4; ++i) {
        tick();  // 2..8 s: cool-down
    }
    machine_.setCpuPerMille(850);
    EXPECT_EQ(titles().size(), 1U);
    tick();  // 10 s
    EXPECT_EQ(titles(), (std::vector<std::string>{"High CPU Usage", "High RAM Usage"}));
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

// The whole way: monitor, centre and a notification server on a private bus.
TEST(AlertDelivery, TwoAlertsArriveAsTwoNotificationsByteForByte) {
    testing::PrivateBus bus;
    ASSERT_TRUE(bus.isRunning()) << bus.error().toStdString();
    testing::FakeNotificationServer server(bus.connect());
    ASSERT_TRUE(server.start());
    platform::NotificationCentre centre(bus.connect(), [] { return false; });

    FakeMachine machine;
    auto environment = machine.environment();
    environment.post = [&](const platform::NotificationRequest& r) { centre.add(r); };
    machine.setCpuPerMille(854);
    machine.setBattery(50, 100, false);
    auto monitor = std::make_shared<SystemMonitor>(environment);
    monitor->startMonitoring();
    machine.setCpuPerMille(100);
    machine.setBattery(15, 100, false);
    machine.advance(10s);
    machine.fireTimer();

    ASSERT_TRUE(QTest::qWaitFor([&] { return server.notifications().size() == 2; }, 8000));
    const auto& first = server.notifications()[0];
    const auto& second = server.notifications()[1];
    EXPECT_EQ(first.summary.toUtf8(), QByteArray("High CPU Usage"));
    EXPECT_EQ(first.body.toUtf8(), QByteArray("CPU usage is at 85%."));
    EXPECT_EQ(second.summary.toUtf8(), QByteArray("Low Battery"));
    EXPECT_EQ(second.body.toUtf8(), QByteArray("Battery at 15%"));
    for (const auto& n : server.notifications()) {
        EXPECT_EQ(n.appName, QStringLiteral("Corvane"));
        EXPECT_EQ(n.replacesId, 0U);
    }
}

}  // namespace
}  // namespace corvane::monitor
