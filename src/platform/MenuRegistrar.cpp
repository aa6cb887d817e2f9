#include "platform/MenuRegistrar.h"

#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>

#include <utility>

namespace vellumine::platform {
namespace {

constexpr QLatin1String registrar("com.canonical.AppMenu.Registrar");
constexpr QLatin1String path("/com/canonical/AppMenu/Registrar");

constexpr std::chrono::milliseconds lastPatience { 10000 };

/// A service may have its name before it has what it serves.
bool isStarting(const QDBusError& error)
{
    return error.type() == QDBusError::UnknownObject || error.type() == QDBusError::UnknownInterface
        || error.type() == QDBusError::UnknownMethod;
}

/// What a registrar itself says of a window that does not exist; the bus has other errors.
bool isItsOwn(const QDBusError& error)
{
    return !error.name().startsWith(QStringLiteral("org.freedesktop.DBus."));
}

} // namespace

MenuRegistrar::MenuRegistrar(QDBusConnection bus, QObject* parent)
    : QObject(parent)
    , m_bus(std::move(bus))
    , m_watcher(registrar, m_bus, QDBusServiceWatcher::WatchForOwnerChange)
{
    if (!m_bus.isConnected()) {
        return;
    }
    m_again.setSingleShot(true);
    connect(&m_again, &QTimer::timeout, this, &MenuRegistrar::ask);
    connect(&m_watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
        [this](const QString&, const QString&, const QString& newOwner) {
            if (newOwner.isEmpty()) {
                return;
            }
            m_again.stop();
            m_patience = firstPatience;
            setPresent(false);
            // Whoever heard of that is done when the answer comes.
            ask();
        });
    ask();
}

void MenuRegistrar::ask()
{
    auto question = QDBusMessage::createMethodCall(
        registrar, path, registrar, QStringLiteral("GetMenuForWindow"));
    question << 0U;
    question.setAutoStartService(false);
    auto* watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(question), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
        [this](QDBusPendingCallWatcher* finished) {
            take(finished->error());
            finished->deleteLater();
        });
}

void MenuRegistrar::take(const QDBusError& error)
{
    if (isStarting(error) && m_patience < lastPatience) {
        m_again.start(m_patience);
        m_patience *= 2;
        return;
    }
    setPresent(!error.isValid() || isItsOwn(error));
}

void MenuRegistrar::setPresent(bool isPresent)
{
    if (std::exchange(m_isPresent, isPresent) != isPresent) {
        Q_EMIT changed();
    }
}

} // namespace vellumine::platform
