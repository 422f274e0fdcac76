#pragma once

#include <QAction>
#include <QString>

namespace corvane::tray {

// What a panel hands over for a click: an activation token (KDE, before Activate and as it
// opens the menu, and in some versions again before a menu click) or, in a menu click, the
// click's X11 time (GTK panels). Each is spent by the click it came with: a token handed over as
// the menu opened is the token of a click in that menu, never of a later click on the item.
class PanelActivation {
  public:
    void provide(const QString& token) { token_ = token; }
    // The menu opens: a token handed over for that is the menu's.
    void menuOpening();
    void drop();
    // The token of a click on the item itself.
    QString spendOnItem();
    // The token of a click in the menu: one handed over just before it, else the menu's, else on
    // X11 a startup id that carries the click's time (0: none).
    QString spendInMenu(unsigned x11Time);
    // Triggers `action` with `token` as the menu click's token while it runs.
    void runMenuClick(QAction& action, const QString& token);
    const QString& menuClickToken() const { return clickToken_; }

  private:
    QString token_;
    QString menuToken_;
    QString clickToken_;
};

}  // namespace corvane::tray
