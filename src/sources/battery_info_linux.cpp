#include <dirent.h>
#include <unistd.h>

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

bool exists(const KernelFile& file) {
    return ::access(file.path().c_str(), F_OK) == 0;
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

PowerSourceReader::Battery PowerSourceReader::batteryFiles(const std::string& supply,
                                                           Capacity capacity) {
    switch (capacity) {
        case Capacity::Energy:
            return {capacity, attribute(supply, "energy_now"), attribute(supply, "energy_full"),
                    attribute(supply, "status")};
        case Capacity::Charge:
            return {capacity, attribute(supply, "charge_now"), attribute(supply, "charge_full"),
                    attribute(supply, "status")};
        case Capacity::Percent:
            break;
    }
    return {capacity, attribute(supply, "capacity"), KernelFile(std::string{}),
            attribute(supply, "status")};
}

// Every supply's `type`; a Battery counts unless its `scope` is "Device" (a mouse or a game
// pad reports its own battery here). The first battery by name is the power source. Its
// capacity pair is the first one the battery has: energy_*, else charge_*, else capacity.
// What the files hold does not choose: a value unreadable for a moment must fail that one
// read (the fields keep their values), not switch the level to another source. Only a full
// capacity of 0 passes a pair over: a driver that does not know it (Asahi's newer
// macsmc-battery gives energy_full 0 beside a working charge pair).
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
            for (const Capacity capacity : {Capacity::Energy, Capacity::Charge}) {
                Battery candidate = batteryFiles(supply, capacity);
                if (exists(candidate.now) && exists(candidate.full) &&
                    readInteger(candidate.full) != 0) {
                    battery_.emplace(std::move(candidate));
                    break;
                }
            }
            if (!battery_) {
                battery_.emplace(batteryFiles(supply, Capacity::Percent));
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
        // cannot be read leaves the state unknown unless another one is online: the read
        // fails, and the scan that follows at once drops a charger that went away.
        bool unknown = false;
        for (KernelFile& online : chargerOnline_) {
            const auto value = readInteger(online);
            if (value && *value > 0) {
                external = true;
                break;
            }
            unknown = unknown || !value;
        }
        if (!external && unknown) {
            return std::nullopt;
        }
    }
    source.powerSourceState = external ? "AC Power" : "Battery Power";
    return source;
}

}  // namespace corvane::sources
