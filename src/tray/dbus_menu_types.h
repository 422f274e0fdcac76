#pragma once

#include <QDBusArgument>
#include <QDBusVariant>
#include <QList>
#include <QMetaType>
#include <QString>
#include <QVariantMap>

namespace corvane::tray {

// com.canonical.dbusmenu's values: an item with its properties and its children (ia{sv}av),
// an item's properties alone (ia{sv}), and one event of a group (isvu).
struct MenuLayoutItem {
    int id = 0;
    QVariantMap properties;
    QList<MenuLayoutItem> children;
};

struct MenuItemProperties {
    int id = 0;
    QVariantMap properties;
};
using MenuItemPropertiesList = QList<MenuItemProperties>;

struct MenuEvent {
    int id = 0;
    QString eventId;
    QDBusVariant data;
    uint timestamp = 0;
};
using MenuEventList = QList<MenuEvent>;

// A key combination as the menu shows it: [["Control", "Shift", "O"]].
using MenuShortcut = QList<QStringList>;

// Registers the types above with QtDBus; called before the menu is exported.
void registerMenuTypes();

QDBusArgument& operator<<(QDBusArgument& argument, const MenuLayoutItem& item);
const QDBusArgument& operator>>(const QDBusArgument& argument, MenuLayoutItem& item);
QDBusArgument& operator<<(QDBusArgument& argument, const MenuItemProperties& item);
const QDBusArgument& operator>>(const QDBusArgument& argument, MenuItemProperties& item);
QDBusArgument& operator<<(QDBusArgument& argument, const MenuEvent& event);
const QDBusArgument& operator>>(const QDBusArgument& argument, MenuEvent& event);

}  // namespace corvane::tray

Q_DECLARE_METATYPE(corvane::tray::MenuLayoutItem)
Q_DECLARE_METATYPE(corvane::tray::MenuItemProperties)
Q_DECLARE_METATYPE(corvane::tray::MenuEvent)
