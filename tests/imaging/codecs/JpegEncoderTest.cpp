#include "imaging/DeferredPixels.h"
#include "imaging/PixelConversion.h"
#include "imaging/codecs/jpeg/JpegCodec.h"
#include "support/TestImages.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdio>
#include <memory>
#include <utility>
#include <vector>

#include <jpeglib.h>

namespace vellumine::imaging {
namespace {

using test::gradient;
using test::maximumDifference;
using test::oddSize;
using test::psnr;
using test::syntheticPhoto;

constexpr PixelLayout grey8 { ColorModel::grey, 8, AlphaInfo::none };
constexpr PixelLayout rgb8 { ColorModel::rgb, 8, AlphaInfo::none };
constexpr PixelLayout rgba8 { ColorModel::rgb, 8, AlphaInfo::last };
constexpr PixelLayout cmyk8 { ColorModel::cmyk, 8, AlphaInfo::none };

ByteBuffer encoded(const Image& image, const EncodeOptions& options = {})
{
    return jpeg::encode(image, options).value();
}

DecodedImage decoded(ByteSpan file)
{
    return jpeg::decode(file, {}).value();
}

/// What the file says about its coding, read by the library alone.
struct Structure {
    int components = 0;
    int horizontalSampling = 0;
    int verticalSampling = 0;
    bool isProgressive = false;
    bool hasAdobeMarker = false;
};

Structure structureOf(const ByteBuffer& file)
{
    jpeg_error_mgr errors {};
    jpeg_decompress_struct library {};
    library.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&library);
    jpeg_mem_src(&library, reinterpret_cast<const unsigned char*>(file.data()), file.size());
    jpeg_read_header(&library, TRUE);
    const Structure structure { library.num_components, library.comp_info[0].h_samp_factor,
        library.comp_info[0].v_samp_factor, library.progressive_mode != FALSE,
        library.saw_Adobe_marker != FALSE };
    jpeg_destroy_decompress(&library);
    return structure;
}

TEST(JpegEncoder, writesProgressiveFilesThatLookLikeThePicture)
{
    const Image photo = syntheticPhoto({ 331, 257 });
    const auto file = encoded(photo, { .quality = 0.85, .metadata = {} });
    EXPECT_TRUE(structureOf(file).isProgressive);
    const auto result = decoded(file);
    EXPECT_EQ(result.storedSize, photo.size());
    EXPECT_EQ(result.image.layout(), rgb8);
    EXPECT_GT(psnr(photo, result.image), 34.0);
    EXPECT_LT(psnr(photo, result.image), 50.0);
    EXPECT_GT(file.size(), 4'000U);
    EXPECT_LT(file.size(), 40'000U);
}

TEST(JpegEncoder, growsWithTheQuality)
{
    const Image photo = syntheticPhoto({ 331, 257 });
    std::size_t size = 0;
    double likeness = 0;
    for (const double quality : { 0.01, 0.1, 0.25, 0.5, 0.75, 0.85, 0.9, 0.95, 1.0 }) {
        const auto file = encoded(photo, { .quality = quality, .metadata = {} });
        const double now = psnr(photo, decoded(file).image);
        EXPECT_GT(file.size(), size) << quality;
        EXPECT_GT(now, likeness) << quality;
        size = file.size();
        likeness = now;
    }
    EXPECT_GT(likeness, 45.0);
}

TEST(JpegEncoder, clampsTheQuality)
{
    const Image photo = syntheticPhoto(oddSize);
    EXPECT_EQ(encoded(photo, { .quality = -3, .metadata = {} }),
        encoded(photo, { .quality = 0.01, .metadata = {} }));
    EXPECT_EQ(encoded(photo, { .quality = 7, .metadata = {} }),
        encoded(photo, { .quality = 1, .metadata = {} }));
    EXPECT_EQ(encoded(photo, { .quality = 0.846, .metadata = {} }),
        encoded(photo, { .quality = 0.85, .metadata = {} }));
}

TEST(JpegEncoder, keepsFullColourFromNinetyOn)
{
    const Image photo = syntheticPhoto(oddSize);
    const auto below = structureOf(encoded(photo, { .quality = 0.89, .metadata = {} }));
    EXPECT_EQ(below.horizontalSampling, 2);
    EXPECT_EQ(below.verticalSampling, 2);
    const auto from = structureOf(encoded(photo, { .quality = 0.90, .metadata = {} }));
    EXPECT_EQ(from.horizontalSampling, 1);
    EXPECT_EQ(from.verticalSampling, 1);
}

TEST(JpegEncoder, writesGreyPicturesWithOneComponent)
{
    const Image grey = gradient(oddSize, grey8);
    const auto file = encoded(grey, { .quality = 0.9, .metadata = {} });
    EXPECT_EQ(structureOf(file).components, 1);
    EXPECT_GT(psnr(grey, decoded(file).image), 40.0);
}

TEST(JpegEncoder, writesGreyRgbWithOneComponentUnlessAProfileSaysRgb)
{
    const auto sample = [](int x, int y, int /*channel*/) { return (x * 3 + y) / 190.0; };
    const Image tagged = test::makeImage(oddSize, rgb8, ColorSpace::sRgb(), sample);
    const Image untagged = test::makeImage(oddSize, rgb8, ColorSpace::deviceRgb(), sample);
    const Image grey = test::makeImage(oddSize, grey8, sample);
    const EncodeOptions embed { .quality = 0.95, .metadata = {} };
    EncodeOptions omit = embed;
    omit.profile = ProfilePolicy::omit;

    EXPECT_EQ(structureOf(encoded(tagged, embed)).components, 3);
    EXPECT_EQ(structureOf(encoded(tagged, omit)).components, 1);
    EXPECT_EQ(structureOf(encoded(untagged, embed)).components, 1);
    EXPECT_EQ(encoded(untagged, embed), encoded(grey, embed));
}

TEST(JpegEncoder, writesOpaquePicturesWithAlphaAsThoseWithout)
{
    const PixelLayout rgb { ColorModel::rgb, 8, AlphaInfo::none };
    for (const Image& picture :
        { test::syntheticPhoto(oddSize), test::flat(oddSize, rgb, { 0.5, 0.5, 0.5 }) }) {
        const ByteBuffer expected = jpeg::encode(picture, {}).value();
        for (const AlphaInfo alpha :
            { AlphaInfo::premultipliedLast, AlphaInfo::last, AlphaInfo::noneSkipLast }) {
            const Image opaque = relayout(picture, { ColorModel::rgb, 8, alpha }).value();
            EXPECT_EQ(jpeg::encode(opaque, {}).value(), expected);
        }
    }
}

TEST(JpegEncoder, composesAlphaOnWhite)
{
    const Image half = test::flat(oddSize, rgba8, { 1.0, 0.0, 0.0, 0.5 });
    const Image white = test::flat(oddSize, rgb8, { 1.0, 0.5, 0.5 });
    const auto result = decoded(encoded(half)).image;
    EXPECT_EQ(result.layout(), rgb8);
    EXPECT_LT(maximumDifference(white, result), 3.0 / 255.0);
}

TEST(JpegEncoder, takesSixteenBits)
{
    const Image deep = gradient(oddSize, { ColorModel::rgb, 16, AlphaInfo::none });
    EXPECT_GT(psnr(deep, decoded(encoded(deep)).image), 42.0);
}

TEST(JpegEncoder, writesCmykAsAdobeDoes)
{
    const Image ink = gradient(oddSize, cmyk8);
    const auto file = encoded(ink, { .quality = 0.95, .metadata = {} });
    const auto structure = structureOf(file);
    EXPECT_EQ(structure.components, 4);
    EXPECT_TRUE(structure.hasAdobeMarker);
    EXPECT_GT(psnr(ink, decoded(file).image), 36.0);
}

/// Gives rows as they are asked for, until a row on.
class RowsOf final : public DeferredPixels {
public:
    RowsOf(Image image, int endOfRows)
        : m_image(std::move(image))
        , m_endOfRows(endOfRows)
    {
    }
    [[nodiscard]] Result<Image> rows(Rect part) const override
    {
        if (part.y + part.height > m_endOfRows) {
            return failure(Error::Kind::io, "the rows are gone");
        }
        return m_image.cropped(part);
    }
    [[nodiscard]] Result<Image> drawn(const Drawing& /*drawing*/) const override
    {
        return failure(Error::Kind::unsupported, "never drawn");
    }

private:
    Image m_image;
    int m_endOfRows;
};

Image deferred(const Image& image, int endOfRows)
{
    return { image.size(), image.layout(), image.colorSpace(),
        std::make_shared<RowsOf>(image, endOfRows), Orientation::topLeft };
}

TEST(JpegEncoder, bringsTheRowsOfDeferredPictures)
{
    for (const PixelLayout layout : { grey8, rgb8, rgba8, cmyk8 }) {
        const Image image = gradient(oddSize, layout);
        EXPECT_EQ(encoded(deferred(image, image.height())), encoded(image));
    }
}

TEST(JpegEncoder, failsWithWhatDeferredPicturesSay)
{
    const Image image = syntheticPhoto(oddSize);
    const auto result = jpeg::encode(deferred(image, image.height() - 1), {});
    ASSERT_FALSE(result.has_value());
    EXPECT_EQ(result.error().kind, Error::Kind::io);
    EXPECT_EQ(result.error().detail, "the rows are gone");
}

/// Pictures of every kind that is written differently.
std::vector<Image> kindsOfPictures()
{
    const Image photo = syntheticPhoto({ 131, 89 });
    std::vector<Image> kinds { photo, photo.withColorSpace(ColorSpace::deviceRgb()) };
    for (const AlphaInfo alpha : { AlphaInfo::premultipliedLast, AlphaInfo::last, AlphaInfo::first,
             AlphaInfo::noneSkipLast }) {
        kinds.push_back(relayout(photo, { ColorModel::rgb, 8, alpha }).value());
    }
    for (const PixelLayout layout :
        { grey8, cmyk8, rgba8, PixelLayout { ColorModel::rgb, 16, AlphaInfo::last } }) {
        kinds.push_back(gradient(photo.size(), layout));
    }
    const auto grey = [](int x, int y, int /*channel*/) { return (x * 3 + y) / 500.0; };
    kinds.push_back(test::makeImage(photo.size(), rgb8, ColorSpace::deviceRgb(), grey));
    kinds.push_back(deferred(photo, photo.height()));
    return kinds;
}

TEST(JpegEncoder, roundTripIsWhatAReaderOfTheFileFinds)
{
    for (const Image& image : kindsOfPictures()) {
        for (const double quality : { 0.1, 0.82, 0.95 }) {
            const EncodeOptions options { .quality = quality, .metadata = {} };
            const auto file = encoded(image, options);
            const Image whole = decoded(file).image;
            for (const Rect& part : { Rect { 0, 0, 131, 89 }, Rect { 0, 0, 1, 1 },
                     Rect { 130, 88, 1, 1 }, Rect { 31, 17, 33, 31 }, Rect { 16, 32, 48, 16 },
                     Rect { 47, 15, 84, 74 }, Rect { 5, 64, 126, 20 } }) {
                const Image found = jpeg::roundTrip(image, options, file, part).value();
                ASSERT_EQ(found.size(), part.size());
                ASSERT_EQ(found.layout(), whole.layout());
                ASSERT_EQ(found.colorSpace(), whole.colorSpace());
                ASSERT_EQ(maximumDifference(found, whole.cropped(part)), 0.0)
                    << part.x << ' ' << part.y << ' ' << part.width << ' ' << part.height;
            }
        }
    }
}

TEST(JpegEncoder, roundTripIsGreyOnlyWhereTheFileIs)
{
    // A grey corner of a picture with colour.
    const Image image = test::makeImage({ 80, 80 }, rgb8, ColorSpace::deviceRgb(),
        [](int x, int y, int channel) { return x > 60 && channel == 0 ? 1.0 : y / 80.0; });
    const Image corner = jpeg::roundTrip(image, {}, encoded(image), { 0, 0, 8, 8 }).value();
    EXPECT_EQ(corner.layout(), rgb8);
}

TEST(JpegEncoder, refusesSidesThatTheFormatCannotHold)
{
    const auto result = jpeg::encode(test::flat({ 65'501, 1 }, grey8, { 0.5 }), {});
    ASSERT_FALSE(result.has_value());
    EXPECT_EQ(result.error().kind, Error::Kind::encodingFailed);
}

} // namespace
} // namespace vellumine::imaging
