#include "platform/PrivateBus.h"

#include <QStandardPaths>

namespace vellumine::test {

void OnPrivateBus::SetUp()
{
    m_application = std::make_unique<QCoreApplication>(m_argumentCount, m_arguments.data());
    const QString daemon = QStandardPaths::findExecutable(QStringLiteral("dbus-daemon"));
    if (daemon.isEmpty()) {
        GTEST_SKIP() << "there is no dbus-daemon";
    }
    m_daemon.start(daemon,
        { QStringLiteral("--session"), QStringLiteral("--nofork"), QStringLiteral("--nopidfile"),
            QStringLiteral("--print-address=1") });
    ASSERT_TRUE(m_daemon.waitForStarted());
    while (!m_daemon.canReadLine()) {
        ASSERT_TRUE(m_daemon.waitForReadyRead());
    }
    m_address = QString::fromLatin1(m_daemon.readLine()).trimmed();
}

void OnPrivateBus::TearDown()
{
    QDBusConnection::disconnectFromBus(QStringLiteral("client"));
    QDBusConnection::disconnectFromBus(QStringLiteral("service"));
    m_daemon.kill();
    m_daemon.waitForFinished();
}

QDBusConnection OnPrivateBus::client()
{
    return QDBusConnection::connectToBus(m_address, QStringLiteral("client"));
}

QDBusConnection OnPrivateBus::service()
{
    return QDBusConnection::connectToBus(m_address, QStringLiteral("service"));
}

void OnPrivateBus::serve(QObject& object, const QString& path, const QString& name)
{
    QDBusConnection bus = service();
    ASSERT_TRUE(bus.registerObject(
        path, &object, QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals));
    ASSERT_TRUE(bus.registerService(name));
}

} // namespace vellumine::test
