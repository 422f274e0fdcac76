// How long the main thread stalls while the desktop around it misbehaves: alerts posted and
// permission asked with the notification service present, absent, hung (owns its name, never
// replies) and restarted mid-run; and a tray panel's StatusNotifier watcher appearing and
// disappearing every 200 ms while the tray is watched and the item registers with each one,
// whose host then reads all of the item's properties. A 5 ms timer runs
// throughout; the worst gap between its firings is printed per case (target: 10 ms or less).
// Starts a private dbus-daemon of its own.
#include <QApplication>
#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusPendingCall>
#include <QDir>
#include <QMenu>
#include <QProcess>
#include <QSemaphore>
#include <QTemporaryFile>
#include <QThread>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <cstdio>

#include "app/tray_glyph_icon.h"
#include "tray/dbus_menu.h"
#include "platform/notification_centre.h"
#include "tray/status_notifier_item.h"
#include "tray/tray_watcher.h"

namespace {

using Clock = std::chrono::steady_clock;

// What a notification service answers.
class Notifications : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")
  public slots:
    QString GetServerInformation() { return QStringLiteral("bench"); }
    uint Notify(const QString&, uint, const QString&, const QString&, const QString&,
                const QStringList&, const QVariantMap&, int) {
        return 1;
    }
};

// What a panel's StatusNotifier watcher answers; its host then reads the item, as panels do.
class Watcher : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ hostRegistered)
  public:
    bool hostRegistered() const { return true; }
  public slots:
    void RegisterStatusNotifierItem(const QString& service) {
        QDBusMessage get = QDBusMessage::createMethodCall(
            service, QStringLiteral("/StatusNotifierItem"),
            QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("GetAll"));
        get << QStringLiteral("org.kde.StatusNotifierItem");
        connection().asyncCall(get);
    }
};

// Owns `name` on a connection of its own while up, served from a thread of its own (Qt's tray
// item asks the watcher with blocking calls). A hung one keeps that thread busy.
template <typename Service>
struct Peer {
    Peer(const QString& address, QString name, QString path, bool hung)
        : bus(QDBusConnection::connectToBus(address, path + QString::number(hung))),
          name(std::move(name)) {
        thread.start();
        service.moveToThread(&thread);
        // Registered from the service's own thread: QtDBus hangs helper objects on it.
        QMetaObject::invokeMethod(
            &service,
            [this, &path] {
                bus.registerObject(path, &service, QDBusConnection::ExportAllContents);
            },
            Qt::BlockingQueuedConnection);
        if (hung) {
            QMetaObject::invokeMethod(&service, [this] { release.acquire(); });
        }
    }
    ~Peer() {
        release.release();
        // Back home before it dies, so that it is destroyed in the thread it lives in.
        QThread* home = QThread::currentThread();
        QMetaObject::invokeMethod(
            &service, [this, home] { service.moveToThread(home); }, Qt::BlockingQueuedConnection);
        thread.quit();
        thread.wait();
        QDBusConnection::disconnectFromBus(bus.name());
    }
    void setUp(bool up) { up ? bus.registerService(name) : bus.unregisterService(name); }

    QDBusConnection bus;
    QString name;
    Service service;
    QThread thread;
    QSemaphore release;
};

double worstGapMs(int lengthMs, const std::function<void(int tick)>& every100ms) {
    QTimer beat;
    beat.setTimerType(Qt::PreciseTimer);
    auto last = Clock::now();
    Clock::duration worst{};
    QObject::connect(&beat, &QTimer::timeout, [&] {
        worst = std::max(worst, Clock::now() - last);
        last = Clock::now();
    });
    int tick = 0;
    QTimer work;
    QObject::connect(&work, &QTimer::timeout, [&] { every100ms(tick++); });
    beat.start(5);
    work.start(100);
    QEventLoop loop;
    QTimer::singleShot(lengthMs, &loop, &QEventLoop::quit);
    loop.exec();
    return std::chrono::duration<double, std::milli>(worst).count();
}

}  // namespace

