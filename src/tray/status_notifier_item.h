#pragma once

#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QIcon>
#include <QObject>
#include <QTimer>
#include <chrono>
#include <functional>
#include <memory>

#include "tray/backoff.h"
#include "tray/panel_activation.h"
#include "tray/status_notifier_types.h"

namespace corvane::tray {

// What the item shows, fixed for the run.
struct StatusItemLook {
    QString id;        // the application's id: hosts key their slot and settings on it
    QString title;     // the application's name, in hosts' lists and screen readers
    QString text;      // the label panels draw beside the icon, and the tool tip's title
    QIcon icon;        // drawn at each of its sizes for panels that take images
    QString iconName;  // for panels that load the icon by name: the installed application icon
};

// The application's tray item as StatusNotifier panels (KDE, GNOME's AppIndicator extension,
// waybar, Xfce, LXQt) take it: org.kde.StatusNotifierItem at /StatusNotifierItem, with the
// AppIndicator label that GNOME's extension draws as text, and the menu exported at `menu`. It
// answers every property from the moment it exists and announces only what changes. Nothing
// here waits on the bus.
//
// Panels that load the icon by name (MATE's indicator applet, LXQt) find it in `iconFolder`,
// named in IconThemePath, when it is not installed. Where the panel draws the label, the label
// is the title, read once: the icon is then an empty image, since the title begins with the
// glyph itself.
class StatusNotifierItem : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierItem")
    Q_PROPERTY(QString Category READ category)
    Q_PROPERTY(QString Id READ id)
    Q_PROPERTY(QString Title READ title)
    Q_PROPERTY(QString Status READ status)
    Q_PROPERTY(int WindowId READ windowId)
    Q_PROPERTY(QString IconThemePath READ iconThemePath)
    Q_PROPERTY(QString IconName READ iconName)
    Q_PROPERTY(QList<corvane::tray::IconPixmap> IconPixmap READ iconPixmap)
    Q_PROPERTY(QString OverlayIconName READ none)
    Q_PROPERTY(QList<corvane::tray::IconPixmap> OverlayIconPixmap READ noPixmaps)
    Q_PROPERTY(QString AttentionIconName READ none)
    Q_PROPERTY(QList<corvane::tray::IconPixmap> AttentionIconPixmap READ noPixmaps)
    Q_PROPERTY(QString AttentionMovieName READ none)
    Q_PROPERTY(corvane::tray::ToolTip ToolTip READ toolTip)
    Q_PROPERTY(bool ItemIsMenu READ itemIsMenu)
    Q_PROPERTY(QDBusObjectPath Menu READ menu)
    Q_PROPERTY(QString XAyatanaLabel READ label)
    Q_PROPERTY(QString XAyatanaLabelGuide READ label)
    Q_PROPERTY(QString IconAccessibleDesc READ label)
  public:
    using ActivateHandler = std::function<void(const QString& activationToken)>;

    // A registration the watcher has not answered within `timeout`, or refused, is made again
    // after a backoff, for as long as the watcher has its name.
    StatusNotifierItem(QDBusConnection bus, StatusItemLook look, QDBusObjectPath menu,
                       ActivateHandler activate, std::shared_ptr<PanelActivation> activation,
                       const QString& iconFolder, std::chrono::milliseconds timeout,
                       QObject* parent = nullptr);

    QString category() const { return QStringLiteral("ApplicationStatus"); }
    QString id() const { return look_.id; }
    QString title() const { return look_.title; }
    QString status() const { return QStringLiteral("Active"); }
    int windowId() const { return 0; }
    QString none() const { return {}; }
    QString iconThemePath() const { return iconFolder_; }
    QString iconName() const;
    // Drawn when asked rather than kept: hosts ask once per registration.
    IconPixmaps iconPixmap() const { return drawsLabel_ ? IconPixmaps() : iconPixmaps(look_.icon); }
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
    // KDE hands a click's activation token over just before Activate or a menu click.
    void ProvideXdgActivationToken(const QString& token);

  signals:
    void NewTitle();
    void NewIcon();
    void NewToolTip();
    void NewStatus(const QString& status);
    void XAyatanaNewLabel(const QString& label, const QString& guide);

  public:
    // Registers with the session's StatusNotifier watcher; to be called each time it has a host,
    // saying which. Where the host draws the label, a second registration follows the first one
    // accepted a second later: GNOME 48's extension reads the label with every other property
    // at registration but draws it only when the label changes or the item registers again.
    // Elsewhere the watcher is told once.
    void registerWithWatcher(corvane::tray::PanelHost host);

  private:
    void sendRegistration();

    QDBusConnection bus_;
    StatusItemLook look_;
    QDBusObjectPath menu_;
    ActivateHandler activate_;
    std::shared_ptr<PanelActivation> activation_;
    QString iconFolder_;
    std::chrono::milliseconds timeout_;
    QString service_;  // the name the item is registered by
    bool drawsLabel_ = false;
    bool followUp_ = false;
    Backoff backoff_;
    QTimer again_;
};

}  // namespace corvane::tray
