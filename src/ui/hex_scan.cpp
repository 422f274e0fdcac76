#include "ui/hex_scan.h"

#include <limits>

namespace corvane::ui {

namespace {

unsigned char byteAt(std::string_view text, std::size_t index) {
    return index < text.size() ? static_cast<unsigned char>(text[index]) : 0;
}

// Byte length of the white-space or line-break character that starts `text`, 0 if there is
// none. The set is Unicode's space separators plus tab, the line breaks U+000A to U+000D,
// U+0085 and the line and paragraph separators.
std::size_t spaceLength(std::string_view text) {
    const unsigned char lead = byteAt(text, 0);
    if (lead == ' ' || (lead >= 0x09 && lead <= 0x0D)) {
        return 1;
    }
    const unsigned char second = byteAt(text, 1);
    const unsigned char third = byteAt(text, 2);
    if (lead == 0xC2 && (second == 0x85 || second == 0xA0)) {
        return 2;  // U+0085, U+00A0
    }
    if (lead == 0xE1 && second == 0x9A && third == 0x80) {
        return 3;  // U+1680
    }
    if (lead == 0xE2 && second == 0x80 &&
        ((third >= 0x80 && third <= 0x8A) || third == 0xA8 || third == 0xA9 || third == 0xAF)) {
        return 3;  // U+2000 to U+200A, U+2028, U+2029, U+202F
    }
    if (lead == 0xE2 && second == 0x81 && third == 0x9F) {
        return 3;  // U+205F
    }
    if (lead == 0xE3 && second == 0x80 && third == 0x80) {
        return 3;  // U+3000
    }
    return 0;
}

int hexDigit(unsigned char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    if (c >= 'A' && c <= 'F') {
        return c - 'A' + 10;
    }
    return -1;
}

}  // namespace

std::uint64_t scanHexLongLong(std::string_view text) {
    std::size_t at = 0;
    while (const std::size_t length = spaceLength(text.substr(at))) {
        at += length;
    }
    // "0x" counts as a prefix only before a digit; otherwise the "0" is the whole number.
    if (byteAt(text, at) == '0' && (byteAt(text, at + 1) | 0x20) == 'x' &&
        hexDigit(byteAt(text, at + 2)) >= 0) {
        at += 2;
    }
    constexpr std::uint64_t kAllBits = std::numeric_limits<std::uint64_t>::max();
    std::uint64_t value = 0;
    bool overflow = false;
    for (int digit = 0; (digit = hexDigit(byteAt(text, at))) >= 0; ++at) {
        if (value > (kAllBits >> 4)) {
            overflow = true;  // keep reading: the digits still belong to this number
        } else {
            value = (value << 4) | static_cast<std::uint64_t>(digit);
        }
    }
    return overflow ? kAllBits : value;
}

}  // namespace corvane::ui
