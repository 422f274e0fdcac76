#pragma once

#include <QWidget>
#include <memory>

#include "monitor/system_monitor.h"

namespace corvane::ui {

// The dashboard: title, six metric rows and the CPU history chart, redrawn once per tick
// from the monitor's published fields. Starts the monitor each time it is shown.
class ContentView : public QWidget {
    Q_OBJECT
public:
    explicit ContentView(QWidget* parent = nullptr);
    explicit ContentView(std::shared_ptr<monitor::SystemMonitor> monitor,
                         QWidget* parent = nullptr);
    ~ContentView() override;

    const std::shared_ptr<monitor::SystemMonitor>& monitor() const { return monitor_; }

protected:
    void showEvent(QShowEvent* event) override;

private:
    std::shared_ptr<monitor::SystemMonitor> monitor_;
};

}  // namespace corvane::ui
