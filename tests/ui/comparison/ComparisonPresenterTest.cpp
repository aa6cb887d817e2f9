#include "ui/comparison/ComparisonPresenter.h"

#include "support/NamedRows.h"
#include "support/QtPrinters.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

#include <ostream>

namespace vellumine {
namespace {

ComparisonSample sampleOf(QSizeF size)
{
    return {
        .sourceImage = QImage(size.toSize(), QImage::Format_RGB32),
        .outputImage = QImage(size.toSize(), QImage::Format_RGB32),
        .sourceName = QStringLiteral("photo.jpg"),
        .outputName = QStringLiteral("photo.webp"),
        .sourcePixelSize = { 4032.9, 3024 },
        .outputPixelSize = { 2048, 1536 },
        .displaySize = size,
    };
}

struct WindowRow {
    const char* name;
    QSizeF sample;
    QSize window;

    friend void PrintTo(const WindowRow& row, std::ostream* stream) { *stream << row.name; }
};

class ComparisonWindowSize : public testing::TestWithParam<WindowRow> { };

TEST_P(ComparisonWindowSize, leavesRoomAroundTheSample)
{
    EXPECT_TRUE(
        ComparisonPresenter(sampleOf(GetParam().sample), {}).contentSize() == GetParam().window);
}

INSTANTIATE_TEST_SUITE_P(Samples, ComparisonWindowSize,
    testing::Values(
        WindowRow { "aSampleOf300By200GivesAWindowOf760By370", { 300, 200 }, { 760, 370 } },
        WindowRow { "largest", { 720, 460 }, { 800, 630 } },
        WindowRow { "wideEnoughForTheMinimum", { 680, 1 }, { 760, 171 } },
        WindowRow { "aPointWider", { 681, 1 }, { 761, 171 } }),
    test::RowName());

TEST(ComparisonPresenter, tellsNamesAndSizes)
{
    const ComparisonPresenter presenter(sampleOf({ 3, 2 }), QStringLiteral("Review photo.webp"));
    EXPECT_EQ(presenter.title(), QStringLiteral("Review photo.webp"));
    EXPECT_EQ(presenter.sourceText(), QStringLiteral("Before: photo.jpg"));
    EXPECT_EQ(presenter.outputText(), QStringLiteral("After: photo.webp"));
    EXPECT_EQ(presenter.sourceSizeText(), QStringLiteral("4032x3024"));
    EXPECT_EQ(presenter.outputSizeText(), QStringLiteral("2048x1536"));
    EXPECT_TRUE(ComparisonPresenter::minimumSize() == QSize(560, 420));
}

class SplitTest : public testing::Test {
protected:
    ComparisonPresenter m_presenter { sampleOf({ 3, 2 }), {} };
};

TEST_F(SplitTest, startsInTheMiddle)
{
    EXPECT_EQ(m_presenter.split(), 0.5);
    EXPECT_EQ(m_presenter.splitText(), QStringLiteral("50% before"));
}

TEST_F(SplitTest, isWhereThePointerIsOnTheCanvas)
{
    m_presenter.pointAt(200, 800);
    EXPECT_EQ(m_presenter.split(), 0.25);
    m_presenter.pointAt(-5, 800);
    EXPECT_EQ(m_presenter.split(), 0);
    m_presenter.pointAt(805, 800);
    EXPECT_EQ(m_presenter.split(), 1);
}

TEST_F(SplitTest, onACanvasNarrowerThanAPointIsThePointersPlaceAlone)
{
    m_presenter.pointAt(0.25, 0.5);
    EXPECT_EQ(m_presenter.split(), 0.25);
    m_presenter.pointAt(0.75, 0);
    EXPECT_EQ(m_presenter.split(), 0.75);
}

TEST_F(SplitTest, movesInHundredthsAndStopsAtTheEnds)
{
    m_presenter.pointAt(1, 3);
    m_presenter.moveSplit(1);
    EXPECT_EQ(m_presenter.split(), 0.34);
    m_presenter.moveSplit(-10);
    EXPECT_EQ(m_presenter.split(), 0.24);
    m_presenter.moveSplit(-100);
    EXPECT_EQ(m_presenter.split(), 0);
    m_presenter.moveSplit(300);
    EXPECT_EQ(m_presenter.split(), 1);
}

TEST_F(SplitTest, isAnnouncedOnlyWhenItChanges)
{
    const QSignalSpy changed(&m_presenter, &ComparisonPresenter::splitChanged);
    m_presenter.setSplit(0.5);
    EXPECT_EQ(changed.size(), 0);
    m_presenter.setSplit(2);
    m_presenter.setSplit(3);
    EXPECT_EQ(changed.size(), 1);
}

} // namespace
} // namespace vellumine
