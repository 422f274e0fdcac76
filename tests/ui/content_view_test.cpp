#include "ui/content_view.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QImage>
#include <QLabel>
#include <QLineSeries>
#include <QSignalSpy>
#include <memory>

#include "locale_guard.h"
#include "support/fake_machine.h"
#include "ui/cpu_history_chart.h"

namespace corvane::ui {
namespace {

using monitor::SystemMonitor;

constexpr std::uint64_t kMiB = 1024 * 1024;
constexpr std::uint64_t kGiBInKb = 1024 * 1024;

class ContentViewTest : public ::testing::Test {
  protected:
    QLabel* label(const char* kind, int row) const {
        return view.findChild<QLabel*>(QStringLiteral("%1%2").arg(kind).arg(row));
    }
    QStringList values() const {
        QStringList texts;
        for (int row = 0; row < 6; ++row) {
            texts << label("value", row)->text();
        }
        return texts;
    }
    const CpuHistoryChart& chart() const { return *view.findChild<CpuHistoryChart*>(); }
    // Lets the queued refresh and the layout run, as the event loop would after a tick.
    static void settle() { QCoreApplication::processEvents(); }

    void saveImage(const QImage& image, const char* name) const {
        const QString path = QDir(CORVANE_UI_ARTIFACTS).filePath(name);
        ASSERT_TRUE(image.save(path)) << path.toStdString();
    }

