#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace corvane::fuzz {

// One entry per parser that reads bytes the machine hands us. Each takes arbitrary bytes,
// must not crash, hang or trip a sanitizer, and checks what must hold of any result.
struct Target {
    std::string_view name;
    void (*run)(std::string_view bytes);
};

void procStat(std::string_view bytes);
void meminfo(std::string_view bytes);
void netDev(std::string_view bytes);
void powerSupplyAttribute(std::string_view bytes);
void hexColour(std::string_view bytes);

inline constexpr Target kTargets[] = {
    {"proc_stat", procStat},   {"meminfo", meminfo},
    {"net_dev", netDev},       {"power_supply", powerSupplyAttribute},
    {"hex_colour", hexColour},
};

}  // namespace corvane::fuzz
