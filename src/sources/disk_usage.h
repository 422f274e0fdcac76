#pragma once

#include <functional>
#include <optional>
#include <string>

namespace corvane::sources {

struct VolumeSize {
    double sizeBytes = 0.0;
    double freeBytes = 0.0;
};

// Used share of the volume in percent; a size of zero gives NaN (0/0), on purpose.
double diskUsagePercent(const VolumeSize& volume);

// The facilities the disk reader needs: the user's home directory and the size of the file
// system that holds a path. Either may fail (nullopt).
using HomeDirectoryQuery = std::function<std::optional<std::string>()>;
using VolumeQuery = std::function<std::optional<VolumeSize>(const std::string& path)>;

// getpwuid_r(getuid()) -> pw_dir, asked anew each call; no environment variable is read.
std::optional<std::string> userHomeDirectory();
// statvfs: size = f_blocks * f_frsize, free = f_bavail * f_frsize.
std::optional<VolumeSize> statVolume(const std::string& path);

class DiskReader {
  public:
    DiskReader(HomeDirectoryQuery home = userHomeDirectory, VolumeQuery volume = statVolume);
    std::optional<VolumeSize> read();

  private:
    HomeDirectoryQuery home_;
    VolumeQuery volume_;
};

}  // namespace corvane::sources
