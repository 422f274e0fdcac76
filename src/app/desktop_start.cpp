#include "app/desktop_start.h"

#include <QString>
#include <QtGlobal>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <tuple>
#include <utility>
#include <vector>

namespace corvane::app {

namespace {

// The Debian package of each platform plugin a user may ask for, the same on Debian 12 and 13.
constexpr std::pair<std::string_view, std::string_view> kPluginPackages[] = {
    {"wayland", "qt6-wayland"}, {"wayland-egl", "qt6-wayland"},  {"xcb", "libqt6gui6"},
    {"eglfs", "libqt6opengl6"}, {"minimalegl", "libqt6opengl6"}, {"vnc", "qt6-qpa-plugins"}};

std::vector<std::string_view> split(std::string_view text, std::string_view separator) {
    std::vector<std::string_view> parts;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(separator), text.size());
        if (end > 0) {
            parts.push_back(text.substr(0, end));
        }
        text.remove_prefix(std::min(end + separator.size(), text.size()));
    }
    return parts;
}

std::string missingLine(std::string_view plugin, const std::string& because,
                        std::string_view installed) {
    const std::string asked =
        "corvane: " + because + " asks for Qt's platform plugin \"" + std::string(plugin) + "\"";
    for (const auto& [key, package] : kPluginPackages) {
        if (key == plugin) {
            return asked + ", which is not installed: install the package " + std::string(package) +
                   "\n";
        }
    }
    return asked + ", which is not installed (installed are " + std::string(installed) +
           "): correct or unset QT_QPA_PLATFORM\n";
}

// The display variables of the plugins Qt tried, as set or unset.
std::string displayLine(const StartEnvironment& env, bool wayland, bool x11) {
    std::vector<std::string> set, unset;
    for (const auto& [tried, name, value] :
         {std::tuple(wayland, "WAYLAND_DISPLAY", env.waylandDisplay),
          std::tuple(x11, "DISPLAY", env.display)}) {
        if (tried) {
            (value.empty() ? unset : set).push_back(value.empty() ? name : name + ("=" + value));
        }
    }
    const std::string asked = env.platform.empty() ? "" : ", QT_QPA_PLATFORM=" + env.platform;
    if (set.empty()) {
        const std::string which = unset.size() == 1
                                      ? unset[0] + " is not set"
                                      : "neither " + unset[0] + " nor " + unset[1] + " is set";
        return "corvane: no desktop to show the dashboard on (" + which + asked +
               "): start Corvane from within a graphical session\n";
    }
    return "corvane: the desktop did not accept a connection (" +
           (set.size() == 1 ? set[0] : set[0] + ", " + set[1]) + asked +
           "): start Corvane from within a graphical session, or set WAYLAND_DISPLAY or DISPLAY "
           "to a display that is running\n";
}

// Qt's warnings while it starts are the platform plugins' account of a failure or of a fall back
// to another plugin: the fatal message that ends a failed start says it all for the user.
void duringStart(QtMsgType type, const QMessageLogContext&, const QString& message) {
    if (type == QtFatalMsg) {
        const StartEnvironment environment{qEnvironmentVariable("WAYLAND_DISPLAY").toStdString(),
                                           qEnvironmentVariable("DISPLAY").toStdString(),
                                           qEnvironmentVariable("QT_QPA_PLATFORM").toStdString()};
        std::fputs(startFailure(environment, message.toStdString()).c_str(), stderr);
        std::_Exit(1);
    }
}

}  // namespace

std::string startFailure(const StartEnvironment& env, std::string_view qtMessage) {
    constexpr std::string_view kListed = "Available platform plugins are: ";
    const std::size_t listed = qtMessage.find(kListed);
    if (listed == std::string_view::npos) {  // no plugin at all, or one's own fatal error
        return "corvane: Qt could not show a window: " +
               std::string(qtMessage.substr(0, qtMessage.find('\n'))) + "\n";
    }
    std::string_view list = qtMessage.substr(listed + kListed.size());
    list = list.substr(0, list.find('.'));
    const std::vector<std::string_view> installed = split(list, ", ");
    // Without QT_QPA_PLATFORM, Qt takes X11, and Wayland where the session is one.
    std::vector<std::string_view> wanted = split(env.platform, ";");
    const std::string because = env.platform.empty() ? "WAYLAND_DISPLAY=" + env.waylandDisplay
                                                     : "QT_QPA_PLATFORM=" + env.platform;
    if (wanted.empty() && !env.waylandDisplay.empty()) {
        wanted = {"wayland", "xcb"};
    }
    std::string missing;
    bool wayland = false, x11 = false, tried = wanted.empty();
    for (std::string_view plugin : wanted) {
        plugin = plugin.substr(0, plugin.find(':'));
        if (std::find(installed.begin(), installed.end(), plugin) == installed.end()) {
            missing = missing.empty() ? missingLine(plugin, because, list) : missing;
        } else {
            tried = true;
            wayland = wayland || plugin.starts_with("wayland");
            x11 = x11 || plugin == "xcb";
        }
    }
    if (!tried) {  // the plugin named is all there is to say
        return missing;
    }
    const bool both = wayland == x11;  // Qt's own choice, or plugins that need neither display
    return missing + displayLine(env, wayland || both, x11 || both);
}

int& guardDesktopStart(int& argc) {
    qInstallMessageHandler(duringStart);
    return argc;
}

void desktopStarted() {
    qInstallMessageHandler(nullptr);
}

}  // namespace corvane::app
