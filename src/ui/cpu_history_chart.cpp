#include "ui/cpu_history_chart.h"

#include <QLineSeries>
#include <QValueAxis>
#include <algorithm>
#include <cmath>

#include "monitor/system_monitor.h"
#include "ui/axis_range.h"

namespace corvane::ui {

QList<QPointF> historyPoints(std::span<const double> history) {
    QList<QPointF> points;
    points.reserve(static_cast<qsizetype>(history.size()));
    for (std::size_t i = 0; i < history.size(); ++i) {
        if (std::isfinite(history[i])) {
            points.append(QPointF(static_cast<double>(i), history[i]));
        }
    }
    return points;
}

// The chart goes to the view's constructor: the view owns it, and the chart owns the series
// and the axes. (Given later through setChart, it would orphan the view's default chart.)
CpuHistoryChart::CpuHistoryChart(QWidget* parent)
    : QChartView(new QChart, parent),
      series_(new QLineSeries),
      xAxis_(new QValueAxis),
      yAxis_(new QValueAxis) {
    QChart* chart = this->chart();
    chart->setTheme(QChart::ChartThemeDark);  // light axis text and grid for the black window
    chart->setBackgroundVisible(false);
    chart->setPlotAreaBackgroundVisible(false);
    chart->legend()->hide();
    chart->setMargins(QMargins(0, 0, 0, 0));
    chart->setBackgroundRoundness(0);
    chart->addSeries(series_);
    chart->addAxis(xAxis_, Qt::AlignBottom);
    chart->addAxis(yAxis_, Qt::AlignLeft);
    series_->attachAxis(xAxis_);
    series_->attachAxis(yAxis_);

    xAxis_->setLabelFormat("%d");
    xAxis_->setTickType(QValueAxis::TicksDynamic);
    xAxis_->setTickAnchor(0.0);
    xAxis_->setTickInterval(5.0);
    yAxis_->setLabelFormat("%g");

    setRenderHint(QPainter::Antialiasing);
    setFrameShape(QFrame::NoFrame);
    setBackgroundBrush(Qt::NoBrush);
    viewport()->setAutoFillBackground(false);
    setFixedHeight(kHeight);

    setHistory({});
}

void CpuHistoryChart::setHistory(std::span<const double> history) {
    // One replace call: the series redraws once instead of once per point.
    series_->replace(historyPoints(history));
    const auto lastPosition =
        std::max<std::size_t>(monitor::SystemMonitor::kHistoryLength, history.size()) - 1;
    xAxis_->setRange(0.0, static_cast<double>(lastPosition));
    const AxisRange values = valueAxisRange(history);
    yAxis_->setRange(values.min, values.max);
    yAxis_->setTickCount(values.tickCount);
}

}  // namespace corvane::ui
