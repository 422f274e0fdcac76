#include "app/app_delegate.h"

#include <QAction>
#include <QApplication>
#include <QCursor>
#include <QKeySequence>

#include "app/status_title.h"
#include "app/tray_glyph_icon.h"
#include "platform/application_id.h"
#include "platform/window_activation.h"

namespace corvane::app {

AppDelegate::AppDelegate(ShellFacilities facilities, QObject* parent)
    : QObject(parent), facilities_(std::move(facilities)) {}

AppDelegate::~AppDelegate() {
    if (centre_ && centre_->delegate() == this) {
        centre_->setDelegate(nullptr);
    }
}

void AppDelegate::applicationDidFinishLaunching() {
    centre_ = facilities_.notificationCentre();
    if (centre_) {
        centre_->setDelegate(this);
        // The handler may run on the centre's thread and after this delegate is gone: it holds
        // its own copy of the printer and nothing else.
        centre_->requestAuthorization(
            platform::AuthorizationAlert | platform::AuthorizationSound,
            [print = facilities_.printLine](bool granted, std::optional<QString>) {
                print(granted ? "Notification granted" : "Notification denied");
            });
    } else {
        facilities_.printLine("Notification denied");
    }
    buildMenu();
    // The title is the item's text where the panel draws one beside the icon (GNOME), and its
    // tool tip and screen-reader name elsewhere; the glyph is its icon. While there is no tray,
    // the window is the application: closing it quits, rather than leaving a process nobody can
    // reach. The desktop is watched for a tray all run long, since a panel may well start after
    // the application, or end and start again.
    QApplication::setQuitOnLastWindowClosed(true);
    const QString id = QString::fromLatin1(platform::kApplicationId);
    menuClickToken_ = facilities_.showStatusItem(
        this,
        {id, QStringLiteral("Corvane"), QString::fromUtf8(kStatusTitle),
         trayGlyphIcon(QString::fromUtf8(kStatusGlyph), kGlyphColour), id},
        menu_.get(), [this](const QString& token) { openApp(token); },
        [this](tray::SystemTray tray) {
            QApplication::setQuitOnLastWindowClosed(tray == tray::SystemTray::None);
            showXEmbedItem(tray == tray::SystemTray::XEmbed);
        });
}

void AppDelegate::buildMenu() {
    menu_ = std::make_unique<QMenu>();
    QAction* open = menu_->addAction(QStringLiteral("Open App"));
    open->setShortcut(QKeySequence(Qt::SHIFT | Qt::CTRL | Qt::Key_O));
    connect(open, &QAction::triggered, this,
            [this] { openApp(menuClickToken_ ? menuClickToken_() : QString()); });
    menu_->addSeparator();
    QAction* quit = menu_->addAction(QStringLiteral("Quit"));
    quit->setShortcut(QKeySequence(Qt::SHIFT | Qt::CTRL | Qt::Key_Q));
    connect(quit, &QAction::triggered, qApp, &QCoreApplication::quit);
}

// Made the first time it is needed, then shown and hidden: Qt docks it again in an X11 tray
// that restarts.
void AppDelegate::showXEmbedItem(bool shown) {
    if (!xembedItem_ && shown) {
        xembedItem_ = std::make_unique<QSystemTrayIcon>();
        xembedItem_->setToolTip(QString::fromUtf8(kStatusTitle));
        xembedItem_->setIcon(trayGlyphIcon(QString::fromUtf8(kStatusGlyph), kGlyphColour));
        xembedItem_->setContextMenu(menu_.get());
        // A left click opens the menu too, as on every other panel.
        connect(xembedItem_.get(), &QSystemTrayIcon::activated, this,
                [this](QSystemTrayIcon::ActivationReason reason) {
                    if (reason == QSystemTrayIcon::Trigger) {
                        menu_->popup(QCursor::pos());
                    }
                });
    }
    if (xembedItem_) {
        xembedItem_->setVisible(shown);
    }
}

void AppDelegate::openApp(const QString& activationToken) {
    if (window_) {
        platform::bringToFront(*window_, activationToken);
    }
}

unsigned AppDelegate::willPresent(const platform::NotificationRequest&) {
    return platform::PresentationBanner | platform::PresentationSound;
}

void AppDelegate::didActivateNotification(const QString& activationToken) {
    openApp(activationToken);
}

}  // namespace corvane::app
