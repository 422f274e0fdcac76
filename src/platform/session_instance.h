#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QString>
#include <QVariantMap>
#include <chrono>

namespace corvane::platform {

// What a launch does after asking the session bus for the application's name.
struct SessionClaim {
    enum class Outcome {
        Run,         // this process holds the name, or there is no bus to hold it on
        HandedOver,  // a running Corvane held it and was activated: this launch is done
        Unanswered,  // a running Corvane held it and did not answer in time
    };
    Outcome outcome = Outcome::Run;
    QString message;  // for Unanswered: one line that names the running process
};

// How long a launch waits for the bus and for the running Corvane before it gives up.
inline constexpr std::chrono::milliseconds kClaimLimit{2000};

// Exports `service` (org.freedesktop.Application) at the application's path, then asks for the
// application id as a well-known name without queueing: exported first, so that a launch racing
// this one can activate it as soon as it holds the name. When another process holds the name,
// calls its Activate with `platformData` instead and takes the service back.
SessionClaim claimSession(QDBusConnection bus, QObject* service, const QVariantMap& platformData,
                          std::chrono::milliseconds limit = kClaimLimit);

// The activation token this process was started with, as platform_data: Wayland's
// XDG_ACTIVATION_TOKEN, X11's DESKTOP_STARTUP_ID.
QVariantMap launchPlatformData();

}  // namespace corvane::platform
