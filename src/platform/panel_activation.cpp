#include "platform/panel_activation.h"

#include <utility>

#include "platform/window_activation.h"

namespace corvane::platform {

QString PanelActivation::spend(unsigned x11Time) {
    const QString token = std::exchange(token_, QString());
    return token.isEmpty() ? x11StartupId(x11Time) : token;
}

void PanelActivation::runMenuClick(QAction& action, const QString& token) {
    clickToken_ = token;
    action.trigger();
    clickToken_.clear();
}

}  // namespace corvane::platform
