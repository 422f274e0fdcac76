#include "ui/content_view.h"

#include <QShowEvent>

namespace corvane::ui {

ContentView::ContentView(QWidget* parent)
    : ContentView(std::make_shared<monitor::SystemMonitor>(), parent) {}

ContentView::ContentView(std::shared_ptr<monitor::SystemMonitor> monitor, QWidget* parent)
    : QWidget(parent), monitor_(std::move(monitor)) {
    setMinimumSize(500, 500);
}

ContentView::~ContentView() = default;

void ContentView::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (!event->spontaneous()) {
        monitor_->startMonitoring();
    }
}

}  // namespace corvane::ui
