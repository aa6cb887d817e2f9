#include "app/windows/WindowHeight.h"

#include <gtest/gtest.h>

namespace vellumine {
namespace {

struct Row {
    const char* name;
    qsizetype results;
    int height;
};

class TargetHeight : public testing::TestWithParam<Row> { };

TEST_P(TargetHeight, followsTheResults)
{
    EXPECT_EQ(targetHeight(GetParam().results), GetParam().height);
}

INSTANTIATE_TEST_SUITE_P(WindowHeight, TargetHeight,
    testing::Values(Row { "none", 0, 440 }, Row { "one", 1, 650 }, Row { "three", 3, 802 },
        Row { "seven", 7, 1106 }, Row { "eight", 8, 1182 }, Row { "twenty", 20, 1182 },
        Row { "aMillion", 1000000, 1182 }),
    [](const auto& row) { return std::string(row.param.name); });

constexpr QRect largeScreen(0, 0, 2560, 1440);

/// The rectangle whose y counts upwards from the bottom of the large screen.
QRect fromBottom(int x, int y, int width, int height)
{
    return { x, largeScreen.height() - y - height, width, height };
}

TEST(FrameForResults, keepsTheTopEdge)
{
    const QRect frame = fromBottom(100, 500, 820, 440);
    const auto grown = frameForResults(frame, 1, largeScreen);
    ASSERT_TRUE(grown);
    EXPECT_EQ(*grown, fromBottom(100, 290, 820, 650));
    EXPECT_EQ(grown->top(), frame.top());
}

TEST(FrameForResults, leavesAFrameWithinOnePointAlone)
{
    EXPECT_FALSE(frameForResults({ 10, 10, 820, 650 }, 1, largeScreen));
    EXPECT_FALSE(frameForResults({ 10, 10, 820, 651 }, 1, largeScreen));
    EXPECT_FALSE(frameForResults({ 10, 10, 820, 649 }, 1, largeScreen));
    EXPECT_TRUE(frameForResults({ 10, 10, 820, 648 }, 1, largeScreen));
    EXPECT_TRUE(frameForResults({ 10, 10, 820, 652 }, 1, largeScreen));
}

TEST(FrameForResults, keepsTheUsersWidth)
{
    EXPECT_EQ(frameForResults({ 10, 20, 1100, 440 }, 3, largeScreen), QRect(10, 20, 1100, 802));
}

TEST(FrameForResults, endsAtTheBottomOfTheScreen)
{
    const QRect available(0, 30, 1920, 1050);
    EXPECT_EQ(frameForResults({ 500, 320, 820, 440 }, 4, available), QRect(500, 202, 820, 878));
}

TEST(FrameForResults, isNeverHigherThanTheScreen)
{
    const QRect available(0, 30, 1366, 738);
    EXPECT_EQ(frameForResults({ 200, 164, 820, 440 }, 8, available), QRect(200, 30, 820, 738));
    EXPECT_FALSE(frameForResults({ 200, 30, 820, 738 }, 20, available));
}

TEST(MovedUpInto, movesNoFrameThatEndsOnTheScreen)
{
    const QRect available(0, 30, 1920, 1050);
    EXPECT_EQ(movedUpInto(available, { -40, 430, 820, 650 }), QRect(-40, 430, 820, 650));
    EXPECT_EQ(movedUpInto(available, { -40, 431, 820, 650 }), QRect(-40, 430, 820, 650));
    EXPECT_EQ(movedUpInto(available, { 7, 500, 820, 2000 }), QRect(7, 30, 820, 2000));
}

TEST(FrameForResults, staysOnAScreenAboveAnother)
{
    const QRect upper(-1920, -1080, 1920, 1080);
    EXPECT_EQ(frameForResults({ -1500, -700, 820, 440 }, 1, upper), QRect(-1500, -700, 820, 650));
    EXPECT_EQ(frameForResults({ -1500, -500, 820, 440 }, 1, upper), QRect(-1500, -650, 820, 650));
}

} // namespace
} // namespace vellumine
