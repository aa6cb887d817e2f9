#pragma once

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QProcess>
#include <QTimer>

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <memory>
#include <string>

namespace vellumine::test {

/// A session bus of the test's own, ended with it. Skips the test where there is no bus daemon.
class OnPrivateBus : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    /// The connection of what is tested.
    [[nodiscard]] QDBusConnection client();

    /// The connection of the service that it talks to.
    [[nodiscard]] QDBusConnection service();

    /// Puts the slots and signals of an object on the bus.
    void serve(QObject& object, const QString& path, const QString& name);

    template <typename Predicate> [[nodiscard]] static bool runUntil(Predicate predicate)
    {
        const std::chrono::seconds limit(60);
        const QDeadlineTimer deadline(limit);
        QTimer wakeUp;
        wakeUp.start(limit);
        while (!predicate() && !deadline.hasExpired()) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
        return predicate();
    }

private:
    int m_argumentCount = 1;
    std::string m_name = "platform_test";
    std::array<char*, 2> m_arguments { m_name.data(), nullptr };
    std::unique_ptr<QCoreApplication> m_application;
    QProcess m_daemon;
    QString m_address;
};

} // namespace vellumine::test
