#include "tray/icon_folder.h"

#include <QDir>
#include <QPixmap>
#include <QStandardPaths>

#include "tray/png_file.h"

namespace corvane::tray {

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
