// One dashboard refresh after a tick: the six value texts and the chart rebuilt from the
// monitor's fields, the layout that follows, and a paint of the whole window into an image,
// all on the offscreen platform. The tick itself is not timed. Every tick changes every row,
// so no text stays as it was; the history is full (30 points).
#include <benchmark/benchmark.h>

#include <unistd.h>
#include <QApplication>
#include <QImage>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <string>

#include "monitor/system_monitor.h"
#include "ui/content_view.h"

namespace {

using namespace corvane;
namespace fs = std::filesystem;

// A machine in a temporary folder whose every reading moves with `step`.
class ChangingMachine {
  public:
    ChangingMachine()
        : root_(fs::temp_directory_path() /
                ("corvane-bench-refresh-" + std::to_string(::getpid()))) {
        fs::remove_all(root_);
        write("sys/class/power_supply/BAT0/type", "Battery\n");
        write("sys/class/power_supply/BAT0/status", "Discharging\n");
        write("sys/class/power_supply/BAT0/energy_full", "1000\n");
        write("sys/class/power_supply/AC/type", "Mains\n");
        write("sys/class/power_supply/AC/online", "0\n");
        set(0);
    }
    ~ChangingMachine() {
        std::error_code ignored;
        fs::remove_all(root_, ignored);
    }

    void set(std::uint64_t step) {
        const std::uint64_t busy = 100 + step % 800;
        write("proc/stat", "cpu  " + std::to_string(busy) + " 0 0 " + std::to_string(1000 - busy) +
                               " 0 0 0 0 0 0\n");
        write("proc/meminfo", "MemTotal: 16000000 kB\nActive: " +
                                  std::to_string(4000000 + 1000 * (step % 97)) + " kB\n");
        write("sys/class/power_supply/BAT0/energy_now", std::to_string(100 + step % 800) + "\n");
        const std::string received = std::to_string((step + 1) * (step + 1) * 100000);
        const std::string sent = std::to_string((step + 1) * 50000);
        write("proc/net/dev",
              "h\nh\n  eth0: " + received + " 1 0 0 0 0 0 0 " + sent + " 1 0 0 0 0 0 0\n");
        free_ = 100e9 + 1e9 * static_cast<double>(step % 300);
    }

    monitor::MonitorEnvironment environment(std::function<void()>& tick) {
        monitor::MonitorEnvironment environment;
        environment.root = root_;
        environment.pageSize = 4096;
        environment.homeDirectory = [] { return std::optional<std::string>("/home/bench"); };
        environment.volume = [this](const std::string&) {
            return std::optional<sources::VolumeSize>(sources::VolumeSize{500e9, free_});
        };
        environment.startTimer = [&tick](std::chrono::milliseconds, std::function<void()> action) {
            tick = std::move(action);
            return QPointer<QObject>();
        };
        environment.post = [](const platform::NotificationRequest&) {};
        return environment;
    }

  private:
    void write(const fs::path& relative, const std::string& content) {
        fs::create_directories((root_ / relative).parent_path());
        std::ofstream(root_ / relative, std::ios::trunc) << content;
    }

    fs::path root_;
    double free_ = 0.0;
};

void refreshAfterTick(benchmark::State& state, bool paint) {
    ChangingMachine machine;
    std::function<void()> tick;
    auto monitor = std::make_shared<monitor::SystemMonitor>(machine.environment(tick));
    // Never shown: the benchmark runs the refresh itself instead of the event loop, so that
    // exactly one refresh and one paint are timed.
    ui::ContentView view(monitor);
    view.resize(560, 720);
    monitor->startMonitoring();
    std::uint64_t step = 0;
    for (; step < 30; ++step) {
        machine.set(step);
        tick();
    }
    QImage image(view.size(), QImage::Format_ARGB32_Premultiplied);

    for (auto _ : state) {
        state.PauseTiming();
        machine.set(++step);
        tick();
        state.ResumeTiming();
        view.refresh();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
        if (paint) {
            view.render(&image);
        }
        benchmark::DoNotOptimize(image.constBits());
    }
}

void BM_RefreshAndPaint(benchmark::State& state) {
    refreshAfterTick(state, true);
}
void BM_RefreshOnly(benchmark::State& state) {
    refreshAfterTick(state, false);
}

BENCHMARK(BM_RefreshAndPaint)
    ->Unit(benchmark::kMicrosecond)
    ->Repetitions(5)
    ->ReportAggregatesOnly();
BENCHMARK(BM_RefreshOnly)->Unit(benchmark::kMicrosecond)->Repetitions(5)->ReportAggregatesOnly();

}  // namespace

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
