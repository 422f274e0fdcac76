#include <pwd.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <memory>

#include "sources/disk_usage.h"

namespace corvane::sources {

namespace {

// Looks the user up with a buffer of `size` bytes. nullopt with errno ERANGE: try larger.
std::optional<std::string> homeWithBuffer(uid_t uid, char* buffer, std::size_t size) {
    passwd entry{};
    passwd* found = nullptr;
    int error = 0;
    do {
        error = getpwuid_r(uid, &entry, buffer, size, &found);
    } while (error == EINTR);
    errno = error;
    if (error != 0 || found == nullptr || found->pw_dir == nullptr || found->pw_dir[0] == '\0') {
        return std::nullopt;
    }
    return std::string(found->pw_dir);
}

}  // namespace

std::optional<std::string> userHomeDirectory() {
    const uid_t uid = getuid();
    // Almost every entry fits on the stack; a longer one (long GECOS field) retries larger.
    std::array<char, 1024> small{};
    if (auto home = homeWithBuffer(uid, small.data(), small.size()); home || errno != ERANGE) {
        return home;
    }
    constexpr std::size_t kMaxBytes = std::size_t{1} << 20;
    for (std::size_t size = 2 * small.size(); size <= kMaxBytes; size *= 2) {
        const auto buffer = std::make_unique<char[]>(size);
        if (auto home = homeWithBuffer(uid, buffer.get(), size); home || errno != ERANGE) {
            return home;
        }
    }
    return std::nullopt;
}

// f_bavail, not f_bfree: the space the user can still write, without root's reserve.
std::optional<VolumeSize> statVolume(const std::string& path) {
    struct statvfs volume {};
    int result = 0;
    do {
        result = ::statvfs(path.c_str(), &volume);
    } while (result != 0 && errno == EINTR);
    if (result != 0) {
        return std::nullopt;
    }
    const auto blockSize = static_cast<double>(volume.f_frsize);
    return VolumeSize{.sizeBytes = static_cast<double>(volume.f_blocks) * blockSize,
                      .freeBytes = static_cast<double>(volume.f_bavail) * blockSize};
}

}  // namespace corvane::sources
