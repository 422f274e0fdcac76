#include <dirent.h>

#include <algorithm>
#include <memory>

#include "sources/battery_info.h"

namespace corvane::sources {

namespace {

// A sysfs attribute holds at most one page; 64 KiB covers the largest page size.
constexpr std::size_t kAttributeMaxBytes = std::size_t{64} << 10;

KernelFile attribute(const std::string& supply, const char* name) {
    return KernelFile(supply + name, kAttributeMaxBytes);
}

// The text of an attribute read once and closed again, or nullopt.
std::optional<std::string> readText(const std::string& supply, const char* name) {
    KernelFile file = attribute(supply, name);
    const auto bytes = file.read();
    return bytes ? std::optional<std::string>(sysfsText(*bytes)) : std::nullopt;
}

std::optional<std::int64_t> readInteger(KernelFile& file) {
    return readParsed(file, parseSysfsInteger);
}

// Entry names in byte order, without "." and "..". A missing folder has none.
std::vector<std::string> sortedEntries(const std::filesystem::path& dir) {
    std::vector<std::string> names;
    const std::unique_ptr<DIR, int (*)(DIR*)> stream(::opendir(dir.c_str()), ::closedir);
    if (!stream) {
        return names;
    }
    while (const dirent* entry = ::readdir(stream.get())) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..") {
            names.emplace_back(name);
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace

PowerSourceReader::PowerSourceReader(std::filesystem::path root)
    : PowerSourceReader(std::move(root), kRescanEveryReads) {}

PowerSourceReader::PowerSourceReader(std::filesystem::path root, int rescanEveryReads)
    : dir_(root / "sys/class/power_supply"), rescanEveryReads_(std::max(rescanEveryReads, 1)) {}

std::optional<PowerSource> PowerSourceReader::read() {
    bool scannedNow = false;
    if (!scanned_ || readsSinceScan_ >= rescanEveryReads_) {
        rescan();
        scannedNow = true;
    }
    ++readsSinceScan_;
    auto source = readScanned();
    if (!source && lastReadWorked_ && !scannedNow) {
        rescan();
        ++readsSinceScan_;
        source = readScanned();
    }
    lastReadWorked_ = source.has_value();
    return source;
}

// Every supply's `type`; a Battery counts unless its `scope` is "Device" (a mouse or a game
// pad reports its own battery here). The first battery by name is the power source. Its
// capacity pair is chosen by what reads now: energy_*, else charge_*, else capacity.
void PowerSourceReader::rescan() {
    scanned_ = true;
    readsSinceScan_ = 0;
    battery_.reset();
    chargerOnline_.clear();

    for (const std::string& name : sortedEntries(dir_)) {
        const std::string supply = (dir_ / name).string() + '/';
        const auto type = readText(supply, "type");
        if (type == "Mains" || type == "USB") {
            chargerOnline_.push_back(attribute(supply, "online"));
        } else if (type == "Battery" && !battery_ && readText(supply, "scope") != "Device") {
            battery_.emplace(Battery{Capacity::Energy, attribute(supply, "energy_now"),
                                     attribute(supply, "energy_full"),
                                     attribute(supply, "status")});
            if (!readInteger(battery_->now) || !readInteger(battery_->full)) {
                battery_->capacity = Capacity::Charge;
                battery_->now = attribute(supply, "charge_now");
                battery_->full = attribute(supply, "charge_full");
                if (!readInteger(battery_->now) || !readInteger(battery_->full)) {
                    battery_->capacity = Capacity::Percent;
                    battery_->now = attribute(supply, "capacity");
                    battery_->full = KernelFile(std::string{});
                }
            }
        }
    }
}

std::optional<PowerSource> PowerSourceReader::readScanned() {
    if (!battery_) {
        return std::nullopt;
    }
    PowerSource source;
    const auto now = readInteger(battery_->now);
    const auto full = battery_->capacity == Capacity::Percent ? std::optional<std::int64_t>(100)
                                                              : readInteger(battery_->full);
    if (!now || !full) {
        return std::nullopt;
    }
    source.currentCapacity = *now;
    source.maxCapacity = *full;

    bool external = false;
    if (chargerOnline_.empty()) {
        // No charger is described at all: trust the battery's own status.
        const auto status = readParsed(battery_->status, [](std::string_view bytes) {
            return std::optional<bool>(sysfsText(bytes) != "Discharging");
        });
        if (!status) {
            return std::nullopt;
        }
        external = *status;
    } else {
        // 1 is a fixed-voltage supply, 2 a programmable one (USB PD). A charger whose `online`
        // cannot be read is not supplying power; the next scan drops it if it is gone.
        for (KernelFile& online : chargerOnline_) {
            if (readInteger(online).value_or(0) > 0) {
                external = true;
                break;
            }
        }
    }
    source.powerSourceState = external ? "AC Power" : "Battery Power";
    return source;
}

}  // namespace corvane::sources
