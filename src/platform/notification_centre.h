#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <chrono>
#include <deque>
#include <functional>
#include <map>
#include <optional>

namespace corvane::platform {

// One request as the monitor hands it over: a fresh identifier, title and body as given, the
// service's default sound, delivered at once.
struct NotificationRequest {
    QString identifier;
    QString title;
    QString body;
    bool defaultSound = true;
};

// Bit values of the permission the application asks for.
enum AuthorizationOption : unsigned {
    AuthorizationBadge = 1,
    AuthorizationSound = 2,
    AuthorizationAlert = 4,
};

// Bit values of how a notification is shown while the application is active.
enum PresentationOption : unsigned {
    PresentationBadge = 1,
    PresentationSound = 2,
    PresentationAlert = 4,
    PresentationList = 8,
    PresentationBanner = 16,
};

class NotificationCentreDelegate {
  public:
    virtual ~NotificationCentreDelegate() = default;
    // Asked before each post while the application is active; answers presentation options.
    virtual unsigned willPresent(const NotificationRequest& request) = 0;
    // The user clicked one of the application's notifications; `activationToken` is the token
    // the service handed on with the click (empty when it has none).
    virtual void didActivateNotification(const QString& activationToken) = 0;
};

// The desktop's notification service: org.freedesktop.Notifications on a D-Bus connection.
// Every call returns at once; no call ever waits for the bus on the calling thread.
class NotificationCentre : public QObject {
    Q_OBJECT
  public:
    using AuthorizationHandler = std::function<void(bool granted, std::optional<QString> error)>;
    // Whether the application is the active one, which hands presentation to the delegate.
    using ActiveQuery = std::function<bool()>;

    // How long a call waits for the server before it counts as unanswered.
    static constexpr std::chrono::milliseconds kReplyTimeout{3000};

    explicit NotificationCentre(QDBusConnection bus, QObject* parent = nullptr);
    NotificationCentre(QDBusConnection bus, ActiveQuery isActive, QObject* parent = nullptr);
    // Requests still unanswered are denied, from the event loop, never from here.
    ~NotificationCentre() override;

    // The application's one centre on the session bus, owned by the application object.
    static NotificationCentre* current();

    void setDelegate(NotificationCentreDelegate* delegate);
    NotificationCentreDelegate* delegate() const { return delegate_; }

    // Granted when the server answers GetServerInformation; denied, with the error, when
    // there is no bus, no server, an error or no reply in time. The handler always runs once.
    void requestAuthorization(unsigned options, AuthorizationHandler handler);

    // Fire and forget: the outcome is never reported. While the application is active the
    // delegate chooses the presentation; without banner or list nothing is posted.
    void add(const NotificationRequest& request);

  private slots:
    // Signals of whichever service holds the name; only those about this centre's own
    // notifications count.
    void onActivationToken(uint id, const QString& token, const QDBusMessage& signal);
    void onActionInvoked(uint id, const QString& action, const QDBusMessage& signal);
    void onNotificationClosed(uint id, uint reason, const QDBusMessage& signal);

  private:
    void answerAuthorization(quint64 id, bool granted, std::optional<QString> error);
    void followActions();

    QDBusConnection bus_;
    ActiveQuery isActive_;
    NotificationCentreDelegate* delegate_ = nullptr;
    quint64 nextAuthorization_ = 0;
    std::map<quint64, AuthorizationHandler> pendingAuthorizations_;
    QString owner_;            // the unique name that holds the service now
    std::deque<uint> posted_;  // the owner's ids of the latest ones still shown, oldest first
    uint tokenFor_ = 0;
    QString token_;
};

}  // namespace corvane::platform
