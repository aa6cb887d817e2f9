#include "update/UpdateChecker.h"
#include "core/Product.h"
#include "support/NamedRows.h"
#include "update/HomePageServer.h"
#include "update/UpdateCheck.h"

#include <QDeadlineTimer>
#include <QSemaphore>
#include <QSignalSpy>
#include <QTcpServer>
#include <QThread>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <memory>

namespace vellumine {
namespace {

using test::path;
using test::patience;
using test::settled;
using test::shortTimeout;
using test::trusting;
using test::UpdateCheck;
using ::testing::AllOf;
using ::testing::Ge;
using ::testing::Le;
using ::testing::SizeIs;
using Status = UpdateChecker::Status;
using UpdateAvailable = UpdateChecker::UpdateAvailable;
using Idle = UpdateChecker::Idle;
using Checking = UpdateChecker::Checking;
using Current = UpdateChecker::Current;
using Failed = UpdateChecker::Failed;

TEST_F(UpdateCheck, startsIdle)
{
    const UpdateChecker checker(source(), QStringLiteral("1.0"));
    EXPECT_EQ(checker.status(), Status(Idle {}));
}

TEST_F(UpdateCheck, newerVersionIsAvailable)
{
    m_server.answerPage(path(), page("1.4.3"));
    EXPECT_EQ(check(source()), Status(UpdateAvailable { QStringLiteral("1.4.3") }));
}

TEST_F(UpdateCheck, sameVersionIsCurrent)
{
    m_server.answerPage(path(), page("1.4.2"));
    EXPECT_EQ(check(source()), Status(Current {}));
}

TEST_F(UpdateCheck, versionWithoutDigitsIsCurrent)
{
    m_server.answerPage(path(), page("soon"));
    EXPECT_EQ(check(source()), Status(Current {}));
}

struct StatusLine {
    const char* name;
    const char* line;
};

class UpdateCheckStatusLine : public UpdateCheck,
                              public testing::WithParamInterface<StatusLine> { };

TEST_P(UpdateCheckStatusLine, isNotLookedAt)
{
    m_server.answerPage(path(), page("1.4.3"), GetParam().line);
    EXPECT_EQ(check(source()), Status(UpdateAvailable { QStringLiteral("1.4.3") }));
}

INSTANTIATE_TEST_SUITE_P(StatusLines, UpdateCheckStatusLine,
    testing::Values( //
        StatusLine { "ok", "200 OK" }, //
        StatusLine { "badRequest", "400 Bad Request" }, //
        StatusLine { "proxyAuthentication", "407 Proxy Authentication Required" }, //
        StatusLine { "multipleChoices", "300 Multiple Choices" }, //
        StatusLine { "unassigned", "299 x" }, //
        StatusLine { "beyond", "600 x" }, //
        StatusLine { "forbidden", "403 Forbidden" }, //
        StatusLine { "notFound", "404 Not Found" }, //
        StatusLine { "gone", "410 Gone" }, //
        StatusLine { "teapot", "418 I'm a teapot" }, //
        StatusLine { "internalError", "500 Internal Server Error" },
        StatusLine { "unavailable", "503 Service Unavailable" },
        StatusLine { "unknownToEverybody", "599 Unknown" }),
    test::RowName());

TEST_F(UpdateCheck, authenticationIsNotOfferedButItsPageIsUsed)
{
    m_server.answerPage(
        path(), page("1.4.3"), "401 Unauthorized", "WWW-Authenticate: Basic realm=\"x\"\r\n");
    EXPECT_EQ(check(source()), Status(UpdateAvailable { QStringLiteral("1.4.3") }));
}

TEST_F(UpdateCheck, pageWithoutVersionFails)
{
    m_server.answerPage(path(), "<html>Welcome</html>");
    EXPECT_EQ(check(source()), Status(Failed {}));
}

TEST_F(UpdateCheck, emptyPageFails)
{
    m_server.answerPage(path(), "");
    EXPECT_EQ(check(source()), Status(Failed {}));
}

TEST_F(UpdateCheck, pageThatIsNotUtf8Fails)
{
    m_server.answerPage(path(), page("1.4.3") + "caf\xE9");
    EXPECT_EQ(check(source()), Status(Failed {}));
}

TEST_F(UpdateCheck, aServerThatNeverAnswersFails)
{
    m_server.keepSilent(path());
    UpdateChecker::Source impatient = source();
    // On a busy machine the time may be over before anything was asked.
    for (impatient.timeout = shortTimeout; m_server.requests().isEmpty(); impatient.timeout *= 2) {
        ASSERT_LT(impatient.timeout, patience);
        EXPECT_EQ(check(impatient), Status(Failed {}));
    }
    EXPECT_THAT(m_server.requests(), SizeIs(1));
}

TEST_F(UpdateCheck, theTimeoutIsEightSeconds)
{
    EXPECT_EQ(UpdateChecker::productHomePage().timeout, std::chrono::seconds(8));
}

TEST_F(UpdateCheck, theSourceIsTheProductsHomePage)
{
    EXPECT_EQ(UpdateChecker::productHomePage().homePage, QUrl(QString(product::homePageUrl)));
}

TEST_F(UpdateCheck, aRefusedConnectionFails)
{
    UpdateChecker::Source nobody = source();
    {
        QTcpServer closed;
        ASSERT_TRUE(closed.listen(QHostAddress::LocalHost));
        nobody.homePage.setPort(closed.serverPort());
    }
    EXPECT_EQ(check(nobody), Status(Failed {}));
}

TEST_F(UpdateCheck, aPageCutOffOnTheWayFails)
{
    m_server.answer(path(), "HTTP/1.1 200 OK\r\nContent-Length: 5000\r\n\r\n" + page("1.4.3"));
    EXPECT_EQ(check(source()), Status(Failed {}));
}

TEST_F(UpdateCheck, whatIsNotHttpFails)
{
    m_server.answer(path(), "220 mail service, " + page("1.4.3") + "\r\n\r\n");
    EXPECT_EQ(check(source()), Status(Failed {}));
}

TEST_F(UpdateCheck, anUntrustedCertificateFails)
{
    m_server.answerPage(path(), page("1.4.3"));
    UpdateChecker::Source distrustful = source();
    distrustful.tls = [] { return trusting({}); };
    EXPECT_EQ(check(distrustful), Status(Failed {}));
    EXPECT_THAT(m_server.requests(), SizeIs(0));
}

TEST_F(UpdateCheck, aCertificateForAnotherHostFails)
{
    m_server.answerPage(path(), page("1.4.3"));
    UpdateChecker::Source otherName = source();
    otherName.homePage.setHost(QStringLiteral("localhost"));
    EXPECT_EQ(check(otherName), Status(Failed {}));
    EXPECT_THAT(m_server.requests(), SizeIs(0));
}

TEST_F(UpdateCheck, plainHttpIsNeverAsked)
{
    QTcpServer plain;
    ASSERT_TRUE(plain.listen(QHostAddress::LocalHost));
    UpdateChecker::Source insecure = source();
    insecure.homePage.setScheme(QStringLiteral("http"));
    insecure.homePage.setPort(plain.serverPort());
    UpdateChecker checker(insecure, QStringLiteral("1.0"));
    checker.checkForUpdates();
    EXPECT_EQ(settled(checker), Status(Failed {}));
    EXPECT_FALSE(plain.waitForNewConnection(0));
}

QByteArray location(const QUrl& url)
{
    return "Location: " + url.toEncoded() + "\r\n";
}

TEST_F(UpdateCheck, aRedirectToHttpsIsFollowed)
{
    test::HomePageServer other(*certificates);
    other.answerPage(QStringLiteral("/new"), page("1.4.3"));
    m_server.answerPage(
        path(), page("9.9"), "301 Moved Permanently", location(other.url(QStringLiteral("/new"))));
    EXPECT_EQ(check(source()), Status(UpdateAvailable { QStringLiteral("1.4.3") }));
}

TEST_F(UpdateCheck, aRelativeRedirectIsFollowed)
{
    m_server.answerPage(QStringLiteral("/new"), page("1.4.3"));
    m_server.answerPage(path(), "", "302 Found", "Location: /new\r\n");
    EXPECT_EQ(check(source()), Status(UpdateAvailable { QStringLiteral("1.4.3") }));
}

TEST_F(UpdateCheck, aRedirectToHttpFails)
{
    QTcpServer plain;
    ASSERT_TRUE(plain.listen(QHostAddress::LocalHost));
    QUrl insecure = m_server.url(path());
    insecure.setScheme(QStringLiteral("http"));
    insecure.setPort(plain.serverPort());
    m_server.answerPage(path(), page("1.4.3"), "302 Found", location(insecure));
    EXPECT_EQ(check(source()), Status(Failed {}));
    EXPECT_FALSE(plain.waitForNewConnection(0));
}

TEST_F(UpdateCheck, aRedirectToAFileFails)
{
    m_server.answerPage(path(), page("1.4.3"), "302 Found", "Location: file:///etc/hostname\r\n");
    EXPECT_EQ(check(source()), Status(Failed {}));
}

TEST_F(UpdateCheck, aRedirectToNowhereFails)
{
    m_server.answerPage(path(), page("1.4.3"), "302 Found");
    EXPECT_EQ(check(source()), Status(Failed {}));
}

TEST_F(UpdateCheck, aRedirectLoopFails)
{
    m_server.answerPage(path(), page("1.4.3"), "302 Found", "Location: /again\r\n");
    m_server.answerPage(QStringLiteral("/again"), page("1.4.3"), "302 Found", "Location: /\r\n");
    EXPECT_EQ(check(source()), Status(Failed {}));
    // A connection that the server has closed in the meantime is asked twice.
    constexpr int steps = UpdateChecker::maximumRedirects + 1;
    EXPECT_THAT(m_server.requests(), SizeIs(AllOf(Ge(steps), Le(2 * steps))));
}

TEST_F(UpdateCheck, aPageThatIsTooLargeFails)
{
    const QByteArray content = page("1.4.3") + QByteArray(100'000, ' ');
    m_server.answerPage(path(), content);
    UpdateChecker::Source bounded = source();
    bounded.maximumPageBytes = content.size() - 1;
    EXPECT_EQ(check(bounded), Status(Failed {}));
    bounded.maximumPageBytes = content.size();
    EXPECT_EQ(check(bounded), Status(UpdateAvailable { QStringLiteral("1.4.3") }));
}

TEST_F(UpdateCheck, oneGetWithoutABodyIsSent)
{
    m_server.answerPage(path(), page("1.4.3"));
    ASSERT_EQ(check(source()), Status(UpdateAvailable { QStringLiteral("1.4.3") }));
    ASSERT_THAT(m_server.requests(), SizeIs(1));
    const QByteArray& request = m_server.requests().front();
    EXPECT_TRUE(request.startsWith("GET / HTTP/1.1\r\n")) << request.toStdString();
    EXPECT_TRUE(request.endsWith("\r\n\r\n"));
    for (const char* header : { "cookie:", "authorization:", "referer:", "cache-control:" }) {
        EXPECT_FALSE(request.toLower().contains(header)) << header;
    }
}

TEST_F(UpdateCheck, twoQuickCallsMakeOneLoad)
{
    m_server.answerPage(path(), page("1.4.3"));
    UpdateChecker checker(source(), QStringLiteral("1.0"));
    QSignalSpy spy(&checker, &UpdateChecker::statusChanged);
    checker.checkForUpdates();
    checker.checkForUpdates();
    EXPECT_EQ(settled(checker), Status(UpdateAvailable { QStringLiteral("1.4.3") }));
    EXPECT_THAT(spy, SizeIs(2)); // checking, then the outcome
    EXPECT_THAT(m_server.requests(), SizeIs(1));
    EXPECT_EQ(m_server.connectionCount(), 1);
}

TEST_F(UpdateCheck, canBeRepeatedAfterEveryOutcome)
{
    UpdateChecker checker(source(), QStringLiteral("1.0"));
    for (const auto& [version, outcome] : std::initializer_list<std::pair<const char*, Status>> {
             { "soon", Current {} },
             { "", Failed {} },
             { "2.0", UpdateAvailable { QStringLiteral("2.0") } },
             { "1.0", Current {} },
         }) {
        SCOPED_TRACE(version);
        m_server.answerPage(path(), page(version));
        checker.checkForUpdates();
        EXPECT_EQ(checker.status(), Status(Checking {}));
        EXPECT_EQ(settled(checker), outcome);
    }
    EXPECT_THAT(m_server.requests(), SizeIs(4));
}

TEST_F(UpdateCheck, cookiesAreNotKeptForTheNextCheck)
{
    m_server.answerPage(path(), page("1.4.3"), "200 OK", "Set-Cookie: visitor=1\r\n");
    UpdateChecker checker(source(), QStringLiteral("1.0"));
    for (int round = 0; round < 2; ++round) {
        checker.checkForUpdates();
        ASSERT_EQ(settled(checker), Status(UpdateAvailable { QStringLiteral("1.4.3") }));
    }
    ASSERT_THAT(m_server.requests(), SizeIs(2));
    EXPECT_FALSE(m_server.requests().back().toLower().contains("cookie"));
}

TEST_F(UpdateCheck, aRetryCanStartWhileTheOutcomeIsAnnounced)
{
    m_server.answerPage(path(), "nothing");
    UpdateChecker checker(source(), QStringLiteral("1.0"));
    int retries = 0;
    QObject::connect(&checker, &UpdateChecker::statusChanged, &checker, [&] {
        if (checker.status() == Status(Failed {}) && retries++ == 0) {
            m_server.answerPage(path(), page("1.4.3"));
            checker.checkForUpdates();
        }
    });
    checker.checkForUpdates();
    EXPECT_EQ(settled(checker), Status(UpdateAvailable { QStringLiteral("1.4.3") }));
}

TEST_F(UpdateCheck, theCheckerCanGoInTheMiddleOfACheck)
{
    m_server.keepSilent(path());
    auto checker = std::make_unique<UpdateChecker>(source(), QStringLiteral("1.0"));
    QSignalSpy spy(checker.get(), &UpdateChecker::statusChanged);
    checker->checkForUpdates();
    const QDeadlineTimer deadline(patience);
    while (m_server.requests().isEmpty() && !deadline.hasExpired()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    EXPECT_THAT(m_server.requests(), SizeIs(1));
    checker.reset();
    EXPECT_THAT(spy, SizeIs(1)); // checking, and no outcome
}

TEST_F(UpdateCheck, whatTakesLongToLoadIsLoadedInAnotherThread)
{
    m_server.answerPage(path(), page("1.4.3"));
    QSemaphore mayGoOn;
    std::atomic<QThread*> thread = nullptr;
    UpdateChecker::Source slow = source();
    slow.tls = [&mayGoOn, &thread, ready = slow.tls] {
        mayGoOn.acquire();
        thread = QThread::currentThread();
        return ready();
    };
    UpdateChecker checker(slow, QStringLiteral("1.0"));
    checker.checkForUpdates();
    checker.checkForUpdates();
    EXPECT_EQ(checker.status(), Status(Checking {}));
    mayGoOn.release();
    EXPECT_EQ(settled(checker), Status(UpdateAvailable { QStringLiteral("1.4.3") }));
    EXPECT_NE(thread, QThread::currentThread());
    EXPECT_THAT(m_server.requests(), SizeIs(1));
}

TEST_F(UpdateCheck, theWayIsLookedForInAnotherThread)
{
    m_server.answerPage(path(), page("1.4.3"));
    std::atomic<QThread*> thread = nullptr;
    UpdateChecker::Source asked = source();
    asked.proxy = [&thread, ready = asked.proxy](const QUrl& url) {
        thread = QThread::currentThread();
        return ready(url);
    };
    EXPECT_EQ(check(asked), Status(UpdateAvailable { QStringLiteral("1.4.3") }));
    EXPECT_NE(thread, nullptr);
    EXPECT_NE(thread, QThread::currentThread());
}

TEST_F(UpdateCheck, theCheckerCanGoBeforeItsRequest)
{
    auto checker = std::make_unique<UpdateChecker>(source(), QStringLiteral("1.0"));
    QSignalSpy spy(checker.get(), &UpdateChecker::statusChanged);
    checker->checkForUpdates();
    checker.reset();
    QCoreApplication::processEvents();
    EXPECT_THAT(spy, SizeIs(1)); // checking
    EXPECT_THAT(m_server.requests(), SizeIs(0));
}

TEST(UpdateCheckerStatus, equalityLooksAtTheVersionToo)
{
    EXPECT_EQ(Status(UpdateAvailable { QStringLiteral("1") }),
        Status(UpdateAvailable { QStringLiteral("1") }));
    EXPECT_NE(Status(UpdateAvailable { QStringLiteral("1") }),
        Status(UpdateAvailable { QStringLiteral("2") }));
    EXPECT_NE(Status(Idle {}), Status(Current {}));
    EXPECT_EQ(Status(Failed {}), Status(Failed {}));
}

} // namespace
} // namespace vellumine
