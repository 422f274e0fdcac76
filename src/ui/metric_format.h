#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace corvane::ui {

// The dashboard's value texts. Numbers are written with a full stop and two decimals whatever
// the user's locale, as printf's "%.2f" does in the C locale; a NaN shows as "nan" whatever its
// sign bit, infinities as "inf" and "-inf".

// "%.2f %%": 37.25 gives "37.25 %".
std::string formatPercent(double value);

// "%.2f MB/s": 0.5 gives "0.50 MB/s".
std::string formatRate(double megabytesPerSecond);

// Level and state without a blank before the percent sign: "85% (Charging)".
std::string formatBattery(std::int64_t level, std::string_view state);

}  // namespace corvane::ui
