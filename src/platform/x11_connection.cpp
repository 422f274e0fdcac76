#include "platform/x11_connection.h"

#include <QGuiApplication>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace corvane::platform {

xcb_connection_t* x11Connection() {
    const auto* x11 =
        qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    return x11 ? x11->connection() : nullptr;
}

std::uint32_t internAtom(xcb_connection_t* connection, const char* name) {
    const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> reply(
        xcb_intern_atom_reply(
            connection,
            xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(std::strlen(name)), name),
            nullptr),
        &std::free);
    return reply ? reply->atom : std::uint32_t{XCB_ATOM_NONE};
}

}  // namespace corvane::platform
