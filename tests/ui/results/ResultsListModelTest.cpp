#include "ui/results/ResultsListModel.h"

#include "batch/ProcessingModel.h"
#include "platform/ByteCount.h"
#include "support/QtPrinters.h"
#include "ui/results/AuditBadges.h"
#include "ui/results/Results.h"
#include "ui/theme/Palette.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>

#include <gtest/gtest.h>

#include <limits>
#include <utility>

namespace vellumine {
namespace {

using test::failure;
using test::success;

constexpr qint64 largest = std::numeric_limits<qint64>::max();

class ResultsListModelTest : public testing::Test {
protected:
    [[nodiscard]] QVariant role(int row, int role) const
    {
        return m_model.data(m_model.index(row), role);
    }
    [[nodiscard]] QString text(int row, int textRole) const
    {
        return role(row, textRole).toString();
    }

    QList<QUrl> m_revealed;
    QList<QUuid> m_compared;
    ResultsListModel m_model { {
        .reveal = [this](const QUrl& file) { m_revealed.append(file); },
        .compare =
            [this](const ProcessingResult& result, const QUrl& output) {
                EXPECT_EQ(output, result.outputURL);
                m_compared.append(result.id);
            },
    } };
    QAbstractItemModelTester m_tester { &m_model,
        QAbstractItemModelTester::FailureReportingMode::Fatal };
};

TEST_F(ResultsListModelTest, growsAtTheFront)
{
    const QSignalSpy inserted(&m_model, &QAbstractItemModel::rowsInserted);
    for (int number = 0; number < 20; ++number) {
        m_model.prepend(success(10, 9, QStringLiteral("%1.jpg").arg(number)));
        EXPECT_EQ(text(0, ResultsListModel::fileNameRole), QStringLiteral("%1.jpg").arg(number));
    }
    EXPECT_EQ(text(19, ResultsListModel::fileNameRole), QStringLiteral("0.jpg"));
    ASSERT_EQ(inserted.size(), 20);
    for (const auto& arguments : inserted) {
        EXPECT_EQ(arguments.at(1).toInt(), 0);
        EXPECT_EQ(arguments.at(2).toInt(), 0);
    }
}

TEST_F(ResultsListModelTest, oneResultIs76PointsHighAndEightOrMore608)
{
    EXPECT_EQ(m_model.listHeight(), 0);
    const QSignalSpy changed(&m_model, &ResultsListModel::listHeightChanged);
    for (int count = 1; count <= 12; ++count) {
        m_model.prepend(success(10, 9));
        EXPECT_EQ(m_model.listHeight(), count < 8 ? 76 * count : 608);
    }
    EXPECT_EQ(changed.size(), 8);
}

TEST_F(ResultsListModelTest, aSuccessShowsEverything)
{
    const ProcessingResult result = success(2'000'000, 1'500'000);
    m_model.prepend(result);
    EXPECT_EQ(role(0, ResultsListModel::idRole).toUuid(), result.id);
    EXPECT_EQ(text(0, ResultsListModel::messageRole), QStringLiteral("Saved 500 KB"));
    EXPECT_TRUE(role(0, ResultsListModel::isSuccessRole).toBool());
    EXPECT_EQ(text(0, ResultsListModel::statusSymbolRole), QStringLiteral("checkmark.circle.fill"));
    EXPECT_EQ(role(0, ResultsListModel::statusColorRole).value<QColor>(), palette::sage.toQColor());
    EXPECT_EQ(text(0, ResultsListModel::metricsTextRole),
        QStringLiteral("2 MB -> 1.5 MB | saved 500 KB (25.0%)"));
    EXPECT_EQ(role(0, ResultsListModel::badgesRole).value<QList<AuditBadgeContent>>().size(), 4);
    EXPECT_TRUE(role(0, ResultsListModel::hasOutputRole).toBool());
    EXPECT_EQ(text(0, ResultsListModel::spokenTextRole),
        QStringLiteral("a.jpg, Saved 500 KB, 2 MB -> 1.5 MB | saved 500 KB (25.0%), "
                       "4032x3024 -> 2048x1536, JPEG -> WebP Lossy, Metadata removed, sRGB"));
}

TEST_F(ResultsListModelTest, aFailureShowsItsNameAndMessageAlone)
{
    m_model.prepend(failure());
    EXPECT_EQ(text(0, ResultsListModel::statusSymbolRole),
        QStringLiteral("exclamationmark.triangle.fill"));
    EXPECT_EQ(
        role(0, ResultsListModel::statusColorRole).value<QColor>(), palette::copper.toQColor());
    EXPECT_FALSE(role(0, ResultsListModel::isSuccessRole).toBool());
    EXPECT_EQ(text(0, ResultsListModel::metricsTextRole), QString());
    EXPECT_TRUE(role(0, ResultsListModel::badgesRole).value<QList<AuditBadgeContent>>().isEmpty());
    EXPECT_FALSE(role(0, ResultsListModel::hasOutputRole).toBool());
    EXPECT_EQ(text(0, ResultsListModel::spokenTextRole),
        QStringLiteral("b.jpg, The image could not be read."));
}

TEST_F(ResultsListModelTest, aFailureWithAnOutputCanBeLookedAtAllTheSame)
{
    ProcessingResult result = success(2'000'000, 1'500'000);
    result.isSuccess = false;
    result.message = QStringLiteral("Something went wrong.");
    m_model.prepend(result);
    EXPECT_TRUE(role(0, ResultsListModel::hasOutputRole).toBool());
    EXPECT_EQ(text(0, ResultsListModel::statusSymbolRole),
        QStringLiteral("exclamationmark.triangle.fill"));
    EXPECT_EQ(text(0, ResultsListModel::metricsTextRole), QString());
    EXPECT_TRUE(role(0, ResultsListModel::badgesRole).value<QList<AuditBadgeContent>>().isEmpty());
    EXPECT_EQ(
        text(0, ResultsListModel::spokenTextRole), QStringLiteral("a.jpg, Something went wrong."));
    m_model.reveal(0);
    m_model.compare(0);
    EXPECT_EQ(m_revealed, QList<QUrl> { *result.outputURL });
    EXPECT_EQ(m_compared, QList<QUuid> { result.id });
}

TEST_F(ResultsListModelTest, aSuccessWithoutAnAuditHasNoBadges)
{
    ProcessingResult result = success(2, 1);
    result.audit.reset();
    m_model.prepend(result);
    EXPECT_TRUE(role(0, ResultsListModel::badgesRole).value<QList<AuditBadgeContent>>().isEmpty());
}

TEST_F(ResultsListModelTest, everyRowButTheLastHasADivider)
{
    for (int count = 0; count < 3; ++count) {
        m_model.prepend(success(2, 1));
    }
    EXPECT_TRUE(role(0, ResultsListModel::hasDividerRole).toBool());
    EXPECT_TRUE(role(1, ResultsListModel::hasDividerRole).toBool());
    EXPECT_FALSE(role(2, ResultsListModel::hasDividerRole).toBool());
}

TEST_F(ResultsListModelTest, namesStayOnOneLine)
{
    m_model.prepend(success(2, 1, QStringLiteral("two\nlines\tand\u2028more.jpg")));
    EXPECT_EQ(text(0, ResultsListModel::fileNameRole), QStringLiteral("two lines and more.jpg"));
}

TEST_F(ResultsListModelTest, revealsAndComparesTheRowsOutput)
{
    const ProcessingResult first = success(2, 1, QStringLiteral("first.jpg"));
    m_model.prepend(first);
    m_model.prepend(failure());
    m_model.reveal(1);
    m_model.compare(1);
    EXPECT_EQ(m_revealed, QList<QUrl> { *first.outputURL });
    EXPECT_EQ(m_compared, QList<QUuid> { first.id });
    // without an output, and without a row
    for (const int row : { 0, -1, 2 }) {
        m_model.reveal(row);
        m_model.compare(row);
    }
    EXPECT_EQ(m_revealed.size(), 1);
    EXPECT_EQ(m_compared.size(), 1);
}

TEST_F(ResultsListModelTest, followsTheProcessingModel)
{
    ProcessingModel model({
        .snapshot = [] { return OptimizerSettings(); },
        .record = [](const ProcessingResult&) {},
        .optimize = {},
        .folderAccess = {},
    });
    m_model.follow(model);
    Q_EMIT model.resultInserted(success(2, 1, QStringLiteral("x.png")));
    Q_EMIT model.resultInserted(success(2, 1, QStringLiteral("y.png")));
    EXPECT_EQ(m_model.count(), 2);
    EXPECT_EQ(text(0, ResultsListModel::fileNameRole), QStringLiteral("y.png"));
}

class ResultsSummaryTest : public ResultsListModelTest {
protected:
    const ResultsSummaryPresenter& m_summary = *m_model.summary();
};

TEST_F(ResultsSummaryTest, tenResultsOfWhichOneFailed)
{
    for (int count = 0; count < 9; ++count) {
        m_model.prepend(success(1'000'000, 750'000));
    }
    ProcessingResult failed = failure();
    failed.originalBytes = 5'000'000; // counts for nothing
    m_model.prepend(failed);
    EXPECT_EQ(m_summary.filesText(), QStringLiteral("9/10"));
    EXPECT_EQ(m_summary.totalOriginalBytes(), 9'000'000);
    EXPECT_EQ(m_summary.totalOutputBytes(), 6'750'000);
    EXPECT_EQ(m_summary.totalTitle(), QStringLiteral("Total Saved"));
    EXPECT_EQ(m_summary.totalText(), QStringLiteral("2.2 MB"));
    EXPECT_EQ(m_summary.reductionText(), QStringLiteral("25.0%"));
}

TEST_F(ResultsSummaryTest, outputsLargerThanTheOriginals)
{
    m_model.prepend(success(100'000, 103'000));
    EXPECT_EQ(m_summary.totalTitle(), QStringLiteral("Total Larger"));
    EXPECT_EQ(m_summary.totalText(), QStringLiteral("3 KB"));
    EXPECT_EQ(m_summary.reductionText(), QStringLiteral("+3.0%"));
}

TEST_F(ResultsSummaryTest, noSuccessfulResults)
{
    m_model.prepend(failure());
    EXPECT_EQ(m_summary.filesText(), QStringLiteral("0/1"));
    EXPECT_EQ(m_summary.totalTitle(), QStringLiteral("Total Saved"));
    EXPECT_EQ(m_summary.totalText(), QStringLiteral("Zero KB"));
    EXPECT_EQ(m_summary.reductionText(), QStringLiteral("0%"));
}

TEST_F(ResultsSummaryTest, noChangeAtAll)
{
    m_model.prepend(success(1000, 1000));
    EXPECT_EQ(m_summary.totalTitle(), QStringLiteral("Total Saved"));
    EXPECT_EQ(m_summary.reductionText(), QStringLiteral("0.0%"));
}

TEST_F(ResultsSummaryTest, theLargestSumsAreShown)
{
    m_model.prepend(success(largest, 0));
    EXPECT_EQ(m_summary.totalTitle(), QStringLiteral("Total Saved"));
    EXPECT_EQ(m_summary.totalText(), platform::byteCountText(largest));
    EXPECT_EQ(m_summary.reductionText(), QStringLiteral("100.0%"));
}

using ResultsSummaryDeathTest = ResultsSummaryTest;

TEST_F(ResultsSummaryDeathTest, aSumThatDoesNotFitIsFatal)
{
    m_model.prepend(success(largest, 0));
    EXPECT_DEATH(m_model.prepend(success(1, 0)), "does not fit 64 bits");
}

TEST_F(ResultsSummaryDeathTest, aDifferenceOfSumsThatDoesNotFitIsFatal)
{
    // Sizes are never negative in practice: only so can it happen, either way.
    ProcessingResult result = success(0, 0);
    result.originalBytes = largest;
    result.outputBytes = -1;
    ResultsSummaryPresenter saved;
    saved.add(result);
    EXPECT_DEATH((void)saved.totalText(), "does not fit 64 bits");
    EXPECT_DEATH((void)saved.reductionText(), "does not fit 64 bits");

    std::swap(result.originalBytes, result.outputBytes);
    ResultsSummaryPresenter larger;
    larger.add(result);
    EXPECT_DEATH((void)larger.totalText(), "does not fit 64 bits");
}

TEST_F(ResultsSummaryTest, isAnnouncedWithEveryResult)
{
    const QSignalSpy changed(&m_summary, &ResultsSummaryPresenter::changed);
    m_model.prepend(success(2, 1));
    m_model.prepend(failure());
    EXPECT_EQ(changed.size(), 2);
}

} // namespace
} // namespace vellumine
