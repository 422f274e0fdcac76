#pragma once

#include <QObject>
#include <QTimer>
#include <chrono>
#include <functional>

#include "platform/wall_clock.h"

namespace corvane::platform {

// The first point origin + k * period (k >= 1) that lies strictly after `after`.
std::chrono::steady_clock::time_point nextGridPoint(std::chrono::steady_clock::time_point origin,
                                                    std::chrono::nanoseconds period,
                                                    std::chrono::steady_clock::time_point after);

// A repeating timer that keeps the grid of its creation time. A plain repeating QTimer
// re-phases after the event loop was blocked; this one re-arms a single-shot timer for the
// next grid point of a steady clock, so a late firing runs once, missed firings are skipped
// and the next firing is back on the original grid.
class GridTimer : public QObject {
    Q_OBJECT
  public:
    GridTimer(
        std::chrono::nanoseconds period, std::function<void()> action, QObject* parent = nullptr,
        SteadyClock clock = [] { return std::chrono::steady_clock::now(); });

    // The grid point the timer is armed for.
    std::chrono::steady_clock::time_point nextFiring() const { return next_; }

  private:
    void fire();
    void armFor(std::chrono::steady_clock::time_point point);

    SteadyClock clock_;
    std::chrono::steady_clock::time_point origin_;
    std::chrono::nanoseconds period_;
    std::chrono::steady_clock::time_point next_;
    std::function<void()> action_;
    QTimer timer_;
};

}  // namespace corvane::platform
