#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>
#include <cstdint>

namespace corvane::platform {

// Follows the X11 system tray: the owner of the _NET_SYSTEM_TRAY_S0 selection, whose arrival a
// tray announces with a MANAGER message to the root window. Does nothing off X11.
class X11TraySelection : public QObject, public QAbstractNativeEventFilter {
    Q_OBJECT
  public:
    explicit X11TraySelection(QObject* parent = nullptr);
    ~X11TraySelection() override;

    bool isOwned() const { return owned_; }

    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

  signals:
    void appeared();

  private:
    std::uint32_t trayAtom_ = 0;
    std::uint32_t managerAtom_ = 0;
    bool owned_ = false;
};

}  // namespace corvane::platform
