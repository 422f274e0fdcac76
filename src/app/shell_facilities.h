#pragma once

#include <QObject>
#include <functional>
#include <string_view>

#include "platform/notification_centre.h"

namespace corvane::app {

// What the application shell asks of the desktop, so tests can stand in for each part.
struct ShellFacilities {
    // The notification service the delegate registers with and asks for permission.
    std::function<platform::NotificationCentre*()> notificationCentre;
    // Calls `changed` on the thread of `context`, for as long as `context` lives, with true each
    // time the desktop gains a tray that shows items (a StatusNotifier host or an X11 tray) and
    // false when the last one goes. Must not wait on the bus.
    std::function<void(QObject* context, std::function<void(bool available)> changed)>
        watchSystemTray;
    // Where the one permission line goes; may be called from any thread.
    std::function<void(std::string_view)> printLine;
};

// The desktop's own facilities: the session bus's notification service and tray watcher (or
// X11 tray), and standard output.
ShellFacilities desktopShellFacilities();

}  // namespace corvane::app
