#include "platform/dbus_menu.h"

#include <QAction>
#include <QDBusError>
#include <QKeySequence>

namespace corvane::platform {

namespace {

// The layout never changes, so it keeps its first revision.
constexpr uint kRevision = 1;

MenuShortcut shortcutOf(const QKeySequence& sequence) {
    MenuShortcut shortcut;
    for (int i = 0; i < sequence.count(); ++i) {
        const QKeyCombination combination = sequence[i];
        QStringList keys;
        const Qt::KeyboardModifiers modifiers = combination.keyboardModifiers();
        for (const auto& [modifier, name] : {std::pair{Qt::ControlModifier, "Control"},
                                             {Qt::AltModifier, "Alt"},
                                             {Qt::ShiftModifier, "Shift"},
                                             {Qt::MetaModifier, "Super"}}) {
            if (modifiers.testFlag(modifier)) {
                keys << QString::fromLatin1(name);
            }
        }
        keys << QKeySequence(combination.key()).toString();
        shortcut << keys;
    }
    return shortcut;
}

}  // namespace

DBusMenu::DBusMenu(QDBusConnection bus, const QString& path, QMenu* menu, QObject* parent)
    : QObject(parent), menu_(menu) {
    registerMenuTypes();
    bus.registerObject(path, this, QDBusConnection::ExportAllContents);
}

bool DBusMenu::exists(int id) const {
    return id == 0 || (menu_ && id > 0 && id <= menu_->actions().size());
}

// Only what differs from dbusmenu's defaults (a visible, enabled, standard item) is sent.
QVariantMap DBusMenu::properties(int id, const QStringList& names) const {
    QVariantMap all;
    if (id == 0) {
        all.insert(QStringLiteral("children-display"), QStringLiteral("submenu"));
    } else if (const QAction* action = menu_->actions().at(id - 1); action->isSeparator()) {
        all.insert(QStringLiteral("type"), QStringLiteral("separator"));
    } else {
        all.insert(QStringLiteral("label"), action->text());
        if (!action->isEnabled()) {
            all.insert(QStringLiteral("enabled"), false);
        }
        if (!action->shortcut().isEmpty()) {
            all.insert(QStringLiteral("shortcut"),
                       QVariant::fromValue(shortcutOf(action->shortcut())));
        }
    }
    if (id > 0 && !menu_->actions().at(id - 1)->isVisible()) {
        all.insert(QStringLiteral("visible"), false);
    }
    if (names.isEmpty()) {
        return all;
    }
    QVariantMap asked;
    for (const QString& name : names) {
        if (all.contains(name)) {
            asked.insert(name, all.value(name));
        }
    }
    return asked;
}

uint DBusMenu::GetLayout(int parentId, int recursionDepth, const QStringList& propertyNames,
                         MenuLayoutItem& layout) {
    if (!exists(parentId)) {
        refuse(parentId);
        return kRevision;
    }
    layout = {parentId, properties(parentId, propertyNames), {}};
    if (parentId == 0 && recursionDepth != 0 && menu_) {
        for (int id = 1; id <= menu_->actions().size(); ++id) {
            layout.children.append({id, properties(id, propertyNames), {}});
        }
    }
    return kRevision;
}

QList<MenuItemProperties> DBusMenu::GetGroupProperties(const QList<int>& ids,
                                                       const QStringList& propertyNames) {
    MenuItemPropertiesList found;
    for (const int id : ids) {
        if (exists(id)) {
            found.append({id, properties(id, propertyNames)});
        }
    }
    return found;
}

QDBusVariant DBusMenu::GetProperty(int id, const QString& name) {
    const QVariantMap all = exists(id) ? properties(id, {}) : QVariantMap();
    if (!all.contains(name)) {
        sendErrorReply(QDBusError::InvalidArgs,
                       QStringLiteral("menu item %1 has no property \"%2\"").arg(id).arg(name));
        return {};
    }
    return QDBusVariant(all.value(name));
}

void DBusMenu::Event(int id, const QString& eventId, const QDBusVariant&, uint) {
    exists(id) ? click(id, eventId) : refuse(id);
}

QList<int> DBusMenu::EventGroup(const QList<MenuEvent>& events) {
    QList<int> unknown;
    for (const MenuEvent& event : events) {
        exists(event.id) ? click(event.id, event.eventId) : unknown.append(event.id);
    }
    if (!unknown.isEmpty() && unknown.size() == events.size()) {
        sendErrorReply(QDBusError::InvalidArgs, QStringLiteral("no such menu items"));
    }
    return unknown;
}

bool DBusMenu::AboutToShow(int id) {
    if (!exists(id)) {
        refuse(id);
    }
    return false;
}

QList<int> DBusMenu::AboutToShowGroup(const QList<int>& ids, QList<int>& idErrors) {
    for (const int id : ids) {
        if (!exists(id)) {
            idErrors.append(id);
        }
    }
    return {};
}

// Hosts also report "hovered", "opened" and "closed": only a click acts. The action runs once
// the answer is on its way, so that "Quit" never leaves the host waiting.
void DBusMenu::click(int id, const QString& eventId) {
    if (id == 0 || eventId != QLatin1String("clicked")) {
        return;
    }
    QAction* action = menu_->actions().at(id - 1);
    if (!action->isSeparator() && action->isEnabled()) {
        QMetaObject::invokeMethod(action, &QAction::trigger, Qt::QueuedConnection);
    }
}

void DBusMenu::refuse(int id) {
    sendErrorReply(QDBusError::InvalidArgs, QStringLiteral("no menu item %1").arg(id));
}

}  // namespace corvane::platform
