#include "ui/axis_range.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace corvane::ui {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

TEST(ValueAxisRange, RoundsUpFromZero) {
    const struct {
        std::vector<double> values;
        AxisRange range;
    } cases[] = {
        {{}, {0.0, 1.0, 2}},
        {{0.0, 0.0}, {0.0, 1.0, 2}},
        {{37.25}, {0.0, 40.0, 5}},
        {{12.5, 37.25, 20.0}, {0.0, 40.0, 5}},
        {{20.0, 26.0}, {0.0, 30.0, 4}},        // seven labels would not fit in the chart
        {{10.0, 20.0, 45.0}, {0.0, 60.0, 4}},  // not stretched to 100
        {{85.4}, {0.0, 100.0, 5}},
        {{100.0}, {0.0, 100.0, 5}},
        {{100.5}, {0.0, 150.0, 4}},
        {{3.0}, {0.0, 3.0, 4}},
        {{-10.0, 30.0}, {-10.0, 30.0, 5}},
        // Values off the axis do not count.
        {{kNaN, kInf, -kInf, 20.0}, {0.0, 20.0, 5}},
        {{kNaN}, {0.0, 1.0, 2}},
    };
    for (const auto& c : cases) {
        const AxisRange range = valueAxisRange(c.values);
        EXPECT_EQ(range, c.range) << "values starting " << (c.values.empty() ? 0 : c.values[0])
                                  << ": got " << range.min << ".." << range.max << " / "
                                  << range.tickCount;
    }
}

}  // namespace
}  // namespace corvane::ui
