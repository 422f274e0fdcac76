#pragma once

namespace corvane::platform {

// The one name the desktop knows Corvane by: the desktop entry and icon are installed under it,
// it is the Wayland app_id, the sender named in every notification, and the well-known name on
// the session bus that keeps one Corvane per session. Reverse-DNS, as freedesktop names are.
inline constexpr char kApplicationId[] = "io.github.corvane.Corvane";
// Where org.freedesktop.Application is exported: the id with dots made into slashes.
inline constexpr char kApplicationPath[] = "/io/github/corvane/Corvane";

}  // namespace corvane::platform
