#pragma once

#include <QDBusConnection>
#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

namespace corvane::testing {

// One entry of an exported menu as com.canonical.dbusmenu describes it.
struct MenuEntry {
    int id = 0;
    QString label;
    bool separator = false;
    // Each key of the shortcut as a list of names, e.g. {{"Control", "Shift", "O"}}.
    QList<QStringList> shortcut;
};

// What a panel sees of a tray item exported by another process over D-Bus.
class TrayClient {
  public:
    TrayClient(QDBusConnection bus, QString owner);

    // The text fields of the item's ToolTip property (title and description), or nullopt when
    // the item does not answer.
    std::optional<QStringList> toolTipTexts() const;
    std::optional<QString> title() const;

    // The top level of the item's menu, in menu order; empty when the menu does not answer.
    std::vector<MenuEntry> menu() const;

    // Clicks the entry as a panel does; false when the call failed.
    bool click(int id) const;

  private:
    std::optional<QVariant> property(const QString& name) const;

    QDBusConnection bus_;
    QString owner_;
};

// The entry with this label, or nullopt.
std::optional<MenuEntry> findEntry(const std::vector<MenuEntry>& menu, const QString& label);

}  // namespace corvane::testing
