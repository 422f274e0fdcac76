#pragma once

#include <cstdint>
#include <string_view>

namespace corvane::ui {

// Reads one hexadecimal number from the start of a UTF-8 text, the way a text scanner's 64-bit
// hex scan does: leading white space and line breaks are skipped, an optional 0x or 0X prefix
// is accepted, digits are read up to the first non-digit and the rest is ignored. No digit
// gives 0; a number that does not fit in 64 bits gives all bits set.
std::uint64_t scanHexLongLong(std::string_view text);

}  // namespace corvane::ui
