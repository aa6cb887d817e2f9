#include "app/instance/SingleInstance.h"
#include "app/instance/FileArguments.h"
#include "support/EventLoop.h"
#include "support/QtPrinters.h"
#include "support/bus/OnPrivateBus.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <QDBusVirtualObject>
#include <QFutureWatcher>
#include <QSignalSpy>
#include <QtConcurrentRun>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace vellumine {
namespace {

using namespace std::chrono_literals;
using test::runUntil;
using ::testing::ElementsAre;
using Role = SingleInstance::Role;

/// A first process that says itself what becomes of a call.
class OtherProcess : public QDBusVirtualObject {
public:
    using Answer = std::function<QDBusMessage(const QDBusMessage&)>;

    OtherProcess(QDBusConnection bus, Answer open)
        : m_bus(std::move(bus))
        , m_open(std::move(open))
    {
        EXPECT_TRUE(m_bus.registerVirtualObject(SingleInstance::objectPath(), this));
        EXPECT_TRUE(m_bus.registerService(SingleInstance::busName()));
    }

    [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override
    {
        if (message.member() != QStringLiteral("Open")) {
            return bus.send(message.createReply());
        }
        m_opened.append(message);
        const QDBusMessage answer = m_open(message);
        return answer.type() == QDBusMessage::InvalidMessage || bus.send(answer);
    }

    /// Every call with files so far.
    [[nodiscard]] const QList<QDBusMessage>& opened() const { return m_opened; }
    QDBusConnection& bus() { return m_bus; }
    void die()
    {
        const QString process = m_bus.name();
        m_bus = QDBusConnection(QString());
        QDBusConnection::disconnectFromBus(process);
    }

private:
    QDBusConnection m_bus;
    Answer m_open;
    QList<QDBusMessage> m_opened;
};

class SessionBus : public test::OnPrivateBus {
protected:
    /// What others have called on this process waits in its queue when this returns.
    static void letCallsArrive(const QDBusConnection& caller, const QDBusConnection& called)
    {
        // The bus takes and gives one message after the other.
        EXPECT_TRUE(caller.interface()->isServiceRegistered(SingleInstance::busName()));
        EXPECT_TRUE(called.interface()->isServiceRegistered(SingleInstance::busName()));
    }

    QFuture<Role> startInThread(
        const QList<QUrl>& files, std::chrono::milliseconds patience = SingleInstance::answerTime)
    {
        return QtConcurrent::run([bus = addProcess(), files, patience] {
            return SingleInstance(bus).start(files, {}, patience);
        });
    }

    /// Waits for it with the event loop running.
    static Role result(const QFuture<Role>& role)
    {
        QFutureWatcher<Role> watcher;
        QSignalSpy finished(&watcher, &QFutureWatcherBase::finished);
        watcher.setFuture(role);
        EXPECT_TRUE(finished.wait(30000));
        return role.result();
    }