    testing::FakeMachine machine;
    std::shared_ptr<SystemMonitor> monitor = std::make_shared<SystemMonitor>(machine.environment());
    ContentView view{monitor};
};

TEST_F(ContentViewTest, ShowsTheInitialValuesUntilTheFirstTick) {
    EXPECT_EQ(machine.timerCount(), 0u) << "creating the dashboard must not start sampling";
    EXPECT_EQ(values(), QStringList({"0.00 %", "0.00 %", "0.00 %", "0% (Unknown)", "0.00 MB/s",
                                     "0.00 MB/s"}));
    QStringList labels;
    for (int row = 0; row < 6; ++row) {
        labels << label("label", row)->text();
    }
    EXPECT_EQ(labels, QStringList({"CPU Usage:", "RAM Usage:", "Disk Usage:", "Battery:",
                                   "Download:", "Upload:"}));
    EXPECT_EQ(view.findChild<QLabel*>("title")->text(), "System Monitor");
    EXPECT_EQ(view.findChild<QLabel*>("caption")->text(), "CPU Usage History (last 1 min)");
    EXPECT_TRUE(chart().series().points().isEmpty());
}

class ContentViewLocaleTest : public ContentViewTest,
                              public ::testing::WithParamInterface<const char*> {};

TEST_P(ContentViewLocaleTest, RowsShowTheFieldsWithAFullStop) {
    const LocaleGuard locale(GetParam());
    ASSERT_TRUE(locale.active()) << "locale " << GetParam() << " is not generated";
    machine.setCpuPerMille(854);
    machine.setMemoryKb(16 * kGiBInKb, 4 * kGiBInKb);
    machine.setVolume(500e9, 125e9);
    machine.setBattery(85, 100, true, "Charging");
    machine.setNetTotals(10 * kMiB, 20 * kMiB);
    view.show();
    machine.setNetTotals(13 * kMiB, 21 * kMiB);  // 3 MiB and 1 MiB in 2 s
    machine.fireTimer();
    settle();
    EXPECT_EQ(values(), QStringList({"85.40 %", "25.00 %", "75.00 %", "85% (Charging)", "1.50 MB/s",
                                     "0.50 MB/s"}));
}

INSTANTIATE_TEST_SUITE_P(Locales, ContentViewLocaleTest, ::testing::Values("C", "de_DE.UTF-8"));

TEST_F(ContentViewTest, ANaNUsageShowsAsNanAndLeavesTheChartEmpty) {
    machine.setCpuTicks(0, 0, 0, 0);  // no ticks counted yet: the load is 0 / 0
    view.show();
    settle();
    EXPECT_EQ(values()[0], "nan %");
    EXPECT_EQ(monitor->cpuHistory().size(), 1u);
    EXPECT_TRUE(chart().series().points().isEmpty());
}

TEST_F(ContentViewTest, ATickIsOneRefreshAfterControlReturnsToTheEventLoop) {
    machine.setBattery(85, 100, true, "Charging");
    machine.setNetTotals(10 * kMiB, 20 * kMiB);
    QSignalSpy refreshes(&view, &ContentView::refreshed);
    QSignalSpy announcements(monitor.get(), &SystemMonitor::objectWillChange);

    view.show();
    EXPECT_EQ(refreshes.count(), 0) << "the refresh must wait for the event loop";
    settle();
    EXPECT_EQ(refreshes.count(), 1);

    for (int tick = 2; tick <= 3; ++tick) {
        announcements.clear();
        machine.fireTimer();
        EXPECT_EQ(announcements.count(), 8);  // three usages, battery, network, history
        EXPECT_EQ(refreshes.count(), tick - 1);
        settle();
        EXPECT_EQ(refreshes.count(), tick);
    }
    settle();
    EXPECT_EQ(refreshes.count(), 3) << "no refresh without a change";
}

// Each appearance starts the monitor once; while hidden nothing is redrawn, and showing the
// dashboard again brings one refresh with the latest values.
TEST_F(ContentViewTest, StartsOnEachAppearanceAndCatchesUpOnceWhenShownAgain) {
    QSignalSpy refreshes(&view, &ContentView::refreshed);
    view.show();
    view.show();  // already on screen: not a new appearance
    settle();
    EXPECT_EQ(machine.timerCount(), 1u);
    view.hide();
    refreshes.clear();

    machine.setCpuPerMille(500);
    machine.fireTimer();
    machine.fireTimer();
    settle();
    EXPECT_EQ(refreshes.count(), 0);
    EXPECT_EQ(values()[0], "20.00 %");

    view.show();
    EXPECT_EQ(machine.timerCount(), 2u);
    settle();
    EXPECT_EQ(refreshes.count(), 1);
    EXPECT_EQ(values()[0], "50.00 %");
    EXPECT_EQ(chart().series().count(), 4);

    // Minimised, the window is still "visible" to Qt but is not redrawn until restored.
    view.setWindowState(Qt::WindowMinimized);
    settle();
    refreshes.clear();
    machine.setCpuPerMille(600);
    machine.fireTimer();
    settle();
    EXPECT_EQ(refreshes.count(), 0);
    view.setWindowState(Qt::WindowNoState);
    settle();
    EXPECT_EQ(refreshes.count(), 1);
    EXPECT_EQ(values()[0], "60.00 %");
}

TEST_F(ContentViewTest, GrowsWithTheWindowKeepingValuesRightAndExtraHeightBelow) {
    EXPECT_EQ(view.minimumSize(), QSize(500, 500));
    view.resize(100, 100);
    EXPECT_EQ(view.size(), QSize(500, 500));

    const auto check = [&](int width, int height) {
        SCOPED_TRACE(QStringLiteral("%1x%2").arg(width).arg(height).toStdString());
        view.resize(width, height);
        view.show();
        settle();
        const QRect plot = chart().geometry();
        EXPECT_EQ(plot, QRect(40, plot.y(), width - 80, 150));
        for (int row = 0; row < 6; ++row) {
            EXPECT_EQ(label("label", row)->geometry().left(), 40);
            EXPECT_EQ(label("value", row)->geometry().right(), width - 41);
            if (row > 0) {
                EXPECT_EQ(label("label", row)->y() - label("label", row - 1)->geometry().bottom(),
                          21);  // a gap of 20 between rows
            }
        }
        const QLabel* title = view.findChild<QLabel*>("title");
        const QLabel* caption = view.findChild<QLabel*>("caption");
        EXPECT_EQ(title->y(), 40);
        EXPECT_NEAR(title->geometry().center().x(), width / 2, 1);
        EXPECT_NEAR(caption->geometry().center().x(), width / 2, 1);
        EXPECT_EQ(plot.y() - caption->geometry().bottom(), 21);
        return plot.y();
    };
    const int chartTop = check(500, 700);
    EXPECT_EQ(check(900, 1000), chartTop) << "extra height must collect below the chart";

    // The extra height is black.
    const QImage image = view.grab().toImage();
    EXPECT_EQ(image.pixelColor(450, 980), QColor(Qt::black));
    EXPECT_EQ(image.pixelColor(5, 5), QColor(Qt::black));
    // So is the chart's own background.
    EXPECT_EQ(image.pixelColor(chart().geometry().topLeft() + QPoint(2, 2)), QColor(Qt::black));
}

TEST_F(ContentViewTest, ChartHoldsTheLastThirtyTicks) {
    // Tick k reads a load of exactly k percent.
    machine.setCpuPerMille(10);
    view.show();
    for (int tick = 2; tick <= 30; ++tick) {
        machine.setCpuPerMille(10 * tick);
        machine.fireTimer();
    }
    settle();
    const auto expectPoints = [&](double firstValue) {
        const QList<QPointF> points = chart().series().points();
        ASSERT_EQ(points.size(), 30);
        for (int i = 0; i < 30; ++i) {
            EXPECT_EQ(points[i].x(), i);
            EXPECT_EQ(points[i].y(), monitor->cpuHistory()[i]);  // drawn as stored
            EXPECT_NEAR(points[i].y(), firstValue + i, 1e-9);
        }
    };
    // The axes follow the points; the chart tests prove how.
    expectPoints(1.0);

    machine.setCpuPerMille(310);
    machine.fireTimer();
    settle();
    expectPoints(2.0);

    view.resize(560, 720);
    settle();
    saveImage(view.grab().toImage(), "dashboard.png");
}

}  // namespace
}  // namespace corvane::ui
