#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvane::sources {

// A file that the kernel generates anew on every read at offset 0 (procfs, sysfs). The
// descriptor stays open between reads, so a sample costs a pread or two and no open/close.
// Any failure (missing, not a regular file, read error, empty, larger than the cap) closes
// the descriptor; the next read opens the path again.
//
// On procfs and sysfs a file that goes away fails its reads (ENODEV). On an ordinary file
// system, such as a test's tree, a removed or replaced file stays readable through the kept
// descriptor, so there each read first checks that the file still has a name.
class KernelFile {
  public:
    static constexpr std::size_t kDefaultMaxBytes = std::size_t{1} << 20;

    explicit KernelFile(std::string path, std::size_t maxBytes = kDefaultMaxBytes);
    ~KernelFile();
    KernelFile(KernelFile&& other) noexcept;
    KernelFile& operator=(KernelFile&& other) noexcept;
    KernelFile(const KernelFile&) = delete;
    KernelFile& operator=(const KernelFile&) = delete;

    // The whole content, opened first when closed. The view lives until the next read.
    std::optional<std::string_view> read();
    void close() noexcept;
    bool isOpen() const noexcept { return fd_ >= 0; }
    const std::string& path() const noexcept { return path_; }

  private:
    bool open();

    std::string path_;
    std::size_t maxBytes_;
    int fd_ = -1;
    bool checkLinks_ = false;
    std::vector<char> buffer_;
};

// Reads and parses with a second chance: when a descriptor kept from an earlier read gives
// nothing usable (the file was removed, replaced, or its device went away), it is closed and
// the path opened once more. A file that was not open gets one attempt. On failure the file
// is left closed. `parse` maps the bytes to an optional value.
template <typename Parse>
auto readParsed(KernelFile& file, Parse&& parse) -> decltype(parse(std::string_view{})) {
    const bool hadDescriptor = file.isOpen();
    for (int attempt = 0; attempt < (hadDescriptor ? 2 : 1); ++attempt) {
        if (attempt > 0) {
            file.close();
        }
        if (const auto bytes = file.read()) {
            if (auto parsed = parse(*bytes)) {
                return parsed;
            }
        }
    }
    file.close();
    return std::nullopt;
}

}  // namespace corvane::sources
