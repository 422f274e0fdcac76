// The delegate with the desktop's facilities stood in for, a panel's calls on the item and its
// menu over the private bus of `make test`, the start errors and the tray glyph.
#include <gtest/gtest.h>

#include <QApplication>
#include <QProcess>
#include <QTest>

#include "app/app_delegate.h"
#include "app/desktop_start.h"
#include "app/status_title.h"
#include "app/tray_glyph_icon.h"
#include "tray/dbus_menu.h"
#include "support.h"

namespace corvane::app {
namespace {

using namespace std::chrono_literals;

TEST(Shell, LaunchAsksPermissionExportsTheItemAndFollowsTheTray) {
    platform::NotificationCentre centre(QDBusConnection(QStringLiteral("corvane-no-such-bus")));
    std::function<void(tray::SystemTray)> trayChanged;
    std::vector<std::string> lines;  // without a bus the answer comes from this thread's loop
    std::optional<tray::StatusItemLook> exported;
    std::function<void(const QString&)> click;
    AppDelegate delegate({[&] { return &centre; },
                          [&](QObject*, tray::StatusItemLook look, QMenu*,
                              std::function<void(const QString&)> activate,
                              std::function<void(tray::SystemTray)> changed) {
                              exported = look;
                              click = activate;
                              trayChanged = changed;
                              return std::function<QString()>();
                          },
                          [&](std::string_view line) { lines.emplace_back(line); },
                          {}});
    QApplication::setQuitOnLastWindowClosed(false);
    delegate.applicationDidFinishLaunching();
    ASSERT_TRUE(exported);
    QWidget window;
    delegate.setWindow(&window);
    click({});
    EXPECT_TRUE(window.isVisible()) << "a click where the panel opens no menu is Open App";
    EXPECT_TRUE(QApplication::quitOnLastWindowClosed()) << "without a tray the window is the app";
    EXPECT_TRUE(lines.empty()) << "the answer comes from the event loop";
    ASSERT_TRUE(QTest::qWaitFor([&] { return !lines.empty(); }, 5000));
    QTest::qWait(100);
    EXPECT_EQ(lines, std::vector<std::string>{"Notification denied"}) << "no bus, no service";

    trayChanged(tray::SystemTray::StatusNotifier);
    EXPECT_EQ(delegate.xembedItem(), nullptr) << "a StatusNotifier panel shows the exported item";
    EXPECT_FALSE(QApplication::quitOnLastWindowClosed()) << "the tray keeps the app";
    trayChanged(tray::SystemTray::XEmbed);
    QSystemTrayIcon* item = delegate.xembedItem();
    ASSERT_NE(item, nullptr);
    EXPECT_TRUE(item->isVisible());
    trayChanged(tray::SystemTray::None);  // the panel ended: the window is the app again
    EXPECT_TRUE(QApplication::quitOnLastWindowClosed());
    EXPECT_FALSE(item->isVisible());
    trayChanged(tray::SystemTray::XEmbed);  // and started again: still the one item
    EXPECT_EQ(delegate.xembedItem(), item);
    EXPECT_FALSE(QApplication::quitOnLastWindowClosed());

    std::optional<bool> answered;  // a centre that goes first still answers, on the loop
    platform::NotificationCentre(QDBusConnection(QStringLiteral("corvane-no-such-bus")))
        .requestAuthorization(0, [&](bool granted, auto) { answered = granted; });
    ASSERT_TRUE(QTest::qWaitFor([&] { return answered.has_value(); }, 5000));
    EXPECT_FALSE(*answered);
}

// A panel's calls on the item and its menu, made by GLib's gdbus as the table writes them.
TEST(Shell, PanelCallsOnTheItemAndItsMenuTable) {
    CORVANE_SKIP_WITHOUT_SESSION_BUS();
    const QDBusConnection bus = QDBusConnection::sessionBus();
    std::string ran;  // the actions run, each with the token it was given
    const auto run = [&ran](const std::string& action, const QString& token) {
        ran = (ran == "-" ? "" : ran + ", ") + action + (token.isEmpty() ? "" : " ") +
              token.toStdString();
    };
    auto activation = std::make_shared<tray::PanelActivation>();
    QMenu menu;
    for (const char* label : {"Open App", "", "Quit"}) {
        QAction* action = *label ? menu.addAction(label) : menu.addSeparator();
        QObject::connect(action, &QAction::triggered,
                         [&, label] { run(label, activation->menuClickToken()); });
    }
    menu.actions().first()->setShortcut(QKeySequence("Ctrl+Shift+O"));
    const tray::DBusMenu exported(bus, QStringLiteral("/MenuBar"), &menu, activation);
    const testing::TempTree icons;
    const tray::StatusNotifierItem item(
        bus, {}, {}, [&](const QString& token) { run("Open App", token); }, activation, icons.root().c_str(), 100ms);
    for (const auto& c : testing::caseTable("menu_calls")) {
        const QString method = QString::fromStdString(c[0]);
        QProcess gdbus;
        gdbus.setProcessChannelMode(QProcess::MergedChannels);
        gdbus.start("gdbus",
                    QStringList{"call", "--session", "--dest", bus.baseService(), "--object-path",
                                method.startsWith("com") ? "/MenuBar" : "/StatusNotifierItem",
                                "--method", method, "--"} +
                        QProcess::splitCommand(QString::fromStdString(c[1])));
        ran = "-";
        ASSERT_TRUE(QTest::qWaitFor([&] { return gdbus.state() == QProcess::NotRunning; }, 5000));
        QCoreApplication::processEvents();  // the click's action runs after the answer
        const std::string answer = gdbus.readAll().trimmed().toStdString();
        EXPECT_NE(answer.find(c[2]), std::string::npos) << c.where << ": " << answer;
        EXPECT_EQ(ran, c[3]) << c.where;
    }
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
