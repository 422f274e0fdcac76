#include "app/application_icon.h"

#include "app/status_title.h"
#include "app/tray_glyph_icon.h"
#include "platform/application_id.h"

namespace corvane::app {

QIcon applicationIcon() {
    // Null when the theme has no file of that name that Qt can draw.
    QIcon installed = QIcon::fromTheme(QString::fromLatin1(platform::kApplicationId));
    return installed.isNull() ? trayGlyphIcon(QString::fromUtf8(kStatusGlyph), kGlyphColour)
                              : installed;
}

}  // namespace corvane::app
