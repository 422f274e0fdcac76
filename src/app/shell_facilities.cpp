#include "app/shell_facilities.h"

#include <QDBusConnection>
#include <QStandardPaths>
#include <cstdio>

#include "app/standard_output.h"
#include "platform/application_service.h"
#include "tray/dbus_menu.h"
#include "platform/session_instance.h"
#include "tray/tray_watcher.h"

namespace corvane::app {

namespace {

// A panel answers in milliseconds; two seconds is a watcher that is stuck.
constexpr std::chrono::milliseconds kPanelLimit{2000};

}  // namespace

ShellFacilities desktopShellFacilities() {
    ShellFacilities facilities;
    facilities.notificationCentre = &platform::NotificationCentre::current;
    facilities.showStatusItem = [](QObject* context, tray::StatusItemLook look, QMenu* menu,
                                   std::function<void(const QString&)> activate,
                                   std::function<void(tray::SystemTray)> trayChanged) {
        // A connection of the item's own, which owns no other name: GNOME's extension, which
        // also looks for items on the bus by itself after each lock, keys an item it finds by
        // one of its connection's names, and would show an item found under the application's
        // id beside the one registered under the unique name.
        const QDBusConnection bus =
            QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("tray"));
        const QString menuPath = QStringLiteral("/MenuBar");
        auto activation = std::make_shared<tray::PanelActivation>();
        new tray::DBusMenu(bus, menuPath, menu, activation, context);
        // Per session, and gone with it: the icon for panels that load it by name.
        const QString icons =
            QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation) + "/" + look.id;
        auto* item = new tray::StatusNotifierItem(
            bus, std::move(look), QDBusObjectPath(menuPath), std::move(activate), activation, icons,
            kPanelLimit, context);
        auto* tray = new tray::TrayWatcher(bus, kPanelLimit, context);
        QObject::connect(tray, &tray::TrayWatcher::statusNotifierHostReady, item,
                         &tray::StatusNotifierItem::registerWithWatcher);
        QObject::connect(tray, &tray::TrayWatcher::trayChanged, context,
                         std::move(trayChanged));
        return [activation] { return activation->menuClickToken(); };
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
