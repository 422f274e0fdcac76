#pragma once

#include <QObject>
#include <QPointer>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "monitor/monitor_environment.h"
#include "sources/battery_info.h"
#include "sources/cpu_load.h"
#include "sources/disk_usage.h"
#include "sources/memory_usage.h"
#include "sources/network_throughput.h"

namespace corvane::monitor {

// The one model object: every metric the dashboard shows, the CPU history of the last
// minute, and the bookkeeping of the sampling cycle and the alert cool-down. Every write of a
// published field emits objectWillChange() first, even when the value does not change.
// Held by std::shared_ptr: a started monitor is kept alive by its timer's action.
class SystemMonitor : public QObject, public std::enable_shared_from_this<SystemMonitor> {
    Q_OBJECT
  public:
    static constexpr std::chrono::milliseconds kTickPeriod{2000};
    static constexpr std::size_t kHistoryLength = 30;
    static constexpr std::chrono::duration<double> kCoolDown{10.0};

    SystemMonitor();
    explicit SystemMonitor(MonitorEnvironment environment);
    ~SystemMonitor() override;

    double cpuUsage() const { return cpuUsage_; }
    double ramUsage() const { return ramUsage_; }
    double diskUsage() const { return diskUsage_; }
    std::int64_t batteryLevel() const { return batteryLevel_; }
    const std::string& batteryState() const { return batteryState_; }
    double downloadSpeed() const { return downloadSpeed_; }
    double uploadSpeed() const { return uploadSpeed_; }
    const std::vector<double>& cpuHistory() const { return cpuHistory_; }

    // Runs one tick at once, then one every 2.0 s until the application ends. A second call
    // adds a second timer; both keep firing.
    void startMonitoring();

    double getCPUUsage();
    double getRAMUsage();
    double getDiskUsage();
    void updateBatteryInfo();
    void updateNetwork();

  signals:
    void objectWillChange();

  private:
    void updateValues();
    void checkThresholds();
    void sendNotification(const std::string& title, const std::string& body);

    template <typename T, typename V>
    void publish(T& field, V&& value) {
        emit objectWillChange();
        field = std::forward<V>(value);
    }

    MonitorEnvironment environment_;
    sources::CpuLoadReader cpuReader_;
    sources::MemoryReader memoryReader_;
    sources::DiskReader diskReader_;
    sources::PowerSourceReader powerReader_;
    sources::NetworkReader networkReader_;

    double cpuUsage_ = 0.0;
    double ramUsage_ = 0.0;
    double diskUsage_ = 0.0;
    std::int64_t batteryLevel_ = 0;
    std::string batteryState_ = "Unknown";
    double downloadSpeed_ = 0.0;
    double uploadSpeed_ = 0.0;
    std::vector<double> cpuHistory_;
    QPointer<QObject> timer_;
    std::optional<std::chrono::system_clock::time_point> lastNotificationDate_;
    std::uint64_t lastReceived_ = 0;
    std::uint64_t lastSent_ = 0;
};

}  // namespace corvane::monitor
