#include "ui/axis_range.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace corvane::ui {

namespace {

constexpr int kTargetIntervals = 4;

bool finite(double x) {
    return std::isfinite(x);
}

}  // namespace

AxisRange valueAxisRange(std::span<const double> values) {
    double low = 0.0;
    double high = 0.0;
    for (const double value : values) {
        if (finite(value)) {
            low = std::min(low, value);
            high = std::max(high, value);
        }
    }
    if (low == high) {
        return AxisRange{};
    }

    const double rough = (high - low) / kTargetIntervals;
    const double magnitude = std::pow(10.0, std::floor(std::log10(rough)));
    double step = 10.0 * magnitude;
    for (const double factor : std::array{1.0, 2.0, 2.5, 5.0}) {
        if (factor * magnitude >= rough) {
            step = factor * magnitude;
            break;
        }
    }
    const double min = std::floor(low / step) * step;
    const double max = std::ceil(high / step) * step;
    const double intervals = std::round((max - min) / step);
    // Near the ends of the double range the grid itself overflows or underflows: fall back to
    // the data's own extent with ticks only at the ends.
    if (!finite(rough) || !(step > 0.0) || !finite(min) || !finite(max) || !finite(intervals) ||
        intervals < 1.0 || intervals > 4.0 * kTargetIntervals) {
        return AxisRange{low, high, 2};
    }
    return AxisRange{min, max, static_cast<int>(intervals) + 1};
}

}  // namespace corvane::ui
