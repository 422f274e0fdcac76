// The dashboard: its number formats, colour scan and axis against their case tables, and the
// window as it shows a monitor on a fixture machine.
#include <gtest/gtest.h>

#include <QAccessible>
#include <QLabel>
#include <QLineSeries>
#include <QSignalSpy>
#include <QValueAxis>
#include <clocale>

#include "support.h"
#include "ui/axis_range.h"
#include "ui/color.h"
#include "ui/content_view.h"
#include "ui/cpu_history_chart.h"
#include "ui/metric_format.h"

namespace corvane::ui {
namespace {

using namespace corvane::testing;

std::vector<double> numbers(const std::string& text) {
    std::vector<double> values;
    std::ranges::transform(words(text), std::back_inserter(values), number);
    return values;
}

TEST(Dashboard, FormatsInTheCAndAGermanLocaleColoursAndAxisTables) {
    for (const char* locale : {"C", "de_DE.UTF-8"}) {
        ASSERT_NE(std::setlocale(LC_ALL, locale), nullptr) << locale << " is not generated";
        for (const auto& c : caseTable("formats")) {
            EXPECT_EQ(c[0] == "percent"   ? formatPercent(number(c[1]))
                      : c[0] == "rate"    ? formatRate(number(c[1]))
                      : c[0] == "battery" ? formatBattery(std::stoll(c[1]), c[2])
                                          : describeHistory(numbers(c[1])),
                      c.fields.back())
                << c.where << " " << locale;
        }
    }
    std::setlocale(LC_ALL, "C");
    for (const auto& c : caseTable("colours")) {
        const Color colour = Color::fromHex(c[0]);
        const auto byte = [&](int i) { return std::stoi(words(c[1]).at(i), nullptr, 16) / 255.0; };
        EXPECT_EQ(join(colour.red, colour.green, colour.blue, colour.opacity,
                       colour.space == ColorSpace::sRGB),
                  join(byte(0), byte(1), byte(2), 1, true))
            << c.where;
    }
    EXPECT_EQ(toQColor(Color::fromHex("#40E0D0")), QColor(64, 224, 208));
    for (const auto& c : caseTable("axis")) {
        const AxisRange range = valueAxisRange(numbers(c[0]));
        EXPECT_EQ(join(range.min, range.max, range.tickCount), join(c[1])) << c.where;
    }
    // Each finite value at its position; the others are left out and the line joins around them.
    CpuHistoryChart chart;
    chart.setHistory(numbers("10 nan inf 20 -inf"));
    EXPECT_EQ(chart.series().points(), (QList<QPointF>{{0, 10}, {3, 20}}));
    EXPECT_EQ(join(chart.xAxis().max(), chart.yAxis().max(), chart.yAxis().tickCount()), "29 20 5");
    chart.setHistory(std::vector<double>(31, 1.0));
    EXPECT_EQ(chart.xAxis().max(), 30.0);
}

class DashboardView : public ::testing::Test {
  protected:
    QStringList texts(const char* kind) const {
        QStringList out;
        for (int row = 0; row < 6; ++row) {
            out << view.findChild<QLabel*>(kind + QString::number(row))->text();
        }
        return out;
    }
    QWidget* child(const QString& name) const { return view.findChild<QWidget*>(name); }
    static void settle() { QCoreApplication::processEvents(); }

