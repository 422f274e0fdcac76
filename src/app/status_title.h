#pragma once

namespace corvane::app {

// The tray item's fixed title: U+26A1 U+FE0E (the high-voltage sign in text presentation), a
// space, "Monitoring" and three full stops. Spelled out in bytes so no editor or compiler
// setting can turn it into an ellipsis or an emoji.
inline constexpr char kStatusTitle[] = "\xE2\x9A\xA1\xEF\xB8\x8E Monitoring...";

// The first two code points of the title: the glyph the tray icon shows.
inline constexpr char kStatusGlyph[] = "\xE2\x9A\xA1\xEF\xB8\x8E";

}  // namespace corvane::app
