#include "ui/content_view.h"

#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QShowEvent>
#include <QVBoxLayout>

#include "ui/color.h"
#include "ui/cpu_history_chart.h"
#include "ui/dashboard_accessibility.h"
#include "ui/metric_format.h"

namespace corvane::ui {

namespace {

constexpr std::string_view kAccentHex = "#40E0D0";
constexpr int kTitlePixels = 26;
constexpr int kRowPixels = 17;
constexpr int kCaptionPixels = 13;

enum Row { kCpu, kRam, kDisk, kBattery, kDownload, kUpload };

QFont pixelFont(QFont font, int pixels, bool bold = false) {
    font.setPixelSize(pixels);
    font.setBold(bold);
    return font;
}

void setTextColor(QLabel* label, const QColor& color) {
    if (label->palette().color(QPalette::WindowText) == color) {
        return;  // an unchanged palette would still re-polish the label
    }
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, color);
    label->setPalette(palette);
}

}  // namespace

ContentView::ContentView(QWidget* parent)
    : ContentView(std::make_shared<monitor::SystemMonitor>(), parent) {}

ContentView::ContentView(std::shared_ptr<monitor::SystemMonitor> monitor, QWidget* parent)
    : QWidget(parent),
      monitor_(std::move(monitor)),
      title_(new QLabel(tr("System Monitor"), this)) {
    installDashboardAccessibility();
    setMinimumSize(kMinimumSide, kMinimumSide);
    QPalette black = palette();
    black.setColor(QPalette::Window, Qt::black);
    setPalette(black);
    setAutoFillBackground(true);
    // The window has no title of its own: it goes by the application's name.
    setAccessibleName(QGuiApplication::applicationDisplayName());
    setAccessibleDescription(tr("System monitor dashboard"));

    auto* stack = new QVBoxLayout(this);
    stack->setContentsMargins(kInset, kInset, kInset, kInset);
    stack->setSpacing(kSpacing);

    title_->setObjectName("title");
    title_->setFont(pixelFont(font(), kTitlePixels, true));
    stack->addWidget(title_, 0, Qt::AlignHCenter);

    const std::array<QString, 6> names{tr("CPU Usage:"), tr("RAM Usage:"), tr("Disk Usage:"),
                                       tr("Battery:"),   tr("Download:"),  tr("Upload:")};
    const QFont rowFont = pixelFont(font(), kRowPixels);
    for (std::size_t row = 0; row < names.size(); ++row) {
        labels_[row] = new QLabel(names[row], this);
        values_[row] = new QLabel(this);
        labels_[row]->setObjectName(QStringLiteral("label%1").arg(row));
        values_[row]->setObjectName(QStringLiteral("value%1").arg(row));
        values_[row]->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        labels_[row]->setBuddy(values_[row]);  // "CPU Usage: 7.44 %" is read as one
        for (QLabel* text : {labels_[row], values_[row]}) {
            text->setFont(rowFont);
        }
        // The rows are direct members of the stack: no container, so 20 separates them too.
        auto* line = new QHBoxLayout;
        line->setContentsMargins(0, 0, 0, 0);
        line->addWidget(labels_[row]);
        line->addStretch(1);
        line->addWidget(values_[row]);
        stack->addLayout(line);
    }

    // Created after the rows: screen readers list the children in the order they were made.
    caption_ = new QLabel(tr("CPU Usage History (last 1 min)"), this);
    chart_ = new CpuHistoryChart(this);
    caption_->setObjectName("caption");
    caption_->setFont(pixelFont(font(), kCaptionPixels));
    setTextColor(caption_, Qt::white);
    stack->addWidget(caption_, 0, Qt::AlignHCenter);

    chart_->setObjectName("cpuHistory");
    chart_->setAccessibleName(caption_->text());
    stack->addWidget(chart_);
    stack->addStretch(1);  // every extra height collects below the chart

    connect(monitor_.get(), &monitor::SystemMonitor::objectWillChange, this,
            &ContentView::markStale);
    QAccessible::installActivationObserver(this);
    refresh();
}

ContentView::~ContentView() {
    QAccessible::removeActivationObserver(this);
}

void ContentView::refresh() {
    applyAccent();
    const monitor::SystemMonitor& m = *monitor_;
    const std::array<std::string, 6> texts{
        formatPercent(m.cpuUsage()),   formatPercent(m.ramUsage()),
        formatPercent(m.diskUsage()),  formatBattery(m.batteryLevel(), m.batteryState()),
        formatRate(m.downloadSpeed()), formatRate(m.uploadSpeed()),
    };
    for (std::size_t row = 0; row < texts.size(); ++row) {
        values_[row]->setText(QString::fromStdString(texts[row]));
    }
    chart_->setHistory(m.cpuHistory());
    if (QAccessible::isActive()) {
        describeChart();
    }
    stale_ = false;
    emit refreshed();
}

// Setting the description announces the change to whoever listens.
void ContentView::describeChart() {
    chart_->setAccessibleDescription(
        QString::fromStdString(describeHistory(monitor_->cpuHistory())));
}

void ContentView::accessibilityActiveChanged(bool active) {
    if (active) {
        describeChart();  // it was not kept while nobody listened
    }
}

// The accent is parsed anew on every refresh, once for the title and once for the rows.
void ContentView::applyAccent() {
    setTextColor(title_, toQColor(Color::fromHex(kAccentHex)));
    const QColor rows = toQColor(Color::fromHex(kAccentHex));
    for (std::size_t row = 0; row < labels_.size(); ++row) {
        setTextColor(labels_[row], rows);
        setTextColor(values_[row], rows);
    }
}

// A tick writes many fields in a row, each announced first: only the first announcement
// schedules work, and the refresh runs once control is back in the event loop, after the tick.
void ContentView::markStale() {
    stale_ = true;
    scheduleRefresh();
}

// A minimised window stays "visible" to Qt, but nobody sees it: it is not redrawn either.
bool ContentView::isOnScreen() const {
    return isVisible() && !window()->isMinimized();
}

void ContentView::scheduleRefresh() {
    if (refreshScheduled_ || !isOnScreen()) {
        return;  // a hidden or minimised dashboard catches up when it is shown again
    }
    refreshScheduled_ = true;
    QMetaObject::invokeMethod(this, &ContentView::runScheduledRefresh, Qt::QueuedConnection);
}

void ContentView::runScheduledRefresh() {
    refreshScheduled_ = false;
    if (stale_ && isOnScreen()) {
        refresh();
    }
}

void ContentView::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    // A spontaneous show is the window system restoring the window, not a new appearance.
    if (!event->spontaneous()) {
        monitor_->startMonitoring();
    }
    if (stale_) {
        scheduleRefresh();
    }
}

void ContentView::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange && stale_) {
        scheduleRefresh();  // restored from the task bar
    }
}

}  // namespace corvane::ui
