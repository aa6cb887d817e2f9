#include "imaging/metadata/Resolution.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace vellumine::imaging {
namespace {

using Unit = Resolution::Unit;

Resolution resolution(double x, double y, Unit unit)
{
    return Resolution::create(x, y, unit).value();
}

TEST(Resolution, hasNumbersThatFilesCanSay)
{
    EXPECT_TRUE(Resolution::create(0.001, Resolution::largest, Unit::metre));
    for (const double bad : { 0.0, -1.0, std::nan(""), std::numeric_limits<double>::infinity(),
             Resolution::largest + 1.0 }) {
        EXPECT_FALSE(Resolution::create(bad, 300, Unit::inch)) << bad;
        EXPECT_FALSE(Resolution::create(300, bad, Unit::inch)) << bad;
    }
}

TEST(Resolution, inInchesComesBackFromWholePixelsAMetre)
{
    for (int whole = 1; whole <= 10'000; ++whole) {
        const auto perMetre
            = resolution(whole, 2 * whole, Unit::inch).rounded(Unit::metre, Resolution::largest);
        ASSERT_TRUE(perMetre);
        ASSERT_EQ(resolution(perMetre->x, perMetre->y, Unit::metre).in(Unit::inch),
            resolution(whole, 2 * whole, Unit::inch));
    }
    // 300 pixels an inch, and what is none.
    EXPECT_EQ(resolution(11'811, 11'811, Unit::metre).in(Unit::inch)->x(), 300);
    EXPECT_NEAR(resolution(11'800, 11'811, Unit::metre).in(Unit::inch)->x(), 299.72, 1e-9);
}

TEST(Resolution, thatIsARatioStaysOne)
{
    const Resolution ratio = resolution(4, 3, Unit::none);
    EXPECT_EQ(ratio.in(Unit::none), ratio);
    EXPECT_FALSE(ratio.in(Unit::inch));
    EXPECT_FALSE(ratio.in(Unit::metre));
    EXPECT_FALSE(resolution(300, 300, Unit::inch).in(Unit::none));
    EXPECT_TRUE(ratio.rounded(Unit::none, 4));
    EXPECT_FALSE(ratio.rounded(Unit::none, 3));
    EXPECT_FALSE(resolution(1.5, 1, Unit::none).rounded(Unit::none, 100));
}

TEST(Resolution, isRoundedWithinWhatFits)
{
    const auto rounded = resolution(299.6, 72.4, Unit::inch).rounded(Unit::inch, 300);
    ASSERT_TRUE(rounded);
    EXPECT_EQ(rounded->x, 300U);
    EXPECT_EQ(rounded->y, 72U);
    EXPECT_FALSE(resolution(300.6, 72, Unit::inch).rounded(Unit::inch, 300));
    EXPECT_FALSE(resolution(0.4, 72, Unit::inch).rounded(Unit::inch, 300));
    EXPECT_FALSE(
        resolution(Resolution::largest, 72, Unit::inch).rounded(Unit::metre, Resolution::largest));
}

TEST(Resolution, goesWithThePicturesSides)
{
    EXPECT_EQ(
        resolution(300, 150, Unit::inch).withSidesSwapped(), resolution(150, 300, Unit::inch));
}

} // namespace
} // namespace vellumine::imaging
