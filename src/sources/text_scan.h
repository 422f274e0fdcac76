#pragma once

#include <charconv>
#include <cstdint>
#include <optional>
#include <string_view>

// Small scanners over the bytes of procfs and sysfs files: no allocation, no locale.
namespace corvane::sources::scan {

inline bool isBlank(char c) {
    return c == ' ' || c == '\t';
}

// A whole token of decimal digits as an unsigned 64-bit value: no sign, no spaces, no
// overflow.
inline std::optional<std::uint64_t> decimal(std::string_view token) {
    std::uint64_t value = 0;
    const char* end = token.data() + token.size();
    const auto [ptr, ec] = std::from_chars(token.data(), end, value);
    if (token.empty() || ec != std::errc{} || ptr != end) {
        return std::nullopt;
    }
    return value;
}

// The next blank-separated token of `text`, removed from it; empty at the end.
inline std::string_view nextToken(std::string_view& text) {
    std::size_t begin = 0;
    while (begin < text.size() && isBlank(text[begin])) {
        ++begin;
    }
    std::size_t end = begin;
    while (end < text.size() && !isBlank(text[end])) {
        ++end;
    }
    const std::string_view token = text.substr(begin, end - begin);
    text.remove_prefix(end);
    return token;
}

// The next line of `text` without its newline, removed from it.
inline std::string_view nextLine(std::string_view& text) {
    const std::size_t end = text.find('\n');
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    return line;
}

inline std::string_view trimmed(std::string_view text) {
    while (!text.empty() && (isBlank(text.front()) || text.front() == '\n')) {
        text.remove_prefix(1);
    }
    while (!text.empty() && (isBlank(text.back()) || text.back() == '\n')) {
        text.remove_suffix(1);
    }
    return text;
}

inline bool addChecked(std::uint64_t& sum, std::uint64_t value) {
    return !__builtin_add_overflow(sum, value, &sum);
}

inline bool multiplyChecked(std::uint64_t& product, std::uint64_t value) {
    return !__builtin_mul_overflow(product, value, &product);
}

}  // namespace corvane::sources::scan
