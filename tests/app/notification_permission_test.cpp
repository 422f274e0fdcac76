// The one console line of a launch, with and without a notification service, and what the
// rest of the application does meanwhile.
#include <gtest/gtest.h>

#include "app/desktop_session.h"

namespace corvane::testing {
namespace {

constexpr int kStartMs = 15000;

TEST(NotificationPermissionTest, ServerPresentPrintsGrantedOnce) {
    DesktopSession session{DesktopOffers{}};
    ASSERT_TRUE(session.error().isEmpty()) << session.error().toStdString();
    auto app = session.launch(productBinary());

    ASSERT_TRUE(app->waitForOutput(QStringLiteral("\n"), kStartMs));
    EXPECT_TRUE(app->stillRunningAfter(1500));
    EXPECT_EQ(app->output(), QStringLiteral("Notification granted\n"));
    EXPECT_GE(session.notificationServer()->serverInformationRequests(), 1);
}

TEST(NotificationPermissionTest, NoServerPrintsDeniedAndTheTrayStays) {
    DesktopSession session{DesktopOffers{.notificationServer = false}};
    ASSERT_TRUE(session.error().isEmpty()) << session.error().toStdString();
    auto app = session.launch(productBinary());

    ASSERT_TRUE(app->waitForOutput(QStringLiteral("\n"), kStartMs));
    const auto tray = session.waitForTray(kStartMs);
    ASSERT_TRUE(tray.has_value());
    EXPECT_TRUE(app->stillRunningAfter(1500));
    EXPECT_EQ(app->output(), QStringLiteral("Notification denied\n"));
    EXPECT_EQ(tray->menu().size(), 3u);
}

// A service that takes the question and never answers must not hold up the tray or the
// window: the menu answers at once, and the launch still ends with its one line.
TEST(NotificationPermissionTest, HungServerStallsNothing) {
    DesktopSession session{DesktopOffers{.serverMode = FakeNotificationServer::Mode::Hang}};
    ASSERT_TRUE(session.error().isEmpty()) << session.error().toStdString();
    auto app = session.launch(productBinary());

    const auto tray = session.waitForTray(kStartMs);
    ASSERT_TRUE(tray.has_value()) << "the tray item waited for the notification service";
    EXPECT_EQ(tray->menu().size(), 3u);
    ASSERT_TRUE(app->waitForOutput(QStringLiteral("\n"), 60000));
    EXPECT_EQ(app->output(), QStringLiteral("Notification denied\n"));
    EXPECT_TRUE(app->isRunning());
}

}  // namespace
}  // namespace corvane::testing
