#include "platform/grid_timer.h"

#include <gtest/gtest.h>

#include <QTest>
#include <vector>

namespace {

using corvane::platform::GridTimer;
using corvane::platform::nextGridPoint;
using namespace std::chrono_literals;
using TimePoint = std::chrono::steady_clock::time_point;

const TimePoint kOrigin = TimePoint{} + 1000s;

TEST(NextGridPoint, IsTheFirstGridPointStrictlyAfterTheGivenTime) {
    struct Case {
        std::chrono::milliseconds after;
        std::chrono::milliseconds expected;
    };
    const Case cases[] = {
        {-5000ms, 2000ms},  // clock read before the origin: the first period
        {0ms, 2000ms},          {1ms, 2000ms}, {1999ms, 2000ms},
        {2000ms, 4000ms},   // exactly on a point: that one has fired, the next is due
        {9300ms, 10000ms},  // a late firing skips the missed points 4 s, 6 s and 8 s
        {3600000ms, 3602000ms},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(nextGridPoint(kOrigin, 2000ms, kOrigin + c.after), kOrigin + c.expected)
            << "after " << c.after.count() << " ms";
    }
}

// The timer reads its grid from the injected clock; the real waits in between only decide
// when the callbacks run, never what the timer computes. Each action records the point it
// was armed for, so later firings cannot disturb what a test looks at.
class GridTimerTest : public ::testing::Test {
  protected:
    TimePoint fakeNow = kOrigin;
    std::vector<TimePoint> armedFor;
};

TEST_F(GridTimerTest, StaysOnItsCreationGridAfterABlockedLoop) {
    std::unique_ptr<GridTimer> timer;
    timer = std::make_unique<GridTimer>(
        10ms,
        [&] {
            armedFor.push_back(timer->nextFiring());
            // The first action blocks the loop for 55 ms; the later ones run on time.
            fakeNow = armedFor.size() == 1 ? kOrigin + 65ms : timer->nextFiring();
        },
        nullptr, [&] { return fakeNow; });

    ASSERT_TRUE(QTest::qWaitFor([&] { return armedFor.size() >= 3; }, 5000));
    // One late run for the point at 10 ms; 20 to 60 ms are skipped, not made up, and the
    // grid of the creation time holds afterwards.
    EXPECT_EQ(armedFor[0], kOrigin + 10ms);
    EXPECT_EQ(armedFor[1], kOrigin + 70ms);
    EXPECT_EQ(armedFor[2], kOrigin + 80ms);
}

TEST_F(GridTimerTest, AFiringBeforeItsPointStillMovesOnToTheNextPoint) {
    std::unique_ptr<GridTimer> timer;
    // The clock never moves: a firing that seems early must not re-arm for the same point.
    timer = std::make_unique<GridTimer>(
        10ms, [&] { armedFor.push_back(timer->nextFiring()); }, nullptr, [&] { return fakeNow; });
    ASSERT_TRUE(QTest::qWaitFor([&] { return armedFor.size() >= 2; }, 5000));
    EXPECT_EQ(armedFor[0], kOrigin + 10ms);
    EXPECT_EQ(armedFor[1], kOrigin + 20ms);
}

TEST_F(GridTimerTest, IsOwnedByItsParent) {
    auto owner = std::make_unique<QObject>();
    QPointer<GridTimer> timer = new GridTimer(
        2s, [] {}, owner.get(), [&] { return fakeNow; });
    owner.reset();
    EXPECT_TRUE(timer.isNull());
}

}  // namespace
