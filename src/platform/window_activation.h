#pragma once

#include <QString>
#include <QWidget>

namespace corvane::platform {

// Brings `window` to the front: shown again if it was closed or minimised, raised and
// activated, never made anew. `activationToken` is the token a launcher or notification service
// handed on (empty: none); compositors and window managers that prevent focus stealing let a
// window that carries one come to the front while another application is active.
void bringToFront(QWidget& window, const QString& activationToken);

}  // namespace corvane::platform
