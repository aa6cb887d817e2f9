#include "app/AppDelegate.h"

#include "app/ProgramOnPrivateBus.h"
#include "support/EventLoop.h"
#include "support/bus/FakePortal.h"
#include "ui/theme/Motion.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QQmlEngine>
#include <QScreen>
#include <QSignalSpy>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>

namespace vellumine {
namespace {

using test::FakePortal;
using test::runUntil;

/// The program on a desktop whose portal knows whether the user wants things to move.
class MotionOfTheWindows : public test::ProgramOnPrivateBus {
protected:
    void start(FakePortal& portal) { serve(portal, FakePortal::path(), FakePortal::name()); }

    /// Returns once the program knows what it asked the portal when it was made.
    void waitForThePortalsAnswer()
    {
        auto call = QDBusMessage::createMethodCall(FakePortal::name(), FakePortal::path(),
            QStringLiteral("org.freedesktop.portal.Settings"), QStringLiteral("ReadAll"));
        call.setArguments({ QStringList() });
        // what is asked last is answered last
        QDBusPendingCallWatcher watcher(m_bus.asyncCall(call));
        QSignalSpy finished(&watcher, &QDBusPendingCallWatcher::finished);
        ASSERT_TRUE(finished.wait(60000));
        ASSERT_FALSE(watcher.isError()) << watcher.error().message().toStdString();
    }

    /// The theme's motion as the views of a window see it.
    static const Motion& motion(const QQuickWindow* window)
    {
        return *qmlEngine(window)->singletonInstance<Motion*>(
            qmlTypeId("Vellumine", 1, 0, "Motion"));
    }

    [[nodiscard]] bool isReducedInBothWindows()
    {
        return motion(delegate().mainWindow()).isReduced()
            && motion(delegate().preferencesWindow()).isReduced();
    }

    [[nodiscard]] bool isAsUsualInBothWindows()
    {
        return !motion(delegate().mainWindow()).isReduced()
            && !motion(delegate().preferencesWindow()).isReduced();
    }
};

TEST_F(MotionOfTheWindows, isReducedFromTheirFirstFrameWhereTheDesktopHasAnswered)
{
    FakePortal portal(FakePortal::animations(false));
    start(portal);
    delegate();
    ASSERT_NO_FATAL_FAILURE(waitForThePortalsAnswer());
    delegate().launch();
    delegate().showPreferences();
    EXPECT_TRUE(isReducedInBothWindows());
    EXPECT_EQ(motion(delegate().mainWindow()).calm(), 0);
}

TEST_F(MotionOfTheWindows, isReducedOnceTheDesktopAnswers)
{
    FakePortal portal(FakePortal::animations(false));
    start(portal);
    delegate().launch();
    delegate().showPreferences();
    EXPECT_TRUE(isAsUsualInBothWindows());
    EXPECT_TRUE(runUntil([&] { return isReducedInBothWindows(); }));
}

TEST_F(MotionOfTheWindows, followsTheDesktopsChanges)
{
    FakePortal portal(FakePortal::animations(true));
    start(portal);
    delegate().launch();
    delegate().showPreferences();
    ASSERT_NO_FATAL_FAILURE(waitForThePortalsAnswer());
    EXPECT_TRUE(isAsUsualInBothWindows());
    portal.switchAnimations(false);
    EXPECT_TRUE(runUntil([&] { return isReducedInBothWindows(); }));
    portal.switchAnimations(true);
    EXPECT_TRUE(runUntil([&] { return isAsUsualInBothWindows(); }));
    EXPECT_GT(motion(delegate().mainWindow()).calm(), 0);
}

TEST_F(MotionOfTheWindows, letsTheMainWindowGrowAtOnceWhileItIsReduced)
{
    m_windowGrowingTime = std::chrono::hours(1);
    FakePortal portal(FakePortal::animations(false));
    start(portal);
    delegate().launch();
    const QQuickWindow& window = *delegate().mainWindow();
    ASSERT_TRUE(runUntil([&] { return motion(&window).isReduced(); }));
    delegate().process({ brokenPicture("a.png") });
    ASSERT_TRUE(waitForResults(1));
    const int available = window.screen()->availableGeometry().height();
    EXPECT_EQ(window.height(), std::min(650, available));

    portal.switchAnimations(true);
    ASSERT_TRUE(runUntil([&] { return !motion(&window).isReduced(); }));
    delegate().process({ brokenPicture("b.png") });
    ASSERT_TRUE(waitForResults(2));
    EXPECT_LT(window.height(), std::min(726, available)); // on its way
}

} // namespace
} // namespace vellumine
