#pragma once

#include <string_view>

namespace corvane::app {

// Writes `line` and a line feed to standard output and flushes at once, so that whoever reads
// the pipe sees the line while the application keeps running. Safe to call from any thread.
void printLineToStandardOutput(std::string_view line);

}  // namespace corvane::app
