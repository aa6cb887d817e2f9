#include "app/instance/ApplicationAdaptor.h"

#include "app/instance/SingleInstance.h"
#include "platform/FilePath.h"

#include <QDBusError>

namespace vellumine {

ApplicationAdaptor::ApplicationAdaptor(SingleInstance* instance)
    : QDBusAbstractAdaptor(instance)
    , m_instance(*instance)
{
}

void ApplicationAdaptor::Activate(const QVariantMap& platformData, const QDBusMessage& call)
{
    if (refuses(call)) {
        return;
    }
    Q_EMIT m_instance.activationRequested(ActivationToken::fromPlatformData(platformData));
}

void ApplicationAdaptor::Open(
    const QStringList& uris, const QVariantMap& platformData, const QDBusMessage& call)
{
    if (refuses(call)) {
        return;
    }
    QList<QUrl> files;
    for (const QString& uri : uris) {
        const QUrl file
            = platform::onThisMachine(QUrl::fromEncoded(uri.toUtf8(), QUrl::TolerantMode));
        if (!file.isEmpty()) {
            files.append(file);
        }
    }
    Q_EMIT m_instance.openRequested(files, ActivationToken::fromPlatformData(platformData));
}

void ApplicationAdaptor::ActivateAction(const QString& name, const QVariantList& /*parameter*/,
    const QVariantMap& platformData, const QDBusMessage& call)
{
    if (refuses(call)) {
        return;
    }
    if (name == QStringLiteral("preferences")) {
        Q_EMIT m_instance.preferencesRequested(ActivationToken::fromPlatformData(platformData));
    } else if (name == QStringLiteral("quit")) {
        Q_EMIT m_instance.quitRequested();
    }
}

bool ApplicationAdaptor::refuses(const QDBusMessage& call) const
{
    if (!m_instance.isLeaving()) {
        return false;
    }
    call.setDelayedReply(true); // which is this one
    m_instance.bus().send(call.createErrorReply(
        QDBusError::ServiceUnknown, QStringLiteral("The program is about to end.")));
    return true;
}

} // namespace vellumine
