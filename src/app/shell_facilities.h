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
    // Answers, now or later on the thread of `context`, whether the desktop shows tray items
    // (a StatusNotifier host or an XEmbed tray). Must not wait on the bus.
    std::function<void(QObject* context, std::function<void(bool)> done)> probeSystemTray;
    // Where the one permission line goes; may be called from any thread.
    std::function<void(std::string_view)> printLine;
};

// The desktop's own facilities: the session bus's notification service and tray watcher (or
// X11 tray), and standard output.
ShellFacilities desktopShellFacilities();

}  // namespace corvane::app
