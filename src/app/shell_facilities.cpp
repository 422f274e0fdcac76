#include "app/shell_facilities.h"

#include <QDBusConnection>

#include "app/standard_output.h"
#include "app/tray_probe.h"

namespace corvane::app {

ShellFacilities desktopShellFacilities() {
    ShellFacilities facilities;
    facilities.notificationCentre = &platform::NotificationCentre::current;
    facilities.probeSystemTray = [](QObject* context, std::function<void(bool)> done) {
        // A panel answers in milliseconds; two seconds is a watcher that is stuck.
        probeSystemTray(QDBusConnection::sessionBus(), std::chrono::milliseconds(2000), context,
                        std::move(done));
    };
    facilities.printLine = &printLineToStandardOutput;
    return facilities;
}

}  // namespace corvane::app
