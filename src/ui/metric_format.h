#pragma once

#include <cstdint>
#include <span>
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

// What a screen reader says of the CPU history chart, from the values its line draws (values
// that are not finite have no point on the line and are left out here too):
// "30 values, lowest 3.10 %, highest 9.80 %, latest 7.44 %", or "no values yet".
std::string describeHistory(std::span<const double> history);

}  // namespace corvane::ui
