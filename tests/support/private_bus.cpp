#include "support/private_bus.h"

#include <sys/prctl.h>
#include <QFile>
#include <QUuid>
#include <csignal>

namespace corvane::testing {

namespace {

constexpr int kStartTimeoutMs = 10000;

QString configuration(const QString& socketDirectory) {
    return QStringLiteral(
               "<!DOCTYPE busconfig PUBLIC \"-//freedesktop//DTD D-BUS Bus Configuration "
               "1.0//EN\"\n"
               " \"http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd\">\n"
               "<busconfig>\n"
               "  <type>session</type>\n"
               "  <listen>unix:dir=%1</listen>\n"
               "  <auth>EXTERNAL</auth>\n"
               "  <policy context=\"default\">\n"
               "    <allow send_destination=\"*\" eavesdrop=\"true\"/>\n"
               "    <allow eavesdrop=\"true\"/>\n"
               "    <allow own=\"*\"/>\n"
               "  </policy>\n"
               "</busconfig>\n")
        .arg(socketDirectory);
}

}  // namespace

PrivateBus::PrivateBus() {
    if (!directory_.isValid()) {
        error_ = QStringLiteral("no temporary directory: ") + directory_.errorString();
        return;
    }
    const QString configPath = directory_.filePath(QStringLiteral("bus.conf"));
    QFile config(configPath);
    if (!config.open(QIODevice::WriteOnly) ||
        config.write(configuration(directory_.path()).toUtf8()) < 0) {
        error_ = QStringLiteral("cannot write ") + configPath;
        return;
    }
    config.close();

    daemon_ = std::make_unique<QProcess>();
    daemon_->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    // A test that crashes or is killed by its timeout must not leave the daemon behind.
    daemon_->setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
    daemon_->start(QStringLiteral("dbus-daemon"),
                   {QStringLiteral("--config-file=") + configPath,
                    QStringLiteral("--print-address"), QStringLiteral("--nofork")});
    if (!daemon_->waitForStarted(kStartTimeoutMs)) {
        error_ = QStringLiteral("dbus-daemon did not start: ") + daemon_->errorString();
        return;
    }
    while (!daemon_->canReadLine() && daemon_->waitForReadyRead(kStartTimeoutMs)) {
    }
    const QString line = QString::fromUtf8(daemon_->readLine()).trimmed();
    if (line.isEmpty()) {
        error_ = QStringLiteral("dbus-daemon printed no address");
        kill();
        return;
    }
    address_ = line;
}

PrivateBus::~PrivateBus() {
    for (const QString& name : connectionNames_) {
        QDBusConnection::disconnectFromBus(name);
    }
    kill();
}

QDBusConnection PrivateBus::connect() {
    const QString name =
        QStringLiteral("corvane-private-bus-") + QUuid::createUuid().toString(QUuid::Id128);
    connectionNames_.append(name);
    return QDBusConnection::connectToBus(address_, name);
}

void PrivateBus::kill() {
    if (daemon_ && daemon_->state() != QProcess::NotRunning) {
        daemon_->kill();
        daemon_->waitForFinished(kStartTimeoutMs);
    }
}

}  // namespace corvane::testing
