#pragma once

#include <QElapsedTimer>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

namespace corvane::testing {

// A built binary of the application running on a given display and session bus, with its
// standard output collected (and its standard error too, when asked). Waiting keeps this process's
// event loop turning, so D-Bus objects served by the test (tray watcher, notification server)
// answer the application meanwhile.
class AppProcess {
  public:
    AppProcess(const QString& program, const QStringList& arguments, const QString& display,
               const QString& busAddress, bool captureErrors = false);
    ~AppProcess();
    AppProcess(const AppProcess&) = delete;
    AppProcess& operator=(const AppProcess&) = delete;

    bool isRunning() const { return process_.state() != QProcess::NotRunning; }
    // Everything written to standard output so far.
    const QString& output() const { return output_; }
    // Everything written to standard error so far, when it was captured.
    const QString& errors() const { return errors_; }
    // Milliseconds since the program was started.
    qint64 elapsedMs() const { return sinceStart_.elapsed(); }

    bool waitForOutput(const QString& text, int timeoutMs);
    bool waitForExit(int timeoutMs);
    // Keeps the event loop turning for `ms`, then tells whether the program still runs.
    bool stillRunningAfter(int ms);

    int exitCode() const { return process_.exitCode(); }
    bool exitedNormally() const { return process_.exitStatus() == QProcess::NormalExit; }

  private:
    QTemporaryDir runtimeDirectory_;
    QProcess process_;
    QString output_;
    QString errors_;
    QElapsedTimer sinceStart_;
};

}  // namespace corvane::testing
