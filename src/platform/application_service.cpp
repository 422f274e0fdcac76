#include "platform/application_service.h"

#include <QDBusError>

namespace corvane::platform {

ApplicationService::ApplicationService(ActivateHandler activate, QObject* parent)
    : QObject(parent), activate_(std::move(activate)) {}

QString ApplicationService::activationToken(const QVariantMap& platformData) {
    const QString wayland = platformData.value(QStringLiteral("activation-token")).toString();
    return wayland.isEmpty() ? platformData.value(QStringLiteral("desktop-startup-id")).toString()
                             : wayland;
}

void ApplicationService::Activate(const QVariantMap& platform_data) {
    activate_(activationToken(platform_data));
}

void ApplicationService::Open(const QStringList&, const QVariantMap&) {
    refuse(QStringLiteral("Corvane opens no files"));
}

void ApplicationService::ActivateAction(const QString& action_name, const QVariantList&,
                                        const QVariantMap&) {
    refuse(QStringLiteral("Corvane has no action \"%1\"").arg(action_name));
}

void ApplicationService::refuse(const QString& message) {
    if (calledFromDBus()) {
        sendErrorReply(QDBusError::NotSupported, message);
    }
}

}  // namespace corvane::platform
