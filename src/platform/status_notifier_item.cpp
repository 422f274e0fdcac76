#include "platform/status_notifier_item.h"

#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QStandardPaths>
#include <QTimer>
#include <utility>

namespace corvane::platform {

namespace {

const QString kWatcher = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString kWatcherPath = QStringLiteral("/StatusNotifierWatcher");
const QString kItemPath = QStringLiteral("/StatusNotifierItem");
// Long enough for a host to have read the item after the first registration.
constexpr std::chrono::milliseconds kFollowUp{1000};

}  // namespace

QString installedIconName(const QString& name) {
    const QString file = QStringLiteral("icons/hicolor/scalable/apps/%1.svg").arg(name);
    return QStandardPaths::locate(QStandardPaths::GenericDataLocation, file).isEmpty() ? QString()
                                                                                       : name;
}

StatusNotifierItem::StatusNotifierItem(QDBusConnection bus, StatusItemLook look,
                                       QDBusObjectPath menu, ActivateHandler activate,
                                       std::chrono::milliseconds timeout, QObject* parent)
    : QObject(parent),
      bus_(std::move(bus)),
      look_(std::move(look)),
      menu_(std::move(menu)),
      activate_(std::move(activate)),
      timeout_(timeout) {
    if (!bus_.isConnected()) {
        return;
    }
    qDBusRegisterMetaType<IconPixmap>();
    qDBusRegisterMetaType<IconPixmaps>();
    qDBusRegisterMetaType<ToolTip>();
    bus_.registerObject(kItemPath, this, QDBusConnection::ExportAllContents);
}

// Registered by the connection's unique name: the watcher finds the item at the usual path.
void StatusNotifierItem::registerWithWatcher(bool followUp) {
    QDBusMessage message = QDBusMessage::createMethodCall(
        kWatcher, kWatcherPath, kWatcher, QStringLiteral("RegisterStatusNotifierItem"));
    message << bus_.baseService();
    auto* call = new QDBusPendingCallWatcher(
        bus_.asyncCall(message, static_cast<int>(timeout_.count())), this);
    connect(call, &QDBusPendingCallWatcher::finished, this,
            [this, followUp](QDBusPendingCallWatcher* done) {
                done->deleteLater();
                if (done->isError()) {
                    return;
                }
                announce();
                if (followUp) {
                    QTimer::singleShot(kFollowUp, this, [this] { registerWithWatcher(false); });
                }
            });
}

// Hosts that read the item while the watcher was still handing it over draw it anew.
void StatusNotifierItem::announce() {
    emit NewTitle();
    emit NewIcon();
    emit NewToolTip();
    emit NewStatus(status());
    emit XAyatanaNewLabel(look_.text, look_.text);
}

void StatusNotifierItem::Activate(int, int) {
    activate_(std::exchange(token_, QString()));
}

void StatusNotifierItem::SecondaryActivate(int, int) {}

void StatusNotifierItem::ContextMenu(int, int) {}

void StatusNotifierItem::Scroll(int, const QString&) {}

void StatusNotifierItem::ProvideXdgActivationToken(const QString& token) {
    token_ = token;
}

}  // namespace corvane::platform
