#include "app/AppDelegate.h"

#include "app/ProgramOnPrivateBus.h"
#include "support/EventLoop.h"
#include "support/bus/FakeMenuRegistrar.h"

#include <QPointer>
#include <QQmlListReference>

#include <gtest/gtest.h>

namespace vellumine {
namespace {

using test::runUntil;

/// The program on a desktop that may have one menu bar for the windows of all programs.
class MenuOfTheWindows : public test::ProgramOnPrivateBus {
protected:
    void startRegistrar()
    {
        serve(m_registrar, test::FakeMenuRegistrar::path(), test::FakeMenuRegistrar::name());
    }
    void restartRegistrar()
    {
        ASSERT_TRUE(service().unregisterService(test::FakeMenuRegistrar::name()));
        ASSERT_TRUE(service().registerService(test::FakeMenuRegistrar::name()));
    }

    /// What the window has in that menu bar; null where it has nothing there.
    static QObject* exportedMenu(const QWindow* window)
    {
        const auto* place = window->findChild<QObject*>(QStringLiteral("exportedMenu"));
        return place ? place->property("item").value<QObject*>() : nullptr;
    }

    static void choose(const QWindow* window, qsizetype index)
    {
        QObject* menu = QQmlListReference(exportedMenu(window), "menus").at(0);
        const QQmlListReference items(menu, "items");
        ASSERT_EQ(items.count(), 5);
        ASSERT_TRUE(QMetaObject::invokeMethod(items.at(index), "triggered"));
    }

private:
    test::FakeMenuRegistrar m_registrar;
};

TEST_F(MenuOfTheWindows, isExportedByEachOfThem)
{
    ASSERT_NO_FATAL_FAILURE(startRegistrar());
    delegate().launch();
    ASSERT_TRUE(runUntil([&] { return exportedMenu(delegate().mainWindow()); }));
    const QWindow* comparison = openComparison();
    ASSERT_NE(comparison, nullptr);
    ASSERT_TRUE(runUntil([&] { return exportedMenu(comparison); }));
    ASSERT_NO_FATAL_FAILURE(choose(comparison, 2));
    ASSERT_NE(delegate().preferencesWindow(), nullptr);
    ASSERT_TRUE(runUntil([&] { return exportedMenu(delegate().preferencesWindow()); }));
    ASSERT_NO_FATAL_FAILURE(choose(delegate().preferencesWindow(), 4));
    EXPECT_EQ(m_quits, 1);
    ASSERT_NO_FATAL_FAILURE(choose(delegate().mainWindow(), 4));
    EXPECT_EQ(m_quits, 2);
}

TEST_F(MenuOfTheWindows, isExportedOnceThereIsWhereAndAgainWhenThatIsNew)
{
    delegate().launch();
    delegate().showPreferences();
    const auto areExported = [&] {
        return exportedMenu(delegate().mainWindow())
            && exportedMenu(delegate().preferencesWindow());
    };
    EXPECT_FALSE(areExported());
    ASSERT_NO_FATAL_FAILURE(startRegistrar());
    ASSERT_TRUE(runUntil(areExported));
    const QPointer<QObject> first = exportedMenu(delegate().mainWindow());
    ASSERT_NO_FATAL_FAILURE(restartRegistrar());
    EXPECT_TRUE(runUntil([&] { return !first && areExported(); }));
}

TEST_F(MenuOfTheWindows, isNotExportedByAClosedOne)
{
    ASSERT_NO_FATAL_FAILURE(startRegistrar());
    delegate().launch();
    ASSERT_TRUE(runUntil([&] { return exportedMenu(delegate().mainWindow()); }));
    delegate().mainWindow()->close();
    EXPECT_TRUE(runUntil([&] { return !exportedMenu(delegate().mainWindow()); }));
    delegate().showMainWindow();
    EXPECT_TRUE(runUntil([&] { return exportedMenu(delegate().mainWindow()); }));
}

} // namespace
} // namespace vellumine
