#include "app/desktop_session.h"

#include <QTest>

namespace corvane::testing {

DesktopSession::DesktopSession(DesktopOffers offers)
    : connection_(QStringLiteral("corvane-desktop-session-unused")) {
    if (!display_.isRunning()) {
        error_ = display_.error();
        return;
    }
    if (!bus_.isRunning()) {
        error_ = bus_.error();
        return;
    }
    connection_ = bus_.connect();
    if (!connection_.isConnected()) {
        error_ = QStringLiteral("cannot connect to the private bus");
        return;
    }
    if (offers.trayHost != DesktopOffers::TrayHost::None) {
        watcher_ = std::make_unique<StatusNotifierWatcher>(connection_);
        if (!watcher_->start()) {
            error_ = QStringLiteral("cannot serve the tray watcher: ") +
                     connection_.lastError().message();
            return;
        }
    }
    if (offers.trayHost == DesktopOffers::TrayHost::Hung) {
        // Calls to the watcher are delivered to its thread, which never gets to them.
        watcher_->moveToThread(&hungThread_);
        hungThread_.start();
        QMetaObject::invokeMethod(watcher_.get(), [this] { hungRelease_.acquire(); });
    }
    server_ = std::make_unique<FakeNotificationServer>(connection_, offers.serverMode);
    if (offers.notificationServer) {
        if (!server_->start()) {
            error_ =
                QStringLiteral("cannot serve notifications: ") + connection_.lastError().message();
        }
    }
}

// The served objects go before the bus connection they are registered on.
DesktopSession::~DesktopSession() {
    server_.reset();
    if (hungThread_.isRunning()) {
        hungRelease_.release();
        hungThread_.quit();
        hungThread_.wait();
    }
    watcher_.reset();
}

std::unique_ptr<AppProcess> DesktopSession::launch(const QString& program,
                                                   const QStringList& arguments,
                                                   const LaunchOptions& options) {
    return std::make_unique<AppProcess>(program, arguments, display_.name(),
                                        options.busAddress.value_or(bus_.address()),
                                        options.captureErrors);
}

std::optional<TrayClient> DesktopSession::waitForTray(int timeoutMs) {
    if (!watcher_ ||
        !QTest::qWaitFor([&] { return !watcher_->itemOwner().isEmpty(); }, timeoutMs)) {
        return std::nullopt;
    }
    return TrayClient(connection_, watcher_->itemOwner());
}

int DesktopSession::trayItemCount() const {
    return watcher_ ? static_cast<int>(watcher_->registeredItems().size()) : 0;
}

QString productBinary() {
    return QStringLiteral(CORVANE_APP_BINARY);
}
QString testAppBinary() {
    return QStringLiteral(CORVANE_TEST_APP_BINARY);
}

}  // namespace corvane::testing
