#pragma once

#include <span>

namespace corvane::ui {

struct AxisRange {
    double min = 0.0;
    double max = 1.0;
    int tickCount = 2;
};

// The automatic range of the chart's value axis: from 0 to a round number at or above the
// largest value (the range also reaches down to cover negative values), on a grid of 1, 2, 2.5
// or 5 times a power of ten with at most four intervals from zero. Values that are not finite are not
// plotted and do not count. No values, or only zeros, give 0 to 1.
AxisRange valueAxisRange(std::span<const double> values);

}  // namespace corvane::ui
