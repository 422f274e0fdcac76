#pragma once

#include <QAccessible>
#include <QWidget>
#include <array>
#include <memory>

#include "monitor/system_monitor.h"

class QLabel;

namespace corvane::ui {

class CpuHistoryChart;

// The dashboard: title, six metric rows and the CPU history chart, redrawn once per tick
// from the monitor's published fields. Starts the monitor each time it is shown.
//
// For screen readers the window is named after the application, each value is labelled by its
// row's label, and the chart describes the values its line draws. That description is only
// kept up to date while assistive technology is listening.
class ContentView : public QWidget, private QAccessible::ActivationObserver {
    Q_OBJECT
  public:
    static constexpr int kMinimumSide = 500;
    static constexpr int kInset = 40;
    static constexpr int kSpacing = 20;

    explicit ContentView(QWidget* parent = nullptr);
    explicit ContentView(std::shared_ptr<monitor::SystemMonitor> monitor,
                         QWidget* parent = nullptr);
    ~ContentView() override;

    const std::shared_ptr<monitor::SystemMonitor>& monitor() const { return monitor_; }

    // Rebuilds the six value texts and the chart from the monitor's current fields.
    void refresh();

  signals:
    // After each refresh; lets observers count redraws.
    void refreshed();

  protected:
    void showEvent(QShowEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    void accessibilityActiveChanged(bool active) override;
    void describeChart();
    bool isOnScreen() const;
    void markStale();
    void scheduleRefresh();
    void runScheduledRefresh();
    void applyAccent();

    std::shared_ptr<monitor::SystemMonitor> monitor_;
    QLabel* title_;
    std::array<QLabel*, 6> labels_{};
    std::array<QLabel*, 6> values_{};
    QLabel* caption_ = nullptr;
    CpuHistoryChart* chart_ = nullptr;
    bool stale_ = false;
    bool refreshScheduled_ = false;
};

}  // namespace corvane::ui
