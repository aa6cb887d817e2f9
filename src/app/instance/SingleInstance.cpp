#include "app/instance/SingleInstance.h"

#include "app/instance/ApplicationAdaptor.h"

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>

#include <limits>
#include <optional>
#include <utility>

namespace vellumine {
namespace {

/// The time-out of a call without one.
constexpr int forever = std::numeric_limits<int>::max();

QDBusMessage methodCall(const QString& method)
{
    QDBusMessage call = QDBusMessage::createMethodCall(SingleInstance::busName(),
        SingleInstance::objectPath(), QStringLiteral("org.freedesktop.Application"), method);
    call.setAutoStartService(false);
    return call;
}

bool isAnswered(const QDBusMessage& answer)
{
    return answer.type() == QDBusMessage::ReplyMessage;
}

} // namespace

SingleInstance::SingleInstance(QDBusConnection bus, QObject* parent)
    : QObject(parent)
    , m_bus(std::move(bus))
{
}

SingleInstance::~SingleInstance()
{
    leave();
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
    const Role role = takeNameOrHandOver(files, token, patience);
    if (role != Role::first) {
        m_bus.unregisterObject(objectPath());
    }
    return role;
}

SingleInstance::Role SingleInstance::takeNameOrHandOver(
    const QList<QUrl>& files, const ActivationToken& token, std::chrono::milliseconds patience)
{
    // A first process that ends gives the name away, to us or to another one. One that has not
    // taken the files and keeps the name is not asked again.
    std::optional<QString> asked;
    while (!takeName()) {
        const QString owner = m_bus.interface()->serviceOwner(busName());
        if (owner == asked) {
            return Role::alone;
        }
        asked = owner;
        if (isAwake(patience) && handOver(files, token)) {
            return Role::handedOver;
        }
    }
    return Role::first;
}

void SingleInstance::leave()
{
    m_isLeaving = true;
    if (!m_ownsName) {
        return;
    }
    m_ownsName = false;
    // The name goes first. What came for it until then waits in this thread's queue by now, and is
    // refused while there is somebody to do so.
    m_bus.unregisterService(busName());
    QCoreApplication::sendPostedEvents(this, QEvent::MetaCall);
    m_bus.unregisterObject(objectPath());
}

bool SingleInstance::takeName()
{
    const QDBusReply<QDBusConnectionInterface::RegisterServiceReply> reply
        = m_bus.interface()->registerService(busName(), QDBusConnectionInterface::DontQueueService,
            QDBusConnectionInterface::DontAllowReplacement);
    m_ownsName = reply.isValid() && reply.value() == QDBusConnectionInterface::ServiceRegistered;
    return m_ownsName;
}

bool SingleInstance::isAwake(std::chrono::milliseconds patience) const
{
    // No action has this name, so that it does not matter when it arrives. Only the thread that
    // would follow a real call answers.
    QDBusMessage call = methodCall(QStringLiteral("ActivateAction"));
    call << QString() << QVariantList() << QVariantMap();
    return isAnswered(m_bus.call(call, QDBus::Block, static_cast<int>(patience.count())));
}

bool SingleInstance::handOver(const QList<QUrl>& files, const ActivationToken& token) const
{
    QDBusMessage call
        = methodCall(files.isEmpty() ? QStringLiteral("Activate") : QStringLiteral("Open"));
    if (!files.isEmpty()) {
        QStringList uris;
        for (const QUrl& file : files) {
            uris.append(QString::fromLatin1(file.toEncoded()));
        }
        call << uris;
    }
    call << token.platformData();
    // Whoever is too slow has the files all the same. One that goes is reported by the bus.
    return isAnswered(m_bus.call(call, QDBus::Block, forever));
}

} // namespace vellumine
