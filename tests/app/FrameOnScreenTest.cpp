#include "app/windows/FrameOnScreen.h"
#include "support/QtPrinters.h"

#include <gtest/gtest.h>

namespace vellumine::test {
namespace {

constexpr QRect available { 0, 30, 1024, 738 };

TEST(CanBeGrasped, byItsUpperEdgeAlone)
{
    EXPECT_TRUE(canBeGrasped(available, { 100, 100, 820, 440 }));
    EXPECT_TRUE(canBeGrasped(available, { -700, 600, 820, 440 }));
    EXPECT_TRUE(canBeGrasped(available, { 904, 600, 820, 440 }));
    EXPECT_FALSE(canBeGrasped(available, { 905, 600, 820, 440 }));
    EXPECT_FALSE(canBeGrasped(available, { -701, 600, 820, 440 }));
    EXPECT_TRUE(canBeGrasped(available, { 100, 754, 820, 440 }));
    EXPECT_FALSE(canBeGrasped(available, { 100, 755, 820, 440 }));
    EXPECT_FALSE(canBeGrasped(available, { 100, -200, 820, 440 }));
    EXPECT_TRUE(canBeGrasped(available, { 984, 100, 40, 440 }));
}

TEST(MovedInto, movesByAsLittleAsPossible)
{
    EXPECT_EQ(movedInto(available, { 100, 100, 820, 440 }), QRect(100, 100, 820, 440));
    EXPECT_EQ(movedInto(available, { 1080, 700, 820, 440 }), QRect(204, 328, 820, 440));
    EXPECT_EQ(movedInto(available, { -80, 0, 820, 440 }), QRect(0, 30, 820, 440));
    EXPECT_EQ(movedInto(available, { 500, 500, 2000, 900 }), QRect(0, 30, 2000, 900));
}

} // namespace
} // namespace vellumine::test
