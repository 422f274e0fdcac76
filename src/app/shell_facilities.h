#pragma once

#include <functional>
#include <string_view>

#include "platform/notification_centre.h"

namespace corvane::app {

// What the application shell asks of the desktop, so tests can stand in for each part.
struct ShellFacilities {
    // The notification service the delegate registers with and asks for permission.
    std::function<platform::NotificationCentre*()> notificationCentre;
    // Whether the desktop shows tray items (a StatusNotifier host or an XEmbed tray).
    std::function<bool()> systemTrayAvailable;
    // Where the one permission line goes; may be called from any thread.
    std::function<void(std::string_view)> printLine;
};

// The desktop's own facilities: the session bus's notification service, Qt's tray probe and
// standard output.
ShellFacilities desktopShellFacilities();

}  // namespace corvane::app
