#include "platform/session_instance.h"

#include <QDBusMessage>

#include "platform/application_id.h"

namespace corvane::platform {

namespace {

const QString kBusService = QStringLiteral("org.freedesktop.DBus");
const QString kBusPath = QStringLiteral("/org/freedesktop/DBus");

// RequestName's flag and answers, as the bus daemon numbers them (DBUS_NAME_FLAG_DO_NOT_QUEUE,
// DBUS_REQUEST_NAME_REPLY_PRIMARY_OWNER and _ALREADY_OWNER in dbus-shared.h).
constexpr uint kDoNotQueue = 4;
constexpr uint kPrimaryOwner = 1;
constexpr uint kAlreadyOwner = 4;

QDBusMessage askBus(const QDBusConnection& bus, const QString& method, const QVariantList& args,
                    std::chrono::milliseconds limit) {
    QDBusMessage message =
        QDBusMessage::createMethodCall(kBusService, kBusPath, kBusService, method);
    message.setArguments(args);
    return bus.call(message, QDBus::Block, static_cast<int>(limit.count()));
}

QString holderProcess(const QDBusConnection& bus, const QString& name,
                      std::chrono::milliseconds limit) {
    const QDBusMessage pid =
        askBus(bus, QStringLiteral("GetConnectionUnixProcessID"), {name}, limit);
    return pid.type() == QDBusMessage::ReplyMessage && !pid.arguments().isEmpty()
               ? QStringLiteral("process %1").arg(pid.arguments().constFirst().toUInt())
               : QStringLiteral("process unknown");
}

}  // namespace

SessionClaim claimSession(QDBusConnection bus, QObject* service, const QVariantMap& platformData,
                          std::chrono::milliseconds limit) {
    if (!bus.isConnected()) {
        return {};
    }
    const QString name = QString::fromLatin1(kApplicationId);
    const QString path = QString::fromLatin1(kApplicationPath);
    bus.registerObject(path, service, QDBusConnection::ExportAllSlots);
    const QDBusMessage claim =
        askBus(bus, QStringLiteral("RequestName"), {name, kDoNotQueue}, limit);
    if (claim.type() != QDBusMessage::ReplyMessage || claim.arguments().isEmpty()) {
        return {};  // a bus that refuses names: run on it unclaimed
    }
    const uint answer = claim.arguments().constFirst().toUInt();
    if (answer == kPrimaryOwner || answer == kAlreadyOwner) {
        return {};
    }
    bus.unregisterObject(path);
    QDBusMessage activate = QDBusMessage::createMethodCall(
        name, path, QStringLiteral("org.freedesktop.Application"), QStringLiteral("Activate"));
    activate << platformData;
    const QDBusMessage reply = bus.call(activate, QDBus::Block, static_cast<int>(limit.count()));
    if (reply.type() == QDBusMessage::ReplyMessage) {
        return {SessionClaim::Outcome::HandedOver, {}};
    }
    const QString why =
        reply.errorName() == QLatin1String("org.freedesktop.DBus.Error.NoReply")
            ? QStringLiteral("did not answer within %1 ms").arg(limit.count())
            : QStringLiteral("refused to come to the front (%1)").arg(reply.errorName());
    return {SessionClaim::Outcome::Unanswered,
            QStringLiteral("corvane: Corvane is already running (%1) but %2")
                .arg(holderProcess(bus, name, limit), why)};
}

QVariantMap launchPlatformData() {
    QVariantMap data;
    if (const QString token = qEnvironmentVariable("XDG_ACTIVATION_TOKEN"); !token.isEmpty()) {
        data.insert(QStringLiteral("activation-token"), token);
    }
    if (const QString id = qEnvironmentVariable("DESKTOP_STARTUP_ID"); !id.isEmpty()) {
        data.insert(QStringLiteral("desktop-startup-id"), id);
    }
    return data;
}

}  // namespace corvane::platform
