#include "support.h"

#include <stdlib.h>

#include <charconv>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace corvane::testing {

namespace fs = std::filesystem;

namespace {

std::string unescaped(std::string_view text) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\' || i + 1 == text.size()) {
            out += text[i];
            continue;
        }
        const char c = text[++i];
        if (c == 'x') {
            out += static_cast<char>(std::stoi(std::string(text.substr(i + 1, 2)), nullptr, 16));
            i += 2;
        } else {
            out += c == 'n' ? '\n' : c == 't' ? '\t' : c == 'r' ? '\r' : c == 's' ? ' ' : c;
        }
    }
    return out;
}

std::string_view trimmed(std::string_view text) {
    const auto begin = text.find_first_not_of(' ');
    return begin == std::string_view::npos
               ? ""
               : text.substr(begin, text.find_last_not_of(' ') - begin + 1);
}

}  // namespace

std::vector<Case> caseTable(const std::string& name) {
    std::ifstream in(fs::path(CORVANE_CASES) / (name + ".txt"));
    std::vector<Case> cases;
    std::string line;
    for (int number = 1; std::getline(in, line); ++number) {
        const std::string_view text = trimmed(line);
        if (text.empty() || text == "#" || text.starts_with("# ")) {
            continue;
        }
        Case c{name + ".txt:" + std::to_string(number), {}};
        std::size_t start = 0;
        for (std::size_t i = 0; i <= line.size(); ++i) {
            if (i < line.size() && line[i] == '\\') {
                ++i;
            } else if (i == line.size() || line[i] == '|') {
                c.fields.push_back(
                    unescaped(trimmed(std::string_view(line).substr(start, i - start))));
                start = i + 1;
            }
        }
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
