#pragma once

#include <QDBusMessage>

#include "platform/notification_centre.h"

namespace corvane::platform::freedesktop {

// The application name every notification carries.
inline constexpr char kAppName[] = "Corvane";
// The installed launcher entry (corvane.desktop) and icon: desktops show the application's own
// name and icon with each notification and group its notifications under it.
inline constexpr char kDesktopEntry[] = "corvane";
inline constexpr char kAppIcon[] = "corvane";
// The sound theme's name for the default notification sound.
inline constexpr char kDefaultSound[] = "message-new-instant";

// Notify(app_name, replaces_id, app_icon, summary, body, actions, hints, expire_timeout) for one
// request: never replaces an earlier notification, no actions, the server's default expiry, and
// the desktop entry and icon that name the sender.
// `withSound` false asks the server for silence.
QDBusMessage notifyMessage(const NotificationRequest& request, bool withSound);

// GetServerInformation(): answered by any running notification server.
QDBusMessage serverInformationMessage();

}  // namespace corvane::platform::freedesktop
