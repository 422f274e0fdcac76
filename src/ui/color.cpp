#include "ui/color.h"

#include "ui/hex_scan.h"

namespace corvane::ui {

Color Color::fromHex(std::string_view hex) {
    // Only a "#" at the very start is skipped, before the scan skips any white space.
    if (!hex.empty() && hex.front() == '#') {
        hex.remove_prefix(1);
    }
    const std::uint64_t value = scanHexLongLong(hex);
    // Divided by 255, not 256, so that a full byte is exactly 1.0.
    return Color{.space = ColorSpace::sRGB,
                 .red = static_cast<double>((value & 0xFF0000) >> 16) / 255.0,
                 .green = static_cast<double>((value & 0xFF00) >> 8) / 255.0,
                 .blue = static_cast<double>(value & 0xFF) / 255.0,
                 .opacity = 1.0};
}

QColor toQColor(const Color& color) {
    return QColor::fromRgbF(static_cast<float>(color.red), static_cast<float>(color.green),
                            static_cast<float>(color.blue), static_cast<float>(color.opacity));
}

}  // namespace corvane::ui
