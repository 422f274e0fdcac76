#pragma once

#include <QAction>
#include <QString>

namespace corvane::platform {

// What a panel hands over for the click it sends next: an activation token (KDE, before
// Activate and before each menu click) or, in a menu click, the click's X11 time (GTK panels).
// Each is spent by the click it came with: a token handed over as a menu opens, or before a
// click that opens nothing, is never the token of a later click.
class PanelActivation {
  public:
    void provide(const QString& token) { token_ = token; }
    void drop() { token_.clear(); }
    // The token of the click the panel sends now: the one handed over, else on X11 a startup
    // id that carries the click's time (0: none).
    QString spend(unsigned x11Time = 0);
    // Triggers `action` with `token` as the menu click's token while it runs.
    void runMenuClick(QAction& action, const QString& token);
    const QString& menuClickToken() const { return clickToken_; }

  private:
    QString token_;
    QString clickToken_;
};

}  // namespace corvane::platform
