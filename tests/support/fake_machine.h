#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "monitor/monitor_environment.h"
#include "platform/notification_centre.h"

namespace corvane::testing {

// A machine in a temporary folder, shaped like /proc and /sys of a Linux desktop, plus the
// clocks, timers and notification centre a monitor would otherwise take from the system.
// Start state: an idle desktop without battery, one quiet Ethernet interface, a half-full
// home volume. Tests change one thing at a time and look at what the monitor makes of it.
class FakeMachine {
  public:
    FakeMachine();
    ~FakeMachine();
    FakeMachine(const FakeMachine&) = delete;
    FakeMachine& operator=(const FakeMachine&) = delete;

    const std::filesystem::path& root() const { return root_; }

    // /proc/stat with these four counters (iowait, irq, softirq and steal at 0).
    void setCpuTicks(std::uint64_t user, std::uint64_t nice, std::uint64_t system,
                     std::uint64_t idle);
    // A CPU load of exactly `busy` out of 1000 ticks, e.g. 854 for 85.4 %.
    void setCpuPerMille(std::uint64_t busy);
    // /proc/meminfo: totals in kB; wired memory is reported as Unevictable.
    void setMemoryKb(std::uint64_t totalKb, std::uint64_t activeKb, std::uint64_t wiredKb = 0);
    void setVolume(double sizeBytes, double freeBytes);
    void failVolume();
    // What the home directory query answers; nullopt makes it fail.
    void setHomeDirectory(std::optional<std::string> home) { home_ = std::move(home); }
    // BAT0 with energy_now/energy_full and an AC adapter that is online or not.
    void setBattery(std::int64_t now, std::int64_t full, bool onAc,
                    const std::string& status = "Discharging");
    void removeBattery();
    // /proc/net/dev with one counted interface (eth0) and the loopback.
    void setNetTotals(std::uint64_t received, std::uint64_t sent);

    // Replaces a directory that stands where the file should be.
    void writeFile(const std::filesystem::path& relative, const std::string& content);
    std::string readFile(const std::filesystem::path& relative) const;
    void removeFile(const std::filesystem::path& relative);

    // The wall clock the alert cool-down reads.
    std::chrono::system_clock::time_point now() const { return now_; }
    void advance(std::chrono::duration<double> by);
    void setNow(std::chrono::system_clock::time_point at) { now_ = at; }

    // Timers the monitor started: their actions, fired by hand.
    std::size_t timerCount() const { return timers_.size(); }
    void fireTimer(std::size_t index = 0) { timers_.at(index)(); }

    const std::vector<platform::NotificationRequest>& posted() const { return posted_; }

    // An environment whose readers, clock, timers and notification post all point here.
    monitor::MonitorEnvironment environment();

  private:
    std::filesystem::path root_;
    std::optional<sources::VolumeSize> volume_;
    std::optional<std::string> home_{"/home/user"};
    std::chrono::system_clock::time_point now_;
    std::vector<std::function<void()>> timers_;
    std::vector<platform::NotificationRequest> posted_;
    std::vector<std::unique_ptr<QObject>> timerHandles_;
};

}  // namespace corvane::testing
