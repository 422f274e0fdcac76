#include "tray/png_file.h"

#include <QSaveFile>
#include <QtEndian>
#include <array>

namespace corvane::tray {

namespace {

// CRC-32 of PNG chunks (ISO 3309, as in the PNG format's annex D).
quint32 crc32(const QByteArray& bytes) {
    static constexpr auto kTable = [] {
        std::array<quint32, 256> table{};
        for (quint32 n = 0; n < 256; ++n) {
            quint32 c = n;
            for (int k = 0; k < 8; ++k) {
                c = (c & 1) != 0 ? 0xEDB88320u ^ (c >> 1) : c >> 1;
            }
            table[n] = c;
        }
        return table;
    }();
    quint32 c = 0xFFFFFFFFu;
    for (const char byte : bytes) {
        c = kTable[(c ^ static_cast<quint8>(byte)) & 0xFFu] ^ (c >> 8);
    }
    return c ^ 0xFFFFFFFFu;
}

QByteArray bigEndian(quint32 value) {
    QByteArray bytes(4, Qt::Uninitialized);
    qToBigEndian(value, bytes.data());
    return bytes;
}

QByteArray chunk(const char* type, const QByteArray& data) {
    const QByteArray typed = QByteArray(type) + data;
    return bigEndian(static_cast<quint32>(data.size())) + typed + bigEndian(crc32(typed));
}

}  // namespace

bool writePng(const QImage& image, const QString& path) {
    const QImage rgba = image.convertToFormat(QImage::Format_RGBA8888);
    QByteArray header = bigEndian(static_cast<quint32>(rgba.width())) +
                        bigEndian(static_cast<quint32>(rgba.height()));
    header +=
        QByteArray("\x08\x06\x00\x00\x00", 5);  // 8 bits, RGBA, deflate, no filter, no interlace
    QByteArray rows;
    for (int y = 0; y < rgba.height(); ++y) {
        rows += '\0';  // each row unfiltered
        rows += QByteArray::fromRawData(reinterpret_cast<const char*>(rgba.constScanLine(y)),
                                        static_cast<qsizetype>(rgba.width()) * 4);
    }
    QSaveFile file(path);
    // qCompress gives a zlib stream after four bytes of length, and PNG takes the zlib stream.
    return file.open(QIODevice::WriteOnly) &&
           file.write(QByteArray("\x89PNG\r\n\x1a\n", 8) + chunk("IHDR", header) +
                      chunk("IDAT", qCompress(rows).mid(4)) + chunk("IEND", {})) > 0 &&
           file.commit();
}

}  // namespace corvane::tray
