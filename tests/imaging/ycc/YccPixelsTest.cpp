#include "imaging/BitmapContext.h"
#include "imaging/DeferredPixels.h"
#include "imaging/ImageDestination.h"
#include "imaging/ImageSource.h"
#include "imaging/Orientation.h"
#include "imaging/PixelArena.h"
#include "imaging/PixelConversion.h"
#include "imaging/codecs/JpegFiles.h"
#include "imaging/codecs/jpeg/JpegCodec.h"
#include "imaging/ycc/PlaneSource.h"
#include "support/NamedRows.h"
#include "support/TestImages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <vector>

namespace vellumine::imaging {
namespace {

using test::flat;
using test::jpegFile;
using test::JpegRecipe;
using test::maximumDifference;
using test::oddSize;
using test::psnr;
using test::syntheticPhoto;
using Coding = JpegRecipe::Coding;

constexpr PixelLayout rgb8 { ColorModel::rgb, 8, AlphaInfo::none };
constexpr Size photoSize { 211, 173 };

constexpr Primaries displayP3 { { 0.3127, 0.3290 }, { 0.680, 0.320 }, { 0.265, 0.690 },
    { 0.150, 0.060 } };

Image decoded(ByteSpan file, ImageUse use)
{
    return jpeg::decode(file, { .limits = {}, .wish = { .use = use } }).value().image;
}

Image drawn(const Image& image, Size size, const ColorSpace& space = ColorSpace::sRgb())
{
    BitmapContext context = BitmapContext::create(size, 8, space).value();
    EXPECT_TRUE(context.draw(image));
    return std::move(context).makeImage().value();
}

struct Sampling {
    const char* name;
    JpegRecipe recipe;
    /// How near the drawing of planes comes to the drawing of rows, in decibels. Colour that was
    /// stored small is made large by the drawing's own filter, where rows have been interpolated.
    double psnr;
};

void PrintTo(const Sampling& sampling, std::ostream* stream)
{
    *stream << sampling.name;
}

const std::vector<Sampling> samplings {
    { "full", { .horizontalSampling = 1, .verticalSampling = 1 }, 48 },
    { "halfAcross", { .horizontalSampling = 2, .verticalSampling = 1 }, 44 },
    { "halfDown", { .horizontalSampling = 1, .verticalSampling = 2 }, 44 },
    { "halfBothWays", { .horizontalSampling = 2, .verticalSampling = 2 }, 44 },
    { "progressive",
        { .horizontalSampling = 2, .verticalSampling = 2, .coding = Coding::progressive }, 44 },
    { "progressiveFull", { .coding = Coding::progressive }, 48 },
    { "progressiveHalfAcross", { .horizontalSampling = 2, .coding = Coding::progressive }, 44 },
    { "progressiveHalfDown", { .verticalSampling = 2, .coding = Coding::progressive }, 44 },
    { "separateScans",
        { .horizontalSampling = 2, .verticalSampling = 2, .coding = Coding::separateScans }, 44 },
    { "restarts", { .horizontalSampling = 2, .verticalSampling = 2, .restartInterval = 3 }, 44 },
};

/// The same picture with its pixels deferred and, as the oracle, decoded into rows by the library.
class YccPixels : public testing::TestWithParam<Sampling> {
protected:
    void decode(const Image& picture)
    {
        const ByteBuffer file = jpegFile(picture, GetParam().recipe);
        m_deferred = decoded(file, ImageUse::toBeDrawn);
        m_rows = decoded(file, ImageUse::asRows);
        ASSERT_FALSE(m_deferred->hasRows());
        ASSERT_TRUE(m_rows->hasRows());
        ASSERT_EQ(m_deferred->size(), m_rows->size());
        ASSERT_EQ(m_deferred->layout(), m_rows->layout());
        ASSERT_EQ(m_deferred->colorSpace(), m_rows->colorSpace());
    }

