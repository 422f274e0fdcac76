#include "app/shell_facilities.h"

#include <QSystemTrayIcon>

#include "app/standard_output.h"

namespace corvane::app {

ShellFacilities desktopShellFacilities() {
    ShellFacilities facilities;
    facilities.notificationCentre = &platform::NotificationCentre::current;
    facilities.systemTrayAvailable = &QSystemTrayIcon::isSystemTrayAvailable;
    facilities.printLine = &printLineToStandardOutput;
    return facilities;
}

}  // namespace corvane::app
