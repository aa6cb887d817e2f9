#include "app/AppDelegate.h"
#include "app/TestProgram.h"
#include "app/windows/WindowActivation.h"
#include "platform/FilePath.h"
#include "support/TestImages.h"

#include <QImage>
#include <QQuickItem>
#include <QScreen>
#include <QSessionManager>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

#include <filesystem>
#include <string_view>

namespace vellumine {
namespace {

class Program : public testing::Test, protected test::TestProgram {
protected:
    /// The user wants to be asked before what is in the way of its output is replaced.
    QUrl pictureWithOutputInTheWay()
    {
        delegate().models().settings().setWarnBeforeOverwrite(true);
        delegate().models().settings().setFilenameSuffix(QStringLiteral("-small"));
        // Any file will do as what is in the way.
        test::writeFile(m_folder / "pictures" / "a-small.png", std::string_view("in the way"));
        const std::filesystem::path source = m_folder / "pictures" / "a.bmp";
        QImage picture(8, 8, QImage::Format_RGB32);
        picture.fill(Qt::red);
        EXPECT_TRUE(picture.save(QString::fromStdString(source.string())));
        return platform::fileUrl(source);
    }
};

TEST_F(Program, makesTheProcessingModelWhenItIsFirstAskedFor)
{
    EXPECT_FALSE(delegate().models().hasProcessingModel());
    ProcessingModel& first = delegate().models().processingModel();
    EXPECT_EQ(&delegate().models().processingModel(), &first);
}

TEST_F(Program, launchShowsTheMainWindowAndLooksForAnUpdate)
{
    EXPECT_EQ(delegate().mainWindow(), nullptr);
    delegate().launch();
    ASSERT_NE(delegate().mainWindow(), nullptr);
    EXPECT_TRUE(delegate().mainWindow()->isVisible());
    EXPECT_EQ(delegate().mainWindow()->objectName(), QStringLiteral("VellumineMainWindow"));
    EXPECT_EQ(delegate().mainWindow()->title(), QStringLiteral("Vellumine"));
    EXPECT_EQ(delegate().mainWindow()->minimumSize(), QSize(720, 420));
    EXPECT_EQ(delegate().mainWindow()->size().width(),
        std::min(820, delegate().mainWindow()->screen()->availableGeometry().width()));
    EXPECT_EQ(delegate().preferencesWindow(), nullptr);
    EXPECT_FALSE(
        std::holds_alternative<UpdateChecker::Idle>(delegate().models().updateChecker().status()));
}

TEST_F(Program, choosingPreferencesTwiceMakesOneWindow)
{
    delegate().showPreferences();
    QQuickWindow* window = delegate().preferencesWindow();
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(window->objectName(), QStringLiteral("VelluminePreferencesWindow"));
    EXPECT_EQ(window->title(), QStringLiteral("Preferences"));
    EXPECT_EQ(window->minimumSize(), QSize(620, 780));
    EXPECT_EQ(window->width(), 620);
    delegate().showPreferences();
    EXPECT_EQ(delegate().preferencesWindow(), window);
}

TEST_F(Program, aClosedWindowComesBackWhereItWas)
{
    delegate().showPreferences();
    QQuickWindow* window = delegate().preferencesWindow();
    ASSERT_NE(window, nullptr);
    window->setPosition(37, 21);
    window->close();
    EXPECT_FALSE(window->isVisible());
    window->setPosition(0, 0); // as a window manager would place it
    delegate().showPreferences();
    EXPECT_EQ(delegate().preferencesWindow(), window);
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(window->position(), QPoint(37, 21));
}

TEST_F(Program, aWindowThatHasGrownWhileItWasClosedComesBackOnItsScreen)
{
    delegate().launch();
    QQuickWindow& window = *delegate().mainWindow();
    const QRect available = window.screen()->availableGeometry();
    const QPoint atTheBottom(5, available.bottom() + 1 - window.height());
    window.setPosition(atTheBottom);
    window.close();
    delegate().process({ brokenPicture("a.png"), brokenPicture("b.png") });
    ASSERT_TRUE(waitForResults(2));
    window.setPosition(0, 0); // as a window manager would place it
    delegate().showMainWindow();
    EXPECT_LT(window.y(), atTheBottom.y());
    EXPECT_EQ(window.x(), 5);
    EXPECT_EQ(window.geometry().bottom(), std::max(available.bottom(), window.height() - 1));
}

TEST_F(Program, aWindowThatComesToTheFrontIsAsLargeAsItWas)
{
    delegate().launch();
    QQuickWindow& window = *delegate().mainWindow();
    window.showMaximized();
    delegate().open({ brokenPicture("a.png") }, {});
    EXPECT_EQ(window.windowStates(), Qt::WindowMaximized);
    ASSERT_TRUE(waitForResults(1));

    window.setWindowStates(Qt::WindowMaximized | Qt::WindowMinimized);
    delegate().showMainWindow();
    EXPECT_EQ(window.windowStates(), Qt::WindowMaximized);
    EXPECT_TRUE(window.isVisible());

    window.close();
    delegate().showMainWindow();
    EXPECT_EQ(window.windowStates(), Qt::WindowMaximized);

    window.showMinimized();
    delegate().showMainWindow();
    EXPECT_EQ(window.windowStates(), Qt::WindowNoState);
}

TEST_F(Program, closingTheMainWindowLeavesTheProgramRunning)
{
    delegate().launch();
    QQuickWindow* window = delegate().mainWindow();
    window->close();
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(m_quits, 0);
    delegate().showMainWindow();
    EXPECT_EQ(delegate().mainWindow(), window);
    EXPECT_TRUE(window->isVisible());
}

TEST_F(Program, theWindowsMenuReachesTheDelegate)
{
    delegate().launch();
    QMetaObject::invokeMethod(delegate().mainWindow(), "preferencesRequested");
    EXPECT_NE(delegate().preferencesWindow(), nullptr);
    QMetaObject::invokeMethod(delegate().preferencesWindow(), "quitRequested");
    EXPECT_EQ(m_quits, 1);
}

/// A number typed into the preferences, whose field still has the focus.
class TypedMaximum : public Program {
protected:
    void type()
    {
        delegate().launch();
        delegate().showPreferences();
        m_window = delegate().preferencesWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(m_window));
        auto* field = m_window->findChild<QQuickItem*>(QStringLiteral("maximumField"));
        ASSERT_NE(field, nullptr);
        field->forceActiveFocus();
        QMetaObject::invokeMethod(field, "selectAll");
        for (const char digit : std::string_view("20000")) {
            QTest::keyClick(m_window, digit);
        }
        ASSERT_EQ(delegate().models().settings().maximumPixels(), 2560);
        m_atQuit = [] { QCoreApplication::quit(); };
    }
    [[nodiscard]] qint64 maximumInTheNextRun()
    {
        m_delegate.reset();
        return VellumineSettings(m_preferences.reopen()).maximumPixels();
    }

