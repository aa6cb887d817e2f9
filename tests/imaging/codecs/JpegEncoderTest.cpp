#include "imaging/PixelConversion.h"
#include "imaging/codecs/jpeg/JpegCodec.h"
#include "support/TestImages.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdio>

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

TEST(JpegEncoder, refusesSidesThatTheFormatCannotHold)
{
    const auto result = jpeg::encode(test::flat({ 65'501, 1 }, grey8, { 0.5 }), {});
    ASSERT_FALSE(result.has_value());
    EXPECT_EQ(result.error().kind, Error::Kind::encodingFailed);
}

} // namespace
} // namespace vellumine::imaging
