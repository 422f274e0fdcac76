#include "sources/disk_usage.h"

namespace corvane::sources {

std::optional<std::string> userHomeDirectory() { return std::nullopt; }  // TODO
std::optional<VolumeSize> statVolume(const std::string&) { return std::nullopt; }  // TODO

}  // namespace corvane::sources
