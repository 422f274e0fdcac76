// The delegate in the test process with the desktop's facilities stood in for, and the tray
// glyph. The menu as a panel sees it, and the Notify request as the service gets it: tests/e2e.
#include <gtest/gtest.h>

#include <QApplication>
#include <QTest>

#include "app/app_delegate.h"
#include "app/desktop_start.h"
#include "app/status_title.h"
#include "app/tray_glyph_icon.h"
#include "support.h"

namespace corvane::app {
namespace {

TEST(Shell, LaunchAsksPermissionAndMakesOneItemOnceATrayAppearsAndComesBack) {
    platform::NotificationCentre centre(QDBusConnection(QStringLiteral("corvane-no-such-bus")));
    std::function<void(bool)> trayChanged;
    std::vector<std::string> lines;  // without a bus the answer comes from this thread's loop
    AppDelegate delegate(
        {[&] { return &centre; },
         [&](QObject*, std::function<void(bool)> changed) { trayChanged = changed; },
         [&](std::string_view line) { lines.emplace_back(line); },
         {}});
    QApplication::setQuitOnLastWindowClosed(false);
    delegate.applicationDidFinishLaunching();
    EXPECT_EQ(centre.delegate(), &delegate);
    EXPECT_EQ(delegate.willPresent({}), 18u) << "banner and sound";
    EXPECT_EQ(delegate.statusItem(), nullptr);
    EXPECT_TRUE(QApplication::quitOnLastWindowClosed()) << "without a tray the window is the app";
    EXPECT_TRUE(lines.empty()) << "the answer comes from the event loop";
    ASSERT_TRUE(QTest::qWaitFor([&] { return !lines.empty(); }, 5000));
    QTest::qWait(100);
    EXPECT_EQ(lines, std::vector<std::string>{"Notification denied"}) << "no bus, no service";

    trayChanged(true);
    QSystemTrayIcon* item = delegate.statusItem();
    ASSERT_NE(item, nullptr);
    EXPECT_EQ(item->toolTip().toUtf8(), QByteArray(kStatusTitle));
    EXPECT_FALSE(QApplication::quitOnLastWindowClosed()) << "the tray keeps the app";
    trayChanged(false);  // the panel ended: the window is the app again
    EXPECT_TRUE(QApplication::quitOnLastWindowClosed());
    trayChanged(true);  // and started again: still the one item
    EXPECT_EQ(delegate.statusItem(), item);
    EXPECT_FALSE(QApplication::quitOnLastWindowClosed());

    std::optional<bool> answered;  // a centre that goes first still answers, on the loop
    platform::NotificationCentre(QDBusConnection(QStringLiteral("corvane-no-such-bus")))
        .requestAuthorization(0, [&](bool granted, auto) { answered = granted; });
    ASSERT_TRUE(QTest::qWaitFor([&] { return answered.has_value(); }, 5000));
    EXPECT_FALSE(*answered);
}

TEST(Shell, WhileTheDesktopStartsOnlyAFailureEndsTheLaunch) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");  // Qt's threads run beside this one
    int argc = 0;
    EXPECT_EXIT(
        {
            guardDesktopStart(argc);
            qWarning("qt.qpa: a plugin fell back to another");
            qputenv("QT_QPA_PLATFORM", "wayand");
            qFatal("Available platform plugins are: xcb.");
        },
        ::testing::ExitedWithCode(1), "corvane: QT_QPA_PLATFORM=wayand asks for");
}

TEST(Shell, AFailedStartSaysWhatIsWrong) {
    for (const auto& c : testing::caseTable("start")) {
        const std::string lines = startFailure({c[0], c[1], c[2]}, c[3]);
        std::size_t at = 0;
        for (auto part = c.fields.begin() + 4; part != c.fields.end(); ++part) {
            const std::size_t end = lines.find('\n', at);
            EXPECT_NE(lines.substr(at, end - at).find(*part), std::string::npos)
                << c.where << lines;
            at = end + 1;
        }
        EXPECT_EQ(at, lines.size()) << c.where << ": " << lines;
    }
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
