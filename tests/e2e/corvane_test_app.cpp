// The application as shipped, with its monitor reading /proc and /sys below a fixture tree:
//   corvane-test-app --root DIR
#include <filesystem>

#include "app/corvane_app.h"

int main(int argc, char** argv) {
    const std::filesystem::path root = argc > 2 ? argv[2] : "/";
    corvane::app::CorvaneApp app(
        argc, argv,
        [root] {
            corvane::monitor::MonitorEnvironment environment;
            environment.root = root;
            return std::make_shared<corvane::monitor::SystemMonitor>(std::move(environment));
        },
        corvane::app::desktopShellFacilities());
    return app.exec();
}
