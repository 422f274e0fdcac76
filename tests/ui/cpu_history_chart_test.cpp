#include "ui/cpu_history_chart.h"

#include <gtest/gtest.h>

#include <QLineSeries>
#include <QValueAxis>
#include <cfloat>
#include <limits>
#include <vector>

namespace corvane::ui {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

TEST(CpuHistoryChart, DrawsEachFiniteValueAtItsPosition) {
    const struct {
        std::vector<double> history;
        QList<QPointF> points;
        double lastX;
        double maxY;
    } cases[] = {
        {{}, {}, 29.0, 1.0},
        {{42.0}, {{0.0, 42.0}}, 29.0, 50.0},
        {{5.0, 7.5, 3.0}, {{0.0, 5.0}, {1.0, 7.5}, {2.0, 3.0}}, 29.0, 8.0},
        // Values that are not finite are left out; the line joins their neighbours.
        {{10.0, kNaN, kInf, 20.0, -kInf}, {{0.0, 10.0}, {3.0, 20.0}}, 29.0, 20.0},
        {{kNaN, kNaN}, {}, 29.0, 1.0},
    };
    CpuHistoryChart chart;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.history.size());
        chart.setHistory(c.history);
        EXPECT_EQ(chart.series().points(), c.points);
        EXPECT_EQ(chart.xAxis().min(), 0.0);
        EXPECT_EQ(chart.xAxis().max(), c.lastX);
        EXPECT_EQ(chart.yAxis().min(), 0.0);
        EXPECT_EQ(chart.yAxis().max(), c.maxY);
    }
}

TEST(CpuHistoryChart, PaintsValuesAtTheEndsOfTheDoubleRange) {
    const std::vector<std::vector<double>> cases = {
        {DBL_MAX, 1.0}, {-DBL_MAX, DBL_MAX}, {4.9e-324}, {1e300, kNaN, -1e300}, {-5.0, kInf},
    };
    CpuHistoryChart chart;
    chart.resize(420, 150);
    for (const auto& history : cases) {
        chart.setHistory(history);
        EXPECT_LE(chart.yAxis().min(), 0.0);
        EXPECT_GT(chart.yAxis().max(), chart.yAxis().min());
        EXPECT_FALSE(chart.grab().isNull());
    }
}

TEST(CpuHistoryChart, IsOneSeriesWithoutLegendOrBackground) {
    CpuHistoryChart chart;
    EXPECT_EQ(chart.chart()->series().size(), 1);
    EXPECT_FALSE(chart.chart()->legend()->isVisible());
    EXPECT_FALSE(chart.chart()->isBackgroundVisible());
    EXPECT_EQ(chart.height(), 150);
    // Axis labels must read on black.
    EXPECT_GT(chart.xAxis().labelsBrush().color().lightness(), 128);
    EXPECT_GT(chart.yAxis().labelsBrush().color().lightness(), 128);
}

}  // namespace
}  // namespace corvane::ui
