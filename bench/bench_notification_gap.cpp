// How long the main thread stalls while alerts are posted and permission is asked, with the
// notification server present, absent, hung (owns the name, never replies) and restarted
// mid-run. A 5 ms timer runs throughout; the worst gap between its firings is printed per case
// (target: 10 ms or less). Starts a private dbus-daemon of its own.
#include <QCoreApplication>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <memory>
#include <vector>

#include "platform/notification_centre.h"
#include "support/fake_notification_server.h"
#include "support/private_bus.h"

namespace {

using corvane::platform::NotificationCentre;
using corvane::platform::NotificationRequest;
using corvane::testing::FakeNotificationServer;
using corvane::testing::PrivateBus;
using Clock = std::chrono::steady_clock;

enum class Server { Present, Absent, Hung, Restarted };

struct Figures {
    double worstGapMs = 0;
    double p99GapMs = 0;
    std::vector<double> gaps;
    int ticks = 0;
    int posts = 0;
    int granted = 0;
    int denied = 0;
};

Figures run(PrivateBus& bus, Server kind, std::chrono::milliseconds length) {
    std::unique_ptr<FakeNotificationServer> server;
    if (kind != Server::Absent) {
        server = std::make_unique<FakeNotificationServer>(
            bus.connect(), kind == Server::Hung ? FakeNotificationServer::Mode::Hang
                                                : FakeNotificationServer::Mode::Answer);
        server->start();
    }
    NotificationCentre centre(bus.connect(), [] { return false; });
    Figures figures;

    QTimer beat;
    beat.setTimerType(Qt::PreciseTimer);
    beat.setInterval(5);
    auto last = Clock::now();
    QObject::connect(&beat, &QTimer::timeout, [&] {
        const auto now = Clock::now();
        figures.gaps.push_back(std::chrono::duration<double, std::milli>(now - last).count());
        last = now;
        ++figures.ticks;
    });

    QTimer alerts;
    alerts.setInterval(100);  // far above the monitor's one per 10 s
    QObject::connect(&alerts, &QTimer::timeout, [&] {
        centre.add(NotificationRequest{QStringLiteral("0B8E2A4C-5D1F-4E3A-9B7C-2F6D8A1E4C3B"),
                                       QStringLiteral("High CPU Usage"),
                                       QStringLiteral("CPU usage is at 85%."), true});
        ++figures.posts;
    });

    auto answers = std::make_shared<std::pair<int, int>>(0, 0);
    QTimer permission;
    permission.setInterval(500);
    QObject::connect(&permission, &QTimer::timeout, [&] {
        // Late answers (denials of a destroyed centre) arrive after this run: count them apart.
        centre.requestAuthorization(6, [answers](bool granted, std::optional<QString>) {
            ++(granted ? answers->first : answers->second);
        });
    });

    if (kind == Server::Restarted) {
        QTimer::singleShot(length / 3, [&] { server->stop(); });
        QTimer::singleShot(length * 2 / 3, [&] { server->start(); });
    }

    QEventLoop loop;
    QTimer::singleShot(length, &loop, &QEventLoop::quit);
    last = Clock::now();
    beat.start();
    alerts.start();
    permission.start();
    loop.exec();
    beat.stop();
    alerts.stop();
    permission.stop();
    figures.granted = answers->first;
    figures.denied = answers->second;
    std::sort(figures.gaps.begin(), figures.gaps.end());
    if (!figures.gaps.empty()) {
        figures.worstGapMs = figures.gaps.back();
        figures.p99GapMs = figures.gaps[figures.gaps.size() * 99 / 100];
    }
    return figures;
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    PrivateBus bus;
    if (!bus.isRunning()) {
        std::fprintf(stderr, "no private bus: %s\n", qPrintable(bus.error()));
        return 1;
    }
    // Long enough for the hung calls to reach their timeout inside the run.
    const auto length = NotificationCentre::kReplyTimeout + std::chrono::seconds(2);
    const std::pair<const char*, Server> cases[] = {
        {"present", Server::Present},
        {"absent", Server::Absent},
        {"hung", Server::Hung},
        {"restarted", Server::Restarted},
    };
    std::printf("%-10s %14s %12s %7s %6s %8s %7s\n", "server", "worst gap ms", "p99 gap ms",
                "ticks", "posts", "granted", "denied");
    bool withinTarget = true;
    for (const auto& [name, kind] : cases) {
        const Figures f = run(bus, kind, length);
        std::printf("%-10s %14.2f %12.2f %7d %6d %8d %7d\n", name, f.worstGapMs, f.p99GapMs,
                    f.ticks, f.posts, f.granted, f.denied);
        withinTarget = withinTarget && f.worstGapMs <= 10.0;
    }
    std::printf("target: worst gap <= 10 ms: %s\n", withinTarget ? "met" : "missed");
    return 0;
}
