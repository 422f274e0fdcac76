#include "platform/notification_centre.h"

#include <QCoreApplication>
#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <QDBusServiceWatcher>
#include <QGuiApplication>
#include <algorithm>
#include <utility>

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

// Enough for every notification a user could still click: one alert per 10 s at most.
constexpr std::size_t kPostedKept = 32;

}  // namespace

NotificationCentre::NotificationCentre(QDBusConnection bus, QObject* parent)
    : NotificationCentre(std::move(bus), applicationIsActive, parent) {}

NotificationCentre::NotificationCentre(QDBusConnection bus, ActiveQuery isActive, QObject* parent)
    : QObject(parent), bus_(std::move(bus)), isActive_(std::move(isActive)) {
    followActions();
}

// Matched on any sender, so that subscribing never waits on the bus for the service's owner:
// the owner is followed apart, without waiting either, and compared with each signal's sender.
// Notification ids are the owner's own: a new owner starts them afresh.
void NotificationCentre::followActions() {
    if (!bus_.isConnected()) {
        return;
    }
    const QString service = QString::fromLatin1(freedesktop::kService);
    auto* watcher =
        new QDBusServiceWatcher(service, bus_, QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString&, const QString&, const QString& owner) {
                owner_ = owner;
                posted_.clear();
            });
    QDBusMessage ask = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetNameOwner"));
    ask << service;
    auto* first = new QDBusPendingCallWatcher(bus_.asyncCall(ask), this);
    connect(first, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* done) {
        done->deleteLater();
        const QDBusMessage reply = done->reply();
        if (owner_.isEmpty() && reply.type() == QDBusMessage::ReplyMessage &&
            !reply.arguments().isEmpty()) {
            owner_ = reply.arguments().constFirst().toString();
        }
    });
    const auto follow = [this](const char* name, const char* slot) {
        bus_.connect({}, QString::fromLatin1(freedesktop::kPath),
                     QString::fromLatin1(freedesktop::kInterface), QString::fromLatin1(name), this,
                     slot);
    };
    follow("ActivationToken", SLOT(onActivationToken(uint, QString, QDBusMessage)));
    follow("ActionInvoked", SLOT(onActionInvoked(uint, QString, QDBusMessage)));
    follow("NotificationClosed", SLOT(onNotificationClosed(uint, uint, QDBusMessage)));
}

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
    // Nothing waits for the answer: a missing or hung server only costs a pending call until
    // the timeout. The answer, when it comes, names the notification a click will be about.
    const QDBusPendingCall call =
        bus_.asyncCall(freedesktop::notifyMessage(request, (presentation & PresentationSound) != 0),
                       static_cast<int>(kReplyTimeout.count()));
    auto* watcher = new QDBusPendingCallWatcher(call, this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [this](QDBusPendingCallWatcher* done) {
                done->deleteLater();
                const QDBusMessage reply = done->reply();
                if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty()) {
                    return;
                }
                posted_.push_back(reply.arguments().constFirst().toUInt());
                if (posted_.size() > kPostedKept) {
                    posted_.pop_front();
                }
            });
}

void NotificationCentre::onActivationToken(uint id, const QString& token,
                                           const QDBusMessage& signal) {
    if (signal.service() == owner_) {
        tokenFor_ = id;
        token_ = token;
    }
}

void NotificationCentre::onActionInvoked(uint id, const QString& action,
                                         const QDBusMessage& signal) {
    if (signal.service() != owner_ || action != QLatin1String(freedesktop::kDefaultAction) ||
        std::find(posted_.begin(), posted_.end(), id) == posted_.end()) {
        return;
    }
    // The service sends the click's token just before the click itself.
    const QString token = tokenFor_ == id ? std::exchange(token_, QString()) : QString();
    if (delegate_ != nullptr) {
        delegate_->didActivateNotification(token);
    }
}

void NotificationCentre::onNotificationClosed(uint id, uint, const QDBusMessage& signal) {
    if (signal.service() == owner_) {
        std::erase(posted_, id);
    }
}

}  // namespace corvane::platform
