// The delegate in the test process with the desktop's facilities stood in for, and the tray
// glyph. The menu as a panel sees it, and the Notify request as the service gets it: tests/e2e.
#include <gtest/gtest.h>

#include <QApplication>
#include <QTest>

#include "app/app_delegate.h"
#include "app/desktop_start.h"
#include "app/status_title.h"
#include "app/tray_glyph_icon.h"

namespace corvane::app {
namespace {

TEST(Shell, LaunchAsksPermissionExportsTheItemAndFollowsTheTray) {
    platform::NotificationCentre centre(QDBusConnection(QStringLiteral("corvane-no-such-bus")));
    std::function<void(platform::SystemTray)> trayChanged;
    std::vector<std::string> lines;  // without a bus the answer comes from this thread's loop
    std::optional<platform::StatusItemLook> exported;
    std::function<void(const QString&)> click;
    AppDelegate delegate({[&] { return &centre; },
                          [&](QObject*, std::function<void(platform::SystemTray)> changed) {
                              trayChanged = changed;
                          },
                          [&](QObject*, platform::StatusItemLook look, QMenu*,
                              std::function<void(const QString&)> activate) {
                              exported = look;
                              click = activate;
                          },
                          [&](std::string_view line) { lines.emplace_back(line); },
                          {}});
    QApplication::setQuitOnLastWindowClosed(false);
    delegate.applicationDidFinishLaunching();
    EXPECT_EQ(centre.delegate(), &delegate);
    EXPECT_EQ(delegate.willPresent({}), 18u) << "banner and sound";
    ASSERT_TRUE(exported);
    EXPECT_EQ(exported->text.toUtf8(), QByteArray(kStatusTitle));
    QWidget window;
    delegate.setWindow(&window);
    click({});
    EXPECT_TRUE(window.isVisible()) << "a click where the panel opens no menu is Open App";
    EXPECT_EQ(delegate.xembedItem(), nullptr);
    EXPECT_TRUE(QApplication::quitOnLastWindowClosed()) << "without a tray the window is the app";
    EXPECT_TRUE(lines.empty()) << "the answer comes from the event loop";
    ASSERT_TRUE(QTest::qWaitFor([&] { return !lines.empty(); }, 5000));
    QTest::qWait(100);
    EXPECT_EQ(lines, std::vector<std::string>{"Notification denied"}) << "no bus, no service";

    trayChanged(platform::SystemTray::StatusNotifier);
    EXPECT_EQ(delegate.xembedItem(), nullptr) << "a StatusNotifier panel shows the exported item";
    EXPECT_FALSE(QApplication::quitOnLastWindowClosed()) << "the tray keeps the app";
    trayChanged(platform::SystemTray::XEmbed);
    QSystemTrayIcon* item = delegate.xembedItem();
    ASSERT_NE(item, nullptr);
    EXPECT_TRUE(item->isVisible());
    trayChanged(platform::SystemTray::None);  // the panel ended: the window is the app again
    EXPECT_TRUE(QApplication::quitOnLastWindowClosed());
    EXPECT_FALSE(item->isVisible());
    trayChanged(platform::SystemTray::XEmbed);  // and started again: still the one item
    EXPECT_EQ(delegate.xembedItem(), item);
    EXPECT_FALSE(QApplication::quitOnLastWindowClosed());

    std::optional<bool> answered;  // a centre that goes first still answers, on the loop
    platform::NotificationCentre(QDBusConnection(QStringLiteral("corvane-no-such-bus")))
        .requestAuthorization(0, [&](bool granted, auto) { answered = granted; });
    ASSERT_TRUE(QTest::qWaitFor([&] { return answered.has_value(); }, 5000));
    EXPECT_FALSE(*answered);
}

TEST(Shell, WhileTheDesktopStartsOnlyAFailedConnectionEndsTheLaunch) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");  // Qt's threads run beside this one
    int argc = 0;
    EXPECT_EXIT(
        {
            guardDesktopStart(argc);
            qWarning("qt.qpa: a plugin fell back to another");
            std::_Exit(0);
        },
        testing::ExitedWithCode(0), "");
}

TEST(Shell, TheGlyphFillsPartOfTheSquareAtEverySize) {
    const QIcon icon = trayGlyphIcon(QString::fromUtf8(kStatusGlyph), Qt::white);
    for (const QSize size : icon.availableSizes()) {  // the images the D-Bus tray sends
        const QImage image = icon.pixmap(size).toImage().convertToFormat(QImage::Format_Alpha8);
        const int side = size.width();
        const auto ink = std::count_if(image.constBits(), image.constBits() + image.sizeInBytes(),
                                       [](uchar alpha) { return alpha > 128; });
        EXPECT_TRUE(size.height() == side && ink > side * side / 10 && ink < side * side / 2)
            << side << ": " << ink;
    }
}

}  // namespace
}  // namespace corvane::app
