#include "app/desktop_start.h"

#include <QString>
#include <QtGlobal>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace corvane::app {

namespace {

std::string noDesktopLine() {
    std::string set;
    for (const char* name : {"WAYLAND_DISPLAY", "DISPLAY"}) {
        if (const char* value = std::getenv(name); value != nullptr && *value != '\0') {
            set += (set.empty() ? "" : ", ") + std::string(name) + "=" + value;
        }
    }
    if (set.empty()) {
        return "corvane: no desktop to show the dashboard on (neither WAYLAND_DISPLAY nor DISPLAY "
               "is set): start Corvane from within a graphical session\n";
    }
    return "corvane: the desktop did not accept a connection (" + set +
           "): start Corvane from within a graphical session, or set WAYLAND_DISPLAY or DISPLAY "
           "to a display that is running\n";
}

// What Qt says while it starts is the platform plugins' account of a connection that failed or
// fell back to another plugin: the one line below says it for the user.
void duringStart(QtMsgType type, const QMessageLogContext&, const QString&) {
    if (type == QtFatalMsg) {
        std::fputs(noDesktopLine().c_str(), stderr);
        std::_Exit(1);
    }
}

}  // namespace

int& guardDesktopStart(int& argc) {
    qInstallMessageHandler(duringStart);
    return argc;
}

void desktopStarted() {
    qInstallMessageHandler(nullptr);
}

}  // namespace corvane::app
