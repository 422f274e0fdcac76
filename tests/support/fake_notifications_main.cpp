// corvane-fake-notifications: a stand-in notification daemon for end-to-end runs of the app.
// Owns org.freedesktop.Notifications on the session bus of DBUS_SESSION_BUS_ADDRESS and prints
// one line per Notify to stdout. With --hang it owns the name but never replies to anything.
#include <QCoreApplication>
#include <QDBusConnection>
#include <QStringList>
#include <cstdio>

#include "support/fake_notification_server.h"

using corvane::testing::FakeNotificationServer;
using corvane::testing::ReceivedNotification;

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    const bool hang = application.arguments().contains(QStringLiteral("--hang"));

    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        std::fprintf(stderr, "corvane-fake-notifications: no session bus: %s\n",
                     qPrintable(bus.lastError().message()));
        return 1;
    }
    FakeNotificationServer server(
        bus, hang ? FakeNotificationServer::Mode::Hang : FakeNotificationServer::Mode::Answer);
    QObject::connect(&server, &FakeNotificationServer::notified, [](const ReceivedNotification& n) {
        const QString line =
            QStringLiteral("NOTIFY app=%1 replaces=%2 summary=%3 body=%4 sound=%5\n")
                .arg(n.appName, QString::number(n.replacesId), n.summary, n.body,
                     n.hints.value(QStringLiteral("sound-name")).toString());
        const QByteArray bytes = line.toUtf8();
        std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stdout);
        std::fflush(stdout);
    });
    if (!server.start()) {
        std::fprintf(stderr, "corvane-fake-notifications: cannot own the name: %s\n",
                     qPrintable(bus.lastError().message()));
        return 1;
    }
    std::fprintf(stderr, "corvane-fake-notifications: serving%s\n", hang ? " (hung)" : "");
    return application.exec();
}
