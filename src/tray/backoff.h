#pragma once

#include <algorithm>
#include <chrono>

namespace corvane::tray {

// The waits before asking a panel again that did not answer: half a second, doubling to four,
// so that a panel still starting at login is found soon, and one that hangs costs a wake-up
// every few seconds.
class Backoff {
  public:
    std::chrono::milliseconds next() {
        const std::chrono::milliseconds wait = wait_;
        wait_ = std::min(wait_ * 2, kLast);
        return wait;
    }
    void reset() { wait_ = kFirst; }

  private:
    static constexpr std::chrono::milliseconds kFirst{500};
    static constexpr std::chrono::milliseconds kLast{4000};
    std::chrono::milliseconds wait_ = kFirst;
};

}  // namespace corvane::tray
