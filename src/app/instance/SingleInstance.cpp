#include "app/instance/SingleInstance.h"

#include "app/instance/ApplicationAdaptor.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>

#include <utility>

namespace vellumine {

SingleInstance::SingleInstance(QDBusConnection bus, QObject* parent)
    : QObject(parent)
    , m_bus(std::move(bus))
{
}

SingleInstance::~SingleInstance()
{
    if (m_ownsName) {
        // The name goes first, so that nobody calls an object that is gone.
        m_bus.unregisterService(busName());
        m_bus.unregisterObject(objectPath());
    }
}

QString SingleInstance::busName()
{
    return QStringLiteral("com.kestrova.Vellumine");
}

QString SingleInstance::objectPath()
{
    return QStringLiteral("/com/kestrova/Vellumine");
}

SingleInstance::Role SingleInstance::start(
    const QList<QUrl>& files, const ActivationToken& token, std::chrono::milliseconds patience)
{
    if (!m_bus.isConnected()) {
        return Role::alone;
    }
    // The object stands before the name does: once that is ours, calls may come.
    new ApplicationAdaptor(this);
    if (!m_bus.registerObject(objectPath(), this)) {
        return Role::alone;
    }
    // A first process that is about to end may own the name and not answer any more.
    for (int attempt = 0; attempt < 2; ++attempt) {
        if (takeName()) {
            return Role::first;
        }
        if (handOver(files, token, patience)) {
            m_bus.unregisterObject(objectPath());
            return Role::handedOver;
        }
    }
    m_bus.unregisterObject(objectPath());
    return Role::alone;
}

bool SingleInstance::takeName()
{
    const QDBusReply<QDBusConnectionInterface::RegisterServiceReply> reply
        = m_bus.interface()->registerService(busName(), QDBusConnectionInterface::DontQueueService,
            QDBusConnectionInterface::DontAllowReplacement);
    m_ownsName = reply.isValid() && reply.value() == QDBusConnectionInterface::ServiceRegistered;
    return m_ownsName;
}

bool SingleInstance::handOver(const QList<QUrl>& files, const ActivationToken& token,
    std::chrono::milliseconds patience) const
{
    const QString method = files.isEmpty() ? QStringLiteral("Activate") : QStringLiteral("Open");
    QDBusMessage call = QDBusMessage::createMethodCall(
        busName(), objectPath(), QStringLiteral("org.freedesktop.Application"), method);
    call.setAutoStartService(false);
    if (!files.isEmpty()) {
        QStringList uris;
        for (const QUrl& file : files) {
            uris.append(QString::fromLatin1(file.toEncoded()));
        }
        call << uris;
    }
    call << token.platformData();
    return m_bus.call(call, QDBus::Block, static_cast<int>(patience.count())).type()
        == QDBusMessage::ReplyMessage;
}

} // namespace vellumine
