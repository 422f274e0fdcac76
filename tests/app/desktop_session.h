#pragma once

#include <QDBusConnection>
#include <QSemaphore>
#include <QString>
#include <QStringList>
#include <QThread>
#include <memory>
#include <optional>

#include "app/app_process.h"
#include "app/status_notifier_watcher.h"
#include "app/tray_client.h"
#include "app/virtual_display.h"
#include "support/fake_notification_server.h"
#include "support/private_bus.h"

namespace corvane::testing {

// What the desktop around the application offers.
struct DesktopOffers {
    enum class TrayHost { None, Answering, Hung };
    TrayHost trayHost = TrayHost::Answering;
    bool notificationServer = true;
    FakeNotificationServer::Mode serverMode = FakeNotificationServer::Mode::Answer;
};

// How one program is started on the desktop, beyond its arguments.
struct LaunchOptions {
    // Keep standard error for AppProcess::errors() instead of passing it to the test log.
    bool captureErrors = false;
    // A session bus address to give instead of the session's own (e.g. one where nothing
    // listens).
    std::optional<QString> busAddress = std::nullopt;
};

// A desktop of our own for one test: a virtual display, a private session bus and, as asked,
// a panel that hosts tray items (or one that has stopped answering) and a notification server, both
// served by the test process.
class DesktopSession {
  public:
    explicit DesktopSession(DesktopOffers offers);
    ~DesktopSession();

    // Empty when everything started; otherwise what did not.
    const QString& error() const { return error_; }

    std::unique_ptr<AppProcess> launch(const QString& program, const QStringList& arguments = {},
                                       const LaunchOptions& options = {});

    // The application's tray item once it registered with the panel, or nullopt after the
    // timeout.
    std::optional<TrayClient> waitForTray(int timeoutMs);
    // How many items registered with the panel so far.
    int trayItemCount() const;

    // The notification server, in the offered mode. When none was offered it exists but does
    // not serve until the test starts it; a test may also stop and start it again.
    FakeNotificationServer* notificationServer() { return server_.get(); }

  private:
    VirtualDisplay display_;
    PrivateBus bus_;
    QDBusConnection connection_;
    std::unique_ptr<StatusNotifierWatcher> watcher_;
    // A hung panel's watcher lives on a thread that is kept busy until the session ends.
    QThread hungThread_;
    QSemaphore hungRelease_;
    std::unique_ptr<FakeNotificationServer> server_;
    QString error_;
};

// Paths of the built programs, from the build system.
QString productBinary();
QString testAppBinary();

}  // namespace corvane::testing