    std::optional<Image> m_deferred;
    std::optional<Image> m_rows;
};

TEST_P(YccPixels, givesTheVeryRowsOfTheLibrary)
{
    for (const Size size :
        { photoSize, Size { 96, 64 }, oddSize, Size { 16, 16 }, Size { 7, 5 } }) {
        ASSERT_NO_FATAL_FAILURE(decode(syntheticPhoto(size)));
        EXPECT_EQ(maximumDifference(m_deferred->withRows().value(), *m_rows), 0.0) << size.width;
    }
}

TEST_P(YccPixels, givesTheVeryRowsOfSmallPicturesToo)
{
    for (int height = 1; height <= 10; ++height) {
        for (int width = 1; width <= 10; ++width) {
            const ByteBuffer file = jpegFile(syntheticPhoto({ width, height }), GetParam().recipe);
            EXPECT_EQ(maximumDifference(decoded(file, ImageUse::toBeDrawn).withRows().value(),
                          decoded(file, ImageUse::asRows)),
                0.0)
                << width << " x " << height;
        }
    }
}

TEST_P(YccPixels, givesAnyPartTurnedUpright)
{
    ASSERT_NO_FATAL_FAILURE(decode(syntheticPhoto(photoSize)));
    for (int tag = 1; tag <= 8; ++tag) {
        const Orientation orientation = orientationFromTag(tag).value();
        const Image turned = upright(*m_deferred, orientation).value();
        const Image expected = upright(*m_rows, orientation).value();
        ASSERT_FALSE(turned.hasRows());
        ASSERT_EQ(turned.size(), expected.size());
        for (int i = 0; i < 40; ++i) {
            const int x = (i * 37) % 160;
            const int y = (i * 53) % 160;
            const Rect part { x, y, 1 + (i * 29) % (turned.width() - x),
                1 + (i * 31) % (turned.height() - y) };
            ASSERT_EQ(maximumDifference(turned.rows(part).value(), expected.cropped(part)), 0.0)
                << tag << ": " << x << ' ' << y;
        }
    }
}

TEST_P(YccPixels, isDrawnSmallerAsItsRowsAre)
{
    ASSERT_NO_FATAL_FAILURE(decode(syntheticPhoto(photoSize)));
    for (const Size size :
        { Size { 105, 86 }, Size { 40, 33 }, Size { 200, 170 }, Size { 1, 1 } }) {
        const Image result = drawn(*m_deferred, size);
        EXPECT_EQ(result.layout(), rgba8Premultiplied);
        EXPECT_GE(psnr(result, drawn(*m_rows, size)), GetParam().psnr) << size.width;
    }
}

TEST_P(YccPixels, isDrawnUpright)
{
    ASSERT_NO_FATAL_FAILURE(decode(syntheticPhoto(photoSize)));
    const Image small = drawn(*m_deferred, { 105, 86 });
    for (int tag = 1; tag <= 8; ++tag) {
        const Orientation orientation = orientationFromTag(tag).value();
        const Image expected = upright(small, orientation).value();
        const Image result = drawn(upright(*m_deferred, orientation).value(), expected.size());
        EXPECT_EQ(maximumDifference(result, expected), 0.0) << tag;
    }
}

TEST_P(YccPixels, isDrawnInItsOwnSizeJustAsItsRowsAre)
{
    ASSERT_NO_FATAL_FAILURE(decode(syntheticPhoto(photoSize)));
    for (int tag = 1; tag <= 8; ++tag) {
        const Orientation orientation = orientationFromTag(tag).value();
        const Image turned = upright(*m_deferred, orientation).value();
        const Image expected = drawn(upright(*m_rows, orientation).value(), turned.size());
        EXPECT_EQ(maximumDifference(drawn(turned, turned.size()), expected), 0.0) << tag;
    }
}

TEST_P(YccPixels, keepsFlatColourFlat)
{
    ASSERT_NO_FATAL_FAILURE(decode(flat(photoSize, rgb8, { 0.8, 0.3, 0.1 })));
    const Image result = drawn(*m_deferred, { 100, 81 });
    const Image expected = drawn(*m_rows, { 1, 1 });
    const auto first = expected.row(0);
    for (int y = 0; y < result.height(); ++y) {
        for (int x = 0; x < result.width(); ++x) {
            const auto pixel = result.row(y).subspan(static_cast<std::size_t>(x) * 4, 4);
            ASSERT_TRUE(std::ranges::equal(pixel, first)) << x << ' ' << y;
        }
    }
}

TEST_P(YccPixels, hasItsColoursConverted)
{
    ASSERT_NO_FATAL_FAILURE(decode(syntheticPhoto(photoSize)));
    const ColorSpace p3 = ColorSpace::fromPrimaries(displayP3, {}).value();
    EXPECT_GE(psnr(drawn(*m_deferred, { 105, 86 }, p3), drawn(*m_rows, { 105, 86 }, p3)),
        GetParam().psnr - 1);
    EXPECT_EQ(
        maximumDifference(drawn(*m_deferred, photoSize, p3), drawn(*m_rows, photoSize, p3)), 0.0);
}

TEST_P(YccPixels, givesItsPlanesInTheColoursThatItHas)
{
    ASSERT_NO_FATAL_FAILURE(decode(syntheticPhoto(photoSize)));
    const ColorSpace p3 = ColorSpace::fromPrimaries(displayP3, {}).value();
    const auto drawnWhereItIs = [&](Size size, const ColorSpace& space) {
        return m_deferred->deferred()
            ->drawn({ size, space, InterpolationQuality::high, Orientation::topLeft })
            .value();
    };
    const auto planes = m_deferred->deferred()->planes();
    ASSERT_TRUE(planes && planes->here());
    EXPECT_EQ(planes->size(), photoSize);
    EXPECT_EQ(planes->subsampling().x, GetParam().recipe.horizontalSampling);
    EXPECT_EQ(planes->subsampling().y, GetParam().recipe.verticalSampling);
    std::vector<std::uint8_t> part(3 * std::size_t { 100 });
    EXPECT_TRUE(planes->copy(1, { 20, 30, 5, 3 }, part.data(), 100));
    for (int y = 0; y < 3; ++y) {
        for (int x = 0; x < 5; ++x) {
            EXPECT_EQ(part.at(static_cast<std::size_t>(100 * y + x)),
                planes->here()->row(1, 30 + y)[20 + x]);
        }
    }

    EXPECT_EQ(drawnWhereItIs(photoSize, ColorSpace::sRgb()).deferred()->planes()->here()->row(0, 0),
        planes->here()->row(0, 0));
    EXPECT_FALSE(drawnWhereItIs(photoSize, p3).deferred()->planes());
    EXPECT_TRUE(drawnWhereItIs({ 105, 86 }, ColorSpace::sRgb()).hasRows());
}

TEST_P(YccPixels, isRefusedWhenAnyDataIsMissing)
{
    const ByteBuffer file = jpegFile(syntheticPhoto({ 83, 61 }), GetParam().recipe);
    const DecodeOptions options { .limits = {}, .wish = { .use = ImageUse::toBeDrawn } };
    for (std::size_t cut = test::pictureDataStart(file); cut < file.size() - 4; ++cut) {
        const auto result = jpeg::decode(ByteSpan(file).first(cut), options);
        ASSERT_FALSE(result.has_value()) << "cut at " << cut << " of " << file.size();
        ASSERT_EQ(result.error().kind, Error::Kind::truncated) << result.error().detail;
    }
    EXPECT_TRUE(jpeg::decode(ByteSpan(file).first(file.size() - 2), options).has_value());
}

INSTANTIATE_TEST_SUITE_P(Photographs, YccPixels, testing::ValuesIn(samplings), test::RowName());

TEST(DeferredPixels, ofFilesWithoutTheFinestBitsAreSmoothedAsRowsAre)
{
    for (const int sampling : { 1, 2 }) {
        const ByteBuffer file = test::endedEarlyOnPurpose(jpegFile(syntheticPhoto(photoSize),
            { .horizontalSampling = sampling,
                .verticalSampling = sampling,
                .coding = Coding::progressive,
                .quality = 40 }));
        EXPECT_EQ(maximumDifference(decoded(file, ImageUse::toBeDrawn).withRows().value(),
                      decoded(file, ImageUse::asRows)),
            0.0);
    }
}

TEST(DeferredPixels, takeThePlaceOfTheCoefficientsThatTheyAreMadeOf)
{
    constexpr Size size { 1600, 1408 };
    constexpr std::size_t coefficients = std::size_t { 1600 } * 1408 * 3;
    constexpr std::size_t most = coefficients + (std::size_t { 1 } << 20U);
    const ByteBuffer file = jpegFile(flat(size, rgb8, { 0.8, 0.3, 0.1 }),
        { .horizontalSampling = 2, .verticalSampling = 2, .coding = Coding::progressive });

    const auto arena = PixelArena::ofThisThread();
    constexpr std::size_t rest = PixelArena::capacity - most;
    const std::byte* const taken = arena->take(rest);
    ASSERT_NE(taken, nullptr);
    const Image image = decoded(file, ImageUse::toBeDrawn);
    for (int plane = 0; plane < 3; ++plane) {
        const auto* const first
            = reinterpret_cast<const std::byte*>(image.deferred()->planes()->here()->row(plane, 0));
        EXPECT_GT(first, taken) << plane;
        EXPECT_LT(first, taken + PixelArena::capacity) << plane;
    }
    arena->give(const_cast<std::byte*>(taken), rest);
}

TEST(DeferredPixels, areForSamplingsThatPlanesCanHold)
{
    const Image photo = syntheticPhoto(photoSize);
    for (const JpegRecipe& recipe : { JpegRecipe { .fileSpace = JCS_RGB },
             JpegRecipe { .horizontalSampling = 4, .verticalSampling = 1 },
             JpegRecipe { .horizontalSampling = 1, .verticalSampling = 4 } }) {
        EXPECT_TRUE(decoded(jpegFile(photo, recipe), ImageUse::toBeDrawn).hasRows());
    }
}

TEST(DeferredPixels, areLaidOutForWhoeverNeedsRows)
{
    const ByteBuffer file
        = jpegFile(syntheticPhoto(photoSize), { .horizontalSampling = 2, .verticalSampling = 2 });
    const Image rows = decoded(file, ImageUse::asRows);
    auto source = ImageSource::create(file, {}).value();
    const Image deferred = source.image(ImageUse::toBeDrawn).value();
    ASSERT_FALSE(deferred.hasRows());
    EXPECT_TRUE(deferred.isSameAs(source.image(ImageUse::toBeDrawn).value()));
    EXPECT_TRUE(deferred.isSameAs(source.thumbnailWithTransform(211).value()));

    EXPECT_EQ(maximumDifference(source.image().value(), rows), 0.0);
    const Rect part { 20, 30, 40, 50 };
    EXPECT_EQ(maximumDifference(source.imageRegion(part).value(), rows.cropped(part)), 0.0);
    EXPECT_EQ(maximumDifference(relayout(deferred, rgba8Premultiplied).value(),
                  relayout(rows, rgba8Premultiplied).value()),
        0.0);
    EXPECT_EQ(source.thumbnailWithTransform(50)->size(), (Size { 50, 41 }));

    test::TemporaryFolder folder;
    auto destination = ImageDestination::create(folder / "copy.png", UniformType::png).value();
    destination.addImage(deferred, {});
    ASSERT_TRUE(destination.finalize());
    const Image copy = ImageSource::create(folder / "copy.png", {})->image().value();
    EXPECT_EQ(maximumDifference(copy, rows), 0.0);
}

TEST(DeferredPixels, staySharedByColoursAndTurns)
{
    const ByteBuffer file = jpegFile(syntheticPhoto(photoSize), {});
    const Image image = decoded(file, ImageUse::toBeDrawn);
    const Image turned = upright(image, Orientation::rightTop).value();
    EXPECT_EQ(turned.size(), (Size { photoSize.height, photoSize.width }));
    EXPECT_EQ(turned.deferred(), image.deferred());
    EXPECT_FALSE(turned.isSameAs(image));
}

} // namespace
} // namespace vellumine::imaging
