#include "app/app_process.h"

#include <QProcessEnvironment>
#include <QTest>

namespace corvane::testing {

AppProcess::AppProcess(const QString& program, const QStringList& arguments, const QString& display,
                       const QString& busAddress, bool captureErrors) {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    // Nothing of the desktop the tests were started from may leak in: no Wayland, no platform
    // theme, no desktop-specific tray or notification integration.
    for (const char* name : {"WAYLAND_DISPLAY", "XDG_CURRENT_DESKTOP", "XDG_SESSION_TYPE",
                             "DESKTOP_SESSION", "QT_QPA_PLATFORMTHEME", "KDE_FULL_SESSION"}) {
        environment.remove(QString::fromLatin1(name));
    }
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    environment.insert(QStringLiteral("DISPLAY"), display);
    environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), busAddress);
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), runtimeDirectory_.path());
    process_.setProcessEnvironment(environment);
    // Qt's warnings go to the test log, where a failure can be read next to them, unless the
    // test reads them itself (e.g. for a sanitizer's report).
    if (captureErrors) {
        QObject::connect(&process_, &QProcess::readyReadStandardError,
                         [this] { errors_ += QString::fromUtf8(process_.readAllStandardError()); });
    } else {
        process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    }
    QObject::connect(&process_, &QProcess::readyReadStandardOutput,
                     [this] { output_ += QString::fromUtf8(process_.readAllStandardOutput()); });
    sinceStart_.start();
    process_.start(program, arguments);
    process_.waitForStarted();
}

AppProcess::~AppProcess() {
    if (isRunning()) {
        process_.kill();
        process_.waitForFinished(5000);
    }
}

bool AppProcess::waitForOutput(const QString& text, int timeoutMs) {
    return QTest::qWaitFor([&] { return output_.contains(text); }, timeoutMs);
}

bool AppProcess::waitForExit(int timeoutMs) {
    const bool exited = QTest::qWaitFor([&] { return !isRunning(); }, timeoutMs);
    // Whatever the program wrote last arrives with its exit.
    output_ += QString::fromUtf8(process_.readAllStandardOutput());
    errors_ += QString::fromUtf8(process_.readAllStandardError());
    return exited;
}

bool AppProcess::stillRunningAfter(int ms) {
    QTest::qWait(ms);
    return isRunning();
}

}  // namespace corvane::testing
