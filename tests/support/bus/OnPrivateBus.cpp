#include "support/bus/OnPrivateBus.h"

#include <QStandardPaths>

namespace vellumine::test {

OnPrivateBus::OnPrivateBus()
{
    if (!QCoreApplication::instance()) {
        m_application = std::make_unique<QCoreApplication>(m_argumentCount, m_arguments.data());
    }
    const QString daemon = QStandardPaths::findExecutable(QStringLiteral("dbus-daemon"));
    if (!daemon.isEmpty()) {
        m_daemon.start(daemon,
            { QStringLiteral("--session"), QStringLiteral("--nofork"),
                QStringLiteral("--nopidfile"), QStringLiteral("--print-address=1") });
    }
}

OnPrivateBus::~OnPrivateBus()
{
    for (const QString& process : m_processes) {
        QDBusConnection::disconnectFromBus(process);
    }
    // Asked to end, it removes its socket.
    m_daemon.terminate();
    m_daemon.waitForFinished();
}

void OnPrivateBus::SetUp()
{
    if (m_daemon.program().isEmpty()) {
        GTEST_SKIP() << "dbus-daemon is not installed";
    }
    ASSERT_TRUE(m_daemon.waitForStarted());
    while (!m_daemon.canReadLine()) {
        ASSERT_TRUE(m_daemon.waitForReadyRead());
    }
    m_address = QString::fromLatin1(m_daemon.readLine()).trimmed();
}

QDBusConnection OnPrivateBus::addProcess()
{
    return connection(QStringLiteral("process %1").arg(m_processes.size()));
}

QDBusConnection OnPrivateBus::client()
{
    return connection(QStringLiteral("client"));
}

QDBusConnection OnPrivateBus::service()
{
    return connection(QStringLiteral("service"));
}

void OnPrivateBus::serve(QObject& object, const QString& path, const QString& name)
{
    QDBusConnection bus = service();
    ASSERT_TRUE(bus.registerObject(
        path, &object, QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals));
    ASSERT_TRUE(bus.registerService(name));
}

QDBusConnection OnPrivateBus::connection(const QString& process)
{
    if (!m_processes.contains(process)) {
        m_processes.append(process);
    }
    return QDBusConnection::connectToBus(m_address, process);
}

} // namespace vellumine::test
