#include "ui/color.h"

#include <gtest/gtest.h>

#include <string>

namespace corvane::ui {
namespace {

struct HexCase {
    std::string text;
    double red;
    double green;
    double blue;
};

constexpr double kAccentRed = 0.25098039215686274;   // 64 / 255
constexpr double kAccentGreen = 0.8784313725490196;  // 224 / 255
constexpr double kAccentBlue = 0.8156862745098039;   // 208 / 255

const HexCase kCases[] = {
    {"#40E0D0", kAccentRed, kAccentGreen, kAccentBlue},
    // Other spellings of the same number.
    {"40E0D0", kAccentRed, kAccentGreen, kAccentBlue},
    {"0x40E0D0", kAccentRed, kAccentGreen, kAccentBlue},
    {"#0x40E0D0", kAccentRed, kAccentGreen, kAccentBlue},
    {"#0X40e0d0", kAccentRed, kAccentGreen, kAccentBlue},
    {"#0000000000000000000040E0D0", kAccentRed, kAccentGreen, kAccentBlue},
    // White space and line breaks after the "#" are skipped, Unicode ones included.
    {"# 40E0D0", kAccentRed, kAccentGreen, kAccentBlue},
    {"#\n\t\r 40E0D0", kAccentRed, kAccentGreen, kAccentBlue},
    {"#\u00A040E0D0", kAccentRed, kAccentGreen, kAccentBlue},
    {"#\u3000\u2029 0x40E0D0", kAccentRed, kAccentGreen, kAccentBlue},
    // Whatever follows the digits is ignored.
    {"#40E0D0 and more words", kAccentRed, kAccentGreen, kAccentBlue},
    {"#40 E0D0", 0.0, 0.0, 64 / 255.0},
    {"#ffffff", 1.0, 1.0, 1.0},
    {"#FFFFFF", 1.0, 1.0, 1.0},
    // No shorthand: three digits are the number 0xFFF.
    {"#FFF", 0.0, 15 / 255.0, 1.0},
    // Only the low 24 bits reach the colour; there is no alpha byte.
    {"#80FF0000", 1.0, 0.0, 0.0},
    {"#123456789ABCDEF0", 0xBC / 255.0, 0xDE / 255.0, 0xF0 / 255.0},
    // More than 64 bits: all bits set.
    {"#10000000000000000", 1.0, 1.0, 1.0},
    {"#123456789ABCDEF0123", 1.0, 1.0, 1.0},
    // Nothing readable at the scan position: black.
    {"", 0.0, 0.0, 0.0},
    {"#", 0.0, 0.0, 0.0},
    {"#GG0000", 0.0, 0.0, 0.0},
    {"##40E0D0", 0.0, 0.0, 0.0},
    {" #40E0D0", 0.0, 0.0, 0.0},
    {"#-40E0D0", 0.0, 0.0, 0.0},
    {"#x40E0D0", 0.0, 0.0, 0.0},
    {"#\u200B40E0D0", 0.0, 0.0, 0.0},  // a zero-width space is not white space
    // "0x" without a digit after it is the number 0 followed by an "x".
    {"#0x", 0.0, 0.0, 0.0},
    {"#0xG1", 0.0, 0.0, 0.0},
    {"#0x0x12", 0.0, 0.0, 0.0},
};

TEST(ColorFromHex, FollowsTheScannerRules) {
    for (const HexCase& c : kCases) {
        SCOPED_TRACE("text: \"" + c.text + "\"");
        const Color color = Color::fromHex(c.text);
        EXPECT_EQ(color.space, ColorSpace::sRGB);
        EXPECT_EQ(color.red, c.red);
        EXPECT_EQ(color.green, c.green);
        EXPECT_EQ(color.blue, c.blue);
        EXPECT_EQ(color.opacity, 1.0);
    }
}

TEST(ColorFromHex, PaintsAsTheSameEightBitColour) {
    EXPECT_EQ(toQColor(Color::fromHex("#40E0D0")), QColor(64, 224, 208));
    EXPECT_EQ(toQColor(Color::fromHex("#FFFFFF")), QColor(Qt::white));
}

}  // namespace
}  // namespace corvane::ui
