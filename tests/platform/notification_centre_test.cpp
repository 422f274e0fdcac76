#include "platform/notification_centre.h"

#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QElapsedTimer>
#include <QTest>
#include <memory>
#include <optional>
#include <vector>

#include "support/fake_notification_server.h"
#include "support/private_bus.h"

namespace corvane::platform {
namespace {

using testing::FakeNotificationServer;
using testing::PrivateBus;

constexpr int kWaitMs = 8000;

struct Answer {
    bool granted = false;
    std::optional<QString> error;
};

class RecordingDelegate : public NotificationCentreDelegate {
  public:
    explicit RecordingDelegate(unsigned answer) : answer_(answer) {}
    unsigned willPresent(const NotificationRequest& request) override {
        asked.push_back(request.identifier);
        return answer_;
    }
    std::vector<QString> asked;

  private:
    unsigned answer_;
};

// Asks for permission and waits for every answer; also checks none came synchronously.
std::vector<Answer> authorize(NotificationCentre& centre) {
    auto answers = std::make_shared<std::vector<Answer>>();
    centre.requestAuthorization(AuthorizationAlert | AuthorizationSound,
                                [answers](bool granted, std::optional<QString> error) {
                                    answers->push_back({granted, std::move(error)});
                                });
    EXPECT_TRUE(answers->empty()) << "answered inside requestAuthorization";
    (void)QTest::qWaitFor([&] { return !answers->empty(); }, kWaitMs);
    QTest::qWait(100);  // a second answer would arrive in this time
    return *answers;
}

NotificationRequest request(const QString& title, const QString& body) {
    return {QStringLiteral("6F9619FF-8B86-4011-B42D-00C04FC964FF"), title, body, true};
}

// A private bus with the centre on one connection and, when a test starts it, the fake server
// on another, as two processes would be.
class NotificationCentreTest : public ::testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(bus_.isRunning()) << bus_.error().toStdString(); }

    FakeNotificationServer& startServer(
        FakeNotificationServer::Mode mode = FakeNotificationServer::Mode::Answer) {
        server_ = std::make_unique<FakeNotificationServer>(bus_.connect(), mode);
        EXPECT_TRUE(server_->start());
        return *server_;
    }

    std::unique_ptr<NotificationCentre> makeCentre() {
        return std::make_unique<NotificationCentre>(bus_.connect(), [this] { return active_; });
    }

    PrivateBus bus_;
    std::unique_ptr<FakeNotificationServer> server_;
    bool active_ = false;
};

// The four alert texts and one with characters a careless encoding would change.
TEST_F(NotificationCentreTest, EveryAlertReachesTheServerByteForByte) {
    auto& server = startServer();
    auto centre = makeCentre();
    const std::vector<std::pair<std::string, std::string>> alerts{
        {"High CPU Usage", "CPU usage is at 85%."},
        {"High RAM Usage", "RAM usage is at 90%."},
        {"Disk Almost Full", "Disk usage is at 99%."},
        {"Low Battery", "Battery at 15%"},
        {"⚡︎ Ünïcode", "tab\there, quote \" and %1"},
    };
    for (const auto& [title, body] : alerts) {
        centre->add(request(QString::fromStdString(title), QString::fromStdString(body)));
    }
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return server.notifications().size() == alerts.size(); }, kWaitMs));

    for (std::size_t i = 0; i < alerts.size(); ++i) {
        const auto& got = server.notifications()[i];
        EXPECT_EQ(got.summary.toStdString(), alerts[i].first);
        EXPECT_EQ(got.body.toStdString(), alerts[i].second);
        EXPECT_EQ(got.appName, QStringLiteral("Corvane"));
        EXPECT_EQ(got.replacesId, 0U);
        EXPECT_EQ(got.appIcon, QString());
        EXPECT_TRUE(got.actions.isEmpty());
        EXPECT_EQ(got.expireTimeout, -1);
        EXPECT_EQ(got.hints.value(QStringLiteral("sound-name")).toString(),
                  QStringLiteral("message-new-instant"));
        EXPECT_FALSE(got.hints.contains(QStringLiteral("suppress-sound")));
    }
}

TEST_F(NotificationCentreTest, WhileActiveTheDelegateDecidesThePresentation) {
    struct Case {
        const char* name;
        bool active;
        std::optional<unsigned> delegateAnswer;  // none: no delegate set
        bool posted;
        bool sound;
        bool delegateAsked;
    };
    const Case cases[] = {
        {"inactive: the desktop decides", false, 0U, true, true, false},
        {"banner and sound", true, PresentationBanner | PresentationSound, true, true, true},
        {"banner alone is silent", true, PresentationBanner, true, false, true},
        {"list alone", true, PresentationList, true, false, true},
        {"nothing", true, 0U, false, false, true},
        {"badge and sound show nothing", true, PresentationBadge | PresentationSound, false, false,
         true},
        {"active without delegate", true, std::nullopt, false, false, false},
    };
    auto& server = startServer();
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        auto centre = makeCentre();
        std::optional<RecordingDelegate> delegate;
        if (c.delegateAnswer) {
            delegate.emplace(*c.delegateAnswer);
            centre->setDelegate(&*delegate);
        }
        active_ = c.active;
        const std::size_t before = server.notifications().size();
        const auto sent = request(QString::fromUtf8(c.name), QStringLiteral("body"));
        centre->add(sent);
        // A marker from an inactive centre proves the bus has carried everything before it.
        active_ = false;
        const QString marker = QStringLiteral("marker ") + QString::fromUtf8(c.name);
        centre->add(request(marker, {}));
        ASSERT_TRUE(QTest::qWaitFor(
            [&] {
                return !server.notifications().empty() &&
                       server.notifications().back().summary == marker;
            },
            kWaitMs));
        const std::size_t arrived = server.notifications().size() - before;
        ASSERT_EQ(arrived, c.posted ? 2U : 1U);
        if (c.posted) {
            const auto& got = server.notifications()[before];
            EXPECT_EQ(got.summary.toStdString(), sent.title.toStdString());
            EXPECT_EQ(got.hints.contains(QStringLiteral("sound-name")), c.sound);
            EXPECT_EQ(got.hints.value(QStringLiteral("suppress-sound")).toBool(), !c.sound);
        }
        if (delegate) {
            EXPECT_EQ(delegate->asked, c.delegateAsked ? std::vector<QString>{sent.identifier}
                                                       : std::vector<QString>{});
        }
    }
}

