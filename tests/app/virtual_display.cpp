#include "app/virtual_display.h"

namespace corvane::testing {

namespace {

constexpr int kStartTimeoutMs = 10000;

}  // namespace

VirtualDisplay::VirtualDisplay() : server_(std::make_unique<QProcess>()) {
    server_->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    // -displayfd: Xvfb picks a free number itself and writes it to stdout once it accepts
    // clients, which avoids races between tests that run side by side.
    server_->start(QStringLiteral("Xvfb"),
                   {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"),
                    QStringLiteral("0"), QStringLiteral("1280x1024x24"),
                    QStringLiteral("-nolisten"), QStringLiteral("tcp")});
    if (!server_->waitForStarted(kStartTimeoutMs)) {
        error_ = QStringLiteral("Xvfb did not start: ") + server_->errorString();
        return;
    }
    while (!server_->canReadLine() && server_->waitForReadyRead(kStartTimeoutMs)) {
    }
    const QString number = QString::fromUtf8(server_->readLine()).trimmed();
    if (number.isEmpty()) {
        error_ = QStringLiteral("Xvfb printed no display number");
        return;
    }
    name_ = QLatin1Char(':') + number;
}

VirtualDisplay::~VirtualDisplay() {
    if (server_->state() != QProcess::NotRunning) {
        server_->terminate();
        if (!server_->waitForFinished(kStartTimeoutMs)) {
            server_->kill();
            server_->waitForFinished(kStartTimeoutMs);
        }
    }
}

}  // namespace corvane::testing
