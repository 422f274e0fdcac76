#include "monitor/system_monitor.h"

#include <QCoreApplication>
#include <QString>
#include <QUuid>

#include "monitor/alert_text.h"
#include "platform/grid_timer.h"

namespace corvane::monitor {

namespace {

// The application object plays the run loop: it owns every timer, so a started monitor lives
// until the application object is destroyed at exit.
QPointer<QObject> startGridTimer(std::chrono::milliseconds period, std::function<void()> action) {
    auto* application = QCoreApplication::instance();
    if (application == nullptr) {
        return {};  // no event loop to fire it, and nothing that would own it
    }
    return new platform::GridTimer(period, std::move(action), application);
}

void postToCurrentCentre(const platform::NotificationRequest& request) {
    if (auto* centre = platform::NotificationCentre::current()) {
        centre->add(request);
    }
}

MonitorEnvironment completed(MonitorEnvironment environment) {
    if (environment.pageSize == 0) {
        environment.pageSize = sources::systemPageSize();
    }
    if (!environment.startTimer) {
        environment.startTimer = startGridTimer;
    }
    if (!environment.post) {
        environment.post = postToCurrentCentre;
    }
    return environment;
}

}  // namespace

SystemMonitor::SystemMonitor() : SystemMonitor(MonitorEnvironment{}) {}

SystemMonitor::SystemMonitor(MonitorEnvironment environment)
    : environment_(completed(std::move(environment))),
      cpuReader_(environment_.root),
      memoryReader_(environment_.root, environment_.pageSize),
      diskReader_(environment_.homeDirectory, environment_.volume),
      powerReader_(environment_.root),
      networkReader_(environment_.root) {
    // One spare slot: the 31st value lives for a moment before the oldest is dropped.
    cpuHistory_.reserve(kHistoryLength + 1);
}

SystemMonitor::~SystemMonitor() = default;

void SystemMonitor::startMonitoring() {
    updateValues();
    timer_ =
        environment_.startTimer(kTickPeriod, [self = shared_from_this()] { self->updateValues(); });
}

void SystemMonitor::updateValues() {
    publish(cpuUsage_, getCPUUsage());
    publish(ramUsage_, getRAMUsage());
    publish(diskUsage_, getDiskUsage());
    updateBatteryInfo();
    updateNetwork();

    emit objectWillChange();
    cpuHistory_.push_back(cpuUsage_);
    if (cpuHistory_.size() > kHistoryLength) {
        emit objectWillChange();
        cpuHistory_.erase(cpuHistory_.begin());
    }

    checkThresholds();
}

double SystemMonitor::getCPUUsage() {
    const auto ticks = cpuReader_.read();
    return ticks ? sources::cpuUsagePercent(*ticks) : 0.0;
}

double SystemMonitor::getRAMUsage() {
    const auto sample = memoryReader_.read();
    return sample ? sources::ramUsagePercent(*sample) : 0.0;
}

double SystemMonitor::getDiskUsage() {
    const auto volume = diskReader_.read();
    return volume ? sources::diskUsagePercent(*volume) : 0.0;
}

void SystemMonitor::updateBatteryInfo() {
    const auto source = powerReader_.read();
    if (!source) {
        return;
    }
    // A level with no integer value (a maximum of 0) writes neither field, like a failed read.
    const auto level = sources::batteryLevelPercent(source->currentCapacity, source->maxCapacity);
    if (!level) {
        return;
    }
    publish(batteryLevel_, *level);
    publish(batteryState_,
            std::string(source->powerSourceState == "AC Power" ? "Charging" : "On Battery"));
}

void SystemMonitor::updateNetwork() {
    const sources::ByteTotals totals = networkReader_.read();
    if (lastReceived_ > 0 && lastSent_ > 0) {
        publish(downloadSpeed_, sources::rateMegabytesPerSecond(totals.received, lastReceived_));
        publish(uploadSpeed_, sources::rateMegabytesPerSecond(totals.sent, lastSent_));
    }
    lastReceived_ = totals.received;
    lastSent_ = totals.sent;
}

void SystemMonitor::checkThresholds() {
    const auto now = environment_.wallClock();
    if (lastNotificationDate_ && now - *lastNotificationDate_ < kCoolDown) {
        return;
    }
    const std::optional<Alert> alert =
        firstAlert({cpuUsage_, ramUsage_, diskUsage_, batteryLevel_, batteryState_});
    if (!alert) {
        return;
    }
    sendNotification(alert->title, alert->body);
    lastNotificationDate_ = now;
}

void SystemMonitor::sendNotification(const std::string& title, const std::string& body) {
    platform::NotificationRequest request;
    request.title = QString::fromStdString(title);
    request.body = QString::fromStdString(body);
    request.defaultSound = true;
    request.identifier = QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
    environment_.post(request);
}

}  // namespace corvane::monitor
