#include "imaging/resample/PlanarPixels.h"

#include "support/TestImages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

namespace vellumine::imaging {
namespace {

/// Every sample with every alpha: columns are samples, rows are alphas, and green runs backwards.
Image everyPair(AlphaInfo alpha)
{
    auto pixels = PixelBuffer::create({ 256, 256 }, { ColorModel::rgb, 8, alpha }).value();
    for (int y = 0; y < 256; ++y) {
        for (int x = 0; x < 256; ++x) {
            std::uint8_t* const pixel = pixels.row8(y) + std::ptrdiff_t { 4 } * x;
            pixel[0] = static_cast<std::uint8_t>(x);
            pixel[1] = static_cast<std::uint8_t>(255 - x);
            pixel[2] = 7;
            pixel[3] = static_cast<std::uint8_t>(y);
        }
    }
    return { std::move(pixels), ColorSpace::sRgb() };
}

/// A row of planes.
class Planes {
public:
    explicit Planes(int width)
    {
        for (std::size_t plane = 0; plane < m_samples.size(); ++plane) {
            m_samples.at(plane).resize(static_cast<std::size_t>(width));
            m_row.planes.at(plane) = m_samples.at(plane).data();
        }
        m_row.right = width;
    }

    [[nodiscard]] PlanarRow row(int y, int left = 0) const
    {
        PlanarRow row = m_row;
        row.y = y;
        row.left = left;
        return row;
    }
    [[nodiscard]] std::vector<std::uint16_t>& plane(std::size_t at) { return m_samples.at(at); }

private:
    std::array<std::vector<std::uint16_t>, 4> m_samples;
    PlanarRow m_row { 0, 0, 0, {} };
};

std::uint16_t premultiplied(int sample, int alpha)
{
    const std::uint64_t product
        = std::uint64_t { 257 * 257 } * static_cast<unsigned>(sample * alpha);
    return static_cast<std::uint16_t>((product + 65535 / 2) / 65535);
}

TEST(PlanarReader, premultipliesEverySampleByEveryAlphaToTheNearest)
{
    const Image image = everyPair(AlphaInfo::last);
    const PlanarReader reader(image);
    ASSERT_EQ(reader.planes(), 4);
    Planes planes(256);
    for (int y = 0; y < 256; ++y) {
        reader.read(planes.row(y));
        for (int x = 0; x < 256; ++x) {
            const auto at = static_cast<std::size_t>(x);
            ASSERT_EQ(planes.plane(0)[at], premultiplied(x, y)) << x << ' ' << y;
            ASSERT_EQ(planes.plane(1)[at], premultiplied(255 - x, y)) << x << ' ' << y;
            ASSERT_EQ(planes.plane(2)[at], premultiplied(7, y)) << x << ' ' << y;
            ASSERT_EQ(planes.plane(3)[at], 257 * y);
        }
    }
}

TEST(PlanarReader, takesPremultipliedSamplesAsTheyAre)
{
    const Image image = everyPair(AlphaInfo::premultipliedLast);
    const PlanarReader reader(image);
    Planes planes(256);
    reader.read(planes.row(99, 3));
    for (int x = 3; x < 256; ++x) {
        const auto at = static_cast<std::size_t>(x);
        ASSERT_EQ(planes.plane(0)[at], 257 * x);
        ASSERT_EQ(planes.plane(1)[at], 257 * (255 - x));
        ASSERT_EQ(planes.plane(3)[at], 257 * 99);
    }
    EXPECT_EQ(planes.plane(0)[2], 0) << "left of what was asked for";
}

TEST(RgbaWriter, keepsColourBelowAlpha)
{
    constexpr int width = 43; // with a rest that no vector takes
    Planes planes(width);
    for (std::size_t x = 0; x < width; ++x) {
        planes.plane(0)[x] = 65535;
        planes.plane(1)[x] = static_cast<std::uint16_t>(700 * x);
        planes.plane(2)[x] = static_cast<std::uint16_t>(1000 * x + 1);
        planes.plane(3)[x] = static_cast<std::uint16_t>(1000 * x);
    }
    auto target = PixelBuffer::create({ width, 1 }, rgba8Premultiplied).value();
    const auto transform
        = ColorTransform::create(ColorSpace::sRgb(), 8, ColorSpace::sRgb()).value();
    RgbaWriter(target, transform, 3, 8, true).write(planes.row(0));
    const auto to8 = [](std::size_t sample) { return (sample + 128) / 257; };
    for (std::size_t x = 0; x < width; ++x) {
        const std::uint8_t* const pixel = target.row8(0) + 4 * x;
        EXPECT_EQ(pixel[0], to8(1000 * x));
        EXPECT_EQ(pixel[1], to8(700 * x));
        EXPECT_EQ(pixel[2], to8(1000 * x));
        EXPECT_EQ(pixel[3], to8(1000 * x));
    }
}

} // namespace
} // namespace vellumine::imaging
