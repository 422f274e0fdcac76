// The test build of the application on a fixture machine: an alert crossing the desktop's
// notification service, and a picture of the dashboard as a user sees it.
#include <gtest/gtest.h>

#include <QDir>
#include <QImage>
#include <QTest>

#include "app/desktop_session.h"
#include "support/fake_machine.h"

namespace corvane::testing {
namespace {

QStringList rootArguments(const FakeMachine& machine) {
    return {QStringLiteral("--root"), QString::fromStdString(machine.root().string())};
}

TEST(AlertTest, CpuAboveThresholdReachesTheServiceWithinASecond) {
    DesktopSession session{DesktopOffers{}};
    ASSERT_TRUE(session.error().isEmpty()) << session.error().toStdString();
    FakeMachine machine;
    machine.setCpuPerMille(900);

    auto app = session.launch(testAppBinary(), rootArguments(machine));
    const auto& received = session.notificationServer()->notifications();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !received.empty(); }, 1000))
        << "no alert within a second of start";
    EXPECT_LE(app->elapsedMs(), 1000);
    EXPECT_EQ(received.front().appName, QStringLiteral("Corvane"));
    EXPECT_EQ(received.front().summary, QStringLiteral("High CPU Usage"));
    EXPECT_EQ(received.front().body, QStringLiteral("CPU usage is at 90%."));

    // The cool-down holds back the next one for ten seconds; the app goes on meanwhile.
    EXPECT_TRUE(app->stillRunningAfter(4000));
    EXPECT_EQ(received.size(), 1u);
}

// Varies the fixture's counters between ticks so that the chart has a shape, then keeps the
// picture in the build tree for the documentation.
TEST(DashboardTest, ScreenshotOfALiveDashboard) {
    DesktopSession session{DesktopOffers{}};
    ASSERT_TRUE(session.error().isEmpty()) << session.error().toStdString();
    FakeMachine machine;
    machine.setMemoryKb(16 * 1024 * 1024, 7 * 1024 * 1024, 1024 * 1024);
    machine.setBattery(76, 100, true, "Charging");
    std::uint64_t busy = 3000, idle = 7000, received = 5'000'000'000, sent = 800'000'000;
    machine.setCpuTicks(busy, 0, 0, idle);
    machine.setNetTotals(received, sent);

    const QString path = QStringLiteral(CORVANE_SCREENSHOT_DIR "/dashboard.png");
    QDir().mkpath(QStringLiteral(CORVANE_SCREENSHOT_DIR));
    QFile::remove(path);
    auto app = session.launch(
        testAppBinary(), rootArguments(machine) + QStringList{QStringLiteral("--screenshot"), path,
                                                              QStringLiteral("--screenshot-after"),
                                                              QStringLiteral("13000")});
    const std::uint64_t busySteps[] = {900, 400, 1400, 700, 1800, 1100, 600};
    for (const std::uint64_t step : busySteps) {
        QTest::qWait(2000);
        busy += step;
        idle += 2000 - step;
        received += 3'400'000;
        sent += 260'000;
        machine.setCpuTicks(busy, 0, 0, idle);
        machine.setNetTotals(received, sent);
    }
    ASSERT_TRUE(QTest::qWaitFor([&] { return QFile::exists(path); }, 10000));
    QTest::qWait(200);

    const QImage image(path);
    ASSERT_FALSE(image.isNull());
    EXPECT_GE(image.width(), 500);
    EXPECT_GE(image.height(), 500);
    EXPECT_TRUE(app->isRunning());
}

}  // namespace
}  // namespace corvane::testing
