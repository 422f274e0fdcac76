#include "platform/notification_centre.h"

#include <QCoreApplication>
#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <QGuiApplication>

#include "platform/freedesktop_notifications.h"

namespace corvane::platform {

namespace {

bool applicationIsActive() {
    return qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr &&
           QGuiApplication::applicationState() == Qt::ApplicationActive;
}

QString errorText(const QDBusError& error) {
    if (!error.isValid()) {
        return QStringLiteral("Not connected to D-Bus server");
    }
    return error.message().isEmpty() ? error.name() : error.message();
}

constexpr unsigned kShown = PresentationBanner | PresentationList | PresentationAlert;

}  // namespace

NotificationCentre::NotificationCentre(QDBusConnection bus, QObject* parent)
    : NotificationCentre(std::move(bus), applicationIsActive, parent) {}

NotificationCentre::NotificationCentre(QDBusConnection bus, ActiveQuery isActive, QObject* parent)
    : QObject(parent), bus_(std::move(bus)), isActive_(std::move(isActive)) {}

NotificationCentre::~NotificationCentre() {
    // The handler outlives the centre: it is promised one answer. While the application object
    // is being torn down there is no event loop left to run it, and it is dropped.
    auto* application = QCoreApplication::instance();
    if (application == nullptr) {
        return;
    }
    for (auto& [id, handler] : pendingAuthorizations_) {
        QMetaObject::invokeMethod(
            application,
            [handler = std::move(handler)] {
                handler(false, QStringLiteral("The notification centre closed before the "
                                              "notification server answered"));
            },
            Qt::QueuedConnection);
    }
}

NotificationCentre* NotificationCentre::current() {
    auto* application = QCoreApplication::instance();
    if (application == nullptr) {
        return nullptr;
    }
    static const char* const kName = "corvane-notification-centre";
    if (auto* centre =
            application->findChild<NotificationCentre*>(kName, Qt::FindDirectChildrenOnly)) {
        return centre;
    }
    auto* centre = new NotificationCentre(QDBusConnection::sessionBus(), application);
    centre->setObjectName(kName);
    return centre;
}

void NotificationCentre::setDelegate(NotificationCentreDelegate* delegate) {
    delegate_ = delegate;
}

void NotificationCentre::requestAuthorization(unsigned /*options*/, AuthorizationHandler handler) {
    // The freedesktop service has no permission of its own: a server that answers will show
    // what is posted, whatever the options asked for.
    const quint64 id = nextAuthorization_++;
    pendingAuthorizations_.emplace(id, std::move(handler));

    const QDBusPendingCall call = bus_.asyncCall(freedesktop::serverInformationMessage(),
                                                 static_cast<int>(kReplyTimeout.count()));
    auto answer = [this, id](const QDBusPendingCall& done) {
        answerAuthorization(id, !done.isError(),
                            done.isError() ? std::optional(errorText(done.error())) : std::nullopt);
    };
    if (call.isFinished()) {
        // Without a connection the call fails before it is sent and no watcher would ever
        // fire; the answer still comes from the event loop, never from inside this call.
        QMetaObject::invokeMethod(
            this, [answer, call] { answer(call); }, Qt::QueuedConnection);
        return;
    }
    auto* watcher = new QDBusPendingCallWatcher(call, this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [answer](QDBusPendingCallWatcher* done) {
                done->deleteLater();
                answer(*done);
            });
}

void NotificationCentre::answerAuthorization(quint64 id, bool granted,
                                             std::optional<QString> error) {
    auto pending = pendingAuthorizations_.extract(id);
    if (pending.empty()) {
        return;
    }
    // Taken out first: the handler may destroy this centre.
    pending.mapped()(granted, std::move(error));
}

void NotificationCentre::add(const NotificationRequest& request) {
    unsigned presentation = PresentationBanner | PresentationSound;
    if (isActive_ && isActive_()) {
        // The desktop leaves a notification of the active application unshown unless the
        // delegate asks for it, like the platform this centre stands in for.
        presentation = delegate_ != nullptr ? delegate_->willPresent(request) : 0U;
    }
    if ((presentation & kShown) == 0) {
        return;
    }
    // Fire and forget: a missing or hung server only costs a pending call until the timeout.
    bus_.asyncCall(freedesktop::notifyMessage(request, (presentation & PresentationSound) != 0),
                   static_cast<int>(kReplyTimeout.count()));
}

}  // namespace corvane::platform
