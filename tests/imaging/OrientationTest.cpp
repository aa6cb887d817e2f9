#include "imaging/Orientation.h"

#include "support/NamedRows.h"
#include "support/TestImages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace vellumine::imaging {
namespace {

struct Point {
    int x;
    int y;
};

// The definition of the tag, read literally: its names say on which side of the upright picture
// row 0 and column 0 of the stored one are. Gives where the stored pixel (x, y) goes.
Point placeOf(Orientation orientation, Point stored, Size size)
{
    const int fromRight = size.width - 1 - stored.x;
    const int fromBottom = size.height - 1 - stored.y;
    switch (orientation) {
    case Orientation::topLeft: // row 0 is the top, column 0 the left side
        return stored;
    case Orientation::topRight: // row 0 is the top, column 0 the right side
        return { fromRight, stored.y };
    case Orientation::bottomRight: // row 0 is the bottom, column 0 the right side
        return { fromRight, fromBottom };
    case Orientation::bottomLeft: // row 0 is the bottom, column 0 the left side
        return { stored.x, fromBottom };
    case Orientation::leftTop: // row 0 is the left side, column 0 the top
        return { stored.y, stored.x };
    case Orientation::rightTop: // row 0 is the right side, column 0 the top
        return { fromBottom, stored.x };
    case Orientation::rightBottom: // row 0 is the right side, column 0 the bottom
        return { fromBottom, fromRight };
    case Orientation::leftBottom: // row 0 is the left side, column 0 the bottom
        return { stored.y, fromRight };
    }
    return stored;
}

void expectTurned(const Image& stored, Orientation orientation)
{
    const Result<Image> turned = upright(stored, orientation);
    ASSERT_TRUE(turned) << turned.error().detail;
    ASSERT_EQ(turned->size(), uprightSize(stored.size(), orientation));
    ASSERT_EQ(turned->layout(), stored.layout());
    EXPECT_EQ(turned->colorSpace(), stored.colorSpace());
    const auto pixelBytes = static_cast<std::size_t>(stored.layout().bytesPerPixel());
    for (int y = 0; y < stored.height(); ++y) {
        for (int x = 0; x < stored.width(); ++x) {
            const Point place = placeOf(orientation, { x, y }, stored.size());
            const auto expected
                = stored.row(y).subspan(static_cast<std::size_t>(x) * pixelBytes, pixelBytes);
            const auto actual = turned->row(place.y).subspan(
                static_cast<std::size_t>(place.x) * pixelBytes, pixelBytes);
            ASSERT_TRUE(std::ranges::equal(actual, expected)) << "stored pixel " << x << ", " << y;
        }
    }
}

struct LayoutRow {
    std::string_view name;
    PixelLayout layout;
};

class Upright : public testing::TestWithParam<LayoutRow> { };

TEST_P(Upright, putsEveryPixelInItsPlace)
{
    const Image stored = test::gradient(test::oddSize, GetParam().layout);
    for (int tag = 1; tag <= 8; ++tag) {
        SCOPED_TRACE(tag);
        expectTurned(stored, orientationFromTag(tag).value());
    }
}

TEST_P(Upright, skipsTheGapsBetweenTheRowsOfACrop)
{
    const Image stored = test::gradient({ 90, 71 }, GetParam().layout).cropped({ 7, 5, 70, 41 });
    for (int tag = 1; tag <= 8; ++tag) {
        SCOPED_TRACE(tag);
        expectTurned(stored, orientationFromTag(tag).value());
    }
}

INSTANTIATE_TEST_SUITE_P(Orientation, Upright,
    testing::Values(LayoutRow { "grey8", { ColorModel::grey, 8, AlphaInfo::none } },
        LayoutRow { "grey16", { ColorModel::grey, 16, AlphaInfo::none } },
        LayoutRow { "greyAlpha8", { ColorModel::grey, 8, AlphaInfo::last } },
        LayoutRow { "greyAlpha16", { ColorModel::grey, 16, AlphaInfo::last } },
        LayoutRow { "rgb8", { ColorModel::rgb, 8, AlphaInfo::none } },
        LayoutRow { "rgb16", { ColorModel::rgb, 16, AlphaInfo::none } },
        LayoutRow { "rgba8", { ColorModel::rgb, 8, AlphaInfo::last } },
        LayoutRow { "argb8", { ColorModel::rgb, 8, AlphaInfo::premultipliedFirst } },
        LayoutRow { "rgba16", { ColorModel::rgb, 16, AlphaInfo::premultipliedLast } },
        LayoutRow { "cmyk8", { ColorModel::cmyk, 8, AlphaInfo::none } },
        LayoutRow { "cmyk16", { ColorModel::cmyk, 16, AlphaInfo::none } },
        LayoutRow { "cmykAlpha8", { ColorModel::cmyk, 8, AlphaInfo::last } },
        LayoutRow { "cmykAlpha16", { ColorModel::cmyk, 16, AlphaInfo::last } }),
    test::RowName {});

TEST(Orientation, turnsPicturesOfOneRowOrOneColumn)
{
    const PixelLayout layout { ColorModel::rgb, 8, AlphaInfo::none };
    for (const Size size : { Size { 1, 1 }, Size { 1, 40 }, Size { 40, 1 } }) {
        for (int tag = 1; tag <= 8; ++tag) {
            expectTurned(test::gradient(size, layout), orientationFromTag(tag).value());
        }
    }
}

TEST(Orientation, topLeftGivesTheVerySamePicture)
{
    const Image stored = test::gradient(test::oddSize, rgba8Premultiplied);
    EXPECT_TRUE(upright(stored, Orientation::topLeft)->isSameAs(stored));
}

TEST(Orientation, tagsOutsideOneToEightAreNone)
{
    for (const std::int64_t tag : { std::int64_t { -1 }, std::int64_t { 0 }, std::int64_t { 9 },
             std::int64_t { 257 }, std::int64_t { 1 } << 32U }) {
        EXPECT_EQ(orientationFromTag(tag), std::nullopt) << tag;
    }
}

TEST(Orientation, partsAreFoundInEitherPicture)
{
    const Size stored { 7, 5 };
    for (int tag = 1; tag <= 8; ++tag) {
        const Orientation orientation = orientationFromTag(tag).value();
        for (const Rect part : { Rect { 0, 0, 7, 5 }, Rect { 1, 2, 3, 2 }, Rect { 6, 4, 1, 1 } }) {
            const Rect place = uprightRect(part, stored, orientation);
            const Point first = placeOf(orientation, { part.x, part.y }, stored);
            const Point last = placeOf(
                orientation, { part.x + part.width - 1, part.y + part.height - 1 }, stored);
            EXPECT_EQ(place.x, std::min(first.x, last.x)) << tag;
            EXPECT_EQ(place.y, std::min(first.y, last.y)) << tag;
            EXPECT_EQ(place.x + place.width - 1, std::max(first.x, last.x)) << tag;
            EXPECT_EQ(place.y + place.height - 1, std::max(first.y, last.y)) << tag;
            EXPECT_EQ(storedRect(place, uprightSize(stored, orientation), orientation), part)
                << tag;
        }
    }
}

TEST(Orientation, partsTurnedOneByOneMakeTheUprightPicture)
{
    const PixelLayout layout { ColorModel::rgb, 8, AlphaInfo::none };
    const Image stored = test::gradient(test::oddSize, layout);
    for (int tag = 1; tag <= 8; ++tag) {
        const Orientation orientation = orientationFromTag(tag).value();
        auto pixels
            = PixelBuffer::createZeroed(uprightSize(stored.size(), orientation), layout).value();
        for (int y = 0; y < stored.height(); y += 10) {
            for (int x = 0; x < stored.width(); x += 20) {
                const Rect part { x, y, std::min(20, stored.width() - x),
                    std::min(10, stored.height() - y) };
                const Rect place = uprightRect(part, stored.size(), orientation);
                writeUpright(stored.cropped(part), orientation, pixels, place.x, place.y);
            }
        }
        const Image turned(std::move(pixels), stored.colorSpace());
        EXPECT_EQ(test::maximumDifference(turned, upright(stored, orientation).value()), 0.0)
            << tag;
    }
}

} // namespace
} // namespace vellumine::imaging
