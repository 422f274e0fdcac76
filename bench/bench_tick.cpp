// One monitor tick on this machine's /proc, /sys and home volume, each reader alone, and the
// floor: nothing but the raw reads of the same files through descriptors kept open, plus the
// statvfs of the home directory. Prints the ratio tick / floor at the end.
#include <benchmark/benchmark.h>
#include <dirent.h>
#include <fcntl.h>
#include <pwd.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "monitor/system_monitor.h"
#include "sources/battery_info.h"
#include "sources/cpu_load.h"
#include "sources/disk_usage.h"
#include "sources/memory_usage.h"
#include "sources/network_throughput.h"

namespace {

using namespace corvane;

// A started monitor whose timer action is kept here instead of being scheduled.
class TickHarness {
  public:
    explicit TickHarness(monitor::MonitorEnvironment environment = {}) {
        environment.startTimer = [this](std::chrono::milliseconds, std::function<void()> action) {
            tick_ = std::move(action);
            return QPointer<QObject>();
        };
        environment.post = [](const platform::NotificationRequest&) {};
        monitor_ = std::make_shared<monitor::SystemMonitor>(std::move(environment));
        monitor_->startMonitoring();
    }
    void tick() { tick_(); }

  private:
    std::function<void()> tick_;
    std::shared_ptr<monitor::SystemMonitor> monitor_;
};

std::string readOnce(const std::string& path) {
    std::string text;
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd >= 0) {
        char buffer[256];
        const ssize_t n = ::read(fd, buffer, sizeof buffer);
        text.assign(buffer, n > 0 ? static_cast<std::size_t>(n) : 0);
        ::close(fd);
    }
    while (!text.empty() && text.back() == '\n') {
        text.pop_back();
    }
    return text;
}

bool readable(const std::string& path) {
    return ::access(path.c_str(), R_OK) == 0;
}

// The files a tick reads, found once, read per iteration with pread at offset 0 to the end.
class Floor {
  public:
    Floor() {
        for (const char* path : {"/proc/stat", "/proc/meminfo", "/proc/net/dev"}) {
            add(path);
        }
        addPowerSupplyFiles();
        if (const passwd* entry = getpwuid(getuid())) {
            home_ = entry->pw_dir;
        }
    }
    ~Floor() {
        for (const int fd : fds_) {
            ::close(fd);
        }
    }
    std::size_t fileCount() const { return fds_.size(); }

    std::size_t read() {
        std::size_t bytes = 0;
        for (const int fd : fds_) {
            std::size_t length = 0;
            for (ssize_t n = 0; (n = ::pread(fd, buffer_.data() + length, buffer_.size() - length,
                                             static_cast<off_t>(length))) > 0;) {
                length += static_cast<std::size_t>(n);
            }
            bytes += length;
        }
        struct statvfs volume {};
        ::statvfs(home_.c_str(), &volume);
        return bytes + volume.f_bavail;
    }

  private:
    void add(const std::string& path) {
        const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
        if (fd >= 0) {
            fds_.push_back(fd);
        }
    }

    // Same choice as the reader: first battery by name that is not a device's, its capacity
    // pair, and the chargers' online files, or its status when there is no charger.
    void addPowerSupplyFiles() {
        const std::string dir = "/sys/class/power_supply/";
        std::vector<std::string> names;
        if (DIR* stream = ::opendir(dir.c_str())) {
            while (const dirent* entry = ::readdir(stream)) {
                if (entry->d_name[0] != '.') {
                    names.emplace_back(entry->d_name);
                }
            }
            ::closedir(stream);
        }
        std::sort(names.begin(), names.end());
        std::string battery;
        std::size_t chargers = 0;
        for (const std::string& name : names) {
            const std::string type = readOnce(dir + name + "/type");
            if (type == "Mains" || type == "USB") {
                add(dir + name + "/online");
                ++chargers;
            } else if (type == "Battery" && battery.empty() &&
                       readOnce(dir + name + "/scope") != "Device") {
                battery = dir + name + "/";
            }
        }
        if (battery.empty()) {
            return;
        }
        if (readable(battery + "energy_now")) {
            add(battery + "energy_now");
            add(battery + "energy_full");
        } else if (readable(battery + "charge_now")) {
            add(battery + "charge_now");
            add(battery + "charge_full");
        } else {
            add(battery + "capacity");
        }
        if (chargers == 0) {
            add(battery + "status");
        }
    }