int main(int argc, char** argv) {
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    // The application's own session bus is this private one: the tray item Qt makes uses it too.
    QTemporaryFile config;
    config.open();
    config.write(
        "<busconfig><type>session</type><listen>unix:tmpdir=/tmp</listen><policy "
        "context='default'><allow own='*'/><allow send_destination='*' eavesdrop='true'/>"
        "<allow eavesdrop='true'/></policy></busconfig>");
    config.flush();
    QProcess daemon;
    daemon.start("dbus-daemon", {"--print-address", "--config-file=" + config.fileName()});
    if (!daemon.waitForReadyRead(5000)) {
        std::fprintf(stderr, "no dbus-daemon\n");
        return 1;
    }
    const QString address = QString::fromLatin1(daemon.readLine()).trimmed();
    qputenv("DBUS_SESSION_BUS_ADDRESS", address.toLocal8Bit());
    QApplication application(argc, argv);
    const auto length = corvane::platform::NotificationCentre::kReplyTimeout.count() + 2000;
    std::printf("%-34s %14s\n", "case", "worst gap ms");
    // The floor: the same timer with nothing else going on, so that the machine's own
    // hiccups can be told from the calls'.
    std::printf("%-34s %14.2f\n", "nothing at all",
                worstGapMs(static_cast<int>(length), [](int) {}));

    const char* notificationCases[] = {"service present", "service absent", "service hung",
                                       "service restarted"};
    Peer<Notifications> server(address, "org.freedesktop.Notifications",
                               "/org/freedesktop/Notifications", false);
    Peer<Notifications> hung(address, "org.freedesktop.Notifications",
                             "/org/freedesktop/Notifications", true);
    for (int i = 0; i < 4; ++i) {
        server.setUp(i == 0 || i == 3);
        hung.setUp(i == 2);
        corvane::platform::NotificationCentre centre(QDBusConnection::sessionBus(),
                                                     [] { return false; });
        const double gap = worstGapMs(static_cast<int>(length), [&](int tick) {
            centre.add({QStringLiteral("ID"), QStringLiteral("High CPU Usage"),
                        QStringLiteral("CPU usage is at 85%."), true});
            if (tick % 5 == 0) {
                centre.requestAuthorization(6, [](bool, std::optional<QString>) {});
            }
            if (i == 3 && (tick == 15 || tick == 30)) {
                server.setUp(tick == 30);
            }
        });
        std::printf("%-34s %14.2f\n", notificationCases[i], gap);
    }

    Peer<Watcher> watcher(address, "org.kde.StatusNotifierWatcher", "/StatusNotifierWatcher",
                          false);
    corvane::tray::TrayWatcher tray(QDBusConnection::sessionBus(),
                                        std::chrono::milliseconds(2000));
    int appearances = 0;
    QObject::connect(&tray, &corvane::tray::TrayWatcher::trayChanged,
                     [&](corvane::tray::SystemTray now) {
                         appearances += now == corvane::tray::SystemTray::StatusNotifier;
                     });
    QMenu menu;
    menu.addAction(QStringLiteral("Open App"));
    auto activation = std::make_shared<corvane::tray::PanelActivation>();
    corvane::tray::DBusMenu exported(QDBusConnection::sessionBus(), QStringLiteral("/MenuBar"),
                                         &menu, activation);
    corvane::tray::StatusNotifierItem item(
        QDBusConnection::sessionBus(),
        {QStringLiteral("bench"),
         QStringLiteral("Bench"),
         QStringLiteral("\u26A1 Monitoring..."),
         corvane::app::trayGlyphIcon(QStringLiteral("\u26A1"), Qt::yellow),
         QStringLiteral("bench")},
        QDBusObjectPath(QStringLiteral("/MenuBar")), [](const QString&) {}, activation,
        QDir::temp().filePath(QStringLiteral("corvane-bench-icons")),
        std::chrono::milliseconds(2000));
    QObject::connect(&tray, &corvane::tray::TrayWatcher::statusNotifierHostReady, &item,
                     &corvane::tray::StatusNotifierItem::registerWithWatcher);
    const double gap = worstGapMs(5000, [&](int tick) { watcher.setUp(tick % 4 < 2); });
    std::printf("%-34s %14.2f   (%d appearances seen)\n", "watcher appearing and leaving", gap,
                appearances);
    daemon.kill();
    daemon.waitForFinished();
    return 0;
}

#include "bench_main_thread_gap.moc"
