#include "tray/status_notifier_item.h"

#include <unistd.h>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QPixmap>
#include <utility>

#include "tray/icon_folder.h"

namespace corvane::tray {

namespace {

const QString kWatcher = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString kWatcherPath = QStringLiteral("/StatusNotifierWatcher");
const QString kItemPath = QStringLiteral("/StatusNotifierItem");
// Long enough for a host to have read the item after the first registration.
constexpr std::chrono::milliseconds kFollowUp{1000};

QString emptyIconName(const QString& name) {
    return name + QStringLiteral("-empty");
}

QIcon emptyIcon() {
    QPixmap empty(16, 16);
    empty.fill(Qt::transparent);
    return QIcon(empty);
}

}  // namespace

StatusNotifierItem::StatusNotifierItem(QDBusConnection bus, StatusItemLook look,
                                       QDBusObjectPath menu, ActivateHandler activate,
                                       std::shared_ptr<PanelActivation> activation,
                                       const QString& iconFolder, std::chrono::milliseconds timeout,
                                       QObject* parent)
    : QObject(parent),
      bus_(std::move(bus)),
      look_(std::move(look)),
      menu_(std::move(menu)),
      activate_(std::move(activate)),
      activation_(std::move(activation)),
      timeout_(timeout) {
    again_.setSingleShot(true);
    connect(&again_, &QTimer::timeout, this, &StatusNotifierItem::sendRegistration);
    if (!bus_.isConnected()) {
        return;
    }
    // An installed icon is the theme's; only the empty one is always Corvane's own.
    const bool installed = !installedIconName(look_.iconName).isEmpty();
    if ((installed || writeIconFolder(iconFolder, look_.iconName, look_.icon)) &&
        writeIconFolder(iconFolder, emptyIconName(look_.iconName), emptyIcon())) {
        iconFolder_ = iconFolder;
    }
    qDBusRegisterMetaType<IconPixmap>();
    qDBusRegisterMetaType<IconPixmaps>();
    qDBusRegisterMetaType<ToolTip>();
    bus_.registerObject(kItemPath, this, QDBusConnection::ExportAllContents);
}

QString StatusNotifierItem::iconName() const {
    return drawsLabel_ ? emptyIconName(look_.iconName) : look_.iconName;
}

void StatusNotifierItem::registerWithWatcher(PanelHost host) {
    const bool drawsLabel = host == PanelHost::Labels;
    if (std::exchange(drawsLabel_, drawsLabel) != drawsLabel) {
        emit NewIcon();
    }
    // Registered by the connection's unique name, where the watcher finds the item at the usual
    // path: GNOME's extension follows an item's well-known name by itself, and then once built
    // no menu. XApp's watcher gets a name of the item's own, which no other name begins.
    service_ = bus_.baseService();
    if (host == PanelHost::XApp) {
        service_ = QStringLiteral("org.kde.StatusNotifierItem-%1-0").arg(::getpid());
        QDBusMessage own = QDBusMessage::createMethodCall(
            QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
            QStringLiteral("org.freedesktop.DBus"), QStringLiteral("RequestName"));
        // The bus takes the name before it passes on the registration sent after it.
        bus_.send(own << service_ << 4u /* do not queue */);
    }
    backoff_.reset();
    followUp_ = drawsLabel;
    sendRegistration();
}

void StatusNotifierItem::sendRegistration() {
    again_.stop();
    QDBusMessage message = QDBusMessage::createMethodCall(
        kWatcher, kWatcherPath, kWatcher, QStringLiteral("RegisterStatusNotifierItem"));
    message << service_;
    auto* call = new QDBusPendingCallWatcher(
        bus_.asyncCall(message, static_cast<int>(timeout_.count())), this);
    connect(call, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* done) {
        done->deleteLater();
        // A watcher still starting at login answers late, or with an error, and then works
        // without a word: ask again. One that has gone away is asked by its successor's host.
        if (done->isError()) {
            if (done->error().type() != QDBusError::ServiceUnknown) {
                again_.start(backoff_.next());
            }
        } else if (std::exchange(followUp_, false)) {
            again_.start(kFollowUp);
        }
    });
}

void StatusNotifierItem::Activate(int, int) {
    activate_(activation_->spendOnItem());
}

void StatusNotifierItem::SecondaryActivate(int, int) {
    activation_->drop();
}

void StatusNotifierItem::ContextMenu(int, int) {
    activation_->drop();
}

void StatusNotifierItem::Scroll(int, const QString&) {
    activation_->drop();
}

void StatusNotifierItem::ProvideXdgActivationToken(const QString& token) {
    activation_->provide(token);
}

}  // namespace corvane::tray
