#include "update/ConnectProxy.h"
#include "update/UpdateCheck.h"

#include <QSemaphore>

#include <gmock/gmock.h>

#include <memory>
#include <thread>

namespace vellumine {
namespace {

using test::path;
using test::trusting;
using ::testing::ElementsAre;
using ::testing::SizeIs;
using Status = UpdateChecker::Status;
using UpdateAvailable = UpdateChecker::UpdateAvailable;
using Failed = UpdateChecker::Failed;

/// The system's way to the page leads through a proxy, as the environment says.
class UpdateCheckByProxy : public test::UpdateCheck {
protected:
    void SetUp() override
    {
        m_server.answerPage(path(), page("1.4.3"));
        qputenv("https_proxy", "http://127.0.0.1:" + QByteArray::number(m_proxy.port()));
        // For others it would lead past it.
        qputenv("no_proxy", "vellumine.example");
    }
    void TearDown() override
    {
        qunsetenv("https_proxy");
        qunsetenv("no_proxy");
    }

    [[nodiscard]] UpdateChecker::Source systemSource() const
    {
        UpdateChecker::Source system = source();
        system.proxy = UpdateChecker::Source().proxy;
        return system;
    }

    test::ConnectProxy m_proxy;
};

TEST_F(UpdateCheckByProxy, isATunnelToThePage)
{
    EXPECT_EQ(check(systemSource()), Status(UpdateAvailable { QStringLiteral("1.4.3") }));
    EXPECT_THAT(m_proxy.requests(),
        ElementsAre("CONNECT " + systemSource().homePage.authority().toLatin1() + " HTTP/1.1"));
}

TEST_F(UpdateCheckByProxy, goesPastItWhereTheSystemSaysSo)
{
    qputenv("no_proxy", "127.0.0.1");
    EXPECT_EQ(check(systemSource()), Status(UpdateAvailable { QStringLiteral("1.4.3") }));
    EXPECT_THAT(m_proxy.requests(), SizeIs(0));
}

TEST_F(UpdateCheckByProxy, readsNoPageOfTheProxysOwn)
{
    m_proxy.refuse("HTTP/1.1 403 Forbidden\r\nConnection: close\r\n\r\n" + page("9.9"));
    EXPECT_EQ(check(systemSource()), Status(Failed {}));
    EXPECT_THAT(m_server.requests(), SizeIs(0));
}

TEST_F(UpdateCheckByProxy, trustsThePagesServerAlone)
{
    UpdateChecker::Source distrustful = systemSource();
    distrustful.tls = [] { return trusting({}); };
    EXPECT_EQ(check(distrustful), Status(Failed {}));
    EXPECT_THAT(m_server.requests(), SizeIs(0));
}

/// A way that is not found before the test lets it be.
class WayThatIsLookedFor : public test::UpdateCheck {
protected:
    void TearDown() override
    {
        // What the checker left behind must be gone before the test's libraries are.
        m_let->release();
        m_found->acquire();
        while (isAnyLookUpAtWork()) {
            std::this_thread::yield();
        }
    }

    [[nodiscard]] UpdateChecker::Source slowSource() const
    {
        UpdateChecker::Source slow = source();
        slow.proxy = [begun = m_begun, let = m_let, found = m_found](const QUrl&) {
            begun->release();
            let->acquire();
            found->release();
            return QNetworkProxy(QNetworkProxy::NoProxy);
        };
        return slow;
    }

    std::shared_ptr<QSemaphore> m_begun = std::make_shared<QSemaphore>();

private:
    std::shared_ptr<QSemaphore> m_let = std::make_shared<QSemaphore>();
    std::shared_ptr<QSemaphore> m_found = std::make_shared<QSemaphore>();
};

TEST_F(WayThatIsLookedFor, failsWhereItTakesTooLong)
{
    UpdateChecker::Source slow = slowSource();
    slow.timeout = test::shortTimeout;
    EXPECT_EQ(check(slow), Status(Failed {}));
    EXPECT_THAT(m_server.requests(), SizeIs(0));
}

TEST_F(WayThatIsLookedFor, isLeftBehindByACheckerThatGoes)
{
    {
        UpdateChecker checker(slowSource(), QStringLiteral("1.4.2"));
        checker.checkForUpdates();
        m_begun->acquire();
    }
    EXPECT_TRUE(isAnyLookUpAtWork());
}

} // namespace
} // namespace vellumine
