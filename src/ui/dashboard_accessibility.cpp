#include "ui/dashboard_accessibility.h"

#include <QAccessibleWidget>

#include "ui/content_view.h"
#include "ui/cpu_history_chart.h"

namespace corvane::ui {

namespace {

// A leaf: the chart's axes and scroll area behind it mean nothing to a listener.
class ChartAccessible : public QAccessibleWidget {
  public:
    explicit ChartAccessible(QWidget* chart) : QAccessibleWidget(chart, QAccessible::Chart) {}
    int childCount() const override { return 0; }
    QAccessibleInterface* child(int) const override { return nullptr; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }
};

// Qt's accessibility cache owns what a factory returns.
QAccessibleInterface* dashboardInterface(const QString& className, QObject* object) {
    auto* widget = qobject_cast<QWidget*>(object);
    if (widget == nullptr) {
        return nullptr;
    }
    if (className == QLatin1String(ContentView::staticMetaObject.className())) {
        return new QAccessibleWidget(widget, QAccessible::Window);
    }
    if (className == QLatin1String(CpuHistoryChart::staticMetaObject.className())) {
        return new ChartAccessible(widget);
    }
    return nullptr;
}

}  // namespace

void installDashboardAccessibility() {
    static const bool installed = [] {
        QAccessible::installFactory(&dashboardInterface);
        return true;
    }();
    (void)installed;
}

}  // namespace corvane::ui
