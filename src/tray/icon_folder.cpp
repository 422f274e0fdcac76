#include "tray/icon_folder.h"

#include <png.h>

#include <QDir>
#include <QFile>
#include <QPixmap>
#include <QStandardPaths>

namespace corvane::tray {

namespace {

// libpng's simplified writer. QtGui links libpng already; Qt's own image writer would first load
// every image-format plugin it has to find PNG's, and keep them for the rest of the run (1.1 MB).
bool writePng(const QImage& image, const QString& path) {
    const QImage rgba = image.convertToFormat(QImage::Format_RGBA8888);
    png_image png{};
    png.version = PNG_IMAGE_VERSION;
    png.width = static_cast<png_uint_32>(rgba.width());
    png.height = static_cast<png_uint_32>(rgba.height());
    png.format = PNG_FORMAT_RGBA;
    // libpng frees what it allocated for `png` before it returns, and removes a half-written file.
    return png_image_write_to_file(&png, QFile::encodeName(path).constData(), 0, rgba.constBits(),
                                   static_cast<png_int_32>(rgba.bytesPerLine()), nullptr) != 0;
}

}  // namespace

QString installedIconName(const QString& name) {
    const QString file = QStringLiteral("icons/hicolor/scalable/apps/%1.svg").arg(name);
    return QStandardPaths::locate(QStandardPaths::GenericDataLocation, file).isEmpty() ? QString()
                                                                                       : name;
}

bool writeIconFolder(const QString& folder, const QString& name, const QIcon& icon) {
    if (folder.isEmpty()) {
        return false;
    }
    bool written = true;
    QSize largest;
    for (const QSize size : icon.availableSizes()) {
        const QString apps = QStringLiteral("%1/hicolor/%2x%3/apps")
                                 .arg(folder)
                                 .arg(size.width())
                                 .arg(size.height());
        written = QDir().mkpath(apps) &&
                  writePng(icon.pixmap(size, 1.0).toImage(),
                           QStringLiteral("%1/%2.png").arg(apps, name)) &&
                  written;
        largest = largest.width() < size.width() ? size : largest;
    }
    return largest.isValid() &&
           writePng(icon.pixmap(largest, 1.0).toImage(),
                    QStringLiteral("%1/%2.png").arg(folder, name)) &&
           written;
}

}  // namespace corvane::tray