    QQuickWindow* m_window = nullptr;
};

TEST_F(TypedMaximum, isKeptWhenTheProgramIsQuitByItsKeys)
{
    ASSERT_NO_FATAL_FAILURE(type());
    QTimer::singleShot(
        0, m_window, [&] { QTest::keyClick(m_window, Qt::Key_Q, Qt::ControlModifier); });
    QCoreApplication::exec();
    EXPECT_EQ(m_quits, 1);
    EXPECT_EQ(maximumInTheNextRun(), 20000);
}

TEST_F(TypedMaximum, isKeptWhenTheProgramIsQuitByItsMenu)
{
    ASSERT_NO_FATAL_FAILURE(type());
    QTimer::singleShot(0, m_window, [&] {
        auto* menu = m_window->findChild<QObject*>(QStringLiteral("applicationMenu"));
        QMetaObject::invokeMethod(m_window, "showMenu");
        QMetaObject::invokeMethod(menu, "quitChosen");
    });
    QCoreApplication::exec();
    EXPECT_EQ(m_quits, 1);
    EXPECT_EQ(maximumInTheNextRun(), 20000);
}

TEST_F(TypedMaximum, isKeptWhenTheDesktopOrAnotherWindowQuitsTheProgram)
{
    ASSERT_NO_FATAL_FAILURE(type());
    QTimer::singleShot(0, m_window, [] { QCoreApplication::quit(); });
    QCoreApplication::exec();
    EXPECT_EQ(maximumInTheNextRun(), 20000);
}

TEST_F(Program, theMenuOfAComparisonReachesTheDelegate)
{
    delegate().launch();
    QWindow* comparison = openComparison();
    ASSERT_NE(comparison, nullptr);
    QMetaObject::invokeMethod(comparison, "preferencesRequested");
    EXPECT_NE(delegate().preferencesWindow(), nullptr);
    QMetaObject::invokeMethod(comparison, "quitRequested");
    EXPECT_EQ(m_quits, 1);
}

TEST_F(Program, growsWithItsFirstResult)
{
    delegate().launch();
    QQuickWindow& window = *delegate().mainWindow();
    const QRect before = window.geometry();
    const int available = window.screen()->availableGeometry().height();
    delegate().process({ brokenPicture("a.png") });
    ASSERT_TRUE(waitForResults(1));
    EXPECT_EQ(window.height(), std::min(650, available));
    EXPECT_EQ(window.width(), before.width());
}

TEST_F(Program, aListOfTheSameLengthLeavesTheWindowAlone)
{
    delegate().launch();
    QQuickWindow& window = *delegate().mainWindow();
    delegate().process({ brokenPicture("a.png") });
    ASSERT_TRUE(waitForResults(1));
    window.setHeight(500); // by the user
    Q_EMIT model().resultInserted(model().results().first());
    EXPECT_EQ(window.height(), 500);

    delegate().process({ brokenPicture("b.png") });
    ASSERT_TRUE(waitForResults(2));
    EXPECT_EQ(window.height(), std::min(726, window.screen()->availableGeometry().height()));
}

TEST_F(Program, leavesAMaximisedWindowAlone)
{
    delegate().launch();
    QQuickWindow& window = *delegate().mainWindow();
    window.showMaximized();
    const QRect before = window.geometry();
    delegate().process({ brokenPicture("a.png") });
    ASSERT_TRUE(waitForResults(1));
    EXPECT_EQ(window.geometry(), before);
}

TEST_F(Program, aRestoredWindowHasTheHeightThatItsResultsAskFor)
{
    for (const auto fill : { &QWindow::showMaximized, &QWindow::showFullScreen }) {
        m_delegate.reset();
        delegate().launch();
        QQuickWindow& window = *delegate().mainWindow();
        const QRect before = window.geometry();
        (window.*fill)();
        delegate().process({ brokenPicture("a.png") });
        ASSERT_TRUE(waitForResults(1));
        EXPECT_NE(window.geometry().size(), before.size());
        window.showNormal();
        const int height = std::min(650, window.screen()->availableGeometry().height());
        EXPECT_TRUE(QTest::qWaitFor([&] { return window.height() == height; }, 20000));
        EXPECT_EQ(window.width(), before.width());
    }
}

TEST_F(Program, aRestoredWindowKeepsTheUsersHeightWhenThereWasNothingToFollow)
{
    delegate().launch();
    QQuickWindow& window = *delegate().mainWindow();
    delegate().process({ brokenPicture("a.png") });
    ASSERT_TRUE(waitForResults(1));
    window.setHeight(500); // by the user
    QCoreApplication::processEvents();
    window.showMaximized();
    QCoreApplication::processEvents();
    EXPECT_NE(window.height(), 500);
    window.showNormal();
    QCoreApplication::processEvents();
    EXPECT_EQ(window.height(), 500);
}

TEST_F(Program, neverComesBackByItselfWithTheNextSession)
{
    delegate().launch();
    auto* const session = qGuiApp->findChild<QSessionManager*>();
    ASSERT_NE(session, nullptr);
    session->setRestartHint(QSessionManager::RestartIfRunning);
    Q_EMIT qGuiApp->saveStateRequest(*session);
    EXPECT_EQ(session->restartHint(), QSessionManager::RestartNever);
}

TEST_F(Program, quitsAfterTheBatchThatWasStartedWhileTheUserWantedIt)
{
    delegate().models().settings().setExitWhenComplete(true);
    delegate().process({ brokenPicture("a.png") });
    // Too late for the batch that is on its way.
    delegate().models().settings().setExitWhenComplete(false);
    ASSERT_TRUE(waitForResults(1));
    EXPECT_EQ(m_quits, 1);

    delegate().process({ brokenPicture("b.png") });
    ASSERT_TRUE(waitForResults(2));
    EXPECT_EQ(m_quits, 1);
}

TEST_F(Program, aDropWhileABatchRunsKeepsItsQuittingForTheEndOfBoth)
{
    delegate().models().settings().setExitWhenComplete(true);
    delegate().process({ brokenPicture("a.png") });
    ASSERT_TRUE(QTest::qWaitFor([&] { return model().isProcessing(); }, 20000));
    delegate().models().settings().setExitWhenComplete(false);
    delegate().process({ brokenPicture("b.png") });
    QList<qsizetype> resultsAtQuits;
    m_atQuit = [&] { resultsAtQuits.append(model().results().size()); };
    ASSERT_TRUE(waitForResults(2));
    EXPECT_EQ(resultsAtQuits, QList<qsizetype> { 2 });
}

TEST_F(Program, aDropWhileABatchRunsBringsItsOwnQuitting)
{
    delegate().process({ brokenPicture("a.png") });
    ASSERT_TRUE(QTest::qWaitFor([&] { return model().isProcessing(); }, 20000));
    delegate().models().settings().setExitWhenComplete(true);
    delegate().process({ brokenPicture("b.png") });
    EXPECT_EQ(m_quits, 0);
    ASSERT_TRUE(waitForResults(2));
    EXPECT_EQ(m_quits, 1);
}

TEST_F(Program, staysAfterWhatWasDroppedOnItsWindow)
{
    delegate().launch();
    delegate().models().settings().setExitWhenComplete(true);
    auto* const processing
        = delegate().mainWindow()->property("processing").value<ProcessingPresenter*>();
    ASSERT_NE(processing, nullptr);
    processing->loadDroppedFiles({ brokenPicture("a.png") });
    ASSERT_TRUE(waitForResults(1));
    EXPECT_EQ(m_quits, 0);
}

TEST_F(Program, staysAfterABatchByDefault)
{
    delegate().process({ brokenPicture("a.png") });
    ASSERT_TRUE(waitForResults(1));
    EXPECT_EQ(m_quits, 0);
}

TEST_F(Program, recordsEveryResult)
{
    delegate().process({ brokenPicture("a.png"), brokenPicture("b.png") });
    ASSERT_TRUE(waitForResults(2));
    EXPECT_EQ(delegate().models().statsStore().stats().filesProcessed, 2);
    EXPECT_TRUE(std::filesystem::exists(m_folder / "stats" / "stats.json"));
}

TEST_F(Program, openedFilesBringTheWindowForward)
{
    delegate().launch();
    delegate().mainWindow()->close();
    delegate().open({ brokenPicture("a.png") }, {});
    EXPECT_TRUE(delegate().mainWindow()->isVisible());
    ASSERT_TRUE(waitForResults(1));
}

TEST_F(Program, removesSamplesThatACrashLeft)
{
    const std::filesystem::path sample
        = m_folder / "temporary" / "vellumine-preview-6F9619FF-8B86-4011-B42D-00C04FC964FF.png";
    test::writeFile(sample, std::string_view("x"));
    delegate();
    EXPECT_FALSE(std::filesystem::exists(sample));
}

TEST_F(Program, endsWhileAQuestionIsOpen)
{
    const QUrl source = pictureWithOutputInTheWay();
    delegate().launch();
    delegate().mainWindow()->close();
    delegate().process({ source });
    // The question brings the window back.
    ASSERT_TRUE(QTest::qWaitFor([&] { return delegate().mainWindow()->isVisible(); }, 20000));
    m_delegate.reset();
    EXPECT_EQ(std::filesystem::file_size(m_folder / "pictures" / "a-small.png"), 10U);
}

TEST_F(Program, aQuestionRestoresAMinimisedWindow)
{
    const QUrl source = pictureWithOutputInTheWay();
    delegate().launch();
    QQuickWindow& window = *delegate().mainWindow();
    window.setWindowStates(Qt::WindowMaximized | Qt::WindowMinimized);
    delegate().process({ source });
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return window.windowStates() == Qt::WindowMaximized; }, 20000));
    m_delegate.reset();
    EXPECT_EQ(std::filesystem::file_size(m_folder / "pictures" / "a-small.png"), 10U);
}

