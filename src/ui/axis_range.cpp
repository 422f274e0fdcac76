#include "ui/axis_range.h"

#include <algorithm>
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

    // The step is the smallest nice number at or above a quarter of the span, so there are at
    // most four intervals (five labels, one more when the values reach below zero): in the
    // chart's 150 pixels, more labels would be too close to print and the chart elides them.
    const double rough = (high - low) / kTargetIntervals;
    const double magnitude = std::pow(10.0, std::floor(std::log10(rough)));
    const double normalised = rough / magnitude;
    double factor = 10.0;
    for (const double nice : {1.0, 2.0, 2.5, 5.0}) {
        if (normalised <= nice) {
            factor = nice;
            break;
        }
    }
    const double step = factor * magnitude;
    double min = std::floor(low / step) * step;
    double max = std::ceil(high / step) * step;
    // The products are rounded: make sure they still enclose the values.
    if (min > low) {
        min -= step;
    }
    if (max < high) {
        max += step;
    }
    // Between two and six: the step is at most half the span and at least a quarter of it, and
    // each end moved out by less than a step.
    const double intervals = std::round((max - min) / step);
    // Near the ends of the double range the grid itself overflows or underflows: fall back to
    // the data's own extent with ticks only at the ends.
    if (!finite(rough) || !(step > 0.0) || !finite(min) || !finite(max) || !finite(intervals)) {
        return AxisRange{low, high, 2};
    }
    return AxisRange{min, max, static_cast<int>(intervals) + 1};
}

}  // namespace corvane::ui
