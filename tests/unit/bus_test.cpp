// On the private session bus of `make test`: which notification clicks open the dashboard, and
// one Corvane per session. Services are connections of their own served from this thread.
#include <gtest/gtest.h>
#include <unistd.h>

#include <QColorSpace>
#include <QDBusConnectionInterface>
#include <QDBusVirtualObject>
#include <QProcess>
#include <QTest>
#include <deque>
#include <future>

#include "app/shell_facilities.h"
#include "app/tray_glyph_icon.h"
#include "platform/application_id.h"
#include "platform/application_service.h"
#include "platform/freedesktop_notifications.h"
#include "platform/session_instance.h"
#include "support.h"
#include "tray/tray_watcher.h"

namespace corvane::platform {
namespace {

using namespace std::chrono_literals;
using namespace corvane::testing;

QDBusConnection connection(const QString& name) {
    return QDBusConnection::connectToBus(QDBusConnection::SessionBus, name);
}

// Holds `service` and answers every call (Notify: its next id, from 7; or nothing, or an error,
// or a variant true, as `reply` or else the next of `script` says), or lets it time out.
struct Server : QDBusVirtualObject {
    Server(const QString& name, const QString& path = {}, const QString& service = {},
           bool answers = true)
        : bus(connection(name)), answers(answers) {
        bus.registerVirtualObject(path, this) && bus.registerService(service);
    }
    ~Server() override { QDBusConnection::disconnectFromBus(bus.name()); }  // its names go too
    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& call, const QDBusConnection& via) override {
        ++calls;
        members << call.member();
        firsts << call.arguments().value(0).toString();
        if (!script.empty()) {
            reply = script.front();
            script.pop_front();
        }
        return !answers || reply == "late" ||
               via.send(reply == "post-empty"      ? call.createReply()
                        : reply.ends_with("error") ? call.createErrorReply("a.B", "c")
                        : reply == "true"
                            ? call.createReply(QVariant::fromValue(QDBusVariant(true)))
                            : call.createReply(++lastId));
    }
    QDBusConnection bus;
    bool answers;
    uint lastId = 6, calls = 0;
    std::string reply;
    std::deque<std::string> script;
    QStringList members, firsts;
};

struct Clicks : NotificationCentreDelegate {
    unsigned willPresent(const NotificationRequest&) override { return PresentationBanner; }
    void didActivateNotification(const QString& token) override { tokens << token; }
    QStringList tokens;
};

TEST(Bus, NotificationClicksThatOpenTheDashboardTable) {
    CORVANE_SKIP_WITHOUT_SESSION_BUS();
    const QString service = freedesktop::kService, path = freedesktop::kPath;
    std::map<std::string, std::unique_ptr<Server>> peers;
    peers["other"] = std::make_unique<Server>("other");
    peers["service"] = std::make_unique<Server>("service", path, service);
    NotificationCentre centre(connection("corvane"));
    Clicks clicks;
    centre.setDelegate(&clicks);
    QStringList opened;
    uint own = 0;
    for (const auto& c : caseTable("clicks")) {
        SCOPED_TRACE(c.where);
        Server& from = *peers.at(c[0]);
        const uint id = c[2] == "own" ? own : std::stoul(c[2]);
        const QString token = QString::fromStdString(c.where);
        const auto send = [&](const char* name, const QVariantList& arguments) {
            auto signal = QDBusMessage::createSignal(path, service, QString::fromLatin1(name));
            signal.setArguments(arguments);
            from.bus.send(signal);
        };
        if (c[1].starts_with("post")) {
            const uint before = from.calls;
            from.reply = c[1];
            centre.add({"id", "CPU", "busy"});
            ASSERT_TRUE(QTest::qWaitFor([&] { return from.calls > before; }, 5000));
            own = from.lastId;
        } else if (c[1] == "restart") {
            from.bus.unregisterService(service);
            peers["old"] = std::move(peers["service"]);
            peers["new"] = std::make_unique<Server>("new", path, service);
        } else if (c[1] == "close") {
            send("NotificationClosed", {id, 2u});
        } else {
            if (c[1] == "click") {
                send("ActivationToken", {id, token});
            }
            send("ActionInvoked", {id, c[1] == "menu" ? "settings" : freedesktop::kDefaultAction});
        }
        // The bus hands on each sender's messages in order: after this answer, what was sent
        // above reaches the centre before anything sent later by anyone.
        from.bus.interface()->serviceOwner(service);
        if (c[3] != "-") {
            opened << (c[3] == "token" ? token : QString());
            ASSERT_TRUE(QTest::qWaitFor([&] { return clicks.tokens.size() >= opened.size(); }));
            EXPECT_EQ(clicks.tokens, opened);
        }
    }
}

// The first launch holds the name, a second hands its token over, a holder that does not answer
// is named, and a bus that refuses the name still runs Corvane.
TEST(Bus, OneCorvanePerSession) {
    CORVANE_SKIP_WITHOUT_SESSION_BUS();
    QStringList activated;
    ApplicationService first([&](const QString& token) { activated << token; });
    ApplicationService second([&](const QString& token) { activated << "second " + token; });
    QDBusConnection firstBus = connection("first");
    EXPECT_EQ(claimSession(firstBus, &first, {}).outcome, SessionClaim::Outcome::Run);
    EXPECT_EQ(claimSession(firstBus, &first, {}).outcome, SessionClaim::Outcome::Run)
        << "claimed again by its holder";
    auto claim = std::async(std::launch::async, [&] {
        return claimSession(connection("second"), &second, {{"activation-token", "t2"}});
    });
    ASSERT_TRUE(QTest::qWaitFor([&] { return claim.wait_for(0s) == std::future_status::ready; }));
    EXPECT_EQ(claim.get().outcome, SessionClaim::Outcome::HandedOver);
    EXPECT_EQ(activated, QStringList{"t2"});

    firstBus.unregisterService(kApplicationId);
    Server mute("mute", kApplicationPath, kApplicationId, false);
    const SessionClaim unanswered = claimSession(connection("third"), &second, {}, 300ms);
    EXPECT_EQ(unanswered.outcome, SessionClaim::Outcome::Unanswered);
    EXPECT_EQ(unanswered.message,
              QString("corvane: Corvane is already running (process %1) but did not answer "
                      "within 300 ms")
                  .arg(::getpid()));
    QObject context;  // the launch says so on standard error and ends with status 1
    EXPECT_EQ(app::desktopShellFacilities().claimSession(&context, {}), 1);

    QProcess refusing;
    refusing.start("dbus-daemon", {"--nofork", "--print-address",
                                   "--config-file=" CORVANE_FIXTURES "/refusing-bus.conf"});
    ASSERT_TRUE(refusing.waitForReadyRead(5000));
    const auto bus = QDBusConnection::connectToBus(refusing.readLine().trimmed(), "refusing");
    EXPECT_EQ(claimSession(bus, &second, {}).outcome, SessionClaim::Outcome::Run);
    EXPECT_EQ(activated, QStringList{"t2"});
    refusing.kill();
}

// A panel still starting at login: its watcher answers late, then with an error, then as usual,
// and takes the first registration late too. The item is asked for again each time, is
// registered at once after the first usual answer, and once more a second later (GNOME 48
// draws the label then). GNOME's watcher gets the empty icon, found by name in the item's folder.
TEST(Bus, APanelStillStartingGetsTheItem) {
    CORVANE_SKIP_WITHOUT_SESSION_BUS();
    Server watcher("watcher", "/StatusNotifierWatcher", "org.kde.StatusNotifierWatcher");
    watcher.bus.registerService("org.gnome.Shell");
    watcher.script = {"late", "error", "true", "late", "true", "true"};
    const TempTree folder;
    const QDBusConnection bus = connection("tray");
    tray::StatusNotifierItem item(
        bus, {"io.x", "T", "label", app::trayGlyphIcon("x", Qt::red), "io.x"},
        QDBusObjectPath("/M"), {}, std::make_shared<tray::PanelActivation>(), folder.root().c_str(),
        200ms);
    const tray::TrayWatcher watching(bus, 200ms);
    QObject::connect(&watching, &tray::TrayWatcher::statusNotifierHostReady, &item,
                     &tray::StatusNotifierItem::registerWithWatcher);
    ASSERT_TRUE(QTest::qWaitFor([&] { return watcher.calls == 6; }, 10000))
        << watcher.members.join(" ").toStdString();
    EXPECT_EQ(watcher.members.join(' '),
              "Get Get Get RegisterStatusNotifierItem"
              " RegisterStatusNotifierItem RegisterStatusNotifierItem");
    const QDBusMessage read =
        watcher.bus.call(QDBusMessage::createMethodCall(bus.baseService(), "/StatusNotifierItem",
                                                        "org.freedesktop.DBus.Properties", "GetAll")
                             << "org.kde.StatusNotifierItem",
                         QDBus::BlockWithGui);
    auto properties = qdbus_cast<QVariantMap>(read.arguments().value(0));
    const QString icon = properties["IconThemePath"].toString() + "/hicolor/16x16/apps/" +
                         properties["IconName"].toString() + ".png";
    EXPECT_EQ(properties["IconName"].toString(), "io.x-empty");
    EXPECT_TRUE(QFile::exists(icon)) << icon.toStdString();
    const QImage glyph(folder.root().c_str() + QString("/hicolor/16x16/apps/io.x.png"));
    QImage drawn = app::trayGlyphIcon("x", Qt::red).pixmap(16).toImage();
    drawn.setColorSpace(QColorSpace::SRgb);  // the file says so
    EXPECT_EQ(glyph.convertToFormat(QImage::Format_ARGB32),
              drawn.convertToFormat(QImage::Format_ARGB32));
}

// XApp's watcher (Cinnamon) drops an item when a name that begins the item's name leaves the bus:
// ":1.2" leaving drops ":1.20". It is told, once, a name of the item's own that no name begins.
TEST(Bus, XAppsWatcherGetsTheItemOnceByANameOfItsOwn) {
    CORVANE_SKIP_WITHOUT_SESSION_BUS();
    Server watcher("xapp", "/StatusNotifierWatcher", "org.kde.StatusNotifierWatcher");
    watcher.bus.registerService("org.x.StatusNotifierWatcher");
    watcher.reply = "true";
    const QDBusConnection bus = connection("xapp-tray");
    tray::StatusNotifierItem item(bus, {"io.x", "T", "label", {}, "io.x"}, QDBusObjectPath("/M"),
                                  {}, std::make_shared<tray::PanelActivation>(), {}, 200ms);
    const tray::TrayWatcher watching(bus, 200ms);
    QObject::connect(&watching, &tray::TrayWatcher::statusNotifierHostReady, &item,
                     &tray::StatusNotifierItem::registerWithWatcher);
    ASSERT_TRUE(QTest::qWaitFor([&] { return watcher.calls == 2; }));
    QTest::qWait(1500);  // where a second registration would come
    EXPECT_EQ(watcher.members.join(' '), "Get RegisterStatusNotifierItem");
    const QString name = watcher.firsts.last();
    EXPECT_EQ(watcher.bus.interface()->serviceOwner(name).value(), bus.baseService());
    EXPECT_NE(name, bus.baseService());
}

}  // namespace
}  // namespace corvane::platform
