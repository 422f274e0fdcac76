#pragma once

#include <string>
#include <string_view>

namespace corvane::app {

// Qt ends the process with abort() and a core dump when it cannot show a window. From this call
// until desktopStarted(), that becomes one or two lines on standard error saying what is wrong
// and what to do (startFailure), and exit status 1; Qt's other messages while it starts are left
// out: they are the account of that failure. Returns `argc`, to be called in the application
// object's initialiser.
int& guardDesktopStart(int& argc);
// Qt's own message handling again, once the application object has its desktop.
void desktopStarted();

// The variables that choose where the window goes, empty when unset.
struct StartEnvironment {
    std::string waylandDisplay;  // WAYLAND_DISPLAY
    std::string display;         // DISPLAY
    std::string platform;        // QT_QPA_PLATFORM: plugins to try in turn, "name[:options];..."
};
// What the user reads when Qt could not start, from its fatal message (which lists the platform
// plugins that are installed): a plugin asked for that is not installed, and the package that
// brings it; no display at all; a display that refused the connection.
std::string startFailure(const StartEnvironment& environment, std::string_view qtMessage);

}  // namespace corvane::app
