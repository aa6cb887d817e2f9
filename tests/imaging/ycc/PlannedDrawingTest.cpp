#include "imaging/BitmapContext.h"
#include "imaging/ImageSource.h"
#include "imaging/Orientation.h"
#include "imaging/codecs/JpegFiles.h"
#include "imaging/codecs/jpeg/JpegCodec.h"
#include "imaging/metadata/ExifBuilder.h"
#include "support/NamedRows.h"
#include "support/TestImages.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace vellumine::imaging {
namespace {

using test::jpegFile;
using test::JpegRecipe;
using test::maximumDifference;
using test::syntheticPhoto;
using Coding = JpegRecipe::Coding;

constexpr Size photoSize { 211, 173 };

constexpr DrawingPlan plan { .size = { 105, 86 },
    .turnedSize = { 105, 128 },
    .colors = BitmapColors::sRgb,
    .quality = InterpolationQuality::high,
    .middle = { 72, 46 } };

std::string exifWithOrientation(int tag)
{
    test::ExifBuilder builder;
    builder.main.push_back(builder.shorts(0x0112, { static_cast<std::uint16_t>(tag) }));
    const ByteBuffer block = builder.build();
    std::string content("Exif\0\0", 6);
    content.append(reinterpret_cast<const char*>(block.data()), block.size());
    return content;
}

ByteBuffer fileOf(const Image& photo, JpegRecipe recipe, int orientation = 1)
{
    recipe.markers.emplace_back(0xE1, exifWithOrientation(orientation));
    return jpegFile(photo, recipe);
}

/// The picture of a file as a conversion has it: upright, and to be drawn.
struct Opened {
    ImageSource source;
    Image upright;

    Opened(const ByteBuffer& file, const std::optional<DrawingPlan>& wished)
        : source(ImageSource::create(file, {}).value())
        , upright(uprightOf(source, wished))
    {
    }

