#include "tray/status_notifier_types.h"

#include <QImage>
#include <QPixmap>
#include <QtEndian>

namespace corvane::tray {

IconPixmaps iconPixmaps(const QIcon& icon) {
    IconPixmaps pixmaps;
    for (const QSize size : icon.availableSizes()) {
        const QImage image =
            icon.pixmap(size, 1.0).toImage().convertToFormat(QImage::Format_ARGB32);
        IconPixmap pixmap{image.width(), image.height(), {}};
        pixmap.argb.resize(static_cast<qsizetype>(image.width()) * image.height() * 4);
        auto* out = reinterpret_cast<quint32*>(pixmap.argb.data());
        for (int y = 0; y < image.height(); ++y) {
            const auto* line = reinterpret_cast<const quint32*>(image.constScanLine(y));
            for (int x = 0; x < image.width(); ++x) {
                *out++ = qToBigEndian(line[x]);
            }
        }
        pixmaps.append(std::move(pixmap));
    }
    return pixmaps;
}

QDBusArgument& operator<<(QDBusArgument& argument, const IconPixmap& pixmap) {
    argument.beginStructure();
    argument << pixmap.width << pixmap.height << pixmap.argb;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, IconPixmap& pixmap) {
    argument.beginStructure();
    argument >> pixmap.width >> pixmap.height >> pixmap.argb;
    argument.endStructure();
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const ToolTip& toolTip) {
    argument.beginStructure();
    argument << toolTip.iconName << toolTip.iconPixmaps << toolTip.title << toolTip.description;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, ToolTip& toolTip) {
    argument.beginStructure();
    argument >> toolTip.iconName >> toolTip.iconPixmaps >> toolTip.title >> toolTip.description;
    argument.endStructure();
    return argument;
}

}  // namespace corvane::tray
