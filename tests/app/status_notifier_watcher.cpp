#include "app/status_notifier_watcher.h"

namespace corvane::testing {

namespace {

const QString kService = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString kPath = QStringLiteral("/StatusNotifierWatcher");

}  // namespace

StatusNotifierWatcher::StatusNotifierWatcher(QDBusConnection bus, QObject* parent)
    : QObject(parent), bus_(std::move(bus)) {}

StatusNotifierWatcher::~StatusNotifierWatcher() {
    bus_.unregisterObject(kPath);
    bus_.unregisterService(kService);
}

bool StatusNotifierWatcher::start() {
    return bus_.registerObject(
               kPath, this,
               QDBusConnection::ExportScriptableContents | QDBusConnection::ExportAllProperties) &&
           bus_.registerService(kService);
}

void StatusNotifierWatcher::RegisterStatusNotifierItem(const QString& service,
                                                       const QDBusMessage& message) {
    items_.append(service);
    if (itemOwner_.isEmpty()) {
        itemOwner_ = message.service();
    }
    emit StatusNotifierItemRegistered(service);
}

void StatusNotifierWatcher::RegisterStatusNotifierHost(const QString&) {
    emit StatusNotifierHostRegistered();
}

}  // namespace corvane::testing
