#pragma once

#include "update/HomePageServer.h"
#include "update/TestCertificates.h"
#include "update/UpdateChecker.h"

#include <QDeadlineTimer>
#include <QSignalSpy>

#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <ostream>

namespace vellumine {

inline void PrintTo(const UpdateChecker::UpdateAvailable& available, std::ostream* stream)
{
    *stream << '"' << available.version.toStdString() << '"';
}

namespace test {

/// Far more than any answer on this machine takes.
inline constexpr std::chrono::seconds patience { 30 };
/// For pages that never arrive.
inline constexpr std::chrono::milliseconds shortTimeout { 300 };

[[nodiscard]] inline QString path()
{
    return QStringLiteral("/");
}

/// The status once no check runs any more.
[[nodiscard]] inline UpdateChecker::Status settled(const UpdateChecker& checker)
{
    QSignalSpy spy(&checker, &UpdateChecker::statusChanged);
    const QDeadlineTimer deadline(patience);
    while (checker.status() == UpdateChecker::Status(UpdateChecker::Checking {})
        && !deadline.hasExpired()) {
        spy.wait(static_cast<int>(deadline.remainingTime()));
    }
    return checker.status();
}

/// Trusts these alone.
[[nodiscard]] inline QSslConfiguration trusting(const QList<QSslCertificate>& authorities)
{
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.setCaCertificates(authorities);
    return configuration;
}

/// Checks of the page that a server on this machine has.
class UpdateCheck : public testing::Test {
protected:
    static void SetUpTestSuite() { certificates.emplace(TestCertificates::create()); }
    static void TearDownTestSuite() { certificates.reset(); }

    [[nodiscard]] UpdateChecker::Source source() const
    {
        return { .homePage = m_server.url(path()),
            .timeout = patience,
            .tls = [] { return trusting({ certificates->authority }); },
            .proxy = [](const QUrl&) { return QNetworkProxy(QNetworkProxy::NoProxy); } };
    }

    [[nodiscard]] static UpdateChecker::Status check(UpdateChecker::Source source)
    {
        UpdateChecker checker(std::move(source), QStringLiteral("1.4.2 build 37"));
        checker.checkForUpdates();
        EXPECT_EQ(checker.status(), UpdateChecker::Status(UpdateChecker::Checking {}));
        return settled(checker);
    }

    static QByteArray page(const QByteArray& version)
    {
        return R"(<html><script>{"softwareVersion": ")" + version + "\"}</script></html>";
    }

    static inline std::optional<TestCertificates> certificates;
    HomePageServer m_server { *certificates };
};

} // namespace test
} // namespace vellumine
