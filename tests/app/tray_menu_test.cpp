// The shipped binary on a desktop of its own: what a panel sees of the tray item, and what the
// menu's two entries do when a panel clicks them.
#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include "app/desktop_session.h"

namespace corvane::testing {
namespace {

constexpr int kStartMs = 15000;
const QString kTitle = QString::fromUtf8("\xE2\x9A\xA1\xEF\xB8\x8E Monitoring...");

QString readReport(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

class TrayMenuTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(session.error().isEmpty()) << session.error().toStdString();
    }
    DesktopSession session{DesktopOffers{}};
};

TEST_F(TrayMenuTest, PanelSeesTitleAndMenuOfOneItem) {
    auto app = session.launch(productBinary());
    const auto tray = session.waitForTray(kStartMs);
    ASSERT_TRUE(tray.has_value()) << "the application registered no tray item";

    const auto toolTip = tray->toolTipTexts();
    ASSERT_TRUE(toolTip.has_value());
    EXPECT_TRUE(toolTip->contains(kTitle)) << toolTip->join(QLatin1Char('|')).toStdString();
    EXPECT_EQ(kTitle.toUtf8().size(), 20);
    EXPECT_EQ(tray->title(), QStringLiteral("Corvane"));

    const auto menu = tray->menu();
    ASSERT_EQ(menu.size(), 3u);
    EXPECT_EQ(menu[0].label, QStringLiteral("Open App"));
    EXPECT_TRUE(menu[1].separator);
    EXPECT_EQ(menu[2].label, QStringLiteral("Quit"));
    EXPECT_EQ(menu[0].shortcut, (QList<QStringList>{{"Control", "Shift", "O"}}));
    EXPECT_EQ(menu[2].shortcut, (QList<QStringList>{{"Control", "Shift", "Q"}}));

    // The title is fixed: a few ticks later the item still says the same.
    EXPECT_TRUE(app->stillRunningAfter(4500));
    EXPECT_TRUE(tray->toolTipTexts().value_or(QStringList()).contains(kTitle));
    EXPECT_EQ(session.trayItemCount(), 1);
}

TEST_F(TrayMenuTest, QuitEndsTheProcessWithStatusZero) {
    auto app = session.launch(productBinary());
    const auto tray = session.waitForTray(kStartMs);
    ASSERT_TRUE(tray.has_value());
    const auto quit = findEntry(tray->menu(), QStringLiteral("Quit"));
    ASSERT_TRUE(quit.has_value());

    tray->click(quit->id);

    ASSERT_TRUE(app->waitForExit(5000)) << "Quit did not end the application";
    EXPECT_TRUE(app->exitedNormally());
    EXPECT_EQ(app->exitCode(), 0);
}

// With a tray, closing the window leaves the application in the tray; "Open App" brings the
// same window back, and a second "Open App" changes nothing.
TEST_F(TrayMenuTest, OpenAppShowsTheClosedWindowAgainWithoutASecondOne) {
    QTemporaryDir directory;
    const QString report = directory.filePath(QStringLiteral("windows.txt"));
    auto app = session.launch(testAppBinary(),
                              {QStringLiteral("--report"), report,
                               QStringLiteral("--close-window-after"), QStringLiteral("1000")});
    const auto tray = session.waitForTray(kStartMs);
    ASSERT_TRUE(tray.has_value());
    ASSERT_TRUE(QTest::qWaitFor([&] { return !readReport(report).isEmpty(); }, kStartMs));
    EXPECT_EQ(readReport(report), QStringLiteral("hidden visible=0 dashboards=1\n"));
    EXPECT_TRUE(app->stillRunningAfter(1000)) << "closing the window ended the application";

    const auto open = findEntry(tray->menu(), QStringLiteral("Open App"));
    ASSERT_TRUE(open.has_value());
    tray->click(open->id);
    ASSERT_TRUE(QTest::qWaitFor([&] { return readReport(report).count('\n') == 2; }, 5000));

    tray->click(open->id);
    EXPECT_TRUE(app->stillRunningAfter(1000));
    EXPECT_EQ(readReport(report), QStringLiteral("hidden visible=0 dashboards=1\n"
                                                 "shown visible=1 dashboards=1\n"));
}

// Without a panel to host it, the item is never shown, and the window is the application:
// closing it ends the run normally.
TEST(TraylessDesktopTest, ClosingTheWindowEndsTheApplication) {
    DesktopSession session{DesktopOffers{.trayHost = DesktopOffers::TrayHost::None}};
    ASSERT_TRUE(session.error().isEmpty()) << session.error().toStdString();
    auto app = session.launch(testAppBinary(),
                              {QStringLiteral("--close-window-after"), QStringLiteral("3000")});

    ASSERT_TRUE(app->waitForOutput(QStringLiteral("Notification granted\n"), kStartMs));
    EXPECT_TRUE(app->isRunning());
    ASSERT_TRUE(app->waitForExit(kStartMs)) << "closing the only window kept the app running";
    EXPECT_TRUE(app->exitedNormally());
    EXPECT_EQ(app->exitCode(), 0);
}

// A panel whose watcher owns its name but answers nothing: the application treats it as no
// tray instead of waiting on it, so its window still closes (and ends it) on time.
TEST(TraylessDesktopTest, StuckPanelIsNoTrayAndHoldsNothingUp) {
    DesktopSession session{DesktopOffers{.trayHost = DesktopOffers::TrayHost::Hung}};
    ASSERT_TRUE(session.error().isEmpty()) << session.error().toStdString();
    auto app = session.launch(testAppBinary(),
                              {QStringLiteral("--close-window-after"), QStringLiteral("4000")});

    ASSERT_TRUE(app->waitForOutput(QStringLiteral("Notification granted\n"), kStartMs));
    ASSERT_TRUE(app->waitForExit(10000)) << "the application waited on the stuck panel";
    EXPECT_EQ(app->exitCode(), 0);
}

}  // namespace
}  // namespace corvane::testing
