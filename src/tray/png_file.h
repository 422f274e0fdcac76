#pragma once

#include <QImage>
#include <QString>

namespace corvane::tray {

// Writes `image` as a PNG file (8-bit RGBA). Qt's own writer loads every image-format plugin
// it has to find the one for PNG, and keeps them for the rest of the run; this needs only zlib,
// which Qt already holds. False if the file could not be written.
bool writePng(const QImage& image, const QString& path);

}  // namespace corvane::tray
