#include "ModelHarness.h"

namespace vellumine {
namespace {

using test::pictures;

/// Drops, the wait for more of them, and what completion means.
class ProcessingModelDrops : public test::ModelHarness {
protected:
    const QString m_a = QStringLiteral("a.png");
    const QString m_b = QStringLiteral("b.png");
    const QString m_c = QStringLiteral("c.png");
};

TEST_F(ProcessingModelDrops, theWaitIs150Milliseconds)
{
    auto dependencies = this->dependencies();
    dependencies.debounce = ProcessingModel::Dependencies().debounce;
    const QTimer& timer = timerOf(makeModel(std::move(dependencies)));
    EXPECT_EQ(timer.interval(), 150);
    EXPECT_TRUE(timer.isSingleShot());
    EXPECT_EQ(timer.timerType(), Qt::PreciseTimer);
    EXPECT_FALSE(timer.isActive());
}

TEST_F(ProcessingModelDrops, dropsDuringTheWaitFormOneBatch)
{
    m_optimizer.letAllGo();
    QTimer& timer = makeWaitingModel();
    m_model->process(pictures({ m_a }));
    m_model->process(pictures({ m_b }));
    m_model->process(pictures({ m_c }));
    EXPECT_FALSE(m_model->isProcessing());
    EXPECT_EQ(m_model->statusText(), QStringLiteral("Drop images here"));
    endWait(timer);
    EXPECT_TRUE(m_model->isProcessing());
    ASSERT_TRUE(runUntilStatus("Done"));
    EXPECT_EQ(m_snapshots, 1);
    EXPECT_EQ(m_model->results().size(), 3);
}

TEST_F(ProcessingModelDrops, everyDropRestartsTheWait)
{
    QTimer& timer = makeWaitingModel();
    for (const QString& name : { m_a, m_b, m_c }) {
        m_model->process(pictures({ name }));
        EXPECT_TRUE(timer.isActive());
        timer.stop();
    }
}

TEST_F(ProcessingModelDrops, aDropAfterTheWaitIsABatchOfItsOwn)
{
    m_optimizer.letAllGo();
    QTimer& timer = makeWaitingModel();
    m_model->process(pictures({ m_a }));
    endWait(timer);
    ASSERT_TRUE(runUntilStatus("Done"));
    m_model->process(pictures({ m_b }));
    EXPECT_TRUE(timer.isActive());
    endWait(timer);
    ASSERT_TRUE(runUntilStatus("Done"));
    EXPECT_EQ(m_snapshots, 2);
}

TEST_F(ProcessingModelDrops, theSameFileTwiceBeforeTheStartIsConvertedOnce)
{
    m_optimizer.letAllGo();
    QTimer& timer = makeWaitingModel();
    m_model->process(pictures({ m_a, m_a }));
    m_model->process(pictures({ m_a, m_b }));
    endWait(timer);
    ASSERT_TRUE(runUntilStatus("Done"));
    EXPECT_EQ(m_model->results().size(), 2);
}

TEST_F(ProcessingModelDrops, theSameFileAfterTheStartIsConvertedAgainInTheNextBatch)
{
    makeModel().process(pictures({ m_a }));
    ASSERT_TRUE(m_optimizer.waitUntilBegun(1));
    m_model->process(pictures({ m_a }));
    m_optimizer.letAllGo();
    ASSERT_TRUE(runUntilStatus("Done"));
    EXPECT_EQ(resultNames(), QStringList({ m_a, m_a }));
    EXPECT_EQ(m_snapshots, 2);
}

TEST_F(ProcessingModelDrops, droppingAPendingFileAgainSaysSoAndStartsNormally)
{
    m_optimizer.letAllGo();
    QTimer& timer = makeWaitingModel();
    m_model->process(pictures({ m_a }));
    m_model->process(pictures({ m_a }));
    EXPECT_EQ(m_model->statusText(), QStringLiteral("No supported image files found"));
    EXPECT_TRUE(timer.isActive());
    endWait(timer);
    EXPECT_EQ(m_model->statusText(), QStringLiteral("Scanning for images..."));
    ASSERT_TRUE(runUntilStatus("Done"));
}

TEST_F(ProcessingModelDrops, aDropThatAddsNothingDoesNotRestartTheWait)
{
    QTimer& timer = makeWaitingModel();
    m_model->process(pictures({ m_a }));
    timer.stop();
    m_model->process(pictures({ m_a }));
    EXPECT_FALSE(timer.isActive());
}

TEST_F(ProcessingModelDrops, pathsThatMeanTheSameAreOneEntryAsItWasDroppedFirst)
{
    m_optimizer.letAllGo();
    const QUrl dotted = platform::fileUrl(QStringLiteral("/a/../a/x.png"));
    makeModel().process({ dotted, platform::fileUrl(QStringLiteral("/a/x.png")) });
    ASSERT_TRUE(runUntilStatus("Done"));
    ASSERT_EQ(m_model->results().size(), 1);
    EXPECT_EQ(m_model->results().constFirst().sourceURL, dotted);
}

TEST_F(ProcessingModelDrops, anEmptyDropSchedulesNothing)
{
    QTimer& timer = makeWaitingModel();
    countCompletion();
    m_model->process({});
    EXPECT_EQ(m_model->statusText(), QStringLiteral("No supported image files found"));
    EXPECT_FALSE(timer.isActive());
    EXPECT_EQ(m_completions, 0);
}

TEST_F(ProcessingModelDrops, aDropWhileConvertingIsTheNextBatchAtOnce)
{
    QTimer& timer = makeWaitingModel();
    countCompletion();
    m_model->process(pictures({ m_a }));
    endWait(timer);
    ASSERT_TRUE(m_optimizer.waitUntilBegun(1));
    m_model->process(pictures({ m_b }));
    EXPECT_FALSE(timer.isActive());
    m_optimizer.letGo(m_a);
    ASSERT_TRUE(m_optimizer.waitUntilBegun(2));
    EXPECT_FALSE(timer.isActive());
    EXPECT_TRUE(m_model->isProcessing());
    EXPECT_EQ(m_completions, 0);
    EXPECT_FALSE(m_statuses.contains(QStringLiteral("Done")));
    m_optimizer.letGo(m_b);
    ASSERT_TRUE(runUntilStatus("Done"));
    EXPECT_EQ(m_completions, 1);
    EXPECT_EQ(m_statuses,
        QStringList({ QStringLiteral("Scanning for images..."),
            QStringLiteral("Optimizing 1 image with 1 worker..."),
            QStringLiteral("Optimized 1 of 1"), QStringLiteral("Scanning for images..."),
            QStringLiteral("Optimizing 1 image with 1 worker..."),
            QStringLiteral("Optimized 1 of 1"), QStringLiteral("Done") }));
}

TEST_F(ProcessingModelDrops, aDropWhileScanningDoesNotJoinTheRunningBatch)
{
    m_optimizer.letAllGo();
    QTimer& timer = makeWaitingModel();
    m_model->process(pictures({ m_a }));
    endWait(timer);
    ASSERT_EQ(m_model->statusText(), QStringLiteral("Scanning for images..."));
    m_model->process(pictures({ m_b }));
    EXPECT_FALSE(timer.isActive());
    ASSERT_TRUE(runUntilStatus("Done"));
    EXPECT_EQ(m_snapshots, 2);
    EXPECT_EQ(resultNames(), QStringList({ m_b, m_a }));
}

TEST_F(ProcessingModelDrops, aDropDuringARefusedBatchReplacesTheRefusalsText)
{
    m_settings.destinationMode = DestinationMode::selectedFolder;
    makeModel().process(pictures({ m_a }));
    countCompletion();
    ASSERT_TRUE(runUntilStatus("Scanning for images..."));
    m_model->process(pictures({ m_b }));
    ASSERT_TRUE(runUntilIdle());
    EXPECT_EQ(m_snapshots, 2);
    EXPECT_EQ(m_completions, 1);
    EXPECT_EQ(m_statuses.count(QStringLiteral("Choose a destination folder")), 1);
}

TEST_F(ProcessingModelDrops, theCallbackIsTakenOutBeforeItIsCalled)
{
    m_optimizer.letAllGo();
    int first = 0;
    int second = 0;
    makeModel().setOnComplete([&] {
        ++first;
        m_model->setOnComplete([&] { ++second; });
    });
    m_model->process(pictures({ m_a }));
    ASSERT_TRUE(runUntilStatus("Done"));
    EXPECT_EQ(first, 1);
    EXPECT_EQ(second, 0);
    m_model->process(pictures({ m_b }));
    ASSERT_TRUE(runUntilResults(2));
    ASSERT_TRUE(runUntilIdle());
    EXPECT_EQ(first, 1);
    EXPECT_EQ(second, 1);
}

TEST_F(ProcessingModelDrops, aCallbackThatWasCalledIsGoneForABatchFromIt)
{
    m_optimizer.letAllGo();
    QStringList statuses;
    makeModel().setOnComplete([&] {
        statuses.append(m_model->statusText());
        m_model->process(pictures({ m_b }));
    });
    m_model->process(pictures({ m_a }));
    ASSERT_TRUE(runUntilResults(2));
    ASSERT_TRUE(runUntilIdle());
    EXPECT_EQ(statuses, QStringList { QStringLiteral("Done") });
}

TEST_F(ProcessingModelDrops, aDropFromTheCallbackIsABatchOfItsOwn)
{
    m_optimizer.letAllGo();
    makeModel().setOnComplete([this] { m_model->process(pictures({ m_b })); });
    m_model->process(pictures({ m_a }));
    ASSERT_TRUE(runUntilResults(2));
    ASSERT_TRUE(runUntilStatus("Done"));
}

} // namespace
} // namespace vellumine
