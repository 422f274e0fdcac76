#pragma once

namespace corvane::app {

// Qt ends the process with abort() and a core dump when no desktop accepts its connection. From
// this call until desktopStarted(), that becomes one line on standard error saying what is
// missing and what to do, and exit status 1; Qt's other messages while it starts are left out:
// they are the account of that failed connection. Returns `argc`, to be called in the application
// object's initialiser.
int& guardDesktopStart(int& argc);
// Qt's own message handling again, once the application object has its desktop.
void desktopStarted();

}  // namespace corvane::app
