#include "ui/cpu_history_chart.h"

#include <gtest/gtest.h>

#include <QLineSeries>
#include <QValueAxis>
#include <cfloat>
#include <cmath>
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
        {{42.0}, {{0.0, 42.0}}, 29.0, 60.0},
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

// Near the ends of the double range the nice-number grid overflows; the axis must still
// cover every finite value and the chart must still paint.
TEST(CpuHistoryChart, PaintsValuesAtTheEndsOfTheDoubleRange) {
    const std::vector<std::vector<double>> cases = {
        {DBL_MAX, 1.0},        {-DBL_MAX, DBL_MAX}, {4.9e-324},      {DBL_MIN},
        {1e300, kNaN, -1e300}, {-5.0, kInf},        {0.1, 0.2, 0.3}, {99.99999999},
    };
    CpuHistoryChart chart;
    chart.resize(420, 150);
    for (const auto& history : cases) {
        SCOPED_TRACE(history.front());
        chart.setHistory(history);
        const double min = chart.yAxis().min();
        const double max = chart.yAxis().max();
        EXPECT_TRUE(std::isfinite(min) && std::isfinite(max));
        EXPECT_LE(min, 0.0);
        EXPECT_LT(min, max);
        for (const double value : history) {
            if (std::isfinite(value)) {
                EXPECT_LE(min, value);
                EXPECT_GE(max, value);
            }
        }
        EXPECT_FALSE(chart.grab().isNull());
    }
}

}  // namespace
}  // namespace corvane::ui
