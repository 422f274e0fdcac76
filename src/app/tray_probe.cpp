#include "app/tray_probe.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QSystemTrayIcon>

namespace corvane::app {

namespace {

void answer(const QDBusPendingCall& call, const std::function<void(bool)>& done) {
    const QDBusError::ErrorType error = call.isError() ? call.error().type() : QDBusError::NoError;
    // Answered, or nobody there: Qt's check will not wait. Anything else (no reply in time, a
    // broken watcher) means Qt's blocking check could hang the application.
    if (error == QDBusError::NoError || error == QDBusError::ServiceUnknown) {
        done(QSystemTrayIcon::isSystemTrayAvailable());
    } else {
        done(false);
    }
}

}  // namespace

void probeSystemTray(QDBusConnection bus, std::chrono::milliseconds timeout, QObject* context,
                     std::function<void(bool available)> done) {
    if (!bus.isConnected()) {
        done(QSystemTrayIcon::isSystemTrayAvailable());  // only an X11 tray can exist
        return;
    }
    QDBusMessage get = QDBusMessage::createMethodCall(
        QStringLiteral("org.kde.StatusNotifierWatcher"), QStringLiteral("/StatusNotifierWatcher"),
        QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    get << QStringLiteral("org.kde.StatusNotifierWatcher")
        << QStringLiteral("IsStatusNotifierHostRegistered");
    const QDBusPendingCall call = bus.asyncCall(get, static_cast<int>(timeout.count()));
    // A call that failed on the spot never signals its watcher.
    if (call.isFinished()) {
        answer(call, done);
        return;
    }
    auto* watcher = new QDBusPendingCallWatcher(call, context);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, context,
                     [watcher, done = std::move(done)] {
                         watcher->deleteLater();
                         answer(*watcher, done);
                     });
}

}  // namespace corvane::app
