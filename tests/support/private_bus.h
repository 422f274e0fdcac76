#pragma once

#include <QDBusConnection>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <memory>

namespace corvane::testing {

// A dbus-daemon of our own, for one test or one program: its configuration lists no service
// directories, so nothing is ever auto-started on it (no notification daemon appears unless a
// test puts one there). The daemon and every connection made through connect() end with it.
class PrivateBus {
  public:
    PrivateBus();
    ~PrivateBus();
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

    // False when dbus-daemon could not be started; error() says why.
    bool isRunning() const { return !address_.isEmpty(); }
    const QString& error() const { return error_; }
    const QString& address() const { return address_; }

    // A new connection of its own to this bus (a separate client, as another process would be).
    QDBusConnection connect();

    // Ends the daemon while connections are still open, as a bus that goes away would.
    void kill();

  private:
    QTemporaryDir directory_;
    std::unique_ptr<QProcess> daemon_;
    QString address_;
    QString error_;
    QStringList connectionNames_;
};

}  // namespace corvane::testing
