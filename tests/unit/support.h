#pragma once

#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QString>
#include <charconv>
#include <cmath>
#include <concepts>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "monitor/system_monitor.h"

namespace corvane::testing {

// One case of a table kept as data in tests/cases/<name>.txt: a line of fields separated by
// "|", blanks around a field trimmed. Escapes: \n \t \r \\ \| \xHH, and \s for a kept blank.
// Blank lines and lines whose first word is "#" are comments.
struct Case {
    std::string where;  // file:line, for failure messages
    std::vector<std::string> fields;
    const std::string& operator[](std::size_t i) const { return fields.at(i); }
};
std::vector<Case> caseTable(const std::string& name);

// Values as the tables write them: integers in decimal, doubles in their shortest exact form.
inline std::string show(const std::string& text) {
    return text;
}
inline std::string show(double value) {
    char digits[32];
    return std::isnan(value) ? "nan"
                             : std::string(digits, std::to_chars(digits, digits + 32, value).ptr);
}
inline std::string show(std::integral auto value) {
    return std::to_string(value);
}
template <typename T>
std::string show(const std::optional<T>& value) {
    return value ? show(*value) : "-";
}
std::string join(const auto&... values) {
    std::string out;
    ((out += (out.empty() ? "" : " ") + show(values)), ...);
    return out;
}

std::vector<std::string> words(std::string_view text);
std::string readFile(const std::filesystem::path& path);
double number(std::string_view text);  // "nan", "inf" and "-inf" included; locale-free

// A machine's files in a fresh folder (a copy of tests/fixtures/<fixture>), removed with it.
struct TempTree {
    explicit TempTree(std::string_view fixture = {});
    ~TempTree() { std::filesystem::remove_all(root_); }
    const std::filesystem::path& root() const { return root_; }
    // Rewrites in place (same inode), as the kernel regenerates a file under an open descriptor.
    void write(std::string_view relative, std::string_view content) const;
    void remove(std::string_view relative) const { std::filesystem::remove_all(root_ / relative); }
    std::size_t openDescriptors() const;  // this process's descriptors on files in the tree

  private:
    std::filesystem::path root_;
};

// A monitor on a fixture machine whose files are written healthy again before each tick, eth0
// moving 6 MiB in and 1 MiB out per tick, with a hand-driven wall clock and timers.
struct Rig {
    explicit Rig(const std::string& machine)
        : fixture(std::filesystem::path(CORVANE_FIXTURES) / machine), tree(machine) {
        monitor::MonitorEnvironment env;
        env.root = tree.root();
        env.pageSize = 4096;
        env.homeDirectory = [this] { return home; };
        env.volume = [this](const std::string&) { return volume; };
        env.wallClock = [this] { return now; };
        env.startTimer = [this](std::chrono::milliseconds period, std::function<void()> action) {
            periods.push_back(period);
            timers.push_back(std::move(action));
            return QPointer<QObject>(&timerHandle);
        };
        env.post = [this](const platform::NotificationRequest& r) { posted.push_back(r); };
        monitor = std::make_shared<monitor::SystemMonitor>(std::move(env));
        QObject::connect(monitor.get(), &monitor::SystemMonitor::objectWillChange,
                         [this] { ++writes; });
    }
    void writeHealthy() {
        for (const auto& entry : std::filesystem::recursive_directory_iterator(fixture)) {
            if (entry.is_regular_file()) {
                tree.write(std::filesystem::relative(entry.path(), fixture).string(),
                           readFile(entry.path()));
            }
        }
        rx += 6 << 20;
        tx += 1 << 20;
        tree.write("proc/net/dev", "h\nh\n    lo: 5000 1 0 0 0 0 0 0 5000 1 0 0 0 0 0 0\n  eth0: " +
                                       join(rx, 1, 0, 0, 0, 0, 0, 0, tx, 1, 0, 0, 0, 0, 0, 0) +
                                       "\n wlan0: 67108864 1 0 0 0 0 0 0 33554432 1 0 0 0 0 0 0\n");
        home = "/home/user";
        volume = sources::VolumeSize{500e9, 125e9};
    }
    // The published fields after one tick, and how many writes it announced.
    std::map<std::string, std::string> tick(const std::function<void()>& fault = {}) {
        writeHealthy();
        if (fault) {
            fault();
        }
        writes = 0;
        timers.empty() ? monitor->startMonitoring() : timers.front()();
        const monitor::SystemMonitor& m = *monitor;
        EXPECT_EQ(show(m.cpuHistory().back()), show(m.cpuUsage()));
        return {{"cpu", show(m.cpuUsage())},   {"ram", show(m.ramUsage())},
                {"disk", show(m.diskUsage())}, {"level", show(m.batteryLevel())},
                {"state", m.batteryState()},   {"down", show(m.downloadSpeed())},
                {"up", show(m.uploadSpeed())}, {"writes", show(writes)}};
    }

    std::filesystem::path fixture;
    TempTree tree;
    std::optional<std::string> home;
    std::optional<sources::VolumeSize> volume;
    std::chrono::system_clock::time_point now{std::chrono::hours(24 * 365 * 50)};
    std::vector<std::function<void()>> timers;
    std::vector<std::chrono::milliseconds> periods;
    QObject timerHandle;
    std::vector<platform::NotificationRequest> posted;
    std::shared_ptr<monitor::SystemMonitor> monitor;
    std::uint64_t rx = 10ull << 30, tx = 2ull << 30;
    int writes = 0;
};

}  // namespace corvane::testing

// The bus tests skip where there is no session bus; `make test` gives them a private one.
#define CORVANE_SKIP_WITHOUT_SESSION_BUS()            \
    if (!QDBusConnection::sessionBus().isConnected()) \
    GTEST_SKIP() << "no session bus"

inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}
