#pragma once

#include <QByteArray>
#include <QDBusArgument>
#include <QIcon>
#include <QList>
#include <QMetaType>
#include <QString>

namespace corvane::tray {

// The panel behind a StatusNotifier watcher, as far as an item registers differently for it.
enum class PanelHost {
    Icons,   // shows the icon: KDE, waybar, Xfce, LXQt
    Labels,  // draws the label as text: GNOME's AppIndicator extension, the Ayatana indicators
    // XApp's watcher (Cinnamon, and MATE or Xfce with XApp's applets): it drops an item when any
    // name that begins the item's name leaves the bus, so ":1.2" leaving drops ":1.20".
    XApp,
};

// One image of an item's icon as panels take it: ARGB32, in network byte order.
struct IconPixmap {
    int width = 0;
    int height = 0;
    QByteArray argb;
};
using IconPixmaps = QList<IconPixmap>;

// The item's tool tip: icon name, icon images, title and a longer text.
struct ToolTip {
    QString iconName;
    IconPixmaps iconPixmaps;
    QString title;
    QString description;
};

// `icon` drawn at each of its available sizes (at a device pixel ratio of 1: panels scale
// by choosing a larger image).
IconPixmaps iconPixmaps(const QIcon& icon);

QDBusArgument& operator<<(QDBusArgument& argument, const IconPixmap& pixmap);
const QDBusArgument& operator>>(const QDBusArgument& argument, IconPixmap& pixmap);
QDBusArgument& operator<<(QDBusArgument& argument, const ToolTip& toolTip);
const QDBusArgument& operator>>(const QDBusArgument& argument, ToolTip& toolTip);

}  // namespace corvane::tray

Q_DECLARE_METATYPE(corvane::tray::IconPixmap)
Q_DECLARE_METATYPE(corvane::tray::ToolTip)
