#include "app/tray/NotifierHost.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>

#include <utility>

namespace vellumine {
namespace {

const QString service = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString path = QStringLiteral("/StatusNotifierWatcher");

} // namespace

NotifierHost::NotifierHost(QDBusConnection bus, QObject* parent)
    : QObject(parent)
    , m_bus(std::move(bus))
    , m_watcher(service, m_bus, QDBusServiceWatcher::WatchForOwnerChange)
{
    if (!m_bus.isConnected()) {
        return;
    }
    connect(&m_watcher, &QDBusServiceWatcher::serviceRegistered, this, &NotifierHost::ask);
    connect(
        &m_watcher, &QDBusServiceWatcher::serviceUnregistered, this, [this] { setPresent(false); });
    for (const char* change :
        { "StatusNotifierHostRegistered", "StatusNotifierHostUnregistered" }) {
        m_bus.connect(service, path, service, QString::fromLatin1(change), this, SLOT(ask()));
    }
    ask();
}

void NotifierHost::ask()
{
    QDBusMessage question = QDBusMessage::createMethodCall(
        service, path, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    question << service << QStringLiteral("IsStatusNotifierHostRegistered");
    question.setAutoStartService(false);
    auto* answer = new QDBusPendingCallWatcher(m_bus.asyncCall(question), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        const QDBusPendingReply<QDBusVariant> reply = *answer;
        setPresent(!reply.isError() && reply.value().variant().toBool());
        answer->deleteLater();
    });
}

void NotifierHost::setPresent(bool isPresent)
{
    if (std::exchange(m_isPresent, isPresent) != isPresent) {
        Q_EMIT isPresentChanged();
    }
}

} // namespace vellumine
