#include "app/standard_output.h"

#include <cstdio>

namespace corvane::app {

void printLineToStandardOutput(std::string_view line) {
    // The stream lock keeps a line written by another thread out of the middle of this one.
    flockfile(stdout);
    std::fwrite(line.data(), 1, line.size(), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
    funlockfile(stdout);
}

}  // namespace corvane::app
