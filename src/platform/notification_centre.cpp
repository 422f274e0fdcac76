#include "platform/notification_centre.h"

#include <QCoreApplication>

namespace corvane::platform {

NotificationCentre::NotificationCentre(QDBusConnection bus, QObject* parent)
    : QObject(parent), bus_(std::move(bus)) {}

NotificationCentre::~NotificationCentre() = default;

NotificationCentre* NotificationCentre::current() {
    auto* application = QCoreApplication::instance();
    if (application == nullptr) {
        return nullptr;
    }
    static const char* const kName = "corvane-notification-centre";
    if (auto* centre = application->findChild<NotificationCentre*>(kName, Qt::FindDirectChildrenOnly)) {
        return centre;
    }
    auto* centre = new NotificationCentre(QDBusConnection::sessionBus(), application);
    centre->setObjectName(kName);
    return centre;
}

void NotificationCentre::setDelegate(NotificationCentreDelegate* delegate) { delegate_ = delegate; }

void NotificationCentre::requestAuthorization(unsigned, AuthorizationHandler handler) {
    handler(false, QStringLiteral("not implemented"));  // TODO
}

void NotificationCentre::add(const NotificationRequest&) {}  // TODO

}  // namespace corvane::platform
