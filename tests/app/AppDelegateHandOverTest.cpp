#include "app/AppDelegate.h"

#include "app/ProgramOnPrivateBus.h"
#include "app/instance/SingleInstance.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QFuture>
#include <QtConcurrentRun>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>

namespace vellumine {
namespace {

/// The first process of a session, which takes what others are started with.
class HandOver : public test::ProgramOnPrivateBus {
protected:
    void startFirst()
    {
        m_first = std::make_unique<SingleInstance>(service());
        ASSERT_EQ(m_first->start({}, {}), SingleInstance::Role::first);
        QObject::connect(
            m_first.get(), &SingleInstance::openRequested, &delegate(), &AppDelegate::open);
        m_atQuit = [this] { m_first->leave(); };
    }

    QFuture<SingleInstance::Role> startAnother(const QUrl& file)
    {
        return QtConcurrent::run(
            [bus = addProcess(), file] { return SingleInstance(bus).start({ file }, {}); });
    }

    /// A call of another process, which waits to be followed when this returns.
    QDBusPendingCall callOpen(const QUrl& file)
    {
        QDBusConnection other = addProcess();
        QDBusMessage open = QDBusMessage::createMethodCall(SingleInstance::busName(),
            SingleInstance::objectPath(), QStringLiteral("org.freedesktop.Application"),
            QStringLiteral("Open"));
        open << QStringList { QString::fromLatin1(file.toEncoded()) } << QVariantMap();
        const QDBusPendingCall call = other.asyncCall(open);
        // The bus takes and gives one message after the other.
        EXPECT_TRUE(other.interface()->isServiceRegistered(SingleInstance::busName()));
        EXPECT_TRUE(service().interface()->isServiceRegistered(SingleInstance::busName()));
        return call;
    }

    std::unique_ptr<SingleInstance> m_first;
};

TEST_F(HandOver, isRefusedOnceTheBatchIsCompleteAfterWhichTheUserWantsToQuit)
{
    delegate().models().settings().setExitWhenComplete(true);
    ASSERT_NO_FATAL_FAILURE(startFirst());
    std::optional<QDBusPendingCall> late;
    m_atQuit = [&, leave = m_atQuit] {
        late = callOpen(brokenPicture("b.png"));
        leave();
    };
    delegate().process({ brokenPicture("a.png") });
    ASSERT_TRUE(waitForResults(1));
    ASSERT_TRUE(late);
    late->waitForFinished();
    EXPECT_TRUE(late->isError());
    QFuture<SingleInstance::Role> next = startAnother(brokenPicture("b.png"));
    next.waitForFinished();
    EXPECT_EQ(next.result(), SingleInstance::Role::first);
}

TEST_F(HandOver, isConvertedBeforeTheQuittingWhereItWasTakenBefore)
{
    delegate().models().settings().setExitWhenComplete(true);
    ASSERT_NO_FATAL_FAILURE(startFirst());
    qsizetype resultsAtQuit = 0;
    m_atQuit = [&, leave = m_atQuit] {
        resultsAtQuit = model().results().size();
        leave();
    };
    std::optional<QDBusPendingCall> early;
    QObject::connect(&model(), &ProcessingModel::resultInserted, &model(), [&] {
        if (!early) {
            early = callOpen(brokenPicture("b.png"));
            QCoreApplication::sendPostedEvents(m_first.get(), QEvent::MetaCall);
        }
    });
    delegate().process({ brokenPicture("a.png") });
    ASSERT_TRUE(waitForResults(2));
    early->waitForFinished();
    EXPECT_FALSE(early->isError());
    EXPECT_EQ(m_quits, 1);
    EXPECT_EQ(resultsAtQuit, 2);
}

} // namespace
} // namespace vellumine
