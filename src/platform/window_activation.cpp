#include "platform/window_activation.h"

#include <QGuiApplication>

#include "platform/x11_connection.h"

namespace corvane::platform {

namespace {

// Window managers read _NET_STARTUP_ID, and the launch time in it, when the window is mapped
// (freedesktop startup-notification).
void setStartupId(QWidget& window, const QByteArray& id) {
    xcb_connection_t* connection = x11Connection();
    if (connection == nullptr) {
        return;
    }
    xcb_change_property(
        connection, XCB_PROP_MODE_REPLACE, static_cast<xcb_window_t>(window.winId()),
        internAtom(connection, "_NET_STARTUP_ID"), internAtom(connection, "UTF8_STRING"), 8,
        static_cast<std::uint32_t>(id.size()), id.constData());
    xcb_flush(connection);
}

}  // namespace

QString x11StartupId(unsigned time) {
    return time != 0 && x11Connection() != nullptr
               ? QStringLiteral("corvane-click_TIME%1").arg(time)
               : QString();
}

void bringToFront(QWidget& window, const QString& activationToken) {
    if (!activationToken.isEmpty()) {
        if (QGuiApplication::platformName().startsWith(QLatin1String("wayland"))) {
            // Qt's Wayland client hands the token to the compositor's xdg-activation with the
            // next show or activation, and then forgets it.
            qputenv("XDG_ACTIVATION_TOKEN", activationToken.toUtf8());
        } else {
            setStartupId(window, activationToken.toUtf8());
        }
    }
    window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
    window.show();
    window.raise();
    window.activateWindow();
}

}  // namespace corvane::platform
