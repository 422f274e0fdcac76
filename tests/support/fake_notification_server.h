#pragma once

#include <QDBusConnection>
#include <QDBusContext>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>
#include <vector>

namespace corvane::testing {

// One Notify call exactly as it arrived on the bus.
struct ReceivedNotification {
    QString appName;
    uint replacesId = 0;
    QString appIcon;
    QString summary;
    QString body;
    QStringList actions;
    QVariantMap hints;
    int expireTimeout = 0;
};

// org.freedesktop.Notifications served on a connection the caller owns. It records every call;
// in Hang mode it takes each call and never answers, in Fail mode it answers with an error.
class FakeNotificationServer : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")
  public:
    enum class Mode { Answer, Hang, Fail };

    explicit FakeNotificationServer(QDBusConnection bus, Mode mode = Mode::Answer,
                                    QObject* parent = nullptr);
    ~FakeNotificationServer() override;

    // Exports the object and takes the well-known name; false when the bus refused either.
    bool start();
    // Gives the name and the object back, as a server that quits would.
    void stop();

    const std::vector<ReceivedNotification>& notifications() const { return notifications_; }
    int serverInformationRequests() const { return serverInformationRequests_; }

  public slots:
    Q_SCRIPTABLE uint Notify(const QString& app_name, uint replaces_id, const QString& app_icon,
                             const QString& summary, const QString& body,
                             const QStringList& actions, const QVariantMap& hints,
                             int expire_timeout);
    Q_SCRIPTABLE QString GetServerInformation(QString& vendor, QString& version,
                                              QString& spec_version);
    Q_SCRIPTABLE QStringList GetCapabilities();
    Q_SCRIPTABLE void CloseNotification(uint id);

  signals:
    void notified(const corvane::testing::ReceivedNotification& notification);

  private:
    // True when the call was answered by the mode (hung or failed) rather than served.
    bool divertedByMode();

    QDBusConnection bus_;
    Mode mode_;
    bool started_ = false;
    uint lastId_ = 0;
    int serverInformationRequests_ = 0;
    std::vector<ReceivedNotification> notifications_;
};

}  // namespace corvane::testing
