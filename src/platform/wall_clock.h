#pragma once

#include <chrono>
#include <functional>

namespace corvane::platform {

// Injectable clocks: production passes the std::chrono ones, tests pass their own.
using WallClock = std::function<std::chrono::system_clock::time_point()>;
using SteadyClock = std::function<std::chrono::steady_clock::time_point()>;

}  // namespace corvane::platform