    std::vector<int> fds_;
    std::string home_;
    std::array<char, 65536> buffer_{};
};

void BM_Tick(benchmark::State& state) {
    TickHarness harness;
    for (auto _ : state) {
        harness.tick();
    }
}
BENCHMARK(BM_Tick);

// The same tick with the password entry looked up once: what the readers and the monitor
// cost without the per-tick getpwuid_r that the disk sampler makes.
void BM_TickHomeLookedUpOnce(benchmark::State& state) {
    monitor::MonitorEnvironment environment;
    environment.homeDirectory = [home = sources::userHomeDirectory()] { return home; };
    TickHarness harness(std::move(environment));
    for (auto _ : state) {
        harness.tick();
    }
}
BENCHMARK(BM_TickHomeLookedUpOnce);

void BM_Floor(benchmark::State& state) {
    Floor floor;
    for (auto _ : state) {
        benchmark::DoNotOptimize(floor.read());
    }
    state.counters["files"] = static_cast<double>(floor.fileCount());
}
BENCHMARK(BM_Floor);

void BM_CpuLoadReader(benchmark::State& state) {
    sources::CpuLoadReader reader("/");
    for (auto _ : state) {
        benchmark::DoNotOptimize(reader.read());
    }
}
BENCHMARK(BM_CpuLoadReader);

void BM_MemoryReader(benchmark::State& state) {
    sources::MemoryReader reader("/", sources::systemPageSize());
    for (auto _ : state) {
        benchmark::DoNotOptimize(reader.read());
    }
}
BENCHMARK(BM_MemoryReader);

void BM_DiskReader(benchmark::State& state) {
    sources::DiskReader reader;
    for (auto _ : state) {
        benchmark::DoNotOptimize(reader.read());
    }
}
BENCHMARK(BM_DiskReader);

void BM_HomeDirectory(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(sources::userHomeDirectory());
    }
}
BENCHMARK(BM_HomeDirectory);

void BM_PowerSourceReader(benchmark::State& state) {
    sources::PowerSourceReader reader("/");
    for (auto _ : state) {
        benchmark::DoNotOptimize(reader.read());
    }
}
BENCHMARK(BM_PowerSourceReader);

void BM_NetworkReader(benchmark::State& state) {
    sources::NetworkReader reader("/");
    for (auto _ : state) {
        benchmark::DoNotOptimize(reader.read());
    }
}
BENCHMARK(BM_NetworkReader);

// Console output as usual, plus each benchmark's real and CPU time per iteration (the median
// when repetitions were asked for) for the final ratios.
class RecordingReporter : public benchmark::ConsoleReporter {
  public:
    struct Times {
        double real = 0.0;
        double cpu = 0.0;
    };

    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            const bool median = run.run_type == Run::RT_Aggregate && run.aggregate_name == "median";
            const bool single = run.run_type == Run::RT_Iteration && run.repetitions <= 1;
            if ((median || single) && !failed(run)) {
                const double toNs = 1e9 / benchmark::GetTimeUnitMultiplier(run.time_unit);
                times[run.run_name.function_name] = {run.GetAdjustedRealTime() * toNs,
                                                     run.GetAdjustedCPUTime() * toNs};
            }
        }
    }
    std::map<std::string, Times> times;

  private:
    // Google Benchmark 1.8 replaced the error flag with a skip reason (a template, so that only
    // the branch of the installed version is compiled).
    template <typename R>
    static bool failed(const R& run) {
        if constexpr (requires { run.skipped; }) {
            return run.skipped != 0;
        } else {
            return run.error_occurred;
        }
    }
};

void printRatio(const std::map<std::string, RecordingReporter::Times>& times, const char* tick) {
    if (!times.contains(tick) || !times.contains("BM_Floor")) {
        return;
    }
    const auto& t = times.at(tick);
    const auto& f = times.at("BM_Floor");
    std::printf("%-24s real %6.0f ns / %6.0f ns = %.2f    cpu %6.0f ns / %6.0f ns = %.2f\n", tick,
                t.real, f.real, t.real / f.real, t.cpu, f.cpu, t.cpu / f.cpu);
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    RecordingReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    std::printf("tick / floor (target <= 1.50):\n");
    printRatio(reporter.times, "BM_Tick");
    printRatio(reporter.times, "BM_TickHomeLookedUpOnce");
    return 0;
}
