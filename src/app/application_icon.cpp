#include "app/application_icon.h"

#include "app/status_title.h"
#include "app/tray_glyph_icon.h"
#include "platform/application_id.h"
#include "tray/icon_folder.h"

namespace corvane::app {

QIcon applicationIcon() {
    // Null when the theme has no file of that name that Qt can draw. Not asked where none is
    // installed: the theme's lookup loads Qt's SVG engine for the rest of the run.
    const QString id = QString::fromLatin1(platform::kApplicationId);
    const QIcon installed =
        tray::installedIconName(id).isEmpty() ? QIcon() : QIcon::fromTheme(id);
    if (installed.isNull()) {
        return trayGlyphIcon(QString::fromUtf8(kStatusGlyph), kGlyphColour);
    }
    // The theme's scalable icon has one nominal size, and the window would carry only that one
    // image for the window manager to shrink; drawn from the SVG at each usual size, the title
    // bar's 16 pixels are as sharp as the launcher's.
    QIcon sized;
    for (const int side : {16, 22, 24, 32, 48, 64, 128}) {
        sized.addPixmap(installed.pixmap(side));
    }
    return sized;
}

}  // namespace corvane::app
