#pragma once

#include <QProcess>
#include <QString>
#include <memory>

namespace corvane::testing {

// An Xvfb server of our own on the first free display number, so that a test never draws on
// (or finds a tray of) the user's desktop. It ends with the object.
class VirtualDisplay {
  public:
    VirtualDisplay();
    ~VirtualDisplay();
    VirtualDisplay(const VirtualDisplay&) = delete;
    VirtualDisplay& operator=(const VirtualDisplay&) = delete;

    bool isRunning() const { return !name_.isEmpty(); }
    const QString& error() const { return error_; }
    // The value for DISPLAY, e.g. ":7".
    const QString& name() const { return name_; }

  private:
    std::unique_ptr<QProcess> server_;
    QString name_;
    QString error_;
};

}  // namespace corvane::testing
