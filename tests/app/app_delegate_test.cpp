// The delegate inside a test process: what its launch hook builds, with and without a tray,
// and what its menu and notification answers do.
#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QTest>
#include <mutex>
#include <string>
#include <vector>

#include "app/app_delegate.h"
#include "app/status_title.h"
#include "app/tray_glyph_icon.h"

namespace corvane::app {
namespace {

class AppDelegateTest : public ::testing::Test {
  protected:
    ShellFacilities facilities(bool trayAvailable) {
        ShellFacilities f;
        f.notificationCentre = [this] { return &centre; };
        f.probeSystemTray = [trayAvailable](QObject*, std::function<void(bool)> done) {
            done(trayAvailable);
        };
        f.printLine = [this](std::string_view line) {
            std::lock_guard lock(mutex);
            lines.emplace_back(line);
        };
        return f;
    }

    std::vector<std::string> printed() {
        std::lock_guard lock(mutex);
        return lines;
    }

    // A centre with no bus behind it: permission is denied.
    platform::NotificationCentre centre{QDBusConnection(QStringLiteral("corvane-no-such-bus"))};
    std::mutex mutex;
    std::vector<std::string> lines;
};

TEST_F(AppDelegateTest, LaunchWithoutTrayBuildsTheMenuButShowsNothing) {
    AppDelegate delegate(facilities(false));
    EXPECT_EQ(delegate.statusItem(), nullptr);

    delegate.applicationDidFinishLaunching();

    EXPECT_EQ(centre.delegate(), &delegate);
    EXPECT_EQ(delegate.statusItem(), nullptr);
    ASSERT_NE(delegate.statusMenu(), nullptr);
    const QList<QAction*> actions = delegate.statusMenu()->actions();
    ASSERT_EQ(actions.size(), 3);
    EXPECT_EQ(actions[0]->text(), QStringLiteral("Open App"));
    EXPECT_EQ(actions[0]->shortcut(), QKeySequence(QStringLiteral("Shift+Ctrl+O")));
    EXPECT_TRUE(actions[1]->isSeparator());
    EXPECT_EQ(actions[2]->text(), QStringLiteral("Quit"));
    EXPECT_EQ(actions[2]->shortcut(), QKeySequence(QStringLiteral("Shift+Ctrl+Q")));
    EXPECT_TRUE(QApplication::quitOnLastWindowClosed());

    ASSERT_TRUE(QTest::qWaitFor([&] { return !printed().empty(); }, 5000));
    EXPECT_TRUE(QTest::qWaitFor([&] { return printed().size() > 1; }, 300) == false);
    EXPECT_EQ(printed(), std::vector<std::string>{"Notification denied"});
}

TEST_F(AppDelegateTest, LaunchWithTrayShowsTitleAndGlyphAndOutlivesTheWindow) {
    AppDelegate delegate(facilities(true));
    delegate.applicationDidFinishLaunching();

    QSystemTrayIcon* item = delegate.statusItem();
    ASSERT_NE(item, nullptr);
    EXPECT_EQ(item->toolTip().toUtf8(), QByteArray("\xE2\x9A\xA1\xEF\xB8\x8E Monitoring..."));
    EXPECT_FALSE(item->icon().isNull());
    EXPECT_TRUE(item->isVisible());
    EXPECT_EQ(item->contextMenu(), delegate.statusMenu());
    EXPECT_FALSE(QApplication::quitOnLastWindowClosed());
    QApplication::setQuitOnLastWindowClosed(true);
}

TEST_F(AppDelegateTest, OpenAppBringsBackTheOneWindow) {
    AppDelegate delegate(facilities(false));
    QWidget window;
    delegate.setWindow(&window);
    delegate.applicationDidFinishLaunching();
    const auto windowsBefore = QApplication::topLevelWidgets().size();

    window.showMinimized();
    window.close();
    delegate.statusMenu()->actions()[0]->trigger();

    EXPECT_TRUE(window.isVisible());
    EXPECT_FALSE(window.isMinimized());
    EXPECT_EQ(QApplication::topLevelWidgets().size(), windowsBefore);
}

TEST_F(AppDelegateTest, EveryAlertIsABannerWithSound) {
    AppDelegate delegate(facilities(false));
    for (const auto& request :
         {platform::NotificationRequest{},
          platform::NotificationRequest{QStringLiteral("ID"), QStringLiteral("Low Battery"),
                                        QStringLiteral("Battery at 5%"), false}}) {
        EXPECT_EQ(delegate.willPresent(request), 18u);
    }
}

TEST(TrayGlyphIconTest, DrawsTheGlyphAtTheSizeAsked) {
    const QIcon icon = trayGlyphIcon(QString::fromUtf8(kStatusGlyph), QColor(0xF5, 0xB7, 0x00));
    for (const int side : {16, 22, 37, 64}) {
        const QImage image = icon.pixmap(QSize(side, side)).toImage();
        ASSERT_EQ(image.size(), QSize(side, side));
        int painted = 0;
        for (int y = 0; y < side; ++y) {
            for (int x = 0; x < side; ++x) {
                painted += qAlpha(image.pixel(x, y)) > 128 ? 1 : 0;
            }
        }
        // A lightning sign covers a good part of the square but not all of it (a missing glyph
        // is drawn as an empty box or not at all).
        EXPECT_GT(painted, side * side / 12) << side;
        EXPECT_LT(painted, side * side / 2) << side;
    }
}

}  // namespace
}  // namespace corvane::app
