#pragma once

#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QIcon>
#include <QObject>
#include <chrono>
#include <functional>

#include "platform/status_notifier_types.h"

namespace corvane::platform {

// What the item shows, fixed for the run.
struct StatusItemLook {
    QString id;        // the application's id: hosts key their slot and settings on it
    QString title;     // the application's name, in hosts' lists and screen readers
    QString text;      // the label panels draw beside the icon, and the tool tip's title
    QIcon icon;        // drawn at each of its sizes for panels that take images
    QString iconName;  // the installed icon's name for panels that load it themselves; or empty
};

// `name` when an icon of that name is installed where desktops look for application icons;
// empty otherwise, as when the application runs from its build folder.
QString installedIconName(const QString& name);

// The application's tray item as StatusNotifier panels (KDE, GNOME's AppIndicator extension,
// waybar, Xfce, LXQt) take it: org.kde.StatusNotifierItem at /StatusNotifierItem, with the
// AppIndicator label that GNOME's extension draws as text, and the menu exported at `menu`. It
// answers every property from the moment it exists, and announces itself again once each
// registration is accepted, so that a host that read it early still draws all of it. Nothing
// here waits on the bus.
class StatusNotifierItem : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierItem")
    Q_PROPERTY(QString Category READ category)
    Q_PROPERTY(QString Id READ id)
    Q_PROPERTY(QString Title READ title)
    Q_PROPERTY(QString Status READ status)
    Q_PROPERTY(int WindowId READ windowId)
    Q_PROPERTY(QString IconThemePath READ none)
    Q_PROPERTY(QString IconName READ iconName)
    Q_PROPERTY(QList<corvane::platform::IconPixmap> IconPixmap READ iconPixmap)
    Q_PROPERTY(QString OverlayIconName READ none)
    Q_PROPERTY(QList<corvane::platform::IconPixmap> OverlayIconPixmap READ noPixmaps)
    Q_PROPERTY(QString AttentionIconName READ none)
    Q_PROPERTY(QList<corvane::platform::IconPixmap> AttentionIconPixmap READ noPixmaps)
    Q_PROPERTY(QString AttentionMovieName READ none)
    Q_PROPERTY(corvane::platform::ToolTip ToolTip READ toolTip)
    Q_PROPERTY(bool ItemIsMenu READ itemIsMenu)
    Q_PROPERTY(QDBusObjectPath Menu READ menu)
    Q_PROPERTY(QString XAyatanaLabel READ label)
    Q_PROPERTY(QString XAyatanaLabelGuide READ label)
  public:
    using ActivateHandler = std::function<void(const QString& activationToken)>;

    // A watcher that has not answered a registration within `timeout` is left alone until
    // its name changes hands.
    StatusNotifierItem(QDBusConnection bus, StatusItemLook look, QDBusObjectPath menu,
                       ActivateHandler activate, std::chrono::milliseconds timeout,
                       QObject* parent = nullptr);

    QString category() const { return QStringLiteral("ApplicationStatus"); }
    QString id() const { return look_.id; }
    QString title() const { return look_.title; }
    QString status() const { return QStringLiteral("Active"); }
    int windowId() const { return 0; }
    QString none() const { return {}; }
    QString iconName() const { return look_.iconName; }
    // Drawn when asked rather than kept: hosts ask once per registration.
    IconPixmaps iconPixmap() const { return iconPixmaps(look_.icon); }
    IconPixmaps noPixmaps() const { return {}; }
    ToolTip toolTip() const { return {{}, {}, look_.text, {}}; }
    bool itemIsMenu() const { return true; }
    QDBusObjectPath menu() const { return menu_; }
    QString label() const { return look_.text; }

  public slots:
    // A click where the host does not open the menu itself: what "Open App" does.
    void Activate(int x, int y);
    void SecondaryActivate(int x, int y);
    void ContextMenu(int x, int y);
    void Scroll(int delta, const QString& orientation);
    // KDE hands the click's activation token over just before Activate.
    void ProvideXdgActivationToken(const QString& token);

  signals:
    void NewTitle();
    void NewIcon();
    void NewToolTip();
    void NewStatus(const QString& status);
    void XAyatanaNewLabel(const QString& label, const QString& guide);

  public:
    // Registers with the session's StatusNotifier watcher; to be called each time it has a host.
    // A second registration follows an accepted one a second later: GNOME 48's extension reads
    // the label with every other property at registration but draws it only when the label
    // changes or the item registers again (and a label that changed would show nothing at
    // first everywhere else).
    void registerWithWatcher() { registerWithWatcher(true); }

  private:
    void registerWithWatcher(bool followUp);
    void announce();

    QDBusConnection bus_;
    StatusItemLook look_;
    QDBusObjectPath menu_;
    ActivateHandler activate_;
    std::chrono::milliseconds timeout_;
    QString token_;
};

}  // namespace corvane::platform
