#include "app/tray_glyph_icon.h"

#include <QFont>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <algorithm>
#include <memory>

namespace corvane::app {

namespace {

class GlyphIconEngine : public QIconEngine {
  public:
    GlyphIconEngine(QString glyph, QColor colour)
        : glyph_(std::move(glyph)), colour_(std::move(colour)) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        // The sign's outline, scaled so that its ink (not its font box, which has room for
        // accents and descenders) fills nine tenths of the square.
        QFont font(QStringLiteral("DejaVu Sans"));
        font.setPixelSize(64);
        QPainterPath outline;
        outline.addText(0, 0, font, glyph_);
        const QRectF ink = outline.boundingRect();
        if (ink.isEmpty()) {
            return;
        }
        const qreal scale =
            0.9 * std::min(rect.width() / ink.width(), rect.height() / ink.height());
        QColor colour = colour_;
        if (mode == QIcon::Disabled) {
            colour.setAlphaF(0.4f);
        }
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->translate(QRectF(rect).center());
        painter->scale(scale, scale);
        painter->translate(-ink.center());
        painter->fillPath(outline, colour);
        painter->restore();
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect(QPoint(0, 0), size), mode, state);
        return pixmap;
    }

    // Sizes offered to trays that pick from a list (the D-Bus tray sends these as pixmaps).
    QList<QSize> availableSizes(QIcon::Mode, QIcon::State) override {
        return {{16, 16}, {22, 22}, {24, 24}, {32, 32}, {48, 48}, {64, 64}};
    }

    QIconEngine* clone() const override { return new GlyphIconEngine(glyph_, colour_); }
    QString key() const override { return QStringLiteral("corvane-glyph"); }

  private:
    QString glyph_;
    QColor colour_;
};

}  // namespace

QIcon trayGlyphIcon(const QString& glyph, const QColor& colour) {
    // QIcon takes ownership of its engine.
    return QIcon(std::make_unique<GlyphIconEngine>(glyph, colour).release());
}

}  // namespace corvane::app
