#pragma once

#include <QDBusConnection>
#include <QObject>
#include <chrono>
#include <functional>

namespace corvane::app {

// Answers through `done` (on the thread of `context`, or at once) whether the desktop shows
// tray items. Qt's own check asks the StatusNotifier watcher with blocking D-Bus calls, so it
// is only consulted after the watcher has answered us asynchronously, or when there is no
// watcher at all; a watcher that does not answer within `timeout` counts as no tray.
void probeSystemTray(QDBusConnection bus, std::chrono::milliseconds timeout, QObject* context,
                     std::function<void(bool available)> done);

}  // namespace corvane::app
