// corvane-test-app: the application exactly as shipped, except that its monitor reads a
// fixture tree instead of the machine, plus a few test-only hooks that the product must not
// have. Standard output stays the product's own; observations go to a report file.
//
//   --root DIR                 read /proc and /sys below DIR
//   --report FILE              append one line per show/hide of the dashboard window
//   --close-window-after MS    close the dashboard window as a user would
//   --screenshot FILE          save the dashboard window as a PNG ...
//   --screenshot-after MS      ... this long after start (default 2500)
//   --gap-report FILE          write the worst gap of a 5 ms main-thread timer (ms) to FILE,
//                              every second and at exit
#include <QFile>
#include <QSaveFile>
#include <QTimer>
#include <QWidget>
#include <algorithm>
#include <chrono>
#include <filesystem>
#include <string>

#include "app/corvane_app.h"

namespace {

struct Options {
    std::filesystem::path root{"/"};
    QString report;
    int closeWindowAfterMs = -1;
    QString screenshot;
    int screenshotAfterMs = 2500;
    QString gapReport;
};

Options parse(int argc, char** argv) {
    Options options;
    for (int i = 1; i + 1 < argc; i += 2) {
        const std::string name = argv[i];
        const char* value = argv[i + 1];
        if (name == "--root") {
            options.root = value;
        } else if (name == "--report") {
            options.report = QString::fromLocal8Bit(value);
        } else if (name == "--close-window-after") {
            options.closeWindowAfterMs = std::stoi(value);
        } else if (name == "--screenshot") {
            options.screenshot = QString::fromLocal8Bit(value);
        } else if (name == "--screenshot-after") {
            options.screenshotAfterMs = std::stoi(value);
        } else if (name == "--gap-report") {
            options.gapReport = QString::fromLocal8Bit(value);
        }
    }
    return options;
}

// Writes "<event> visible=<top-level windows shown> dashboards=<dashboard windows>" per show
// and hide of the dashboard window.
class WindowReporter : public QObject {
  public:
    WindowReporter(QString path, QObject* parent) : QObject(parent), path_(std::move(path)) {}

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Show || event->type() == QEvent::Hide) {
            write(event->type() == QEvent::Show ? "shown" : "hidden");
        }
        return QObject::eventFilter(watched, event);
    }

  private:
    void write(const char* what) {
        int visible = 0;
        int dashboards = 0;
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (widget->isWindow() && widget->windowType() != Qt::Popup && widget->isVisible()) {
                ++visible;
            }
            if (qobject_cast<corvane::ui::ContentView*>(widget) != nullptr) {
                ++dashboards;
            }
        }
        QFile file(path_);
        if (file.open(QIODevice::Append)) {
            file.write(QStringLiteral("%1 visible=%2 dashboards=%3\n")
                           .arg(QString::fromLatin1(what))
                           .arg(visible)
                           .arg(dashboards)
                           .toUtf8());
        }
    }

    QString path_;
};

// How long the main thread stayed away from its event loop: a 5 ms precise timer keeps the
// longest interval between two of its firings. The figure is rewritten every second, so a test
// that has to kill a stuck application still finds it, and once more when the application quits.
class GapRecorder : public QObject {
  public:
    GapRecorder(QString path, QObject* parent) : QObject(parent), path_(std::move(path)) {
        beat_.setTimerType(Qt::PreciseTimer);
        connect(&beat_, &QTimer::timeout, this, [this] {
            const auto now = Clock::now();
            worst_ = std::max(worst_, now - last_);
            last_ = now;
        });
        connect(&everySecond_, &QTimer::timeout, this, &GapRecorder::write);
        connect(qApp, &QCoreApplication::aboutToQuit, this, &GapRecorder::write);
        last_ = Clock::now();
        beat_.start(5);
        everySecond_.start(1000);
    }

  private:
    using Clock = std::chrono::steady_clock;

    void write() {
        QSaveFile file(path_);
        if (file.open(QIODevice::WriteOnly)) {
            const double ms = std::chrono::duration<double, std::milli>(worst_).count();
            file.write(QByteArray::number(ms, 'f', 1) + '\n');
            file.commit();
        }
    }

    QString path_;
    QTimer beat_;
    QTimer everySecond_;
    Clock::time_point last_;
    Clock::duration worst_{};
};

}  // namespace

int main(int argc, char** argv) {
    const Options options = parse(argc, argv);
    corvane::app::CorvaneApp app(
        argc, argv,
        [root = options.root] {
            corvane::monitor::MonitorEnvironment environment;
            environment.root = root;
            return std::make_shared<corvane::monitor::SystemMonitor>(std::move(environment));
        },
        corvane::app::desktopShellFacilities());

    QWidget& window = app.window();
    if (!options.report.isEmpty()) {
        window.installEventFilter(new WindowReporter(options.report, &window));
    }
    if (options.closeWindowAfterMs >= 0) {
        QTimer::singleShot(options.closeWindowAfterMs, &window, [&window] { window.close(); });
    }
    if (!options.gapReport.isEmpty()) {
        new GapRecorder(options.gapReport, &window);
    }
    if (!options.screenshot.isEmpty()) {
        QTimer::singleShot(options.screenshotAfterMs, &window,
                           [&window, path = options.screenshot] { window.grab().save(path); });
    }
    return app.exec();
}
