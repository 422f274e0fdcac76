#pragma once

#include <QByteArray>
#include <QDBusArgument>
#include <QIcon>
#include <QList>
#include <QMetaType>
#include <QString>

namespace corvane::tray {

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
