#include "app/corvane_app.h"

#include <QMetaObject>

#include "app/application_icon.h"
#include "app/desktop_start.h"
#include "platform/application_id.h"

namespace corvane::app {

namespace {

// Names must be in place before the QApplication exists: Qt reads them while it starts (the
// tray item's title on D-Bus, the window class on X11, the app id on Wayland).
int& namedBeforeStart(int& argc) {
    QCoreApplication::setApplicationName(QStringLiteral("Corvane"));
    QGuiApplication::setDesktopFileName(QString::fromLatin1(platform::kApplicationId));
    return guardDesktopStart(argc);
}

}  // namespace

int CorvaneApp::main(int argc, char** argv) {
    CorvaneApp app(
        argc, argv, [] { return std::make_shared<monitor::SystemMonitor>(); },
        desktopShellFacilities());
    return app.exec();
}

CorvaneApp::CorvaneApp(int& argc, char** argv, MonitorFactory makeMonitor,
                       ShellFacilities facilities)
    : application_(namedBeforeStart(argc), argv), appDelegate_(facilities) {
    desktopStarted();
    // The one name request before the first frame: a second launch shows nothing of its own.
    if (facilities.claimSession) {
        handedOver_ = facilities.claimSession(
            &appDelegate_, [this](const QString& token) { appDelegate_.openApp(token); });
        if (handedOver_) {
            return;
        }
    }
    window_ = std::make_unique<ui::ContentView>(makeMonitor());
    window_->resize(window_->sizeHint().expandedTo(QSize(500, 500)));
    // X11 window managers draw the window's own icon; Wayland's find it through the app id.
    window_->setWindowIcon(applicationIcon());
    appDelegate_.setWindow(window_.get());
    window_->show();
    // Queued: the delegate hears of the finished launch from inside the running event loop.
    QMetaObject::invokeMethod(
        &appDelegate_, [this] { appDelegate_.applicationDidFinishLaunching(); },
        Qt::QueuedConnection);
}

CorvaneApp::~CorvaneApp() = default;

int CorvaneApp::exec() {
    return handedOver_ ? *handedOver_ : QApplication::exec();
}

}  // namespace corvane::app