    static Image uprightOf(ImageSource& source, const std::optional<DrawingPlan>& wished)
    {
        EXPECT_TRUE(source.image(ImageUse::toBeDrawn, wished));
        return source.thumbnailWithTransform(10'000).value();
    }
    [[nodiscard]] Image drawn(Size size, const ColorSpace& space = ColorSpace::sRgb()) const
    {
        auto context = BitmapContext::create(size, 8, space).value();
        context.setInterpolationQuality(InterpolationQuality::high);
        EXPECT_TRUE(context.draw(upright));
        return std::move(context).makeImage().value();
    }
};

DecodedImage decoded(const ByteBuffer& file, const DrawingPlan& wished, const Limits& limits = {})
{
    return jpeg::decode(
        file, { .limits = limits, .wish = { .use = ImageUse::toBeDrawn, .plan = wished } })
        .value();
}

struct Sampling {
    const char* name;
    JpegRecipe recipe;
};

class PlannedDrawing : public testing::TestWithParam<Sampling> { };

TEST_P(PlannedDrawing, isWhatIsDrawnOtherwise)
{
    const Image photo = syntheticPhoto(photoSize);
    for (int tag = 1; tag <= 8; ++tag) {
        const ByteBuffer file = fileOf(photo, GetParam().recipe, tag);
        const Opened planned(file, plan);
        const Opened plain(file, std::nullopt);
        const Size size = tag < 5 ? plan.size : plan.turnedSize;
        ASSERT_EQ(planned.upright.size(), plain.upright.size());
        EXPECT_FALSE(planned.upright.hasRows());
        EXPECT_EQ(maximumDifference(planned.drawn(size), plain.drawn(size)), 0.0) << tag;
    }
}

TEST_P(PlannedDrawing, keepsTheMiddle)
{
    const Image photo = syntheticPhoto(photoSize);
    for (int tag = 1; tag <= 8; ++tag) {
        const ByteBuffer file = fileOf(photo, GetParam().recipe, tag);
        const Image planned
            = upright(decoded(file, plan).image, orientationFromTag(tag).value()).value();
        const Image rows = Opened(file, std::nullopt).upright.withRows().value();
        for (const Size size : { plan.middle, Size { 71, 45 }, Size { 1, 1 }, Size { 72, 3 } }) {
            const Rect part = centredRect(rows.size(), size);
            EXPECT_EQ(maximumDifference(planned.rows(part).value(), rows.cropped(part)), 0.0)
                << tag << ": " << size.width;
        }
    }
}

TEST_P(PlannedDrawing, doesNotKeepAnythingElseFromBeingHad)
{
    const ByteBuffer file = fileOf(syntheticPhoto(photoSize), GetParam().recipe, 6);
    const Opened planned(file, plan);
    const Opened plain(file, std::nullopt);
    const Image rows = plain.upright.withRows().value();
    EXPECT_EQ(maximumDifference(planned.upright.withRows().value(), rows), 0.0);
    for (const Rect corner : { Rect { 0, 0, 20, 20 }, Rect { 153, 191, 20, 20 } }) {
        EXPECT_EQ(
            maximumDifference(planned.upright.rows(corner).value(), rows.cropped(corner)), 0.0);
    }
    for (const Size size : { Size { 40, 50 }, Size { 173, 211 }, Size { 300, 400 } }) {
        EXPECT_GE(test::psnr(planned.drawn(size), plain.drawn(size)), 44) << size.width;
    }
    EXPECT_GE(test::psnr(planned.drawn(plan.turnedSize, ColorSpace::deviceRgb()),
                  plain.drawn(plan.turnedSize, ColorSpace::deviceRgb())),
        44);
}

TEST_P(PlannedDrawing, isForSmallPicturesToo)
{
    DrawingPlan small = plan;
    for (int height = 1; height <= 20; height += 3) {
        for (int width = 1; width <= 20; width += 3) {
            const ByteBuffer file = fileOf(syntheticPhoto({ width, height }), GetParam().recipe);
            small.size = { (width + 1) / 2, (height + 1) / 2 };
            const Opened planned(file, small);
            const Opened plain(file, std::nullopt);
            EXPECT_EQ(maximumDifference(planned.drawn(small.size), plain.drawn(small.size)), 0.0);
            const Rect part
                = centredRect({ width, height }, { std::min(width, 72), std::min(height, 46) });
            EXPECT_EQ(maximumDifference(
                          planned.upright.rows(part).value(), plain.upright.rows(part).value()),
                0.0);
        }
    }
}

TEST_P(PlannedDrawing, isRefusedWhenAnyDataIsMissing)
{
    const ByteBuffer file = fileOf(syntheticPhoto({ 83, 61 }), GetParam().recipe);
    const DecodeOptions options { .limits = {},
        .wish = { .use = ImageUse::toBeDrawn, .plan = plan } };
    for (std::size_t cut = test::pictureDataStart(file); cut < file.size() - 4; ++cut) {
        const auto result = jpeg::decode(ByteSpan(file).first(cut), options);
        ASSERT_FALSE(result.has_value()) << "cut at " << cut << " of " << file.size();
        ASSERT_EQ(result.error().kind, Error::Kind::truncated) << result.error().detail;
    }
}

INSTANTIATE_TEST_SUITE_P(Photographs, PlannedDrawing,
    testing::Values(Sampling { "full", {} }, Sampling { "halfAcross", { .horizontalSampling = 2 } },
        Sampling { "halfDown", { .verticalSampling = 2 } },
        Sampling { "halfBothWays", { .horizontalSampling = 2, .verticalSampling = 2 } },
        Sampling { "progressive",
            { .horizontalSampling = 2, .verticalSampling = 2, .coding = Coding::progressive } },
        Sampling { "twoRowsOfBlocks", { .verticalSampling = 2, .verticalSamplingOfOthers = 2 } },
        Sampling { "threeRowsOfBlocks", { .verticalSampling = 3, .verticalSamplingOfOthers = 3 } }),
    test::RowName());

TEST(PlannedDrawings, areMadeWhileDecodingWhereThatIsPossible)
{
    const ByteBuffer file = fileOf(syntheticPhoto(photoSize), { .horizontalSampling = 2 });
    const DecodedImage made = decoded(file, plan);
    EXPECT_TRUE(made.isDrawn);
    EXPECT_EQ(made.image.withRows().error().kind, Error::Kind::unsupported) << "what is not kept";

    DrawingPlan other = plan;
    other.size = photoSize;
    EXPECT_FALSE(decoded(file, other).isDrawn) << "its own size";
    other.turnedSize = { photoSize.height, photoSize.width };
    EXPECT_FALSE(decoded(file, other).isDrawn) << "its own size, turned or not";
    other.turnedSize = plan.turnedSize;
    EXPECT_TRUE(decoded(fileOf(syntheticPhoto(photoSize), {}, 6), other).isDrawn)
        << "its own size, were it not turned";
    other.size = { 212, 100 };
    EXPECT_FALSE(decoded(file, other).isDrawn) << "larger";
    other = plan;
    other.quality = InterpolationQuality::low;
    EXPECT_FALSE(decoded(file, other).isDrawn) << "another filter";
    EXPECT_FALSE(decoded(
        fileOf(syntheticPhoto(photoSize), { .verticalSampling = 3, .verticalSamplingOfOthers = 3 }),
        plan)
                     .isDrawn)
        << "rows that do not come in sixteens";
    EXPECT_FALSE(decoded(fileOf(syntheticPhoto(photoSize), { .fileSpace = JCS_RGB }), plan).isDrawn)
        << "no planes";
}

TEST(PlannedDrawings, obeyTheLimits)
{
    // Small enough to be decoded; the bitmap is not, with its four bytes a pixel.
    const ByteBuffer file = fileOf(syntheticPhoto(photoSize), {});
    DrawingPlan large = plan;
    large.size = { 210, 172 };
    const std::uint64_t pictureBytes = 211U * 173U * 3U;
    EXPECT_FALSE(decoded(file, large, { .maximumBytes = pictureBytes }).isDrawn);
    EXPECT_TRUE(decoded(file, large).isDrawn);
}

TEST(PlannedDrawings, areInTheColoursThatWerePlanned)
{
    const ColorSpace p3 = ColorSpace::fromPrimaries(
        { { 0.3127, 0.3290 }, { 0.680, 0.320 }, { 0.265, 0.690 }, { 0.150, 0.060 } }, {})
                              .value();
    EXPECT_EQ(colorSpaceOf(BitmapColors::own, p3), p3);
    EXPECT_EQ(colorSpaceOf(BitmapColors::sRgb, p3), ColorSpace::sRgb());
    EXPECT_EQ(colorSpaceOf(BitmapColors::deviceRgb, p3), ColorSpace::deviceRgb());
    const Drawing upright = plan.drawing(Orientation::bottomRight, p3);
    EXPECT_EQ(upright.size, plan.size);
    EXPECT_EQ(upright.orientation, Orientation::bottomRight);
    EXPECT_EQ(upright.colorSpace, ColorSpace::sRgb());
    EXPECT_EQ(plan.drawing(Orientation::leftTop, p3).size, plan.turnedSize);
}

} // namespace
} // namespace vellumine::imaging
