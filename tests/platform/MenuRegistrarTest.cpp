#include "platform/MenuRegistrar.h"

#include "support/EventLoop.h"
#include "support/bus/FakeMenuRegistrar.h"
#include "support/bus/OnPrivateBus.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusReply>
#include <QDBusVirtualObject>

#include <vector>

namespace vellumine::platform {
namespace {

using test::FakeMenuRegistrar;
using test::runUntil;

class MenuRegistrarTest : public test::OnPrivateBus {
protected:
    /// The process answers as a registrar does.
    void answer(QDBusConnection process)
    {
        ASSERT_TRUE(process.registerObject(
            FakeMenuRegistrar::path(), &m_registrar, QDBusConnection::ExportAllSlots));
    }

    /// The process has the registrar's name from now on, whoever had it before.
    static void takeName(const QDBusConnection& process)
    {
        const QDBusReply<QDBusConnectionInterface::RegisterServiceReply> reply
            = process.interface()->registerService(FakeMenuRegistrar::name(),
                QDBusConnectionInterface::ReplaceExistingService,
                QDBusConnectionInterface::AllowReplacement);
        ASSERT_EQ(reply.value(), QDBusConnectionInterface::ServiceRegistered);
    }

    void start(const QDBusConnection& process)
    {
        ASSERT_NO_FATAL_FAILURE(answer(process));
        ASSERT_NO_FATAL_FAILURE(takeName(process));
    }

private:
    FakeMenuRegistrar m_registrar;
};

TEST_F(MenuRegistrarTest, isPresentWhereOneIsOnTheBus)
{
    ASSERT_NO_FATAL_FAILURE(start(service()));
    const MenuRegistrar registrar(client());
    EXPECT_FALSE(registrar.isPresent());
    EXPECT_TRUE(runUntil([&] { return registrar.isPresent(); }));
}

TEST_F(MenuRegistrarTest, isFoundWhenItComesLate)
{
    const MenuRegistrar registrar(client());
    ASSERT_NO_FATAL_FAILURE(start(service()));
    EXPECT_TRUE(runUntil([&] { return registrar.isPresent(); }));
}

TEST_F(MenuRegistrarTest, isWaitedForWhileItStarts)
{
    ASSERT_NO_FATAL_FAILURE(takeName(service()));
    const MenuRegistrar registrar(client());
    // Asked by the same process, and answered later.
    const auto question = QDBusMessage::createMethodCall(FakeMenuRegistrar::name(),
        FakeMenuRegistrar::path(), FakeMenuRegistrar::name(), QStringLiteral("GetMenuForWindow"));
    EXPECT_EQ(client().call(question, QDBus::BlockWithGui).type(), QDBusMessage::ErrorMessage);
    EXPECT_FALSE(registrar.isPresent());
    ASSERT_NO_FATAL_FAILURE(answer(service()));
    EXPECT_TRUE(runUntil([&] { return registrar.isPresent(); }));
}

/// How the next one follows.
class NextMenuRegistrar : public MenuRegistrarTest, public testing::WithParamInterface<bool> { };

TEST_P(NextMenuRegistrar, isAnotherOne)
{
    const bool isGap = GetParam();
    ASSERT_NO_FATAL_FAILURE(start(service()));
    const MenuRegistrar registrar(client());
    ASSERT_TRUE(runUntil([&] { return registrar.isPresent(); }));
    std::vector<bool> seen;
    QObject::connect(
        &registrar, &MenuRegistrar::changed, [&] { seen.push_back(registrar.isPresent()); });
    if (isGap) {
        ASSERT_TRUE(service().unregisterService(FakeMenuRegistrar::name()));
    }
    ASSERT_NO_FATAL_FAILURE(start(addProcess()));
    EXPECT_TRUE(runUntil([&] { return seen.size() == 2; }));
    EXPECT_EQ(seen, (std::vector { false, true }));
}

INSTANTIATE_TEST_SUITE_P(Ways, NextMenuRegistrar, testing::Bool(),
    [](const auto& row) { return row.param ? "afterItsEnd" : "inItsPlace"; });

TEST_F(MenuRegistrarTest, isAbsentWithoutOneOrABus)
{
    const MenuRegistrar withoutOne(client());
    const MenuRegistrar withoutBus(QDBusConnection(QStringLiteral("none")));
    // what is asked last is answered last
    const QDBusPendingCallWatcher answer(client().asyncCall(QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetId"))));
    bool isAnswered = false;
    QObject::connect(
        &answer, &QDBusPendingCallWatcher::finished, &answer, [&] { isAnswered = true; });
    EXPECT_TRUE(runUntil([&] { return isAnswered; }));
    EXPECT_FALSE(withoutOne.isPresent());
    EXPECT_FALSE(withoutBus.isPresent());
}

TEST_F(MenuRegistrarTest, isPresentWhateverItSaysOfAWindowThatDoesNotExist)
{
    class Refusing : public QDBusVirtualObject {
    public:
        [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }
        bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override
        {
            return bus.send(message.createErrorReply(
                QStringLiteral("com.canonical.AppMenu.Registrar.Error.WindowNotFound"), {}));
        }
    };
    Refusing refusing;
    QDBusConnection process = service();
    ASSERT_TRUE(process.registerVirtualObject(FakeMenuRegistrar::path(), &refusing));
    ASSERT_NO_FATAL_FAILURE(takeName(process));
    const MenuRegistrar registrar(client());
    EXPECT_TRUE(runUntil([&] { return registrar.isPresent(); }));
}

} // namespace
} // namespace vellumine::platform
