#pragma once

#include <QColor>
#include <QIcon>
#include <QString>

namespace corvane::app {

// The glyph's amber: it reads on both light and dark panels and title bars.
inline constexpr QColor kGlyphColour(0xF5, 0xB7, 0x00);

// An icon that draws `glyph` in DejaVu Sans at whatever size the panel asks for, so that the
// tray shows a sharp sign on any panel height instead of a scaled bitmap.
QIcon trayGlyphIcon(const QString& glyph, const QColor& colour);

}  // namespace corvane::app