    Rig rig{"laptop-energy"};
    ContentView view{rig.monitor};
    QSignalSpy refreshes{&view, &ContentView::refreshed};
};

TEST_F(DashboardView, RowsFromTheMonitorOneRefreshPerTickAndNoneWhileHidden) {
    EXPECT_TRUE(rig.timers.empty()) << "creating the dashboard must not start sampling";
    EXPECT_EQ(texts("value"), QStringList({"0.00 %", "0.00 %", "0.00 %", "0% (Unknown)",
                                           "0.00 MB/s", "0.00 MB/s"}));

    rig.writeHealthy();
    view.show();  // the first appearance starts the monitor: one tick at once
    EXPECT_EQ(rig.timers.size(), 1u);
    EXPECT_EQ(refreshes.count(), 0) << "the refresh waits for the event loop";
    settle();
    rig.tick();
    EXPECT_EQ(refreshes.count(), 1);
    settle();
    settle();
    EXPECT_EQ(refreshes.count(), 2) << "one refresh per tick";
    EXPECT_EQ(texts("value"), QStringList({"25.00 %", "42.91 %", "75.00 %", "80% (Charging)",
                                           "3.00 MB/s", "0.50 MB/s"}));
    const auto& chart = *view.findChild<CpuHistoryChart*>();
    EXPECT_EQ(chart.series().points(), (QList<QPointF>{{0, 25}, {1, 25}}));
    // Described only while assistive technology listens; Qt says that it does when it starts.
    QAccessibleInterface* history = QAccessible::queryAccessibleInterface(child("cpuHistory"));
    EXPECT_EQ(history->text(QAccessible::Description), "");
    QAccessible::setActive(true);
    EXPECT_EQ(history->text(QAccessible::Description),
              "2 values, lowest 25.00 %, highest 25.00 %, latest 25.00 %");
    QAccessible::setActive(false);

    view.hide();
    rig.tick();
    settle();
    EXPECT_EQ(refreshes.count(), 2);
    view.show();  // each appearance starts the monitor once more, and catches up once
    EXPECT_EQ(rig.timers.size(), 2u);
    settle();
    EXPECT_EQ(refreshes.count(), 3);
    EXPECT_EQ(chart.series().count(), 4);
    view.setWindowState(Qt::WindowMinimized);  // still "visible" to Qt, but not redrawn
    rig.tick();
    settle();
    EXPECT_EQ(refreshes.count(), 3);
    view.setWindowState(Qt::WindowNoState);
    settle();
    EXPECT_EQ(refreshes.count(), 4);
    view.setWindowState(Qt::WindowMaximized);
    settle();
    EXPECT_EQ(refreshes.count(), 4) << "a change of state with nothing new redraws nothing";
}

// Text of 26, 17 and 13 pixels; insets of 40 and gaps of 20; values flush right; extra
// height below the chart, black.
TEST_F(DashboardView, LayoutGrowsWithTheWindow) {
    EXPECT_EQ(join(child("title")->font().pixelSize(), child("title")->font().bold(),
                   child("value0")->font().pixelSize(), child("value0")->font().bold(),
                   child("caption")->font().pixelSize()),
              "26 1 17 0 13");
    EXPECT_EQ(view.minimumSize(), QSize(500, 500));
    int chartTop = 0;
    for (const QSize size : {QSize(500, 700), QSize(900, 1000)}) {
        view.resize(size);
        view.show();
        settle();
        const QRect plot = child("cpuHistory")->geometry();
        EXPECT_EQ(plot, QRect(40, chartTop ? chartTop : plot.y(), size.width() - 80, 150));
        chartTop = plot.y();
        EXPECT_EQ(child("title")->y(), 40);
        EXPECT_NEAR(child("title")->geometry().center().x(), size.width() / 2, 1);
        EXPECT_EQ(plot.y() - child("caption")->geometry().bottom(), 21);
        EXPECT_EQ(child("label1")->y() - child("label0")->geometry().bottom(), 21);
        EXPECT_EQ(join(child("label5")->x(), child("value5")->geometry().right()),
                  join(40, size.width() - 41));
    }
    const QImage image = view.grab().toImage();
    EXPECT_EQ(image.pixelColor(450, 980), QColor(Qt::black));
    EXPECT_EQ(image.pixelColor(child("cpuHistory")->geometry().topLeft() + QPoint(2, 2)),
              QColor(Qt::black));
}

}  // namespace
}  // namespace corvane::ui
