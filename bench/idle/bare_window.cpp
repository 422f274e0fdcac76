// The baseline for Corvane's idle cost: a plain Qt Widgets window with what the dashboard has
// on screen (a title, six value labels and a 30-point QtCharts line) updated every 2 s, and
// nothing else: no monitor, no tray, no D-Bus.
#include <QApplication>
#include <QChart>
#include <QChartView>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineSeries>
#include <QRandomGenerator>
#include <QTimer>
#include <QVBoxLayout>
#include <QValueAxis>
#include <array>

#include "first_frame_probe.h"

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QWidget window;
    auto* layout = new QVBoxLayout(&window);
    layout->setContentsMargins(40, 40, 40, 40);
    layout->setSpacing(20);
    layout->addWidget(new QLabel(QStringLiteral("System Monitor")));
    std::array<QLabel*, 6> values{};
    for (QLabel*& value : values) {
        auto* row = new QHBoxLayout;
        row->addWidget(new QLabel(QStringLiteral("Metric:")));
        row->addStretch();
        value = new QLabel(QStringLiteral("0.00 %"));
        row->addWidget(value);
        layout->addLayout(row);
    }

    auto* series = new QLineSeries;
    auto* chart = new QChart;
    chart->addSeries(series);
    auto* xAxis = new QValueAxis;
    auto* yAxis = new QValueAxis;
    xAxis->setRange(0, 29);
    yAxis->setRange(0, 100);
    chart->addAxis(xAxis, Qt::AlignBottom);
    chart->addAxis(yAxis, Qt::AlignLeft);
    series->attachAxis(xAxis);
    series->attachAxis(yAxis);
    chart->legend()->hide();
    auto* view = new QChartView(chart);
    view->setMinimumHeight(200);
    layout->addWidget(view);

    QList<QPointF> points;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        const double value = QRandomGenerator::global()->bounded(100.0);
        for (QLabel* label : values) {
            label->setText(QString::number(value, 'f', 2) + QStringLiteral(" %"));
        }
        points.append(QPointF(0, value));
        if (points.size() > 30) {
            points.removeFirst();
        }
        for (qsizetype i = 0; i < points.size(); ++i) {
            points[i].setX(static_cast<double>(i));
        }
        series->replace(points);
    });
    timer.start(2000);

    window.resize(500, 557);
    window.show();
    corvane::bench::reportFirstFrame(window);
    return QApplication::exec();
}
