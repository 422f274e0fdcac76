#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace corvane::sources::testing {

// A machine's file tree in a fresh folder under the temp directory, removed with the object.
class TempTree {
  public:
    TempTree();
    // Starts from a copy of tests/fixtures/<fixture>.
    explicit TempTree(std::string_view fixture);
    ~TempTree();
    TempTree(const TempTree&) = delete;
    TempTree& operator=(const TempTree&) = delete;

    const std::filesystem::path& root() const { return root_; }
    // Writes in place (same inode when the file exists), as the kernel regenerates a file.
    void write(std::string_view relative, std::string_view content) const;
    void remove(std::string_view relative) const;
    void makeDirectory(std::string_view relative) const;

  private:
    std::filesystem::path root_;
};

// Targets of this process's open descriptors that lie under `dir`.
std::vector<std::string> openDescriptorsUnder(const std::filesystem::path& dir);

}  // namespace corvane::sources::testing
