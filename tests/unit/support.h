#pragma once

#include <QDBusConnection>
#include <QString>
#include <charconv>
#include <cmath>
#include <concepts>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvane::testing {

// One case of a table kept as data in tests/cases/<name>.txt: a line of fields separated by
// "|", blanks around a field trimmed. Escapes: \n \t \r \\ \| \xHH, and \s for a kept blank.
// Lines that are empty, "#" alone or start with "# " are comments.
struct Case {
    std::string where;  // file:line, for failure messages
    std::vector<std::string> fields;
    const std::string& operator[](std::size_t i) const { return fields.at(i); }
};
std::vector<Case> caseTable(const std::string& name);

// Values as the tables write them: integers in decimal, doubles in their shortest exact form.
inline std::string show(const std::string& text) {
    return text;
}
inline std::string show(double value) {
    char digits[32];
    return std::isnan(value) ? "nan"
                             : std::string(digits, std::to_chars(digits, digits + 32, value).ptr);
}
inline std::string show(std::integral auto value) {
    return std::to_string(value);
}
template <typename T>
std::string show(const std::optional<T>& value) {
    return value ? show(*value) : "-";
}
std::string join(const auto&... values) {
    std::string out;
    ((out += (out.empty() ? "" : " ") + show(values)), ...);
    return out;
}

std::vector<std::string> words(std::string_view text);
std::string readFile(const std::filesystem::path& path);
double number(std::string_view text);  // "nan", "inf" and "-inf" included; locale-free

// A machine's files in a fresh folder (a copy of tests/fixtures/<fixture>), removed with it.
struct TempTree {
    explicit TempTree(std::string_view fixture = {});
    ~TempTree() { std::filesystem::remove_all(root_); }
    const std::filesystem::path& root() const { return root_; }
    // Rewrites in place (same inode), as the kernel regenerates a file under an open descriptor.
    void write(std::string_view relative, std::string_view content) const;
    void remove(std::string_view relative) const { std::filesystem::remove_all(root_ / relative); }
    std::size_t openDescriptors() const;  // this process's descriptors on files in the tree

  private:
    std::filesystem::path root_;
};

}  // namespace corvane::testing

// The bus tests skip where there is no session bus; `make test` gives them a private one.
#define CORVANE_SKIP_WITHOUT_SESSION_BUS()            \
    if (!QDBusConnection::sessionBus().isConnected()) \
    GTEST_SKIP() << "no session bus"

inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}
