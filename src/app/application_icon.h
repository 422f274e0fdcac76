#pragma once

#include <QIcon>

namespace corvane::app {

// The window's icon, which X11 window managers draw in the title bar, the task bar and Alt+Tab:
// the installed application icon from the icon theme, as the launcher shows it; Corvane's glyph
// where that is not installed (the build folder) or Qt cannot draw it (no SVG icon engine).
QIcon applicationIcon();

}  // namespace corvane::app
