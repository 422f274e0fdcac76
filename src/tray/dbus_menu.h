#pragma once

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusVariant>
#include <QMenu>
#include <QObject>
#include <QPointer>
#include <QStringList>
#include <memory>

#include "tray/dbus_menu_types.h"
#include "tray/panel_activation.h"

namespace corvane::tray {

// A menu of the shell exported as com.canonical.dbusmenu at `path`, as StatusNotifier panels
// show an item's menu: the menu's actions are items 1, 2, ... under the root 0, read afresh at
// every call; "clicked" triggers the action from the event loop, after the answer, with the
// activation the panel handed over for it. An unknown item answers
// org.freedesktop.DBus.Error.InvalidArgs and triggers nothing; a group call answers for the
// menu's own items, each once, however many ids it names.
class DBusMenu : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.canonical.dbusmenu")
    Q_PROPERTY(uint Version READ version)
    Q_PROPERTY(QString TextDirection READ textDirection)
    Q_PROPERTY(QString Status READ status)
    Q_PROPERTY(QStringList IconThemePath READ iconThemePath)
  public:
    DBusMenu(QDBusConnection bus, const QString& path, QMenu* menu,
             std::shared_ptr<PanelActivation> activation, QObject* parent = nullptr);

    uint version() const { return 3; }
    QString textDirection() const { return QStringLiteral("ltr"); }
    QString status() const { return QStringLiteral("normal"); }
    QStringList iconThemePath() const { return {}; }

  public slots:
    uint GetLayout(int parentId, int recursionDepth, const QStringList& propertyNames,
                   corvane::tray::MenuLayoutItem& layout);
    QList<corvane::tray::MenuItemProperties> GetGroupProperties(const QList<int>& ids,
                                                                const QStringList& propertyNames);
    QDBusVariant GetProperty(int id, const QString& name);
    void Event(int id, const QString& eventId, const QDBusVariant& data, uint timestamp);
    QList<int> EventGroup(const QList<corvane::tray::MenuEvent>& events);
    bool AboutToShow(int id);
    QList<int> AboutToShowGroup(const QList<int>& ids, QList<int>& idErrors);

  signals:
    // The menu never changes; declared for hosts that subscribe.
    void LayoutUpdated(uint revision, int parent);

  private:
    bool exists(int id) const;
    // The menu's own ids among `ids`, each once, in the menu's order.
    QList<int> own(const QList<int>& ids) const;
    QVariantMap properties(int id, const QStringList& names) const;
    void click(int id, const QString& eventId, uint timestamp);
    void refuse(int id);

    QPointer<QMenu> menu_;
    std::shared_ptr<PanelActivation> activation_;
};

}  // namespace corvane::tray
