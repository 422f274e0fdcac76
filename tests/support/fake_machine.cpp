#include "support/fake_machine.h"

#include <unistd.h>
#include <QObject>
#include <atomic>
#include <fstream>
#include <iterator>

namespace corvane::testing {

namespace fs = std::filesystem;

namespace {

fs::path makeTempRoot() {
    static std::atomic<int> counter{0};
    // tmpfs where there is one: tests rewrite these files thousands of times.
    std::error_code error;
    const fs::path base =
        fs::is_directory("/dev/shm", error) ? fs::path("/dev/shm") : fs::temp_directory_path();
    const fs::path root =
        base / ("corvane-machine-" + std::to_string(::getpid()) + "-" + std::to_string(counter++));
    fs::remove_all(root);
    fs::create_directories(root);
    return root;
}

}  // namespace

FakeMachine::FakeMachine()
    : root_(makeTempRoot()),
      volume_(sources::VolumeSize{500e9, 250e9}),
      now_(std::chrono::system_clock::time_point{} + std::chrono::hours(24 * 365 * 50)) {
    fs::create_directories(root_ / "sys/class/power_supply");
    setCpuTicks(100, 0, 100, 800);
    setMemoryKb(16 * 1024 * 1024, 4 * 1024 * 1024);
    setNetTotals(0, 0);
}

FakeMachine::~FakeMachine() {
    std::error_code ignored;
    fs::remove_all(root_, ignored);
}

void FakeMachine::writeFile(const fs::path& relative, const std::string& content) {
    const fs::path path = root_ / relative;
    fs::create_directories(path.parent_path());
    if (fs::is_directory(path)) {
        fs::remove_all(path);
    }
    // Rewritten in place, like a procfs file that regenerates under a descriptor kept open.
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << content;
}

std::string FakeMachine::readFile(const fs::path& relative) const {
    std::ifstream in(root_ / relative, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

void FakeMachine::removeFile(const fs::path& relative) {
    fs::remove_all(root_ / relative);
}

void FakeMachine::setCpuTicks(std::uint64_t user, std::uint64_t nice, std::uint64_t system,
                              std::uint64_t idle) {
    writeFile("proc/stat", "cpu  " + std::to_string(user) + " " + std::to_string(nice) + " " +
                               std::to_string(system) + " " + std::to_string(idle) +
                               " 0 0 0 0 0 0\n"
                               "cpu0 1 0 1 1 0 0 0 0 0 0\nintr 0\nctxt 0\nbtime 0\n");
}

void FakeMachine::setCpuPerMille(std::uint64_t busy) {
    setCpuTicks(busy, 0, 0, 1000 - busy);
}

void FakeMachine::setMemoryKb(std::uint64_t totalKb, std::uint64_t activeKb,
                              std::uint64_t wiredKb) {
    auto line = [](const char* key, std::uint64_t kb) {
        return std::string(key) + ":" + std::string(16 - std::string(key).size(), ' ') +
               std::to_string(kb) + " kB\n";
    };
    writeFile("proc/meminfo", line("MemTotal", totalKb) + line("MemFree", totalKb / 2) +
                                  line("MemAvailable", totalKb / 2) + line("Active", activeKb) +
                                  line("Inactive", totalKb / 8) + line("Unevictable", wiredKb) +
                                  line("SUnreclaim", 0) + line("KernelStack", 0) +
                                  line("PageTables", 0));
}

void FakeMachine::setVolume(double sizeBytes, double freeBytes) {
    volume_ = sources::VolumeSize{sizeBytes, freeBytes};
}

void FakeMachine::failVolume() {
    volume_.reset();
}

void FakeMachine::setBattery(std::int64_t now, std::int64_t full, bool onAc,
                             const std::string& status) {
    const fs::path bat = "sys/class/power_supply/BAT0";
    writeFile(bat / "type", "Battery\n");
    writeFile(bat / "status", status + "\n");
    writeFile(bat / "present", "1\n");
    writeFile(bat / "energy_now", std::to_string(now) + "\n");
    writeFile(bat / "energy_full", std::to_string(full) + "\n");
    const fs::path ac = "sys/class/power_supply/AC";
    writeFile(ac / "type", "Mains\n");
    writeFile(ac / "online", onAc ? "1\n" : "0\n");
}

void FakeMachine::removeBattery() {
    removeFile("sys/class/power_supply/BAT0");
    removeFile("sys/class/power_supply/AC");
}

void FakeMachine::setNetTotals(std::uint64_t received, std::uint64_t sent) {
    auto row = [](const char* name, std::uint64_t rx, std::uint64_t tx) {
        return std::string(name) + ": " + std::to_string(rx) + " 10 0 0 0 0 0 0 " +
               std::to_string(tx) + " 10 0 0 0 0 0 0\n";
    };
    writeFile("proc/net/dev",
              "Inter-|   Receive                                                |  Transmit\n"
              " face |bytes    packets errs drop fifo frame compressed multicast|bytes    "
              "packets errs drop fifo colls carrier compressed\n" +
                  row("    lo", 5000, 5000) + row("  eth0", received, sent));
}

void FakeMachine::advance(std::chrono::duration<double> by) {
    now_ += std::chrono::duration_cast<std::chrono::system_clock::duration>(by);
}

monitor::MonitorEnvironment FakeMachine::environment() {
    monitor::MonitorEnvironment env;
    env.root = root_;
    env.pageSize = 4096;
    env.homeDirectory = [this] { return home_; };
    env.volume = [this](const std::string&) { return volume_; };
    env.wallClock = [this] { return now_; };
    env.startTimer = [this](std::chrono::milliseconds, std::function<void()> action) {
        timers_.push_back(std::move(action));
        timerHandles_.push_back(std::make_unique<QObject>());
        return QPointer<QObject>(timerHandles_.back().get());
    };
    env.post = [this](const platform::NotificationRequest& request) { posted_.push_back(request); };
    return env;
}

}  // namespace corvane::testing
