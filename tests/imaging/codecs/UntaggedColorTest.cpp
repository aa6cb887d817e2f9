#include "imaging/codecs/UntaggedColor.h"

#include "imaging/codecs/HeicFiles.h"
#include "imaging/codecs/JpegFiles.h"
#include "imaging/codecs/MetadataCarriers.h"
#include "imaging/codecs/PngFiles.h"
#include "imaging/codecs/TiffFiles.h"
#include "imaging/codecs/WebPFiles.h"
#include "imaging/codecs/heic/HeicCodec.h"
#include "imaging/codecs/jpeg/JpegCodec.h"
#include "imaging/codecs/png/PngCodec.h"
#include "imaging/codecs/tiff/TiffCodec.h"
#include "imaging/codecs/webp/WebPCodec.h"
#include "imaging/metadata/ExifBuilder.h"
#include "imaging/metadata/Metadata.h"
#include "support/TestImages.h"

#include <gtest/gtest.h>

// Files without a profile whose EXIF block says which colours they have.

namespace vellumine::imaging {
namespace {

using test::chunk;
using test::ExifBuilder;
using test::textOf;
using namespace std::string_literals;

constexpr PixelLayout rgb8 { ColorModel::rgb, 8, AlphaInfo::none };
constexpr PixelLayout grey8 { ColorModel::grey, 8, AlphaInfo::none };
constexpr Size size { 64, 48 };

/// What a camera writes that was told to use Adobe RGB.
ByteBuffer adobeRgbExif()
{
    ExifBuilder builder;
    builder.exif = { builder.shorts(0xA001, { 0xFFFF }) };
    builder.interoperability = { ExifBuilder::ascii(0x0001, "R03") };
    return builder.build();
}

ByteBuffer sRgbExif()
{
    ExifBuilder builder;
    builder.exif = { builder.shorts(0xA001, { 1 }) };
    builder.interoperability = { ExifBuilder::ascii(0x0001, "R98") };
    return builder.build();
}

ColorSpace wideSpace()
{
    return ColorSpace::fromPrimaries(
        { { 0.3127, 0.3290 }, { 0.680, 0.320 }, { 0.265, 0.690 }, { 0.150, 0.060 } }, {})
        .value();
}

ByteBuffer wideProfile()
{
    const ColorSpace space = wideSpace();
    return { space.iccProfile().begin(), space.iccProfile().end() };
}

TEST(UntaggedColor, isWhatTheExifBlockSaysOfRgbAlone)
{
    EXPECT_EQ(untaggedColorSpace(ColorModel::rgb, adobeRgbExif()), ColorSpace::adobeRgb());
    EXPECT_EQ(untaggedColorSpace(ColorModel::rgb, sRgbExif()), ColorSpace::sRgb());
    EXPECT_EQ(untaggedColorSpace(ColorModel::rgb, {}), ColorSpace::sRgb());
    EXPECT_EQ(untaggedColorSpace(ColorModel::grey, adobeRgbExif()), ColorSpace::grey());
    EXPECT_EQ(untaggedColorSpace(ColorModel::cmyk, adobeRgbExif()), ColorSpace::deviceCmyk());
}

// --- JPEG ---------------------------------------------------------------------------------------

ByteBuffer jpegWith(const ByteBuffer& exif, const ByteBuffer& profile = {},
    const PixelLayout& layout = rgb8, J_COLOR_SPACE fileSpace = JCS_YCbCr)
{
    std::vector<std::pair<int, std::string>> markers { { 0xE1, "Exif\0\0"s.append(textOf(exif)) } };
    if (!profile.empty()) {
        markers.emplace_back(0xE2, "ICC_PROFILE\0\x01\x01"s.append(textOf(profile)));
    }
    return test::jpegFile(
        test::gradient(size, layout), { .fileSpace = fileSpace, .markers = markers });
}

TEST(UntaggedJpeg, hasTheColoursOfItsExifBlock)
{
    const auto spaceOf = [](const ByteBuffer& file, const PictureWish& wish) {
        return jpeg::decode(file, { .limits = {}, .wish = wish }).value().image.colorSpace();
    };
    const PictureWish rows {};
    const PictureWish part { .region = Rect { 8, 8, 16, 16 } };
    const PictureWish planes { .use = ImageUse::toBeDrawn };
    const PictureWish drawing { .use = ImageUse::toBeDrawn,
        .plan
        = DrawingPlan { .size = { 32, 24 }, .turnedSize = { 24, 32 }, .middle = { 16, 16 } } };
    for (const PictureWish& wish : { rows, part, planes, drawing }) {
        EXPECT_EQ(spaceOf(jpegWith(adobeRgbExif()), wish), ColorSpace::adobeRgb());
        EXPECT_EQ(spaceOf(jpegWith(sRgbExif()), wish), ColorSpace::sRgb());
        EXPECT_EQ(spaceOf(jpegWith(adobeRgbExif(), wideProfile()), wish), wideSpace());
        EXPECT_EQ(spaceOf(jpegWith(adobeRgbExif(), ByteBuffer(400)), wish), ColorSpace::adobeRgb());
    }
    EXPECT_EQ(
        spaceOf(jpegWith(adobeRgbExif(), {}, grey8, JCS_GRAYSCALE), rows), ColorSpace::grey());
}

// --- TIFF ---------------------------------------------------------------------------------------

ColorSpace spaceOfTiff(const test::TiffRecipe& recipe, const ByteBuffer& exif)
{
    const ByteBuffer file
        = metadata::writeTiff(test::tiffFile(recipe,
                                  [](int x, int y, int s) -> std::uint64_t {
                                      return static_cast<std::uint64_t>(x + 2 * y + 40 * s);
                                  }),
            { .exif = exif, .xmp = {}, .iptc = {} });
    return tiff::decode(file, {}).value().image.colorSpace();
}

TEST(UntaggedTiff, hasTheColoursOfItsExifDirectory)
{
    for (const char* const mode : { "wl", "wb" }) {
        test::TiffRecipe recipe { .mode = mode, .samples = 3, .photometric = PHOTOMETRIC_RGB };
        EXPECT_EQ(spaceOfTiff(recipe, adobeRgbExif()), ColorSpace::adobeRgb());
        EXPECT_EQ(spaceOfTiff(recipe, sRgbExif()), ColorSpace::sRgb());
        recipe.profile = wideProfile();
        EXPECT_EQ(spaceOfTiff(recipe, adobeRgbExif()), wideSpace());
    }
}

TEST(UntaggedTiff, ofLabIsWhatItWasConvertedTo)
{
    EXPECT_EQ(spaceOfTiff({ .samples = 3, .photometric = PHOTOMETRIC_CIELAB }, adobeRgbExif()),
        ColorSpace::sRgb());
}

// --- HEIC ---------------------------------------------------------------------------------------

ColorSpace spaceOfHeic(const test::HeicRecipe& recipe)
{
    return heic::decode(test::heicFile(test::gradient(size, rgb8), recipe), {})
        .value()
        .image.colorSpace();
}

TEST(UntaggedHeic, hasTheColoursOfItsExifBlock)
{
    EXPECT_EQ(spaceOfHeic({ .exif = adobeRgbExif() }), ColorSpace::adobeRgb());
    EXPECT_EQ(spaceOfHeic({ .exif = sRgbExif() }), ColorSpace::sRgb());
}

TEST(UntaggedHeic, goesByItsDescriptionFirst)
{
    heif_color_profile_nclx description {};
    description.version = 1;
    description.color_primaries = heif_color_primaries_ITU_R_BT_709_5;
    description.transfer_characteristics = heif_transfer_characteristic_IEC_61966_2_1;
    description.matrix_coefficients = heif_matrix_coefficients_ITU_R_BT_601_6;
    description.full_range_flag = 1;
    EXPECT_EQ(
        spaceOfHeic({ .description = description, .exif = adobeRgbExif() }), ColorSpace::sRgb());
    // One that names neither primaries nor a curve leaves the word to the block.
    description.color_primaries = heif_color_primaries_unspecified;
    description.transfer_characteristics = heif_transfer_characteristic_unspecified;
    EXPECT_EQ(spaceOfHeic({ .description = description, .exif = adobeRgbExif() }),
        ColorSpace::adobeRgb());
}

// --- WebP ---------------------------------------------------------------------------------------

ColorSpace spaceOfWebP(const ByteBuffer& exif, const ByteBuffer& profile = {})
{
    const ByteBuffer still = test::webPFile(test::gradient(size, rgb8));
    const ByteSpan picture = test::webPChunks(still);
    std::vector<ByteBuffer> chunks { test::extendedHeader(
        test::webPExif | (profile.empty() ? 0U : test::webPProfile), size) };
    if (!profile.empty()) {
        chunks.push_back(test::webPChunk("ICCP", profile));
    }
    chunks.emplace_back(picture.begin(), picture.end());
    chunks.push_back(test::webPChunk("EXIF", exif));
    return webp::decode(test::riffFile(chunks), {}).value().image.colorSpace();
}

TEST(UntaggedWebP, hasTheColoursOfItsExifBlock)
{
    EXPECT_EQ(spaceOfWebP(adobeRgbExif()), ColorSpace::adobeRgb());
    EXPECT_EQ(spaceOfWebP(sRgbExif()), ColorSpace::sRgb());
    EXPECT_EQ(spaceOfWebP(adobeRgbExif(), wideProfile()), wideSpace());
    EXPECT_EQ(spaceOfWebP(adobeRgbExif(), ByteBuffer(400)), ColorSpace::adobeRgb());
}

// --- PNG ----------------------------------------------------------------------------------------

ColorSpace spaceOfPng(const std::string& chunks, int colorType = 2)
{
    test::PngRecipe recipe;
    recipe.size = size;
    recipe.colorType = colorType;
    recipe.chunks = chunks;
    recipe.sample = [](int x, int y, int c) { return static_cast<unsigned>(x + y + c); };
    return png::decode(test::pngFile(recipe), {}).value().image.colorSpace();
}

TEST(UntaggedPng, hasTheColoursOfItsExifBlock)
{
    const std::string exif = chunk("eXIf", textOf(adobeRgbExif()));
    EXPECT_EQ(spaceOfPng(exif), ColorSpace::adobeRgb());
    EXPECT_EQ(spaceOfPng(chunk("eXIf", textOf(sRgbExif()))), ColorSpace::sRgb());
    EXPECT_EQ(spaceOfPng(exif, 0), ColorSpace::grey());
}

TEST(UntaggedPng, goesByItsOtherChunksFirst)
{
    const std::string exif = chunk("eXIf", textOf(adobeRgbExif()));
    EXPECT_EQ(spaceOfPng(exif + chunk("sRGB", "\0"s)), ColorSpace::sRgb());
    EXPECT_EQ(spaceOfPng(exif + chunk("gAMA", "\0\0\xB1\x8F"s)), ColorSpace::sRgb()); // 45455
    EXPECT_EQ(
        spaceOfPng(exif + chunk("iCCP", "a name\0\0"s + test::zlibStream(textOf(wideProfile())))),
        wideSpace());
}

} // namespace
} // namespace vellumine::imaging