    /// What becomes of a second process, while the first one's event loop runs.
    Role startAnother(const QList<QUrl>& files = {}, const ActivationToken& token = {},
        std::chrono::milliseconds patience = SingleInstance::answerTime)
    {
        const QDBusConnection bus = addProcess();
        const QFuture<Role> role
            = QtConcurrent::run([&] { return SingleInstance(bus).start(files, token, patience); });
        return result(role);
    }
};

const QUrl photo(QStringLiteral("file:///pictures/a%20b%23%25.png"));
const QUrl oddlyNamed = QUrl::fromEncoded("file:///pictures/%FFphoto.jpg");

TEST_F(SessionBus, theFirstProcessOwnsTheName)
{
    SingleInstance first(addProcess());
    EXPECT_EQ(first.start({}, {}), Role::first);
    EXPECT_TRUE(
        addProcess().interface()->isServiceRegistered(QStringLiteral("com.kestrova.Vellumine")));
}

TEST_F(SessionBus, aSecondStartWithoutFilesActivatesTheFirst)
{
    SingleInstance first(addProcess());
    ASSERT_EQ(first.start({}, {}), Role::first);
    QSignalSpy activations(&first, &SingleInstance::activationRequested);
    EXPECT_EQ(startAnother(), Role::handedOver);
    EXPECT_EQ(activations.count(), 1);
}

TEST_F(SessionBus, aSecondStartHandsItsFilesOver)
{
    SingleInstance first(addProcess());
    ASSERT_EQ(first.start({}, {}), Role::first);
    QList<QUrl> opened;
    ActivationToken activation;
    QObject::connect(&first, &SingleInstance::openRequested,
        [&](const QList<QUrl>& files, const ActivationToken& token) {
            opened = files;
            activation = token;
        });
    const ActivationToken token { .activationToken = "w-7", .startupId = "x_TIME42" };
    EXPECT_EQ(startAnother({ photo, oddlyNamed }, token), Role::handedOver);
    EXPECT_THAT(opened, ElementsAre(photo, oddlyNamed));
    EXPECT_EQ(activation, token);
}

TEST_F(SessionBus, ofManyStartsAtOnceOneIsTheFirst)
{
    QList<QUrl> opened;
    std::vector<QFuture<Role>> roles;
    QList<QDBusConnection> buses;
    for (int number = 0; number < 8; ++number) {
        buses.append(addProcess());
    }
    SingleInstance first(buses.takeFirst());
    QObject::connect(&first, &SingleInstance::openRequested,
        [&opened](const QList<QUrl>& files) { opened.append(files); });
    ASSERT_EQ(first.start({}, {}), Role::first);
    for (const QDBusConnection& bus : buses) {
        roles.push_back(
            QtConcurrent::run([bus] { return SingleInstance(bus).start({ photo }, {}, 10s); }));
    }
    for (const QFuture<Role>& role : roles) {
        EXPECT_EQ(result(role), Role::handedOver);
    }
    EXPECT_EQ(opened.size(), 7);
}

TEST_F(SessionBus, theNameIsFreeAgainAfterTheFirstProcess)
{
    {
        SingleInstance first(addProcess());
        ASSERT_EQ(first.start({}, {}), Role::first);
    }
    SingleInstance next(addProcess());
    EXPECT_EQ(next.start({}, {}), Role::first);
}

TEST_F(SessionBus, aFirstProcessThatDoesNotAnswerIsGoneAround)
{
    // It owns the name, and has no such object.
    ASSERT_TRUE(addProcess().registerService(SingleInstance::busName()));
    EXPECT_EQ(startAnother({ photo }, {}, 500ms), Role::alone);
}

TEST_F(SessionBus, aFirstProcessThatHangsGetsNoFiles)
{
    const QDBusConnection bus = addProcess();
    SingleInstance first(bus);
    ASSERT_EQ(first.start({}, {}), Role::first);
    QSignalSpy opened(&first, &SingleInstance::openRequested);
    QSignalSpy quits(&first, &SingleInstance::quitRequested);
    const QDBusConnection other = addProcess();
    auto role
        = QtConcurrent::run([other] { return SingleInstance(other).start({ photo }, {}, 50ms); });
    role.waitForFinished(); // the first one's thread does nothing else
    EXPECT_EQ(role.result(), Role::alone);

    letCallsArrive(other, bus);
    QCoreApplication::sendPostedEvents();
    EXPECT_EQ(opened.count(), 0);
    EXPECT_EQ(quits.count(), 0);
}

TEST_F(SessionBus, filesStayWithAProcessThatAnsweredForAsLongAsItLives)
{
    OtherProcess first(addProcess(), [](const QDBusMessage&) { return QDBusMessage(); });
    const QFuture<Role> role = startInThread({ photo }, 1500ms);
    ASSERT_TRUE(runUntil([&] { return first.opened().size() == 1; }));
    // The first one hangs now, for longer than anybody would wait for its first answer.
    QFuture<Role> other = startInThread({ photo }, 2s);
    other.waitForFinished();
    EXPECT_EQ(other.result(), Role::alone);
    EXPECT_FALSE(role.isFinished());

    first.bus().send(first.opened().first().createReply());
    EXPECT_EQ(result(role), Role::handedOver);
    EXPECT_EQ(first.opened().size(), 1);
}

TEST_F(SessionBus, filesOfAProcessThatDiesWithThemAreSeenToByTheNext)
{
    OtherProcess first(addProcess(), [](const QDBusMessage&) { return QDBusMessage(); });
    const QFuture<Role> role = startInThread({ photo });
    ASSERT_TRUE(runUntil([&] { return first.opened().size() == 1; }));
    first.die();
    EXPECT_EQ(result(role), Role::first);
}

TEST_F(SessionBus, filesThatAreRefusedByAProcessThatGivesTheNameAwayAreSeenToByTheNext)
{
    OtherProcess first(addProcess(), [&first](const QDBusMessage& open) {
        first.bus().unregisterService(SingleInstance::busName());
        return open.createErrorReply(QDBusError::ServiceUnknown, {});
    });
    EXPECT_EQ(startAnother({ photo }), Role::first);
    EXPECT_EQ(first.opened().size(), 1);
}

TEST_F(SessionBus, filesThatAreRefusedByAProcessThatKeepsTheNameAreNotGivenAgain)
{
    const OtherProcess first(addProcess(),
        [](const QDBusMessage& open) { return open.createErrorReply(QDBusError::Failed, {}); });
    EXPECT_EQ(startAnother({ photo }), Role::alone);
    EXPECT_EQ(first.opened().size(), 1);
}

TEST_F(SessionBus, aStartThatComesWhileTheFirstProcessLeavesTakesItsPlace)
{
    SingleInstance first(addProcess());
    ASSERT_EQ(first.start({}, {}), Role::first);
    QSignalSpy opened(&first, &SingleInstance::openRequested);
    QFuture<Role> role = startInThread({ photo });
    first.leave();
    role.waitForFinished(); // nothing is left for the first one to answer
    EXPECT_EQ(role.result(), Role::first);
    EXPECT_EQ(opened.count(), 0);
}

TEST(WithoutABus, theProgramJustStarts)
{
    SingleInstance instance(QDBusConnection(QStringLiteral("no such connection")));
    EXPECT_EQ(instance.start({ photo }, {}), Role::alone);
}

class Interface : public SessionBus {
protected:
    static QDBusMessage message(const char* method, const QVariantList& arguments)
    {
        QDBusMessage message = QDBusMessage::createMethodCall(
            QStringLiteral("com.kestrova.Vellumine"), QStringLiteral("/com/kestrova/Vellumine"),
            QStringLiteral("org.freedesktop.Application"), QString::fromLatin1(method));
        message.setArguments(arguments);
        return message;
    }

