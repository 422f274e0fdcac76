#pragma once

#include <QMenu>
#include <QObject>
#include <QPointer>
#include <QSystemTrayIcon>
#include <QWidget>
#include <memory>

#include "app/shell_facilities.h"
#include "platform/notification_centre.h"

namespace corvane::app {

// The application's delegate: told once when launch has finished, it registers for
// notification presentation, asks for permission to post alerts with sound, and puts the tray
// item "⚡︎ Monitoring..." with its menu "Open App" / "Quit" on the desktop. It never touches
// the monitor.
class AppDelegate : public QObject, public platform::NotificationCentreDelegate {
    Q_OBJECT
  public:
    explicit AppDelegate(ShellFacilities facilities, QObject* parent = nullptr);
    ~AppDelegate() override;

    // The item in an X11 system tray: null until the desktop has one without a StatusNotifier
    // watcher, then the one such item, shown while that is the desktop's tray.
    QSystemTrayIcon* xembedItem() const { return xembedItem_.get(); }
    // The item's menu, built by the launch hook whether or not there is a tray.
    QMenu* statusMenu() const { return menu_.get(); }

    // The one dashboard window that "Open App" brings to the front.
    void setWindow(QWidget* window) { window_ = window; }

    void applicationDidFinishLaunching();

    // Brings the dashboard window to the front: shown again if it was closed, raised and
    // activated, with the activation token of the launch or click that asked for it, if any.
    // Never creates a window.
    void openApp(const QString& activationToken = {});

    // Every alert is shown as a banner with its sound, also while the application is active.
    unsigned willPresent(const platform::NotificationRequest& request) override;
    // A click on an alert opens the dashboard.
    void didActivateNotification(const QString& activationToken) override;

  private:
    void buildMenu();
    void showXEmbedItem(bool shown);

    ShellFacilities facilities_;
    std::function<QString()> menuClickToken_;
    QPointer<platform::NotificationCentre> centre_;
    QPointer<QWidget> window_;
    // Declared before the item so that the item, which points at it, goes first.
    std::unique_ptr<QMenu> menu_;
    std::unique_ptr<QSystemTrayIcon> xembedItem_;
};

}  // namespace corvane::app
