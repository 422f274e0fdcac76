// The desktop's notification service failing under a running application: missing at start,
// going away and coming back, taking calls without ever answering, and no session bus at all.
// The test app reads a machine whose CPU stays at 90 %, so it raises an alert at start and
// then one every ten seconds. Throughout, its main thread must never stall: a call that waited
// on the bus would hold it for the centre's reply timeout (3 s) or D-Bus' default (25 s).
#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <algorithm>
#include <cstdio>

#include "app/desktop_session.h"
#include "support/fake_machine.h"

namespace corvane::testing {
namespace {

constexpr int kStartMs = 15000;
// Alerts are ten seconds apart; the next one lands on a two-second tick after that.
constexpr int kNextAlertMs = 13000;
constexpr double kStallBoundMs = 2000;

class NotificationOutageTest : public ::testing::Test {
  protected:
    void SetUp() override { machine.setCpuPerMille(900); }

    std::unique_ptr<AppProcess> launch(DesktopSession& session, QStringList arguments = {},
                                       const LaunchOptions& options = {}) {
        arguments << QStringLiteral("--root") << QString::fromStdString(machine.root().string())
                  << QStringLiteral("--gap-report") << gapReport();
        return session.launch(testAppBinary(), arguments, options);
    }

    // Quits through the tray menu, which also proves the menu still answers at once.
    static void quitFromTray(const TrayClient& tray, AppProcess& app) {
        const auto quit = findEntry(tray.menu(), QStringLiteral("Quit"));
        ASSERT_TRUE(quit.has_value()) << "the menu did not answer";
        ASSERT_TRUE(tray.click(quit->id));
        ASSERT_TRUE(app.waitForExit(10000)) << "Quit did not end the application";
        EXPECT_EQ(app.exitCode(), 0);
    }

    // The worst main-thread gap the application wrote, printed and kept with the test result.
    void expectNoStall() {
        QFile file(gapReport());
        ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << "no gap report";
        bool ok = false;
        const double worstMs = QString::fromLatin1(file.readAll()).trimmed().toDouble(&ok);
        ASSERT_TRUE(ok);
        std::printf("worst main-thread gap: %.1f ms\n", worstMs);
        RecordProperty("worst_gap_ms", QByteArray::number(worstMs, 'f', 1).toStdString());
        EXPECT_LT(worstMs, kStallBoundMs);
    }

    QString gapReport() const { return directory.filePath(QStringLiteral("gap.txt")); }

    FakeMachine machine;
    QTemporaryDir directory;
};

TEST_F(NotificationOutageTest, ServerAppearingLateReceivesTheNextAlert) {
    DesktopSession session{DesktopOffers{.notificationServer = false}};
    ASSERT_TRUE(session.error().isEmpty()) << session.error().toStdString();
    auto app = launch(session);
    const auto tray = session.waitForTray(kStartMs);
    ASSERT_TRUE(tray.has_value());
    ASSERT_TRUE(app->waitForOutput(QStringLiteral("Notification denied\n"), kStartMs));
    // The alert of the first tick went nowhere.
    QTest::qWait(static_cast<int>(std::max<qint64>(0, 2500 - app->elapsedMs())));

    FakeNotificationServer& server = *session.notificationServer();
    ASSERT_TRUE(server.start());
    ASSERT_TRUE(QTest::qWaitFor([&] { return !server.notifications().empty(); }, kNextAlertMs))
        << "no alert reached the server that appeared";
    EXPECT_EQ(server.notifications().front().summary, QStringLiteral("High CPU Usage"));

    quitFromTray(*tray, *app);
    expectNoStall();
}

TEST_F(NotificationOutageTest, AlertsResumeWhenTheServerComesBack) {
    DesktopSession session{DesktopOffers{}};
    ASSERT_TRUE(session.error().isEmpty()) << session.error().toStdString();
    FakeNotificationServer& server = *session.notificationServer();
    const auto& received = server.notifications();
    auto app = launch(session);
    const auto tray = session.waitForTray(kStartMs);
    ASSERT_TRUE(tray.has_value());
    ASSERT_TRUE(QTest::qWaitFor([&] { return received.size() == 1; }, kStartMs));

    // Gone for longer than one cool-down, so that the next alert is posted into the gap.
    server.stop();
    QTest::qWait(kNextAlertMs);
    ASSERT_TRUE(server.start());
    ASSERT_TRUE(QTest::qWaitFor([&] { return received.size() == 2; }, kNextAlertMs))
        << "no alert after the server came back";
    EXPECT_TRUE(app->isRunning());

    quitFromTray(*tray, *app);
    expectNoStall();
}

// The server owns its name and takes every call, and answers none: the permission line comes
// from the reply timeout, alerts keep being posted, and the menu answers meanwhile.
TEST_F(NotificationOutageTest, ServerThatNeverAnswersHoldsNothingUp) {
    DesktopSession session{DesktopOffers{.serverMode = FakeNotificationServer::Mode::Hang}};
    ASSERT_TRUE(session.error().isEmpty()) << session.error().toStdString();
    const auto& received = session.notificationServer()->notifications();
    auto app = launch(session);
    const auto tray = session.waitForTray(kStartMs);
    ASSERT_TRUE(tray.has_value());

    ASSERT_TRUE(QTest::qWaitFor([&] { return received.size() == 2; }, kStartMs + kNextAlertMs))
        << "the alerts stopped behind the unanswered one";
    EXPECT_EQ(app->output(), QStringLiteral("Notification denied\n"));

    quitFromTray(*tray, *app);
    expectNoStall();
}

// No session bus at all: no tray either, so the window is the application and closing it ends
// the run, after the alerts of start and of ten seconds later had nowhere to go.
TEST_F(NotificationOutageTest, NoSessionBusIsDeniedAndRunsOn) {
    DesktopSession session{
        DesktopOffers{.trayHost = DesktopOffers::TrayHost::None, .notificationServer = false}};
    ASSERT_TRUE(session.error().isEmpty()) << session.error().toStdString();
    const QString nowhere =
        QStringLiteral("unix:path=") + directory.filePath(QStringLiteral("no-bus-here"));
    auto app = launch(session, {QStringLiteral("--close-window-after"), QStringLiteral("12500")},
                      LaunchOptions{.busAddress = nowhere});

    ASSERT_TRUE(app->waitForOutput(QStringLiteral("Notification denied\n"), kStartMs));
    EXPECT_TRUE(
        app->stillRunningAfter(static_cast<int>(std::max<qint64>(0, 11000 - app->elapsedMs()))));
    ASSERT_TRUE(app->waitForExit(kStartMs)) << "closing the window did not end the application";
    EXPECT_TRUE(app->exitedNormally());
    EXPECT_EQ(app->exitCode(), 0);
    EXPECT_EQ(app->output(), QStringLiteral("Notification denied\n"));
    expectNoStall();
}

}  // namespace
}  // namespace corvane::testing
