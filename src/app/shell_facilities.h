#pragma once

#include <QMenu>
#include <QObject>
#include <QString>
#include <functional>
#include <optional>
#include <string_view>

#include "platform/notification_centre.h"
#include "tray/status_notifier_item.h"
#include "tray/tray_watcher.h"

namespace corvane::app {

// What the application shell asks of the desktop, so tests can stand in for each part.
struct ShellFacilities {
    // The notification service the delegate registers with and asks for permission.
    std::function<platform::NotificationCentre*()> notificationCentre;
    // Offers the tray item `look` with `menu` to the desktop's StatusNotifier panels, for as long
    // as `context` lives, and calls `trayChanged` on the thread of `context` each time the
    // desktop's tray changes: a StatusNotifier host came, an X11 tray without one, or none is
    // left. `activate` is a click on the item where the panel opens no menu, with the click's
    // activation token. Must not wait on the bus. Returns what tells, while a menu action
    // runs, the activation token of the panel's click that set it off (empty: none).
    std::function<std::function<QString()>(QObject* context, tray::StatusItemLook look,
                                           QMenu* menu,
                                           std::function<void(const QString& token)> activate,
                                           std::function<void(tray::SystemTray)> trayChanged)>
        showStatusItem;
    // Where the one permission line goes; may be called from any thread.
    std::function<void(std::string_view)> printLine;
    // Makes this process the desktop session's one Corvane, which `activate` then brings to
    // the front, with the caller's activation token, whenever the desktop or a later launch
    // asks, for as long as `context` lives. When a Corvane already runs, hands this launch's
    // activation to it (or says on standard error why it could not) and returns the exit
    // status this launch ends with; nothing when this process is to run. Unset: always runs.
    std::function<std::optional<int>(QObject* context,
                                     std::function<void(const QString& token)> activate)>
        claimSession;
};

// The desktop's own facilities: the session bus's notification service and tray watcher (or
// X11 tray), and standard output. Made before the application object, since it keeps the
// activation token the process was started with.
ShellFacilities desktopShellFacilities();

}  // namespace corvane::app
