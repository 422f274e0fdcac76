#include "sources/kernel_file.h"

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace corvane::sources {

namespace {
// Every file read per tick fits here; larger ones grow the buffer once and keep it.
constexpr std::size_t kInitialBytes = 4096;
}  // namespace

KernelFile::KernelFile(std::string path, std::size_t maxBytes)
    : path_(std::move(path)), maxBytes_(maxBytes) {}

KernelFile::~KernelFile() {
    close();
}

KernelFile::KernelFile(KernelFile&& other) noexcept
    : path_(std::move(other.path_)),
      maxBytes_(other.maxBytes_),
      fd_(std::exchange(other.fd_, -1)),
      checkLinks_(other.checkLinks_),
      buffer_(std::move(other.buffer_)) {}

KernelFile& KernelFile::operator=(KernelFile&& other) noexcept {
    if (this != &other) {
        close();
        path_ = std::move(other.path_);
        maxBytes_ = other.maxBytes_;
        fd_ = std::exchange(other.fd_, -1);
        checkLinks_ = other.checkLinks_;
        buffer_ = std::move(other.buffer_);
    }
    return *this;
}

void KernelFile::close() noexcept {
    if (fd_ >= 0) {
        // Linux releases the descriptor even when close reports EINTR: never retry.
        ::close(std::exchange(fd_, -1));
    }
}

bool KernelFile::open() {
    int fd = -1;
    do {
        // O_NONBLOCK: a FIFO planted where a file should be must not hang the UI thread.
        fd = ::open(path_.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
    } while (fd < 0 && errno == EINTR);
    if (fd < 0) {
        return false;
    }
    struct stat status {};
    if (::fstat(fd, &status) != 0 || !S_ISREG(status.st_mode)) {
        ::close(fd);
        return false;
    }
    struct statfs fileSystem {};
    checkLinks_ = ::fstatfs(fd, &fileSystem) != 0 ||
                  (fileSystem.f_type != PROC_SUPER_MAGIC && fileSystem.f_type != SYSFS_MAGIC);
    fd_ = fd;
    return true;
}

std::optional<std::string_view> KernelFile::read() {
    if (fd_ < 0 && !open()) {
        return std::nullopt;
    }
    if (checkLinks_) {
        struct stat status {};
        if (::fstat(fd_, &status) != 0 || status.st_nlink == 0) {
            close();
            return std::nullopt;
        }
    }
    // One byte beyond the cap tells "exactly at the cap" from "too large".
    const std::size_t limit = maxBytes_ + 1;
    if (buffer_.empty()) {
        buffer_.resize(std::min(kInitialBytes, limit));
    }
    std::size_t length = 0;
    for (;;) {
        if (length == buffer_.size()) {
            if (buffer_.size() >= limit) {
                close();
                return std::nullopt;
            }
            buffer_.resize(std::min(buffer_.size() * 2, limit));
        }
        // seq_file regenerates the content on a read at offset 0 and may hand it out a page
        // at a time, so read on until the end.
        const ssize_t n = ::pread(fd_, buffer_.data() + length, buffer_.size() - length,
                                  static_cast<off_t>(length));
        if (n < 0) {
            if (errno == EINTR) {
                continue;
            }
            close();
            return std::nullopt;
        }
        if (n == 0) {
            break;
        }
        length += static_cast<std::size_t>(n);
    }
    // The kernel never generates an empty procfs or sysfs file.
    if (length == 0) {
        close();
        return std::nullopt;
    }
    return std::string_view(buffer_.data(), length);
}

}  // namespace corvane::sources
