#pragma once

#include <QColor>
#include <string_view>

namespace corvane::ui {

enum class ColorSpace { sRGB };

// An opaque-or-not colour with exact double components from 0.0 to 1.0. QColor keeps only 16
// bits per channel, so the exact values live here and QColor is made only for painting.
struct Color {
    ColorSpace space = ColorSpace::sRGB;
    double red = 0.0;
    double green = 0.0;
    double blue = 0.0;
    double opacity = 1.0;

    // An opaque sRGB colour from a text such as "#40E0D0". Never fails: one leading "#" is
    // skipped, then one hex number is scanned and its low 24 bits are red, green and blue.
    // Anything unreadable gives black.
    static Color fromHex(std::string_view hex);
};

QColor toQColor(const Color& color);

}  // namespace corvane::ui
