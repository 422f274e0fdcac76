#include "platform/freedesktop_notifications.h"

#include <QDBusVariant>
#include <QStringList>
#include <QVariantMap>

namespace corvane::platform::freedesktop {

namespace {

const QString kService = QStringLiteral("org.freedesktop.Notifications");
const QString kPath = QStringLiteral("/org/freedesktop/Notifications");
const QString kInterface = QStringLiteral("org.freedesktop.Notifications");

}  // namespace

QDBusMessage notifyMessage(const NotificationRequest& request, bool withSound) {
    QVariantMap hints{{QStringLiteral("desktop-entry"), QString::fromLatin1(kDesktopEntry)}};
    if (withSound && request.defaultSound) {
        hints.insert(QStringLiteral("sound-name"), QString::fromLatin1(kDefaultSound));
    } else {
        hints.insert(QStringLiteral("suppress-sound"), true);
    }
    QDBusMessage message =
        QDBusMessage::createMethodCall(kService, kPath, kInterface, QStringLiteral("Notify"));
    message << QString::fromLatin1(kAppName) << uint{0} << QString::fromLatin1(kAppIcon)
            << request.title << request.body << QStringList() << hints << int{-1};
    return message;
}

QDBusMessage serverInformationMessage() {
    return QDBusMessage::createMethodCall(kService, kPath, kInterface,
                                          QStringLiteral("GetServerInformation"));
}

}  // namespace corvane::platform::freedesktop
