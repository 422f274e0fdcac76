#include "app/tray_client.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusVariant>

namespace corvane::testing {

namespace {

constexpr int kCallTimeoutMs = 5000;
const QString kItemPath = QStringLiteral("/StatusNotifierItem");
const QString kItemInterface = QStringLiteral("org.kde.StatusNotifierItem");
const QString kMenuPath = QStringLiteral("/MenuBar");
const QString kMenuInterface = QStringLiteral("com.canonical.dbusmenu");

struct LayoutNode {
    int id = 0;
    QVariantMap properties;
    std::vector<LayoutNode> children;
};

// (ia{sv}av): id, properties, children each wrapped in a variant.
void readNode(const QDBusArgument& argument, LayoutNode& node) {
    argument.beginStructure();
    argument >> node.id >> node.properties;
    argument.beginArray();
    while (!argument.atEnd()) {
        QDBusVariant child;
        argument >> child;
        LayoutNode childNode;
        readNode(qvariant_cast<QDBusArgument>(child.variant()), childNode);
        node.children.push_back(std::move(childNode));
    }
    argument.endArray();
    argument.endStructure();
}

QList<QStringList> readShortcut(const QVariant& value) {
    QList<QStringList> shortcut;
    if (value.canConvert<QDBusArgument>()) {
        qvariant_cast<QDBusArgument>(value) >> shortcut;
    }
    return shortcut;
}

}  // namespace

TrayClient::TrayClient(QDBusConnection bus, QString owner)
    : bus_(std::move(bus)), owner_(std::move(owner)) {}

std::optional<QVariant> TrayClient::property(const QString& name) const {
    QDBusMessage call = QDBusMessage::createMethodCall(
        owner_, kItemPath, QStringLiteral("org.freedesktop.DBus.Properties"),
        QStringLiteral("Get"));
    call << kItemInterface << name;
    // BlockWithGui keeps this process's own D-Bus objects answering while we wait.
    const QDBusMessage reply = bus_.call(call, QDBus::BlockWithGui, kCallTimeoutMs);
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty()) {
        return std::nullopt;
    }
    return qvariant_cast<QDBusVariant>(reply.arguments().constFirst()).variant();
}

std::optional<QStringList> TrayClient::toolTipTexts() const {
    const auto value = property(QStringLiteral("ToolTip"));
    if (!value) {
        return std::nullopt;
    }
    // (sa(iiay)ss): icon name, icon pixmaps, title, description.
    const auto argument = qvariant_cast<QDBusArgument>(*value);
    QString iconName, title, description;
    argument.beginStructure();
    argument >> iconName;
    argument.beginArray();
    while (!argument.atEnd()) {
        int width = 0, height = 0;
        QByteArray pixels;
        argument.beginStructure();
        argument >> width >> height >> pixels;
        argument.endStructure();
    }
    argument.endArray();
    argument >> title >> description;
    argument.endStructure();
    return QStringList{title, description};
}

std::optional<QString> TrayClient::title() const {
    const auto value = property(QStringLiteral("Title"));
    return value ? std::optional<QString>(value->toString()) : std::nullopt;
}

std::vector<MenuEntry> TrayClient::menu() const {
    QDBusMessage call = QDBusMessage::createMethodCall(owner_, kMenuPath, kMenuInterface,
                                                       QStringLiteral("GetLayout"));
    call << 0 << -1 << QStringList();
    const QDBusMessage reply = bus_.call(call, QDBus::BlockWithGui, kCallTimeoutMs);
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().size() < 2) {
        return {};
    }
    LayoutNode root;
    readNode(qvariant_cast<QDBusArgument>(reply.arguments().at(1)), root);
    std::vector<MenuEntry> entries;
    for (const LayoutNode& node : root.children) {
        if (!node.properties.value(QStringLiteral("visible"), true).toBool()) {
            continue;
        }
        MenuEntry entry;
        entry.id = node.id;
        entry.label = node.properties.value(QStringLiteral("label")).toString();
        entry.separator =
            node.properties.value(QStringLiteral("type")).toString() == QStringLiteral("separator");
        entry.shortcut = readShortcut(node.properties.value(QStringLiteral("shortcut")));
        entries.push_back(std::move(entry));
    }
    return entries;
}

bool TrayClient::click(int id) const {
    QDBusMessage call =
        QDBusMessage::createMethodCall(owner_, kMenuPath, kMenuInterface, QStringLiteral("Event"));
    call << id << QStringLiteral("clicked") << QVariant::fromValue(QDBusVariant(0)) << 0u;
    const QDBusMessage reply = bus_.call(call, QDBus::BlockWithGui, kCallTimeoutMs);
    return reply.type() == QDBusMessage::ReplyMessage;
}

std::optional<MenuEntry> findEntry(const std::vector<MenuEntry>& menu, const QString& label) {
    for (const MenuEntry& entry : menu) {
        if (entry.label == label) {
            return entry;
        }
    }
    return std::nullopt;
}

}  // namespace corvane::testing
