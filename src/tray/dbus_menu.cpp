#include "tray/dbus_menu.h"

#include <QAction>
#include <QDBusError>
#include <QKeySequence>
#include <algorithm>

namespace corvane::tray {

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

QList<int> distinct(QList<int> ids) {
    std::sort(ids.begin(), ids.end());
    ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
    return ids;
}

}  // namespace

DBusMenu::DBusMenu(QDBusConnection bus, const QString& path, QMenu* menu,
                   std::shared_ptr<PanelActivation> activation, QObject* parent)
    : QObject(parent), menu_(menu), activation_(std::move(activation)) {
    registerMenuTypes();
    bus.registerObject(path, this, QDBusConnection::ExportAllContents);
}

bool DBusMenu::exists(int id) const {
    return id == 0 || (menu_ && id > 0 && id <= menu_->actions().size());
}

QList<int> DBusMenu::own(const QList<int>& ids) const {
    QList<int> found;
    for (int id = 0; exists(id); ++id) {
        if (ids.contains(id)) {
            found.append(id);
        }
    }
    return found;
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
    for (const int id : own(ids)) {
        found.append({id, properties(id, propertyNames)});
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

void DBusMenu::Event(int id, const QString& eventId, const QDBusVariant&, uint timestamp) {
    exists(id) ? click(id, eventId, timestamp) : refuse(id);
}

// However often a group names an item, the item is clicked once, and an id the menu lacks is
// reported once.
QList<int> DBusMenu::EventGroup(const QList<MenuEvent>& events) {
    QList<int> clicked, unknown;
    for (const MenuEvent& event : events) {
        if (!exists(event.id)) {
            unknown.append(event.id);
        } else if (!clicked.contains(event.id)) {
            if (event.eventId == QLatin1String("clicked")) {
                clicked.append(event.id);
            }
            click(event.id, event.eventId, event.timestamp);
        }
    }
    if (!events.isEmpty() && unknown.size() == events.size()) {
        sendErrorReply(QDBusError::InvalidArgs, QStringLiteral("no such menu items"));
    }
    return distinct(unknown);
}

// A token handed over as the menu opens is the token of a click in it.
bool DBusMenu::AboutToShow(int id) {
    activation_->menuOpening();
    if (!exists(id)) {
        refuse(id);
    }
    return false;
}

QList<int> DBusMenu::AboutToShowGroup(const QList<int>& ids, QList<int>& idErrors) {
    activation_->menuOpening();
    for (const int id : ids) {
        if (!exists(id)) {
            idErrors.append(id);
        }
    }
    idErrors = distinct(idErrors);
    return {};
}

// Hosts also report "hovered", "opened" and "closed": only a click acts. The action runs once
// the answer is on its way, so that "Quit" never leaves the host waiting.
void DBusMenu::click(int id, const QString& eventId, uint timestamp) {
    if (eventId == QLatin1String("opened")) {
        activation_->menuOpening();
    }
    if (id == 0 || eventId != QLatin1String("clicked")) {
        return;
    }
    QAction* action = menu_->actions().at(id - 1);
    if (!action->isSeparator() && action->isEnabled()) {
        QMetaObject::invokeMethod(
            this,
            [this, action = QPointer<QAction>(action),
             token = activation_->spendInMenu(timestamp)] {
                if (action) {
                    activation_->runMenuClick(*action, token);
                }
            },
            Qt::QueuedConnection);
    }
}

void DBusMenu::refuse(int id) {
    sendErrorReply(QDBusError::InvalidArgs, QStringLiteral("no menu item %1").arg(id));
}

}  // namespace corvane::tray
