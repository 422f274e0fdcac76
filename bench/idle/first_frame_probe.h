#pragma once

#include <QWidget>

namespace corvane::bench {

// Prints "first-frame <ns>" (CLOCK_REALTIME nanoseconds, the clock of `date +%s%N`) on
// standard output once the window's first paint has been handed to the display.
void reportFirstFrame(QWidget& window);

}  // namespace corvane::bench
