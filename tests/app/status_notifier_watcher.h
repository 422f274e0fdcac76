#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <QStringList>

namespace corvane::testing {

// The part of a desktop panel that Qt looks for before it exports a tray item over D-Bus:
// org.kde.StatusNotifierWatcher with a registered host. It records which connection
// registered an item, so a test can then talk to that item directly.
class StatusNotifierWatcher : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ isHostRegistered)
    Q_PROPERTY(int ProtocolVersion READ protocolVersion)
    Q_PROPERTY(QStringList RegisteredStatusNotifierItems READ registeredItems)
  public:
    explicit StatusNotifierWatcher(QDBusConnection bus, QObject* parent = nullptr);
    ~StatusNotifierWatcher() override;

    bool start();

    bool isHostRegistered() const { return true; }
    int protocolVersion() const { return 0; }
    QStringList registeredItems() const { return items_; }

    // The unique bus name of the connection that registered the first item, once one did.
    const QString& itemOwner() const { return itemOwner_; }

  public slots:
    Q_SCRIPTABLE void RegisterStatusNotifierItem(const QString& service,
                                                 const QDBusMessage& message);
    Q_SCRIPTABLE void RegisterStatusNotifierHost(const QString& service);

  signals:
    Q_SCRIPTABLE void StatusNotifierItemRegistered(const QString& service);
    Q_SCRIPTABLE void StatusNotifierHostRegistered();

  private:
    QDBusConnection bus_;
    QStringList items_;
    QString itemOwner_;
};

}  // namespace corvane::testing
