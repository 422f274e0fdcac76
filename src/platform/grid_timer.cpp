#include "platform/grid_timer.h"

#include <algorithm>

namespace corvane::platform {

using std::chrono::steady_clock;

steady_clock::time_point nextGridPoint(steady_clock::time_point origin,
                                       std::chrono::nanoseconds period,
                                       steady_clock::time_point after) {
    if (period <= std::chrono::nanoseconds::zero()) {
        return after;
    }
    if (after < origin) {
        return origin + period;
    }
    const auto periods = (after - origin) / period + 1;
    return origin + periods * period;
}

GridTimer::GridTimer(std::chrono::nanoseconds period, std::function<void()> action, QObject* parent,
                     SteadyClock clock)
    : QObject(parent),
      clock_(std::move(clock)),
      origin_(clock_()),
      period_(period),
      action_(std::move(action)) {
    timer_.setSingleShot(true);
    timer_.setTimerType(Qt::PreciseTimer);
    connect(&timer_, &QTimer::timeout, this, &GridTimer::fire);
    armFor(origin_ + period_);
}

void GridTimer::fire() {
    action_();
    // A firing that came a hair early still stands for its own grid point, so the next one is
    // computed from whichever is later: now or the point this firing was armed for.
    armFor(nextGridPoint(origin_, period_, std::max(clock_(), next_)));
}

void GridTimer::armFor(steady_clock::time_point point) {
    next_ = point;
    const auto wait = std::chrono::ceil<std::chrono::milliseconds>(point - clock_());
    timer_.start(std::max(wait, std::chrono::milliseconds::zero()));
}

}  // namespace corvane::platform
