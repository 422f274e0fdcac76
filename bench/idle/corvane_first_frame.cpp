// Corvane as shipped, plus the first-frame report that the product itself must not print.
#include "app/corvane_app.h"
#include "first_frame_probe.h"

int main(int argc, char** argv) {
    corvane::app::CorvaneApp app(
        argc, argv, [] { return std::make_shared<corvane::monitor::SystemMonitor>(); },
        corvane::app::desktopShellFacilities());
    corvane::bench::reportFirstFrame(app.window());
    return app.exec();
}
