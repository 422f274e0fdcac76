#include "support/fake_notification_server.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>

namespace corvane::testing {

namespace {
const QString kService = QStringLiteral("org.freedesktop.Notifications");
const QString kPath = QStringLiteral("/org/freedesktop/Notifications");
}  // namespace

FakeNotificationServer::FakeNotificationServer(QDBusConnection bus, Mode mode, QObject* parent)
    : QObject(parent), bus_(std::move(bus)), mode_(mode) {}

FakeNotificationServer::~FakeNotificationServer() {
    stop();
}

bool FakeNotificationServer::start() {
    if (!bus_.registerObject(kPath, this, QDBusConnection::ExportScriptableSlots)) {
        return false;
    }
    started_ = true;
    if (!bus_.registerService(kService)) {
        stop();
        return false;
    }
    return true;
}

void FakeNotificationServer::stop() {
    if (!started_) {
        return;
    }
    started_ = false;
    if (bus_.isConnected()) {
        bus_.unregisterService(kService);
        bus_.unregisterObject(kPath);
    }
}

bool FakeNotificationServer::divertedByMode() {
    switch (mode_) {
        case Mode::Answer:
            return false;
        case Mode::Hang:
            // The caller is left waiting: the reply is never sent.
            setDelayedReply(true);
            return true;
        case Mode::Fail:
            sendErrorReply(QDBusError::Failed, QStringLiteral("The fake server refuses"));
            return true;
    }
    return false;
}

uint FakeNotificationServer::Notify(const QString& app_name, uint replaces_id,
                                    const QString& app_icon, const QString& summary,
                                    const QString& body, const QStringList& actions,
                                    const QVariantMap& hints, int expire_timeout) {
    notifications_.push_back(ReceivedNotification{app_name, replaces_id, app_icon, summary, body,
                                                  actions, hints, expire_timeout});
    emit notified(notifications_.back());
    if (divertedByMode()) {
        return 0;
    }
    return ++lastId_;
}

QString FakeNotificationServer::GetServerInformation(QString& vendor, QString& version,
                                                     QString& spec_version) {
    ++serverInformationRequests_;
    if (divertedByMode()) {
        return {};
    }
    vendor = QStringLiteral("Corvane tests");
    version = QStringLiteral("1.0");
    spec_version = QStringLiteral("1.2");
    return QStringLiteral("fake-notifications");
}

QStringList FakeNotificationServer::GetCapabilities() {
    if (divertedByMode()) {
        return {};
    }
    return {QStringLiteral("body"), QStringLiteral("sound")};
}

void FakeNotificationServer::CloseNotification(uint) {
    divertedByMode();
}

}  // namespace corvane::testing
