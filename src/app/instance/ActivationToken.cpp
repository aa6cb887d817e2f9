#include "app/instance/ActivationToken.h"

#include <QString>

namespace vellumine {
namespace {

const QString tokenKey = QStringLiteral("activation-token");
const QString startupIdKey = QStringLiteral("desktop-startup-id");

} // namespace

ActivationToken ActivationToken::fromEnvironment()
{
    return { .activationToken = qgetenv("XDG_ACTIVATION_TOKEN"),
        .startupId = qgetenv("DESKTOP_STARTUP_ID") };
}

ActivationToken ActivationToken::fromPlatformData(const QVariantMap& data)
{
    return { .activationToken = data.value(tokenKey).toString().toUtf8(),
        .startupId = data.value(startupIdKey).toString().toUtf8() };
}

QVariantMap ActivationToken::platformData() const
{
    QVariantMap data;
    if (!activationToken.isEmpty()) {
        data.insert(tokenKey, QString::fromUtf8(activationToken));
    }
    if (!startupId.isEmpty()) {
        data.insert(startupIdKey, QString::fromUtf8(startupId));
    }
    return data;
}

} // namespace vellumine
