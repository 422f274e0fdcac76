#include "sources/disk_usage.h"

namespace corvane::sources {

double diskUsagePercent(const VolumeSize& v) {
    const double used = v.sizeBytes - v.freeBytes;
    return used / v.sizeBytes * 100.0;
}

DiskReader::DiskReader(HomeDirectoryQuery home, VolumeQuery volume)
    : home_(std::move(home)), volume_(std::move(volume)) {}

std::optional<VolumeSize> DiskReader::read() {
    const auto home = home_();
    if (!home) {
        return std::nullopt;
    }
    return volume_(*home);
}

}  // namespace corvane::sources
