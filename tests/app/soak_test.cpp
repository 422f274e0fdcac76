// Twenty seconds of the shipped binary on a desktop of its own, then "Quit" from its menu. In
// the ordinary build this is a short soak; in the sanitizer build it is the proof that a whole
// run, exit included, has no memory error, undefined behaviour or leak.
#include <gtest/gtest.h>

#include <algorithm>

#include "app/desktop_session.h"

namespace corvane::testing {
namespace {

constexpr int kStartMs = 15000;
constexpr qint64 kRunMs = 20000;

TEST(SoakTest, TwentySecondsThenQuitEndsCleanly) {
    DesktopSession session{DesktopOffers{}};
    ASSERT_TRUE(session.error().isEmpty()) << session.error().toStdString();
    auto app = session.launch(productBinary(), {}, LaunchOptions{.captureErrors = true});
    const auto tray = session.waitForTray(kStartMs);
    ASSERT_TRUE(tray.has_value()) << "no tray item; stderr:\n" << app->errors().toStdString();

    ASSERT_TRUE(app->stillRunningAfter(std::max<qint64>(0, kRunMs - app->elapsedMs())))
        << "stderr:\n"
        << app->errors().toStdString();
    const auto quit = findEntry(tray->menu(), QStringLiteral("Quit"));
    ASSERT_TRUE(quit.has_value()) << "the menu stopped answering";
    ASSERT_TRUE(tray->click(quit->id));

    // The leak check runs at exit and takes a moment in the sanitizer build.
    ASSERT_TRUE(app->waitForExit(30000)) << "Quit did not end the application";
    EXPECT_TRUE(app->exitedNormally());
    EXPECT_EQ(app->exitCode(), 0);
    for (const char* report :
         {"ERROR: AddressSanitizer", "ERROR: LeakSanitizer", "runtime error:"}) {
        EXPECT_FALSE(app->errors().contains(QLatin1String(report))) << "stderr:\n"
                                                                    << app->errors().toStdString();
    }
}

}  // namespace
}  // namespace corvane::testing