// Granted when the server answers; otherwise denied with the reason. A post on the way goes
// nowhere, quietly. Each case on a bus of its own.
TEST(NotificationCentrePermission, GrantedOnlyWhenTheServerAnswers) {
    enum class Bus { Server, NoServer, FailingServer, Killed, NeverConnected };
    const struct {
        const char* name;
        Bus bus;
        bool granted;
        const char* error;  // nullptr: none; else the whole text, or a part of it
        bool whole;
    } cases[] = {
        {"server answers", Bus::Server, true, nullptr, false},
        {"no server", Bus::NoServer, false, "org.freedesktop.Notifications", false},
        {"server refuses", Bus::FailingServer, false, "The fake server refuses", true},
        {"bus gone", Bus::Killed, false, "", false},
        {"never connected", Bus::NeverConnected, false, "Not connected to D-Bus server", true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        PrivateBus bus;
        ASSERT_TRUE(bus.isRunning()) << bus.error().toStdString();
        std::optional<FakeNotificationServer> server;
        if (c.bus == Bus::Server || c.bus == Bus::FailingServer || c.bus == Bus::Killed) {
            server.emplace(bus.connect(), c.bus == Bus::FailingServer
                                              ? FakeNotificationServer::Mode::Fail
                                              : FakeNotificationServer::Mode::Answer);
            ASSERT_TRUE(server->start());
        }
        NotificationCentre centre(c.bus == Bus::NeverConnected
                                      ? QDBusConnection(QStringLiteral("corvane-never-connected"))
                                      : bus.connect(),
                                  [] { return false; });
        if (c.bus == Bus::Killed) {
            bus.kill();
        }
        if (!c.granted) {
            centre.add(request(QStringLiteral("t"), QStringLiteral("b")));
        }
        const auto answers = authorize(centre);
        ASSERT_EQ(answers.size(), 1U);
        EXPECT_EQ(answers[0].granted, c.granted);
        ASSERT_EQ(answers[0].error.has_value(), c.error != nullptr);
        if (c.error != nullptr) {
            const QString expected = QString::fromUtf8(c.error);
            EXPECT_TRUE(c.whole ? *answers[0].error == expected
                                : answers[0].error->contains(expected))
                << answers[0].error->toStdString();
        }
        if (c.bus == Bus::Server) {
            EXPECT_EQ(server->serverInformationRequests(), 1);
        }
    }
}

TEST_F(NotificationCentreTest, AHungServerIsDeniedAfterTheTimeoutWithoutBlocking) {
    auto& server = startServer(FakeNotificationServer::Mode::Hang);
    auto centre = makeCentre();
    QElapsedTimer clock;
    clock.start();
    centre->add(request(QStringLiteral("t"), QStringLiteral("b")));
    const auto answers = authorize(*centre);
    ASSERT_EQ(answers.size(), 1U);
    EXPECT_FALSE(answers[0].granted);
    EXPECT_TRUE(answers[0].error.has_value());
    EXPECT_GE(clock.elapsed(), NotificationCentre::kReplyTimeout.count() - 100);
    EXPECT_EQ(server.notifications().size(), 1U);
}

TEST_F(NotificationCentreTest, AServerThatAppearsLaterIsUsedFromThenOn) {
    auto centre = makeCentre();
    ASSERT_FALSE(authorize(*centre).at(0).granted);
    auto& server = startServer();
    EXPECT_TRUE(authorize(*centre).at(0).granted);
    centre->add(request(QStringLiteral("late"), QStringLiteral("b")));
    EXPECT_TRUE(QTest::qWaitFor([&] { return server.notifications().size() == 1; }, kWaitMs));
}

TEST_F(NotificationCentreTest, ACentreDestroyedBeforeTheAnswerStillAnswersOnceLater) {
    startServer(FakeNotificationServer::Mode::Hang);
    auto centre = makeCentre();
    int calls = 0;
    std::optional<QString> error;
    centre->requestAuthorization(AuthorizationAlert, [&](bool granted, std::optional<QString> e) {
        EXPECT_FALSE(granted);
        error = std::move(e);
        ++calls;
    });
    QTest::qWait(50);
    centre.reset();
    EXPECT_EQ(calls, 0) << "answered inside the destructor";
    EXPECT_TRUE(QTest::qWaitFor([&] { return calls == 1; }, 1000));
    QTest::qWait(100);
    EXPECT_EQ(calls, 1);
    EXPECT_TRUE(error.has_value());
}

TEST_F(NotificationCentreTest, AHandlerMayDestroyItsCentre) {
    startServer();
    auto centre = makeCentre();
    int calls = 0;
    centre->requestAuthorization(AuthorizationAlert, [&](bool, std::optional<QString>) {
        ++calls;
        centre.reset();
    });
    EXPECT_TRUE(QTest::qWaitFor([&] { return calls == 1; }, kWaitMs));
    QTest::qWait(100);
    EXPECT_EQ(calls, 1);
}

}  // namespace
}  // namespace corvane::platform
