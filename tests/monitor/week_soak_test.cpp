#include <gtest/gtest.h>

#include <dirent.h>
#include <malloc.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <vector>

#include "monitor/system_monitor.h"
#include "support/fake_machine.h"

namespace {

using corvane::monitor::SystemMonitor;
using corvane::testing::FakeMachine;
using namespace std::chrono_literals;

std::size_t openDescriptors() {
    std::size_t count = 0;
    for ([[maybe_unused]] const auto& entry :
         std::filesystem::directory_iterator("/proc/self/fd")) {
        ++count;
    }
    return count;
}

// Bytes the allocator has handed out and not had back. Sanitizer builds replace the
// allocator and report nothing useful here; the check is skipped there.
std::size_t heapInUse() {
    return mallinfo2().uordblks;
}

// Seven days of 2-second ticks through the real readers on a fake machine whose clock the
// test moves: descriptors and heap stay flat, the history stays at 30, and a CPU held above
// its threshold all week alerts exactly once every 10 seconds.
TEST(WeekSoak, SevenDaysOfTicksLeaveNothingBehind) {
    constexpr std::size_t kTicks = 7 * 24 * 60 * 60 / 2;
    static_assert(kTicks == 302400);

    FakeMachine machine;
    machine.setCpuPerMille(950);
    machine.setBattery(50, 100, false);

    std::vector<std::chrono::system_clock::time_point> alerts;
    alerts.reserve(kTicks / 5 + 1);
    auto environment = machine.environment();
    environment.post = [&](const corvane::platform::NotificationRequest& request) {
        if (request.title == QStringLiteral("High CPU Usage")) {
            alerts.push_back(machine.now());
        }
    };
    const auto start = machine.now();
    auto monitor = std::make_shared<SystemMonitor>(std::move(environment));
    monitor->startMonitoring();

    std::size_t descriptorsAfterWarmUp = 0;
    std::size_t heapAfterWarmUp = 0;
    std::uint64_t received = 1;
    for (std::size_t tick = 1; tick < kTicks; ++tick) {
        machine.advance(2s);
        received += 1048576;
        machine.setNetTotals(received, received / 2 + 1);
        machine.fireTimer();
        if (tick == 1000) {
            descriptorsAfterWarmUp = openDescriptors();
            heapAfterWarmUp = heapInUse();
        }
    }

    EXPECT_EQ(openDescriptors(), descriptorsAfterWarmUp);
    if (heapAfterWarmUp != 0) {
        EXPECT_LE(heapInUse(), heapAfterWarmUp + 4096) << "heap grew over the week";
    }
    EXPECT_EQ(monitor->cpuHistory().size(), 30u);
    EXPECT_EQ(monitor->downloadSpeed(), 0.5);

    ASSERT_EQ(alerts.size(), kTicks / 5);
    EXPECT_EQ(alerts.front(), start);
    for (std::size_t i = 1; i < alerts.size(); ++i) {
        ASSERT_EQ(alerts[i] - alerts[i - 1], 10s) << "alert " << i;
    }
}

}  // namespace
