#pragma once

namespace corvane::ui {

// Tells Qt's accessibility how to present the dashboard: the window as a frame (a plain QWidget
// is announced as a "filler"), and the CPU history as one chart whose name and description say
// everything (Qt Charts exposes only an empty scroll area). Safe to call more than once.
void installDashboardAccessibility();

}  // namespace corvane::ui
