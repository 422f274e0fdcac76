#include "tray/panel_activation.h"

#include <utility>

#include "platform/window_activation.h"

namespace corvane::tray {

// Panels announce an opening twice (AboutToShow, then "opened"): the second finds nothing new.
void PanelActivation::menuOpening() {
    if (!token_.isEmpty()) {
        menuToken_ = std::exchange(token_, QString());
    }
}

void PanelActivation::drop() {
    token_.clear();
    menuToken_.clear();
}

QString PanelActivation::spendOnItem() {
    menuToken_.clear();
    return std::exchange(token_, QString());
}

QString PanelActivation::spendInMenu(unsigned x11Time) {
    const QString token = token_.isEmpty() ? menuToken_ : token_;
    drop();
    return token.isEmpty() ? platform::x11StartupId(x11Time) : token;
}

void PanelActivation::runMenuClick(QAction& action, const QString& token) {
    clickToken_ = token;
    action.trigger();
    clickToken_.clear();
}

}  // namespace corvane::tray
