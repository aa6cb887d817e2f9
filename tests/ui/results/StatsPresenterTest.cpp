#include "ui/results/StatsPresenter.h"

#include "support/QtPrinters.h"

#include <QSignalSpy>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace vellumine {
namespace {

class StatsPresenterTest : public testing::Test {
protected:
    QTemporaryDir m_folder;
    StatsStore m_store { m_folder.path() };
    StatsPresenter m_presenter { m_store };
};

TEST_F(StatsPresenterTest, theStripTellsFilesNetAndBest)
{
    m_store.setStats({ .filesProcessed = 1312,
        .filesSucceeded = 1304,
        .netBytesSaved = 7'200'000,
        .largestSingleSaveBytes = 1 });
    EXPECT_EQ(m_presenter.filesText(), QStringLiteral("1304 lifetime files"));
    EXPECT_EQ(m_presenter.netSavedText(), QStringLiteral("Net saved 7.2 MB"));
    EXPECT_EQ(m_presenter.bestText(), QStringLiteral("Best 1 byte"));
}

TEST_F(StatsPresenterTest, aNegativeNetSavingHasAMinus)
{
    m_store.setStats({ .netBytesSaved = -2'000 });
    EXPECT_EQ(m_presenter.netSavedText(), QStringLiteral("Net saved -2 KB"));
}

TEST_F(StatsPresenterTest, aZeroLargestSavingHidesTheBest)
{
    EXPECT_EQ(m_presenter.bestText(), QString());
}

TEST_F(StatsPresenterTest, theGridHasSixTotals)
{
    m_store.setStats({ .filesProcessed = 10,
        .filesSucceeded = 9,
        .originalBytes = 9'000,
        .outputBytes = 12'000,
        .grossBytesSaved = 1'000,
        .netBytesSaved = -3'000,
        .largestSingleSaveBytes = 500 });
    const QList<LifetimeMetric> expected {
        { QStringLiteral("Files"), QStringLiteral("9/10") },
        { QStringLiteral("Gross Saved"), QStringLiteral("1 KB") },
        { QStringLiteral("Net Saved"), QStringLiteral("-3 KB") },
        { QStringLiteral("Original Data"), QStringLiteral("9 KB") },
        { QStringLiteral("Output Data"), QStringLiteral("12 KB") },
        { QStringLiteral("Largest Save"), QStringLiteral("500 bytes") },
    };
    EXPECT_TRUE(m_presenter.metrics() == expected);
}

TEST_F(StatsPresenterTest, resetsWhatIsThere)
{
    EXPECT_FALSE(m_presenter.canReset());
    const QSignalSpy changed(&m_presenter, &StatsPresenter::changed);
    m_store.setStats({ .filesProcessed = 1 });
    EXPECT_TRUE(m_presenter.canReset());
    EXPECT_GE(changed.size(), 1);
    m_presenter.reset();
    EXPECT_FALSE(m_presenter.canReset());
    EXPECT_EQ(m_store.stats(), LifetimeStats());
}

} // namespace
} // namespace vellumine
