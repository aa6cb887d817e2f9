#include "imaging/colour/CodePoints.h"

#include <gtest/gtest.h>

namespace vellumine::imaging::colour {
namespace {

TEST(CodePoints, ofSRgbAreSRgb)
{
    EXPECT_EQ(
        ColorSpace::fromPrimaries(primariesOfCode(1).value(), curveOfCode(13).value()).value(),
        ColorSpace::sRgb());
}

TEST(CodePoints, withAMeaningAllMakeASpace)
{
    int spaces = 0;
    for (int primaries = 0; primaries < 256; ++primaries) {
        for (int curve = 0; curve < 256; ++curve) {
            if (const auto known = primariesOfCode(primaries)) {
                if (const auto shape = curveOfCode(curve)) {
                    EXPECT_TRUE(ColorSpace::fromPrimaries(*known, *shape))
                        << primaries << " " << curve;
                    ++spaces;
                }
            }
        }
    }
    EXPECT_EQ(spaces, 10 * 10);
}

TEST(CodePoints, withoutAMeaningAreNone)
{
    for (const int reserved : { 0, 2, 3, 10, 13, 21, 23, 255, -1, 256 }) {
        EXPECT_FALSE(primariesOfCode(reserved)) << reserved;
    }
    for (const int reserved : { 0, 2, 3, 9, 19, 255, -1, 256 }) {
        EXPECT_FALSE(curveOfCode(reserved)) << reserved;
    }
}

} // namespace
} // namespace vellumine::imaging::colour
