#pragma once

#include <QByteArray>
#include <QVariantMap>

namespace vellumine {

/// What the desktop gave whoever was started by the user, so that the window that answers may come
/// to the front. Both parts are empty where there is none.
struct ActivationToken {
    QByteArray activationToken; ///< of Wayland's activation protocol
    QByteArray startupId; ///< of X11's startup notification

    /// What this process was started with. To be read before the application object exists: it
    /// takes the variables away.
    [[nodiscard]] static ActivationToken fromEnvironment();

    /// As the platform data of org.freedesktop.Application.
    [[nodiscard]] static ActivationToken fromPlatformData(const QVariantMap& data);
    [[nodiscard]] QVariantMap platformData() const;

    friend bool operator==(const ActivationToken&, const ActivationToken&) = default;
};

} // namespace vellumine
