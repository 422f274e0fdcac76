#pragma once

#include <QDBusContext>
#include <QObject>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>
#include <functional>

namespace corvane::platform {

// org.freedesktop.Application, as the desktop and a second launch reach the running Corvane:
// Activate brings the dashboard to the front with the activation token it was given. Corvane
// opens no files and has no actions: Open and ActivateAction answer an error and change nothing.
class ApplicationService : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")
  public:
    using ActivateHandler = std::function<void(const QString& activationToken)>;

    explicit ApplicationService(ActivateHandler activate, QObject* parent = nullptr);

    // The token a launcher hands on in platform_data: Wayland's, else X11's startup id.
    static QString activationToken(const QVariantMap& platformData);

  public slots:
    void Activate(const QVariantMap& platform_data);
    void Open(const QStringList& uris, const QVariantMap& platform_data);
    void ActivateAction(const QString& action_name, const QVariantList& parameter,
                        const QVariantMap& platform_data);

  private:
    void refuse(const QString& message);

    ActivateHandler activate_;
};

}  // namespace corvane::platform
