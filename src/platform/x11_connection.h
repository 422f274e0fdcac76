#pragma once

#include <xcb/xcb.h>

#include <cstdint>

namespace corvane::platform {

// Qt's own connection to the X server, or null off X11.
xcb_connection_t* x11Connection();

// The atom of `name`, made if the server does not have it yet; XCB_ATOM_NONE on error.
std::uint32_t internAtom(xcb_connection_t* connection, const char* name);

}  // namespace corvane::platform
