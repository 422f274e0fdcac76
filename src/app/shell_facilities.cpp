#include "app/shell_facilities.h"

#include <QDBusConnection>

#include "app/standard_output.h"
#include "platform/tray_watcher.h"

namespace corvane::app {

ShellFacilities desktopShellFacilities() {
    ShellFacilities facilities;
    facilities.notificationCentre = &platform::NotificationCentre::current;
    facilities.watchSystemTray = [](QObject* context, std::function<void(bool)> changed) {
        // A panel answers in milliseconds; two seconds is a watcher that is stuck.
        auto* watcher = new platform::TrayWatcher(QDBusConnection::sessionBus(),
                                                  std::chrono::milliseconds(2000), context);
        QObject::connect(watcher, &platform::TrayWatcher::trayAvailabilityChanged, context,
                         std::move(changed));
    };
    facilities.printLine = &printLineToStandardOutput;
    return facilities;
}

}  // namespace corvane::app
