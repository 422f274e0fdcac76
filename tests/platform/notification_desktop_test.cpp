// Posts through the centre to a real notification daemon (dunst) on a private bus and a
// virtual display. Needs dunst, dunstctl and Xvfb; skipped when any is missing.
#include <gtest/gtest.h>

#include <sys/prctl.h>
#include <QProcess>
#include <QProcessEnvironment>
#include <QStandardPaths>
#include <QTest>
#include <csignal>
#include <memory>
#include <optional>

#include "platform/notification_centre.h"
#include "support/private_bus.h"

namespace corvane::platform {
namespace {

constexpr int kWaitMs = 10000;

// A child process that ends with the test, even when the test is killed.
std::unique_ptr<QProcess> launch(const QString& program, const QStringList& arguments,
                                 const QProcessEnvironment& environment) {
    auto process = std::make_unique<QProcess>();
    process->setProcessEnvironment(environment);
    process->setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
    process->start(program, arguments);
    if (!process->waitForStarted(kWaitMs)) {
        return nullptr;
    }
    return process;
}

void stop(const std::unique_ptr<QProcess>& process) {
    if (process && process->state() != QProcess::NotRunning) {
        process->kill();
        process->waitForFinished(kWaitMs);
    }
}

class NotificationDesktopTest : public ::testing::Test {
  protected:
    void SetUp() override {
        for (const char* tool : {"dunst", "dunstctl", "Xvfb"}) {
            if (QStandardPaths::findExecutable(QString::fromLatin1(tool)).isEmpty()) {
                GTEST_SKIP() << tool << " is not installed";
            }
        }
        ASSERT_TRUE(bus_.isRunning()) << bus_.error().toStdString();
        environment_ = QProcessEnvironment::systemEnvironment();
        environment_.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), bus_.address());

        // A display of our own: Xvfb picks a free number and writes it to the given fd.
        xvfb_ =
            launch(QStringLiteral("Xvfb"),
                   {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"),
                    QStringLiteral("0"), QStringLiteral("640x480x24"), QStringLiteral("-nolisten"),
                    QStringLiteral("tcp")},
                   environment_);
        ASSERT_TRUE(xvfb_) << "Xvfb did not start";
        ASSERT_TRUE(QTest::qWaitFor([&] { return xvfb_->canReadLine(); }, kWaitMs));
        const QString display = QString::fromLatin1(xvfb_->readLine()).trimmed();
        environment_.insert(QStringLiteral("DISPLAY"), QLatin1Char(':') + display);

        dunst_ = launch(QStringLiteral("dunst"), {}, environment_);
        ASSERT_TRUE(dunst_) << "dunst did not start";
        ASSERT_TRUE(QTest::qWaitFor([&] { return dunstctl({QStringLiteral("count")}).has_value(); },
                                    kWaitMs))
            << "dunst never answered on the private bus";
    }

    void TearDown() override {
        stop(dunst_);
        stop(xvfb_);
    }

    // Runs dunstctl against the private bus; nullopt when it fails.
    std::optional<QString> dunstctl(const QStringList& arguments) {
        QProcess tool;
        tool.setProcessEnvironment(environment_);
        tool.start(QStringLiteral("dunstctl"), arguments);
        if (!tool.waitForFinished(kWaitMs) || tool.exitCode() != 0) {
            return std::nullopt;
        }
        return QString::fromUtf8(tool.readAllStandardOutput());
    }

    testing::PrivateBus bus_;
    QProcessEnvironment environment_;
    std::unique_ptr<QProcess> xvfb_;
    std::unique_ptr<QProcess> dunst_;
};

TEST_F(NotificationDesktopTest, AnAlertReachesDunst) {
    NotificationCentre centre(bus_.connect(), [] { return false; });
    std::optional<bool> granted;
    centre.requestAuthorization(AuthorizationAlert | AuthorizationSound,
                                [&](bool g, std::optional<QString>) { granted = g; });
    ASSERT_TRUE(QTest::qWaitFor([&] { return granted.has_value(); }, kWaitMs));
    EXPECT_TRUE(*granted);

    centre.add({QStringLiteral("0B8E2A4C-5D1F-4E3A-9B7C-2F6D8A1E4C3B"),
                QStringLiteral("High CPU Usage"), QStringLiteral("CPU usage is at 85%."), true});
    centre.add({QStringLiteral("7C1D3E5F-2A4B-4C6D-8E0F-1A3B5C7D9E2F"),
                QStringLiteral("Low Battery"), QStringLiteral("Battery at 15%"), true});
    ASSERT_TRUE(QTest::qWaitFor(
        [&] {
            const auto count = dunstctl({QStringLiteral("count"), QStringLiteral("displayed")});
            return count && count->trimmed() == QStringLiteral("2");
        },
        kWaitMs))
        << "dunst does not show two notifications";

    // Closed notifications move to the history, where their texts can be read back.
    ASSERT_TRUE(dunstctl({QStringLiteral("close-all")}).has_value());
    std::optional<QString> history;
    ASSERT_TRUE(QTest::qWaitFor(
        [&] {
            history = dunstctl({QStringLiteral("history")});
            return history && history->contains(QStringLiteral("Battery at 15%"));
        },
        kWaitMs));
    EXPECT_TRUE(history->contains(QStringLiteral("CPU usage is at 85%.")));
    EXPECT_TRUE(history->contains(QStringLiteral("\"Corvane\"")));
}

}  // namespace
}  // namespace corvane::platform
