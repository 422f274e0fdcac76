#include "platform/freedesktop_notifications.h"

#include <QDBusVariant>
#include <QStringList>
#include <QVariantMap>

namespace corvane::platform::freedesktop {

QDBusMessage notifyMessage(const NotificationRequest& request, bool withSound) {
    QVariantMap hints{{QStringLiteral("desktop-entry"), QString::fromLatin1(kApplicationId)}};
    if (withSound && request.defaultSound) {
        hints.insert(QStringLiteral("sound-name"), QString::fromLatin1(kDefaultSound));
    } else {
        hints.insert(QStringLiteral("suppress-sound"), true);
    }
    QDBusMessage message =
        QDBusMessage::createMethodCall(QString::fromLatin1(kService), QString::fromLatin1(kPath),
                                       QString::fromLatin1(kInterface), QStringLiteral("Notify"));
    message << QString::fromLatin1(kAppName) << uint{0} << QString::fromLatin1(kApplicationId)
            << request.title << request.body
            << QStringList{QString::fromLatin1(kDefaultAction),
                           QString::fromLatin1(kDefaultActionLabel)}
            << hints << int{-1};
    return message;
}

QDBusMessage serverInformationMessage() {
    return QDBusMessage::createMethodCall(QString::fromLatin1(kService), QString::fromLatin1(kPath),
                                          QString::fromLatin1(kInterface),
                                          QStringLiteral("GetServerInformation"));
}

}  // namespace corvane::platform::freedesktop
