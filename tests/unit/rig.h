#pragma once

#include <QObject>
#include <functional>
#include <map>
#include <memory>

#include "monitor/system_monitor.h"
#include "support.h"

namespace corvane::testing {

// A monitor on a fixture machine whose files are written healthy again before each tick, eth0
// moving 6 MiB in and 1 MiB out per tick, with a hand-driven wall clock and timers.
struct Rig {
    explicit Rig(const std::string& machine)
        : fixture(std::filesystem::path(CORVANE_FIXTURES) / machine), tree(machine) {
        monitor::MonitorEnvironment env;
        env.root = tree.root();
        env.pageSize = 4096;
        env.homeDirectory = [this] { return home; };
        env.volume = [this](const std::string&) { return volume; };
        env.wallClock = [this] { return now; };
        env.startTimer = [this](std::chrono::milliseconds period, std::function<void()> action) {
            periods.push_back(period);
            timers.push_back(std::move(action));
            return QPointer<QObject>(&timerHandle);
        };
        env.post = [this](const platform::NotificationRequest& r) { posted.push_back(r); };
        monitor = std::make_shared<monitor::SystemMonitor>(std::move(env));
        QObject::connect(monitor.get(), &monitor::SystemMonitor::objectWillChange,
                         [this] { ++writes; });
    }
    void writeHealthy() {
        for (const auto& entry : std::filesystem::recursive_directory_iterator(fixture)) {
            if (entry.is_regular_file()) {
                tree.write(std::filesystem::relative(entry.path(), fixture).string(),
                           readFile(entry.path()));
            }
        }
        rx += 6 << 20;
        tx += 1 << 20;
        tree.write("proc/net/dev", "h\nh\n    lo: 5000 1 0 0 0 0 0 0 5000 1 0 0 0 0 0 0\n  eth0: " +
                                       join(rx, 1, 0, 0, 0, 0, 0, 0, tx, 1, 0, 0, 0, 0, 0, 0) +
                                       "\n wlan0: 67108864 1 0 0 0 0 0 0 33554432 1 0 0 0 0 0 0\n");
        home = "/home/user";
        volume = sources::VolumeSize{500e9, 125e9};
    }
    // The published fields after one tick, and how many writes it announced.
    std::map<std::string, std::string> tick(const std::function<void()>& fault = {}) {
        writeHealthy();
        if (fault) {
            fault();
        }
        writes = 0;
        timers.empty() ? monitor->startMonitoring() : timers.front()();
        const monitor::SystemMonitor& m = *monitor;
        EXPECT_EQ(show(m.cpuHistory().back()), show(m.cpuUsage()));
        return {{"cpu", show(m.cpuUsage())},   {"ram", show(m.ramUsage())},
                {"disk", show(m.diskUsage())}, {"level", show(m.batteryLevel())},
                {"state", m.batteryState()},   {"down", show(m.downloadSpeed())},
                {"up", show(m.uploadSpeed())}, {"writes", show(writes)}};
    }

    std::filesystem::path fixture;
    TempTree tree;
    std::optional<std::string> home;
    std::optional<sources::VolumeSize> volume;
    std::chrono::system_clock::time_point now{std::chrono::hours(24 * 365 * 50)};
    std::vector<std::function<void()>> timers;
    std::vector<std::chrono::milliseconds> periods;
    QObject timerHandle;
    std::vector<platform::NotificationRequest> posted;
    std::shared_ptr<monitor::SystemMonitor> monitor;
    std::uint64_t rx = 10ull << 30, tx = 2ull << 30;
    int writes = 0;
};

}  // namespace corvane::testing
