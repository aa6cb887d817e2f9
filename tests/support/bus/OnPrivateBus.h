#pragma once

#include <QCoreApplication>
#include <QDBusConnection>
#include <QProcess>
#include <QString>
#include <QStringList>

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <string>

namespace vellumine::test {

/// A session bus of the test's own, which ends after all that a fixture of this kind holds. Each
/// connection plays a process. Skips the test where there is no bus daemon.
class OnPrivateBus : public testing::Test {
protected:
    /// Starts the daemon: before whatever a fixture of this kind holds starts threads.
    OnPrivateBus();
    ~OnPrivateBus() override;

    void SetUp() override;

    /// The connection of one more process.
    [[nodiscard]] QDBusConnection addProcess();

    /// The connection of what is tested.
    [[nodiscard]] QDBusConnection client();

    /// The connection of the service that it talks to.
    [[nodiscard]] QDBusConnection service();

    /// Puts the slots and signals of an object on the bus.
    void serve(QObject& object, const QString& path, const QString& name);

private:
    /// One for each name.
    [[nodiscard]] QDBusConnection connection(const QString& process);

    int m_argumentCount = 1;
    std::string m_name = "test";
    std::array<char*, 2> m_arguments { m_name.data(), nullptr };
    /// Where the program has none for all of its tests.
    std::unique_ptr<QCoreApplication> m_application;
    QProcess m_daemon;
    QString m_address;
    QStringList m_processes; ///< with a connection
};

} // namespace vellumine::test
