#include "pipeline/Unpremultiply.h"

#include "imaging/PixelConversion.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

namespace vellumine {
namespace {

std::array<std::uint8_t, 4> straight(std::array<std::uint8_t, 4> pixel)
{
    std::array<std::uint8_t, 4> result {};
    unpremultiply(pixel, result);
    return result;
}

TEST(Unpremultiply, divisionIsExactForEverySampleAndAlpha)
{
    for (int alpha = 1; alpha < 255; ++alpha) {
        for (int sample = 0; sample < 256; ++sample) {
            const auto s = static_cast<std::uint8_t>(sample);
            const auto a = static_cast<std::uint8_t>(alpha);
            const auto expected
                = static_cast<std::uint8_t>(std::min(255, (sample * 255 + alpha / 2) / alpha));
            ASSERT_EQ(straight({ s, 0, s, a }),
                (std::array<std::uint8_t, 4> { expected, 0, expected, a }))
                << sample << " with alpha " << alpha;
        }
    }
}

TEST(Unpremultiply, isTheSameInLongRows)
{
    // Every sample with every alpha, in one row with a rest that no vector takes.
    std::vector<std::uint8_t> row;
    for (int alpha = 0; alpha < 256; ++alpha) {
        for (int sample = 0; sample < 256; ++sample) {
            const auto value = static_cast<std::uint8_t>(sample);
            row.insert(row.end(),
                { value, static_cast<std::uint8_t>(255 - sample), 3,
                    static_cast<std::uint8_t>(alpha) });
        }
    }
    row.insert(row.end(), { 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12 });
    std::vector<std::uint8_t> result(row.size());
    unpremultiply(row, result);
    for (std::size_t i = 0; i < row.size(); i += 4) {
        const std::array pixel { row[i], row[i + 1], row[i + 2], row[i + 3] };
        const std::array found { result[i], result[i + 1], result[i + 2], result[i + 3] };
        ASSERT_EQ(found, straight(pixel)) << i;
    }
}

TEST(Unpremultiply, halfCoveredPixel)
{
    EXPECT_EQ(straight({ 64, 32, 0, 128 }), (std::array<std::uint8_t, 4> { 128, 64, 0, 128 }));
}

TEST(Unpremultiply, transparentAndOpaquePixelsStay)
{
    EXPECT_EQ(straight({ 0, 0, 0, 0 }), (std::array<std::uint8_t, 4> { 0, 0, 0, 0 }));
    EXPECT_EQ(straight({ 7, 8, 9, 0 }), (std::array<std::uint8_t, 4> { 7, 8, 9, 0 }));
    EXPECT_EQ(straight({ 7, 8, 9, 255 }), (std::array<std::uint8_t, 4> { 7, 8, 9, 255 }));
}

TEST(Unpremultiply, opaqueRowWithOneOtherPixelIsNotTakenForOpaque)
{
    std::vector<std::uint8_t> row(400, 255);
    row[396] = 64;
    row[397] = 32;
    row[398] = 0;
    row[399] = 128;
    std::vector<std::uint8_t> result(row.size());
    unpremultiply(row, result);
    EXPECT_EQ(result[396], 128);
    EXPECT_EQ(result[397], 64);
    EXPECT_EQ(result[0], 255);
}

} // namespace
} // namespace vellumine
