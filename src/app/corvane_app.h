#pragma once

#include <QApplication>
#include <functional>
#include <memory>
#include <optional>

#include "app/app_delegate.h"
#include "app/shell_facilities.h"
#include "monitor/system_monitor.h"
#include "ui/content_view.h"

namespace corvane::app {

// The application: one QApplication named "Corvane", one AppDelegate, one dashboard window.
// The delegate hears of the finished launch once the event loop runs.
class CorvaneApp {
  public:
    using MonitorFactory = std::function<std::shared_ptr<monitor::SystemMonitor>()>;

    // The process entry of the product: the machine's own monitor and desktop. Returns the
    // exit status (0 after "Quit").
    static int main(int argc, char** argv);

    // `argc` must outlive the application (QApplication keeps a reference to it).
    CorvaneApp(int& argc, char** argv, MonitorFactory makeMonitor, ShellFacilities facilities);
    CorvaneApp(const CorvaneApp&) = delete;
    CorvaneApp& operator=(const CorvaneApp&) = delete;
    ~CorvaneApp();

    // Runs the application until "Quit"; at once, with its status, for a launch that found a
    // Corvane already running.
    int exec();

    AppDelegate& appDelegate() { return appDelegate_; }
    ui::ContentView& window() { return *window_; }

  private:
    QApplication application_;
    AppDelegate appDelegate_;
    std::unique_ptr<ui::ContentView> window_;
    std::optional<int> handedOver_;
};

}  // namespace corvane::app
