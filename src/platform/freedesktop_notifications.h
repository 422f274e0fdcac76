#pragma once

#include <QDBusMessage>

#include "platform/application_id.h"
#include "platform/notification_centre.h"

namespace corvane::platform::freedesktop {

inline constexpr char kService[] = "org.freedesktop.Notifications";
inline constexpr char kPath[] = "/org/freedesktop/Notifications";
inline constexpr char kInterface[] = "org.freedesktop.Notifications";

// The application name every notification carries. Its desktop entry and icon are installed
// under the application id: desktops show Corvane's own name and icon with each notification
// and group its notifications under it.
inline constexpr char kAppName[] = "Corvane";
// The action a click on the notification itself invokes, and the label servers that list
// actions show for it.
inline constexpr char kDefaultAction[] = "default";
inline constexpr char kDefaultActionLabel[] = "Open App";
// The sound theme's name for the default notification sound.
inline constexpr char kDefaultSound[] = "message-new-instant";

// Notify(app_name, replaces_id, app_icon, summary, body, actions, hints, expire_timeout) for one
// request: never replaces an earlier notification, a click on it opens the dashboard, the
// server's default expiry, and the desktop entry and icon that name the sender.
// `withSound` false asks the server for silence.
QDBusMessage notifyMessage(const NotificationRequest& request, bool withSound);

// GetServerInformation(): answered by any running notification server.
QDBusMessage serverInformationMessage();

}  // namespace corvane::platform::freedesktop
