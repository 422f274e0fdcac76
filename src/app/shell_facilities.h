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
    // Calls `appeared` on the thread of `context`, for as long as `context` lives, each time the
    // desktop gains a tray that shows items (a StatusNotifier host or an X11 tray). Must not
    // wait on the bus.
    std::function<void(QObject* context, std::function<void()> appeared)> watchSystemTray;
    // Where the one permission line goes; may be called from any thread.
    std::function<void(std::string_view)> printLine;
};

// The desktop's own facilities: the session bus's notification service and tray watcher (or
// X11 tray), and standard output.
ShellFacilities desktopShellFacilities();

}  // namespace corvane::app
