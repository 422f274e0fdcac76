#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>
#include <cstdint>

namespace corvane::tray {

// Follows the X11 system tray: the owner of the _NET_SYSTEM_TRAY_S0 selection, whose arrival a
// tray announces with a MANAGER message to the root window, and whose window is destroyed when
// the tray ends. Does nothing off X11.
class X11TraySelection : public QObject, public QAbstractNativeEventFilter {
    Q_OBJECT
  public:
    explicit X11TraySelection(QObject* parent = nullptr);
    ~X11TraySelection() override;

    bool isOwned() const { return owner_ != 0; }

    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

  signals:
    // A tray took the selection, or the one that held it ended.
    void changed();

  private:
    void follow(std::uint32_t owner);

    std::uint32_t trayAtom_ = 0;
    std::uint32_t managerAtom_ = 0;
    std::uint32_t owner_ = 0;  // the tray's window, 0 while there is none
};

}  // namespace corvane::tray
