#pragma once

#include <QDBusConnection>
#include <QObject>
#include <chrono>

namespace corvane::platform {

class X11TraySelection;

// Tells, for the whole run, when the desktop has a tray that can show an item: a StatusNotifier
// host (the panels of KDE, Xfce, LXQt, waybar, GNOME's AppIndicator extension), or an X11 system
// tray on a desktop without a StatusNotifier watcher. A panel started after the application, or
// restarted, is seen when it appears. Nothing here waits on the bus.
//
// Qt decides once per process, with blocking calls, whether its tray items go over D-Bus: no
// QSystemTrayIcon may be made (nor its availability asked) before this says so, or a panel
// that comes later never gets the item.
class TrayWatcher : public QObject {
    Q_OBJECT
  public:
    // A watcher that has not answered within `timeout` counts as stuck: no item is made while
    // it is, since Qt's own check would then block.
    TrayWatcher(QDBusConnection bus, std::chrono::milliseconds timeout, QObject* parent = nullptr);

  signals:
    // A tray came, or the last one went. One item is all it takes: Qt registers it again
    // with a tray that comes back.
    void trayAvailabilityChanged(bool available);

  private slots:
    void askForHost();

  private:
    enum class Host { Unknown, Absent, Present, Stuck };
    void settle();

    QDBusConnection bus_;
    std::chrono::milliseconds timeout_;
    Host host_ = Host::Unknown;
    quint64 question_ = 0;  // answers to older questions are stale
    bool available_ = false;
    X11TraySelection* x11_;
};

}  // namespace corvane::platform
