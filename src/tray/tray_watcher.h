#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QTimer>
#include <chrono>

#include "tray/backoff.h"
#include "tray/status_notifier_types.h"

namespace corvane::tray {

class X11TraySelection;

// Where the application's tray item goes: nowhere yet, to a StatusNotifier host over D-Bus, or
// into an X11 system tray (XEmbed) on a desktop without a StatusNotifier watcher.
enum class SystemTray { None, StatusNotifier, XEmbed };

// Tells, for the whole run, when the desktop has a tray that can show an item: a StatusNotifier
// host (the panels of KDE, Xfce, LXQt, waybar, GNOME's AppIndicator extension), or an X11 system
// tray on a desktop without a StatusNotifier watcher. A panel started after the application, or
// restarted, is seen when it appears. Nothing here waits on the bus.
//
// Qt's own tray item, used for XEmbed, asks the watcher with blocking calls when it is made: it
// may be made only once this says XEmbed, which it never says while a watcher is there.
class TrayWatcher : public QObject {
    Q_OBJECT
  public:
    // A watcher that has not answered within `timeout`, or answered with an error, counts as
    // stuck until it answers: it shows nothing, and no XEmbed item is made while it is there,
    // since Qt's own check would then block. It is asked again after a backoff, as long as it
    // has its name: a panel still starting at login answers so, then works without a signal.
    TrayWatcher(QDBusConnection bus, std::chrono::milliseconds timeout, QObject* parent = nullptr);

  signals:
    // A tray came, went, or another kind took over.
    void trayChanged(corvane::tray::SystemTray tray);
    // A StatusNotifier watcher answered that it has a host: after a new watcher took the name, or
    // a host registered. Items register then, not before: a host that is still starting drops an
    // item that the watcher announces before the host listens (seen with waybar). Which host it
    // is, is told by the watcher's process also owning the host's own name.
    void statusNotifierHostReady(corvane::tray::PanelHost host);

  private slots:
    // A new watcher, or a new host: asked at once, backoff anew.
    void askForHost();

  private:
    enum class Host { Unknown, Absent, Present, Stuck };
    void ask();
    void findHost(quint64 question);
    void settle();

    QDBusConnection bus_;
    std::chrono::milliseconds timeout_;
    Host host_ = Host::Unknown;
    quint64 question_ = 0;  // answers to older questions are stale
    SystemTray tray_ = SystemTray::None;
    X11TraySelection* x11_;
    Backoff backoff_;
    QTimer again_;
};

}  // namespace corvane::tray
