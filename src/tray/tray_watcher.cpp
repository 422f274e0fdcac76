#include "tray/tray_watcher.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <memory>

#include "tray/x11_tray_selection.h"

namespace corvane::tray {

namespace {

const QString kWatcher = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString kWatcherPath = QStringLiteral("/StatusNotifierWatcher");
constexpr std::chrono::milliseconds kX11Settle{500};
// Hosts told by the names their watcher's process owns.
const QList<std::pair<QString, PanelHost>> kHosts = {
    {QStringLiteral("org.gnome.Shell"), PanelHost::Labels},
    {QStringLiteral("org.ayatana.indicator.application"), PanelHost::Labels},
    {QStringLiteral("org.x.StatusNotifierWatcher"), PanelHost::XApp}};

}  // namespace

TrayWatcher::TrayWatcher(QDBusConnection bus, std::chrono::milliseconds timeout, QObject* parent)
    : QObject(parent), bus_(std::move(bus)), timeout_(timeout), x11_(new X11TraySelection(this)) {
    // A panel that is both an X11 tray and a StatusNotifier watcher (Xfce's) takes the two a
    // moment apart: a new X11 tray is taken once the watcher has been asked again a little
    // later, since Qt's XEmbed item decides once per run, when it is made, whether to go on
    // D-Bus instead. A tray that ended has ended at once.
    connect(x11_, &X11TraySelection::changed, this, [this] {
        if (!x11_->isOwned()) {
            settle();
            return;
        }
        QTimer::singleShot(kX11Settle, this,
                           [this] { host_ == Host::Present ? settle() : askForHost(); });
    });
    again_.setSingleShot(true);
    connect(&again_, &QTimer::timeout, this, &TrayWatcher::ask);
    if (bus_.isConnected()) {
        auto* names =
            new QDBusServiceWatcher(kWatcher, bus_, QDBusServiceWatcher::WatchForOwnerChange, this);
        connect(names, &QDBusServiceWatcher::serviceOwnerChanged, this, &TrayWatcher::askForHost);
        // A panel takes the watcher's name a moment before its host registers: ask again then.
        // No sender is named, so that subscribing needs no name lookup on the bus.
        bus_.connect(QString(), kWatcherPath, kWatcher,
                     QStringLiteral("StatusNotifierHostRegistered"), this, SLOT(askForHost()));
    }
    // The first answer comes from the event loop, as every later one does.
    QMetaObject::invokeMethod(this, &TrayWatcher::askForHost, Qt::QueuedConnection);
}

void TrayWatcher::askForHost() {
    backoff_.reset();
    ask();
}

void TrayWatcher::ask() {
    again_.stop();
    const quint64 question = ++question_;
    if (!bus_.isConnected()) {
        host_ = Host::Absent;
        settle();
        return;
    }
    QDBusMessage get = QDBusMessage::createMethodCall(
        kWatcher, kWatcherPath, QStringLiteral("org.freedesktop.DBus.Properties"),
        QStringLiteral("Get"));
    get << kWatcher << QStringLiteral("IsStatusNotifierHostRegistered");
    auto* call =
        new QDBusPendingCallWatcher(bus_.asyncCall(get, static_cast<int>(timeout_.count())), this);
    // A call that failed on the spot is already finished; the watcher still signals it.
    connect(call, &QDBusPendingCallWatcher::finished, this, [this, question, call] {
        call->deleteLater();
        if (question != question_) {
            return;
        }
        const QDBusPendingReply<QDBusVariant> reply = *call;
        const QDBusError::ErrorType error =
            reply.isError() ? reply.error().type() : QDBusError::NoError;
        if (error == QDBusError::NoError) {
            host_ = reply.value().variant().toBool() ? Host::Present : Host::Absent;
            if (host_ == Host::Present) {
                findHost(question);
            }
        } else {
            // Nobody owns the name: no watcher. Anything else (no reply in time, a broken
            // watcher) would hang the blocking check of Qt's XEmbed item.
            host_ = error == QDBusError::ServiceUnknown ? Host::Absent : Host::Stuck;
            if (host_ == Host::Stuck) {
                again_.start(backoff_.next());
            }
        }
        settle();
    });
}

// The bus itself answers, at once, which process owns a name. Ayatana's indicator service owns
// the watcher's name on a connection of its own.
void TrayWatcher::findHost(quint64 question) {
    QStringList names{kWatcher};
    for (const auto& host : kHosts) {
        names << host.first;
    }
    auto processes = std::make_shared<QList<uint>>(names.size(), 0);
    auto unanswered = std::make_shared<qsizetype>(names.size());
    for (qsizetype i = 0; i < names.size(); ++i) {
        QDBusMessage owner = QDBusMessage::createMethodCall(
            QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
            QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetConnectionUnixProcessID"));
        owner << names[i];
        auto* call = new QDBusPendingCallWatcher(bus_.asyncCall(owner), this);
        connect(call, &QDBusPendingCallWatcher::finished, this, [=, this] {
            call->deleteLater();
            const QDBusPendingReply<uint> reply = *call;
            (*processes)[i] = reply.isError() ? 0 : reply.value();
            if (--*unanswered == 0 && question == question_) {
                const uint watcher = processes->first();
                const qsizetype host = watcher != 0 ? processes->lastIndexOf(watcher) : 0;
                emit statusNotifierHostReady(host > 0 ? kHosts[host - 1].second : PanelHost::Icons);
            }
        });
    }
}

// A stuck watcher is no tray: its panel shows nothing, and Qt's own check would block on it.
void TrayWatcher::settle() {
    const SystemTray tray = host_ == Host::Present                     ? SystemTray::StatusNotifier
                            : host_ == Host::Absent && x11_->isOwned() ? SystemTray::XEmbed
                                                                       : SystemTray::None;
    if (tray != tray_) {
        tray_ = tray;
        emit trayChanged(tray);
    }
}

}  // namespace corvane::tray
