#include "tray/x11_tray_selection.h"

#include <QCoreApplication>
#include <cstdlib>
#include <memory>

#include "platform/x11_connection.h"

namespace corvane::tray {

namespace {

std::uint32_t selectionOwner(xcb_connection_t* connection, std::uint32_t selection) {
    const std::unique_ptr<xcb_get_selection_owner_reply_t, decltype(&std::free)> owner(
        xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, selection),
                                      nullptr),
        &std::free);
    return owner ? owner->owner : std::uint32_t{XCB_WINDOW_NONE};
}

}  // namespace

// The desktops of today run one X screen (several monitors are outputs of screen 0), so the
// tray of interest is the one of screen 0.
X11TraySelection::X11TraySelection(QObject* parent) : QObject(parent) {
    xcb_connection_t* connection = platform::x11Connection();
    if (connection == nullptr) {
        return;
    }
    trayAtom_ = platform::internAtom(connection, "_NET_SYSTEM_TRAY_S0");
    managerAtom_ = platform::internAtom(connection, "MANAGER");
    follow(selectionOwner(connection, trayAtom_));
    // Qt listens on the root window for structure events, where MANAGER messages arrive.
    QCoreApplication::instance()->installNativeEventFilter(this);
}

// The owner's DestroyNotify tells that the tray ended. A tray that ended before it was watched
// is seen by asking the owner again once the watch is in place.
void X11TraySelection::follow(std::uint32_t owner) {
    xcb_connection_t* connection = platform::x11Connection();
    while (owner != XCB_WINDOW_NONE) {
        const std::uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
        xcb_change_window_attributes(connection, owner, XCB_CW_EVENT_MASK, &mask);
        const std::uint32_t now = selectionOwner(connection, trayAtom_);
        if (now == owner) {
            break;
        }
        owner = now;
    }
    owner_ = owner;
}

X11TraySelection::~X11TraySelection() {
    if (auto* application = QCoreApplication::instance()) {
        application->removeNativeEventFilter(this);
    }
}

bool X11TraySelection::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*) {
    if (eventType != "xcb_generic_event_t") {
        return false;
    }
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    const auto type = event->response_type & 0x7F;
    if (type == XCB_CLIENT_MESSAGE) {
        const auto* client = static_cast<const xcb_client_message_event_t*>(message);
        if (client->type == managerAtom_ && client->data.data32[1] == trayAtom_) {
            follow(client->data.data32[2]);
            emit changed();
        }
    } else if (type == XCB_DESTROY_NOTIFY && owner_ != XCB_WINDOW_NONE &&
               static_cast<const xcb_destroy_notify_event_t*>(message)->window == owner_) {
        owner_ = XCB_WINDOW_NONE;
        emit changed();
    }
    return false;  // Qt's own tray code reads the same events
}

}  // namespace corvane::tray
