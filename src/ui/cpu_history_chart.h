#pragma once

#include <QChartView>
#include <QList>
#include <QPointF>
#include <span>

class QLineSeries;
class QValueAxis;

namespace corvane::ui {

// The points of the history line: (position, value), oldest at x 0. A value that is not
// finite has no place on the axis and is left out, so the line joins its neighbours.
QList<QPointF> historyPoints(std::span<const double> history);

// One line through the recent CPU values on a transparent background with light axis text,
// 150 high. The x axis spans the 30 positions of a full history; the y axis is automatic.
class CpuHistoryChart : public QChartView {
    Q_OBJECT
  public:
    static constexpr int kHeight = 150;

    explicit CpuHistoryChart(QWidget* parent = nullptr);

    void setHistory(std::span<const double> history);

    const QLineSeries& series() const { return *series_; }
    const QValueAxis& xAxis() const { return *xAxis_; }
    const QValueAxis& yAxis() const { return *yAxis_; }

  private:
    QLineSeries* series_;
    QValueAxis* xAxis_;
    QValueAxis* yAxis_;
};

}  // namespace corvane::ui
