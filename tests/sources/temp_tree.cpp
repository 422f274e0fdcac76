#include "sources/temp_tree.h"

#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <stdexcept>

namespace corvane::sources::testing {

namespace fs = std::filesystem;

TempTree::TempTree() {
    std::string pattern = (fs::temp_directory_path() / "corvane-sources-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) {
        throw std::runtime_error("mkdtemp failed");
    }
    root_ = pattern;
}

TempTree::TempTree(std::string_view fixture) : TempTree() {
    fs::copy(fs::path(CORVANE_FIXTURES) / fixture, root_, fs::copy_options::recursive);
}

TempTree::~TempTree() {
    std::error_code ignored;
    fs::remove_all(root_, ignored);
}

void TempTree::write(std::string_view relative, std::string_view content) const {
    const fs::path path = root_ / relative;
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary | std::ios::trunc) << content;
}

void TempTree::remove(std::string_view relative) const {
    fs::remove_all(root_ / relative);
}

void TempTree::makeDirectory(std::string_view relative) const {
    fs::create_directories(root_ / relative);
}

std::vector<std::string> openDescriptorsUnder(const fs::path& dir) {
    std::vector<std::string> targets;
    for (const auto& entry : fs::directory_iterator("/proc/self/fd")) {
        std::error_code error;
        const std::string target = fs::read_symlink(entry.path(), error).string();
        if (!error && target.starts_with(dir.string())) {
            targets.push_back(target);
        }
    }
    return targets;
}

}  // namespace corvane::sources::testing