TEST_F(Program, aFolderIsChosenInTheWindowThatAsks)
{
    delegate().launch();
    delegate().showPreferences();
    QQuickWindow& main = *delegate().mainWindow();
    QQuickWindow& preferences = *delegate().preferencesWindow();
    auto* const settings = main.property("settings").value<SettingsPresenter*>();
    auto* const inMain = main.property("folderPanel").value<FolderPanelPresenter*>();
    auto* const inPreferences = preferences.property("folderPanel").value<FolderPanelPresenter*>();
    main.close();

    settings->chooseDestinationFolder();
    EXPECT_TRUE(inPreferences->isShown());
    EXPECT_FALSE(inMain->isShown());
    EXPECT_FALSE(main.isVisible());

    settings->chooseAndUseDestinationFolder();
    EXPECT_TRUE(inMain->isShown());
    EXPECT_TRUE(main.isVisible());
}

TEST_F(Program, aFolderPanelComesToTheFrontWithItsWindow)
{
    delegate().launch();
    delegate().showPreferences();
    QQuickWindow* const main = delegate().mainWindow();
    QQuickWindow* const preferences = delegate().preferencesWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(preferences));
    auto* const settings = main->property("settings").value<SettingsPresenter*>();
    settings->chooseAndUseDestinationFolder();
    EXPECT_TRUE(QTest::qWaitForWindowActive(main));
    settings->chooseDestinationFolder();
    EXPECT_TRUE(QTest::qWaitForWindowActive(preferences));
}

TEST(ReusableWindow, isNoLargerThanItsScreen)
{
    ReusableWindow window([] {
        auto made = std::make_unique<QQuickWindow>();
        made->setMinimumSize({ 300, 20000 });
        made->resize(300, 20000);
        return made;
    });
    window.show();
    ASSERT_NE(window.window(), nullptr);
    const QRect available = window.window()->screen()->availableGeometry();
    EXPECT_EQ(window.window()->height(), available.height());
    EXPECT_EQ(window.window()->width(), 300);
    EXPECT_NEAR(window.window()->geometry().center().x(), available.center().x(), 1);
}

TEST(WindowActivation, readsTheTimeOfAStartupId)
{
    EXPECT_EQ(timeOfStartup("thunar-1234-host-gimp-0_TIME98765"), 98765U);
    EXPECT_EQ(timeOfStartup("a_TIME1_TIME22"), 22U);
    EXPECT_EQ(timeOfStartup("no time"), std::nullopt);
    EXPECT_EQ(timeOfStartup("a_TIMEx"), std::nullopt);
    EXPECT_EQ(timeOfStartup(""), std::nullopt);
}

} // namespace
} // namespace vellumine
