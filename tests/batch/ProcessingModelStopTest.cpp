#include "ModelHarness.h"

#include <utility>

namespace vellumine {
namespace {

using test::pictures;
using test::runUntil;

/// Stopping, interrupting, cancelling and destroying a model at work.
class ProcessingModelStop : public test::ModelHarness {
protected:
    /// Starts a batch of five files on two workers and waits until two are in flight.
    void startFive()
    {
        makeModel();
        countCompletion();
        m_model->process(pictures(m_names));
        ASSERT_TRUE(m_optimizer.waitUntilBegun(2));
    }

    void expectThatNothingWaits(QTimer& wait)
    {
        EXPECT_FALSE(wait.isActive());
        endWait(wait); // as if it had ended at the same moment
        EXPECT_FALSE(m_model->isProcessing());
        EXPECT_EQ(m_snapshots, 0);
    }

    static QList<QUrl> inTwoFolders()
    {
        return pictures({ QStringLiteral("one/a.png"), QStringLiteral("two/b.png") });
    }

    const QStringList m_names { QStringLiteral("a.png"), QStringLiteral("b.png"),
        QStringLiteral("c.png"), QStringLiteral("d.png"), QStringLiteral("e.png") };
};

TEST_F(ProcessingModelStop, filesInFlightEndAndAreRecordedAndTheRestStaysUntouched)
{
    startFive();
    m_model->stop();
    EXPECT_TRUE(m_model->isProcessing());
    m_optimizer.letAllGo();
    ASSERT_TRUE(runUntilStatus("Stopped after 2 of 5"));
    EXPECT_FALSE(m_model->isProcessing());
    EXPECT_EQ(m_optimizer.begun().size(), 2);
    EXPECT_TRUE(m_optimizer.interrupted().isEmpty());
    EXPECT_EQ(m_recorded.size(), 2);
    EXPECT_TRUE(m_model->results().at(0).isSuccess);
    EXPECT_EQ(m_completions, 1);
    EXPECT_EQ(m_model->totalCount(), 0);
    EXPECT_TRUE(m_scope->isBalanced());
}

TEST_F(ProcessingModelStop, aStopThatLeavesNothingOutIsDone)
{
    makeModel().process(pictures({ m_names[0] }));
    ASSERT_TRUE(m_optimizer.waitUntilBegun(1));
    m_model->stop();
    m_optimizer.letAllGo();
    ASSERT_TRUE(runUntilStatus("Done"));
}

TEST_F(ProcessingModelStop, aStopWhileScanningConvertsNothing)
{
    makeModel();
    QObject::connect(m_model.get(), &ProcessingModel::statusTextChanged, m_model.get(), [this] {
        if (m_model->statusText() == QStringLiteral("Scanning for images...")) {
            QMetaObject::invokeMethod(
                m_model.get(), [this] { m_model->stop(); }, Qt::QueuedConnection);
        }
    });
    // The stop is waiting in the event queue before the scan's list can be.
    m_model->process(pictures(m_names));
    ASSERT_TRUE(runUntilStatus("Stopped after 0 of 0"));
    EXPECT_TRUE(m_optimizer.begun().isEmpty());
}

TEST_F(ProcessingModelStop, aStopWhileAskingForAccessEndsWithTheAnswer)
{
    m_scope->refuseAll();
    makeModel().process(pictures(m_names));
    ASSERT_TRUE(runUntil([this] { return m_panelAnswer != nullptr; }));
    m_model->stop();
    m_panelAnswer(platform::fileUrl(QStringLiteral("/pictures")));
    EXPECT_EQ(m_model->statusText(), QStringLiteral("Stopped after 0 of 5"));
    EXPECT_TRUE(m_optimizer.begun().isEmpty());
}

TEST_F(ProcessingModelStop, aStopWhileAskingForAccessEndsTheAsking)
{
    m_scope->refuseAll();
    makeModel().process(inTwoFolders());
    ASSERT_TRUE(runUntil([this] { return m_panelAnswer != nullptr; }));
    m_model->stop();
    const auto answer = std::exchange(m_panelAnswer, nullptr);
    answer(m_panels.constFirst());
    EXPECT_EQ(m_panels.size(), 1);
    EXPECT_EQ(m_model->statusText(), QStringLiteral("Stopped after 0 of 2"));
    EXPECT_TRUE(m_optimizer.begun().isEmpty());
}

TEST_F(ProcessingModelStop, cancellingWhileAskingForAccessEndsTheAsking)
{
    m_scope->refuseAll();
    makeModel().process(inTwoFolders());
    ASSERT_TRUE(runUntil([this] { return m_panelAnswer != nullptr; }));
    m_model->cancel();
    const auto answer = std::exchange(m_panelAnswer, nullptr);
    answer(m_panels.constFirst());
    EXPECT_EQ(m_panels.size(), 1);
}

TEST_F(ProcessingModelStop, dropsThatWaitForMoreAreABatchThatIsStopped)
{
    QTimer& wait = makeWaitingModel();
    countCompletion();
    m_model->process(pictures(m_names));
    m_model->stop();
    EXPECT_EQ(m_model->statusText(), QStringLiteral("Stopped after 0 of 0"));
    EXPECT_FALSE(m_model->isProcessing());
    EXPECT_EQ(m_completions, 1);
    expectThatNothingWaits(wait);
}

TEST_F(ProcessingModelStop, dropsThatWaitForMoreAreCancelledInSilence)
{
    QTimer& wait = makeWaitingModel();
    countCompletion();
    m_model->process(pictures(m_names));
    m_model->cancel();
    EXPECT_EQ(m_model->statusText(), QStringLiteral("Drop images here"));
    EXPECT_EQ(m_completions, 0);
    expectThatNothingWaits(wait);
}

TEST_F(ProcessingModelStop, aFileThatWasStoppedBeforeItsBatchBeganCanBeDroppedAgain)
{
    const QTimer& wait = makeWaitingModel();
    m_model->process(pictures({ m_names[0] }));
    m_model->stop();
    m_model->process(pictures({ m_names[0] }));
    EXPECT_EQ(m_model->statusText(), QStringLiteral("Stopped after 0 of 0"));
    EXPECT_TRUE(wait.isActive());
}

TEST_F(ProcessingModelStop, aStopWithoutABatchDoesNothing)
{
    makeModel().stop();
    m_model->interrupt();
    m_model->cancel();
    EXPECT_EQ(m_model->statusText(), QStringLiteral("Drop images here"));
    m_optimizer.letAllGo();
    m_model->process(pictures(m_names));
    ASSERT_TRUE(runUntilStatus("Done"));
}

TEST_F(ProcessingModelStop, dropsThatCameMeanwhileAreTheNextBatch)
{
    startFive();
    m_model->process(pictures({ QStringLiteral("later.png") }));
    m_model->stop();
    m_optimizer.letAllGo();
    ASSERT_TRUE(runUntilStatus("Done"));
    EXPECT_EQ(m_recorded.size(), 3);
    EXPECT_EQ(m_recorded.constLast(), QStringLiteral("later.png"));
    EXPECT_FALSE(m_statuses.contains(QStringLiteral("Stopped after 2 of 5")));
    EXPECT_EQ(m_completions, 1);
}

TEST_F(ProcessingModelStop, anInterruptionMakesFilesInFlightGiveUpAndRecordsThem)
{
    startFive();
    m_model->stop();
    m_model->interrupt();
    ASSERT_TRUE(runUntilStatus("Stopped after 2 of 5"));
    EXPECT_EQ(m_optimizer.interrupted().size(), 2);
    EXPECT_EQ(m_recorded.size(), 2);
    EXPECT_FALSE(m_model->results().at(0).isSuccess);
    EXPECT_EQ(m_completions, 1);
}

TEST_F(ProcessingModelStop, cancellingEndsTheBatchWithoutACompletion)
{
    startFive();
    m_optimizer.letGo(m_optimizer.begun().constFirst());
    ASSERT_TRUE(runUntilStatus("Optimized 1 of 5"));
    ASSERT_TRUE(m_optimizer.waitUntilBegun(3));
    EXPECT_FALSE(m_scope->isBalanced());
    m_model->cancel();
    // The folders are closed once nothing is in flight any more.
    ASSERT_TRUE(runUntil([this] { return m_scope->isBalanced(); }));
    EXPECT_EQ(m_optimizer.interrupted().size(), 2);
    EXPECT_EQ(m_optimizer.begun().size(), 3);
    EXPECT_EQ(m_recorded.size(), 1);
    EXPECT_EQ(m_model->results().size(), 1);
    EXPECT_EQ(m_model->statusText(), QStringLiteral("Optimized 1 of 5"));
    EXPECT_TRUE(m_model->isProcessing());
    EXPECT_EQ(m_completions, 0);
}

TEST_F(ProcessingModelStop, cancellingWhileAskingForAccessIsSilent)
{
    m_scope->refuseAll();
    makeModel().process(pictures(m_names));
    countCompletion();
    ASSERT_TRUE(runUntil([this] { return m_panelAnswer != nullptr; }));
    m_model->cancel();
    m_panelAnswer(std::nullopt);
    EXPECT_EQ(m_model->statusText(), QStringLiteral("Scanning for images..."));
    EXPECT_EQ(m_completions, 0);
}

TEST_F(ProcessingModelStop, aModelThatGoesWaitsForItsFilesAndCallsNobody)
{
    startFive();
    m_model.reset();
    EXPECT_EQ(m_optimizer.interrupted().size(), 2);
    QCoreApplication::processEvents();
    EXPECT_TRUE(m_recorded.isEmpty());
    EXPECT_EQ(m_completions, 0);
    EXPECT_TRUE(m_scope->isBalanced());
}

TEST_F(ProcessingModelStop, aModelThatGoesDropsOutcomesThatAreOnTheirWay)
{
    startFive();
    m_optimizer.letAllGo();
    m_model.reset();
    QCoreApplication::processEvents();
    EXPECT_TRUE(m_recorded.isEmpty());
    EXPECT_EQ(m_completions, 0);
}

TEST_F(ProcessingModelStop, aModelMayGoWhileItScans)
{
    makeModel().process(pictures(m_names));
    ASSERT_TRUE(runUntilStatus("Scanning for images..."));
    m_model.reset();
    QCoreApplication::processEvents();
    EXPECT_TRUE(m_optimizer.begun().isEmpty());
}

TEST_F(ProcessingModelStop, aModelMayGoDuringTheWaitForMoreDrops)
{
    auto dependencies = this->dependencies();
    dependencies.debounce = std::chrono::hours(1);
    makeModel(std::move(dependencies)).process(pictures(m_names));
    m_model.reset();
    EXPECT_EQ(m_snapshots, 0);
}

TEST_F(ProcessingModelStop, aModelMayGoWhileThePanelIsOpen)
{
    m_scope->refuseAll();
    makeModel().process(pictures(m_names));
    ASSERT_TRUE(runUntil([this] { return m_panelAnswer != nullptr; }));
    m_model.reset();
    m_panelAnswer(platform::fileUrl(QStringLiteral("/pictures")));
    EXPECT_TRUE(m_optimizer.begun().isEmpty());
}

// Files that write to the same place

TEST_F(ProcessingModelStop, filesWithOneOutputAreNeverInFlightTogetherAndHoldUpNobodyElse)
{
    const QStringList names { QStringLiteral("a.jpg"), QStringLiteral("a.png"),
        QStringLiteral("b.png"), QStringLiteral("a.gif") };
    makeModel().process(pictures(names));
    ASSERT_TRUE(m_optimizer.waitUntilBegun(2));
    QStringList begun = m_optimizer.begun();
    begun.sort();
    EXPECT_EQ(begun, QStringList({ names[0], names[2] }));
    m_optimizer.letGo(names[2]);
    ASSERT_TRUE(runUntilResults(1));
    EXPECT_EQ(m_optimizer.begun().size(), 2);
    m_optimizer.letGo(names[0]);
    ASSERT_TRUE(m_optimizer.waitUntilBegun(3));
    EXPECT_EQ(m_optimizer.begun().constLast(), names[1]);
    m_optimizer.letAllGo();
    ASSERT_TRUE(runUntilStatus("Done"));
    EXPECT_EQ(m_optimizer.begun().constLast(), names[3]);
    EXPECT_EQ(m_model->results().size(), 4);
}

} // namespace
} // namespace vellumine
