#include "app/shell_facilities.h"

#include <QDBusConnection>
#include <cstdio>

#include "app/standard_output.h"
#include "platform/application_service.h"
#include "platform/session_instance.h"
#include "platform/tray_watcher.h"

namespace corvane::app {

ShellFacilities desktopShellFacilities() {
    ShellFacilities facilities;
    facilities.notificationCentre = &platform::NotificationCentre::current;
    facilities.watchSystemTray = [](QObject* context, std::function<void(bool)> changed) {
        // A panel answers in milliseconds; two seconds is a watcher that is stuck.
        auto* watcher = new platform::TrayWatcher(QDBusConnection::sessionBus(),
                                                  std::chrono::milliseconds(2000), context);
        QObject::connect(watcher, &platform::TrayWatcher::trayAvailabilityChanged, context,
                         std::move(changed));
    };
    facilities.printLine = &printLineToStandardOutput;
    // Read now, before the application object exists: Qt takes the startup id out of the
    // environment as it connects to the display.
    facilities.claimSession =
        [platformData = platform::launchPlatformData()](
            QObject* context, std::function<void(const QString&)> activate) -> std::optional<int> {
        auto* service = new platform::ApplicationService(std::move(activate), context);
        const platform::SessionClaim claim =
            platform::claimSession(QDBusConnection::sessionBus(), service, platformData);
        switch (claim.outcome) {
            case platform::SessionClaim::Outcome::Run:
                return std::nullopt;
            case platform::SessionClaim::Outcome::HandedOver:
                return 0;
            case platform::SessionClaim::Outcome::Unanswered:
                break;
        }
        std::fprintf(stderr, "%s\n", qPrintable(claim.message));
        return 1;
    };
    return facilities;
}

}  // namespace corvane::app
