#include "support.h"

#include <stdlib.h>

#include <QApplication>
#include <charconv>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace corvane::testing {

namespace fs = std::filesystem;

std::vector<Case> caseTable(const std::string& name) {
    std::ifstream in(fs::path(CORVANE_CASES) / (name + ".txt"));
    std::vector<Case> cases;
    std::string line;
    for (int number = 1; std::getline(in, line); ++number) {
        if (const auto w = words(line); w.empty() || w[0] == "#") {
            continue;
        }
        Case c{name + ".txt:" + std::to_string(number), {{}}};
        std::size_t kept = 0;  // the field's length up to its last character that is no blank
        for (std::size_t i = 0; i < line.size(); ++i) {
            std::string& field = c.fields.back();
            const bool escaped = line[i] == '\\' && i + 1 < line.size();
            const char ch = escaped ? line[++i] : line[i];
            const auto at = escaped ? std::string_view("ntrsx").find(ch) : std::string_view::npos;
            if (!escaped && ch == '|') {
                field.resize(kept);
                c.fields.emplace_back();
                kept = 0;
            } else if (escaped || ch != ' ' || !field.empty()) {  // leading blanks dropped
                field += at > 4   ? ch
                         : at < 4 ? "\n\t\r "[at]
                                  : char(std::stoi(line.substr(i + 1, 2), 0, 16));
                i += at == 4 ? 2 : 0;
                kept = escaped || ch != ' ' ? field.size() : kept;
            }
        }
        c.fields.back().resize(kept);
        cases.push_back(std::move(c));
    }
    return cases;
}

std::vector<std::string> words(std::string_view text) {
    std::istringstream in{std::string(text)};
    std::vector<std::string> out;
    for (std::string word; in >> word;) {
        out.push_back(word);
    }
    return out;
}

double number(std::string_view text) {
    double value = 0.0;
    if (std::from_chars(text.data(), text.data() + text.size(), value).ptr != text.end()) {
        throw std::invalid_argument("not a number: " + std::string(text));
    }
    return value;
}

TempTree::TempTree(std::string_view fixture) {
    std::string pattern = (fs::temp_directory_path() / "corvane-tree-XXXXXX").string();
    root_ = ::mkdtemp(pattern.data());
    if (!fixture.empty()) {
        fs::copy(fs::path(CORVANE_FIXTURES) / fixture, root_, fs::copy_options::recursive);
    }
}

void TempTree::write(std::string_view relative, std::string_view content) const {
    const fs::path path = root_ / relative;
    fs::create_directories(path.parent_path());
    if (fs::is_directory(path)) {
        fs::remove_all(path);
    }
    std::ofstream(path, std::ios::binary | std::ios::trunc) << content;
}

std::string readFile(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

std::size_t TempTree::openDescriptors() const {
    std::size_t count = 0;
    for (const auto& entry : fs::directory_iterator("/proc/self/fd")) {
        std::error_code error;
        count += fs::read_symlink(entry.path(), error).string().starts_with(root_.string()) ? 1 : 0;
    }
    return count;
}

}  // namespace corvane::testing

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");  // widgets render without a display
    QApplication application(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
