#pragma once

#include <QObject>
#include <QPointer>
#include <chrono>
#include <filesystem>
#include <functional>

#include "platform/notification_centre.h"
#include "platform/wall_clock.h"
#include "sources/disk_usage.h"

namespace corvane::monitor {

// Creates the repeating timer that drives the ticks and hands back a reference to it.
using TimerFactory = std::function<QPointer<QObject>(std::chrono::milliseconds period,
                                                     std::function<void()> action)>;

// Hands one request to the notification centre without waiting.
using NotificationPoster = std::function<void(const platform::NotificationRequest&)>;

// Everything the monitor asks of the operating system, so that tests can move it.
struct MonitorEnvironment {
    std::filesystem::path root{"/"};
    std::uint64_t pageSize = 0;  // 0: ask the running system
    sources::HomeDirectoryQuery homeDirectory = sources::userHomeDirectory;
    sources::VolumeQuery volume = sources::statVolume;
    platform::WallClock wallClock = [] { return std::chrono::system_clock::now(); };
    TimerFactory startTimer;  // default: a grid timer owned by the application object
    NotificationPoster post;  // default: the application's notification centre
};

}  // namespace corvane::monitor
