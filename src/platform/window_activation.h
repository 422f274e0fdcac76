#pragma once

#include <QString>
#include <QWidget>

namespace corvane::platform {

// Brings `window` to the front: shown again if it was closed or minimised, raised and
// activated, never made anew. `activationToken` is the token a launcher or notification service
// handed on (empty: none); compositors and window managers that prevent focus stealing let a
// window that carries one come to the front while another application is active.
void bringToFront(QWidget& window, const QString& activationToken);

// On X11, a startup id that carries a click's time (freedesktop startup-notification: "_TIME"
// and the time), which window managers weigh against focus stealing like a launcher's; empty
// elsewhere, or for time 0.
QString x11StartupId(unsigned time);

}  // namespace corvane::platform