    /// Calls the program as a launcher does.
    void call(const char* method, const QVariantList& arguments)
    {
        QDBusPendingCallWatcher watcher(m_launcher.asyncCall(message(method, arguments)));
        QSignalSpy finished(&watcher, &QDBusPendingCallWatcher::finished);
        ASSERT_TRUE(finished.wait(20000));
        EXPECT_FALSE(watcher.isError()) << watcher.error().message().toStdString();
    }

    void SetUp() override
    {
        SessionBus::SetUp();
        if (IsSkipped() || HasFatalFailure()) {
            return;
        }
        m_launcher = addProcess();
        m_first = std::make_unique<SingleInstance>(addProcess());
        ASSERT_EQ(m_first->start({}, {}), Role::first);
    }

    QDBusConnection m_launcher { QString() };
    std::unique_ptr<SingleInstance> m_first;
};

TEST_F(Interface, opensOnlyFiles)
{
    QList<QUrl> opened;
    QObject::connect(m_first.get(), &SingleInstance::openRequested,
        [&opened](const QList<QUrl>& files) { opened = files; });
    call("Open",
        { QStringList { QStringLiteral("file:///x/y%20z.png"),
              QStringLiteral("https://kestrova.example/a.png"),
              QStringLiteral("file://localhost/x/1.png"),
              QStringLiteral("file://nas.kestrova.example/x/2.png") },
            QVariantMap() });
    EXPECT_THAT(opened,
        ElementsAre(
            QUrl(QStringLiteral("file:///x/y%20z.png")), QUrl(QStringLiteral("file:///x/1.png"))));
}

TEST_F(Interface, knowsTwoActions)
{
    QSignalSpy preferences(m_first.get(), &SingleInstance::preferencesRequested);
    QSignalSpy quits(m_first.get(), &SingleInstance::quitRequested);
    call("ActivateAction", { QStringLiteral("preferences"), QVariantList(), QVariantMap() });
    EXPECT_EQ(preferences.count(), 1);
    EXPECT_EQ(quits.count(), 0);
    call("ActivateAction", { QStringLiteral("quit"), QVariantList(), QVariantMap() });
    EXPECT_EQ(quits.count(), 1);
    call("ActivateAction", { QStringLiteral("explode"), QVariantList(), QVariantMap() });
    EXPECT_EQ(preferences.count(), 1);
    EXPECT_EQ(quits.count(), 1);
}

TEST_F(Interface, refusesWhatWasCalledBeforeTheProcessLeaves)
{
    QSignalSpy opened(m_first.get(), &SingleInstance::openRequested);
    QSignalSpy activations(m_first.get(), &SingleInstance::activationRequested);
    QSignalSpy quits(m_first.get(), &SingleInstance::quitRequested);
    const std::vector<QDBusPendingCall> calls {
        m_launcher.asyncCall(message("Open", { QStringList { photo.toString() }, QVariantMap() })),
        m_launcher.asyncCall(message("Activate", { QVariantMap() })),
        m_launcher.asyncCall(
            message("ActivateAction", { QStringLiteral("quit"), QVariantList(), QVariantMap() })),
    };
    letCallsArrive(m_launcher, m_first->bus());
    m_first->leave();
    for (QDBusPendingCall call : calls) {
        call.waitForFinished();
        EXPECT_EQ(call.error().type(), QDBusError::ServiceUnknown);
    }
    EXPECT_EQ(opened.count(), 0);
    EXPECT_EQ(activations.count(), 0);
    EXPECT_EQ(quits.count(), 0);
}

TEST_F(Interface, anActionMayMakeTheProcessLeave)
{
    QObject::connect(
        m_first.get(), &SingleInstance::quitRequested, m_first.get(), &SingleInstance::leave);
    call("ActivateAction", { QStringLiteral("quit"), QVariantList(), QVariantMap() });
    EXPECT_FALSE(m_launcher.interface()->isServiceRegistered(SingleInstance::busName()));
}

TEST(ActivationToken, travelsAsPlatformData)
{
    const ActivationToken token { .activationToken = "w-7", .startupId = "x_TIME42" };
    EXPECT_EQ(ActivationToken::fromPlatformData(token.platformData()), token);
    EXPECT_TRUE(ActivationToken().platformData().isEmpty());
    EXPECT_EQ(
        ActivationToken::fromPlatformData({ { QStringLiteral("other"), 1 } }), ActivationToken());
}

TEST(FileArguments, areRelativeToTheWorkingFolder)
{
    const std::vector<std::string> arguments { "a b#%.png", "/there/c.jpg", "../d", "",
        "photo\xFF.png", "-odd.png" };
    EXPECT_THAT(fileArguments(arguments, "/here/now"),
        ElementsAre(QUrl::fromEncoded("file:///here/now/a%20b%23%25.png"),
            QUrl(QStringLiteral("file:///there/c.jpg")),
            QUrl(QStringLiteral("file:///here/now/../d")),
            QUrl::fromEncoded("file:///here/now/photo%FF.png"),
            QUrl(QStringLiteral("file:///here/now/-odd.png"))));
}

TEST(FileArguments, mayBeUrlsOfFiles)
{
    const std::vector<std::string> arguments { "file:///x/y%20z.png", "file://localhost/x/1.png",
        "file://nas.kestrova.example/x/2.png", "https://kestrova.example/a.png", "a:b.png",
        "1+1://x.png" };
    EXPECT_THAT(fileArguments(arguments, "/here"),
        ElementsAre(QUrl(QStringLiteral("file:///x/y%20z.png")),
            QUrl(QStringLiteral("file:///x/1.png")), QUrl(QStringLiteral("file:///here/a:b.png"))));
}

} // namespace
} // namespace vellumine
