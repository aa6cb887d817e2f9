#include "imaging/codecs/HeicFiles.h"
#include "imaging/codecs/heic/HeicBrands.h"
#include "imaging/codecs/heic/HeicCodec.h"
#include "imaging/codecs/heic/HeicTurning.h"
#include "support/TestImages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace vellumine::imaging::heic {
namespace {

using namespace std::string_view_literals;
using test::heicFile;

constexpr PixelLayout rgb8 { ColorModel::rgb, 8, AlphaInfo::none };
constexpr PixelLayout rgb16 { ColorModel::rgb, 16, AlphaInfo::none };

Result<DecodedImage> decodeFile(const ByteBuffer& file)
{
    return decode(file, {});
}

/// A little-endian EXIF block that says nothing but an orientation.
ByteBuffer exifWithOrientation(char orientation)
{
    std::string text("II*\0\x08\0\0\0\x01\0\x12\x01\x03\0\x01\0\0\0\x01\0\0\0\0\0\0\0"sv);
    text[18] = orientation;
    const auto bytes = std::as_bytes(std::span(text));
    return { bytes.begin(), bytes.end() };
}

// ---- brands ----

struct BrandRow {
    const char* name;
    std::string_view box;
    std::optional<Container> expected;
};

class HeicBrands : public testing::TestWithParam<BrandRow> { };

TEST_P(HeicBrands, decideTheType)
{
    const auto bytes = std::as_bytes(std::span(GetParam().box));
    EXPECT_EQ(containerOf(bytes), GetParam().expected);
    EXPECT_EQ(sniffHeic(bytes), GetParam().expected == Container::heic);
    EXPECT_EQ(sniffHeif(bytes), GetParam().expected == Container::heif);
}

INSTANTIATE_TEST_SUITE_P(Boxes, HeicBrands,
    testing::Values(BrandRow { "heic",
                        "\0\0\0\x18"
                        "ftypheic\0\0\0\0mif1heic"sv,
                        Container::heic },
        BrandRow { "heix",
            "\0\0\0\x14"
            "ftypheix\0\0\0\0mif1"sv,
            Container::heic },
        BrandRow { "hevc",
            "\0\0\0\x10"
            "ftyphevc\0\0\0\0"sv,
            Container::heic },
        BrandRow { "mif1WithHeic",
            "\0\0\0\x18"
            "ftypmif1\0\0\0\0mif1heic"sv,
            Container::heif },
        BrandRow { "mif1Alone",
            "\0\0\0\x14"
            "ftypmif1\0\0\0\0mif1"sv,
            Container::heif },
        BrandRow { "msf1",
            "\0\0\0\x18"
            "ftypmsf1\0\0\0\0msf1hevc"sv,
            Container::heif },
        BrandRow { "mif1WithAvifOnly",
            "\0\0\0\x18"
            "ftypmif1\0\0\0\0mif1avif"sv,
            std::nullopt },
        BrandRow { "avif",
            "\0\0\0\x18"
            "ftypavif\0\0\0\0mif1avif"sv,
            std::nullopt },
        BrandRow { "video",
            "\0\0\0\x18"
            "ftypisom\0\0\0\0isommp42"sv,
            std::nullopt },
        BrandRow { "longerThanTheFile",
            "\0\0\0\x20"
            "ftypheic\0\0\0\0mif1heic"sv,
            std::nullopt },
        BrandRow { "oddLength",
            "\0\0\0\x17"
            "ftypheic\0\0\0\0mif1heic"sv,
            std::nullopt },
        BrandRow { "tooShort",
            "\0\0\0\x0C"
            "ftypheic\0\0\0\0"sv,
            std::nullopt },
        BrandRow { "otherBox",
            "\0\0\0\x18"
            "metaheic\0\0\0\0mif1heic"sv,
            std::nullopt },
        BrandRow { "empty", ""sv, std::nullopt }),
    [](const auto& row) { return row.param.name; });

// ---- pixels ----

TEST(HeicDecoder, tenAndTwelveBitsFillSixteen)
{
    const Image image = test::gradient({ 96, 80 }, rgb16);
    for (const int bits : { 10, 12 }) {
        const auto file = heicFile(image, { .bits = bits, .quality = 100 });
        const auto header = readHeader(file);
        const auto decoded = decodeFile(file);
        ASSERT_TRUE(header && decoded);
        EXPECT_EQ(header->layout, rgb16);
        ASSERT_EQ(decoded->image.layout(), rgb16);
        EXPECT_GT(test::psnr(decoded->image, image), 44.0) << bits;
    }
    const auto white = decodeFile(
        heicFile(test::flat({ 64, 64 }, rgb16, { 1.0, 1.0, 1.0 }), { .bits = 10, .quality = 100 }));
    ASSERT_TRUE(white);
    EXPECT_EQ(white->image.row16(10)[30], 65535) << "the full range, not 1023 times 64";
}

TEST(HeicDecoder, alphaIsWhatTheFileDeclares)
{
    using Alpha = test::HeicRecipe::Alpha;
    for (const auto& [declared, expected] : { std::pair { Alpha::straight, AlphaInfo::last },
             std::pair { Alpha::premultiplied, AlphaInfo::premultipliedLast } }) {
        for (const int bits : { 8, 10 }) {
            const PixelLayout layout { ColorModel::rgb, bits == 8 ? 8 : 16, expected };
            const Image image = test::gradient({ 64, 64 }, layout);
            const auto file = heicFile(image, { .bits = bits, .alpha = declared });
            const auto decoded = decodeFile(file);
            ASSERT_TRUE(decoded) << decoded.error().detail;
            EXPECT_EQ(decoded->image.layout(), layout);
            EXPECT_GT(test::psnr(decoded->image, image), 36.0);
        }
    }
}

TEST(HeicDecoder, rotationOfTheContainerIsApplied)
{
    const Image image = test::gradient({ 96, 64 }, rgb8);
    const auto file = heicFile(image, { .orientation = heif_orientation_rotate_90_cw });
    const auto header = readHeader(file);
    const auto decoded = decodeFile(file);
    ASSERT_TRUE(header && decoded);
    EXPECT_EQ(header->size, (Size { 64, 96 }));
    EXPECT_EQ(decoded->storedSize, (Size { 64, 96 }));
    const auto turned = upright(image, Orientation::rightTop);
    ASSERT_TRUE(turned);
    EXPECT_GT(test::psnr(decoded->image, *turned), 36.0);
    EXPECT_EQ(decoded->orientation, Orientation::topLeft);
}

TEST(HeicDecoder, tellsHowThePictureIsStored)
{
    const Image image = test::gradient({ 96, 64 }, rgb8);
    for (int tag = 1; tag <= 8; ++tag) {
        const auto stored = static_cast<Orientation>(tag);
        const auto decoded
            = decodeFile(heicFile(image, { .orientation = static_cast<heif_orientation>(tag) }));
        const auto turned = upright(image, stored);
        ASSERT_TRUE(decoded && turned) << tag;
        EXPECT_GT(test::psnr(decoded->image, *turned), 36.0) << tag;
        EXPECT_EQ(decoded->turnedFrom, stored) << tag;
    }
}

TEST(HeicDecoder, damagedPropertiesAreNoTurning)
{
    const auto file = heicFile(
        test::gradient({ 96, 64 }, rgb8), { .orientation = heif_orientation_rotate_90_cw });
    for (std::size_t length = 0; length < std::min<std::size_t>(file.size(), 700); ++length) {
        const auto stored = storedOrientation(ByteSpan(file).first(length), 1);
        EXPECT_TRUE(stored == Orientation::topLeft || stored == Orientation::rightTop) << length;
    }
    EXPECT_EQ(storedOrientation(file, 1), Orientation::rightTop);
    EXPECT_EQ(storedOrientation(file, 77), Orientation::topLeft);
    EXPECT_EQ(storedOrientation({}, 1), Orientation::topLeft);
}

TEST(HeicDecoder, exifOrientationIsNeverApplied)
{
    const Image image = test::gradient({ 96, 64 }, rgb8);
    const ByteBuffer exif = exifWithOrientation(6);
    const auto decoded = decodeFile(heicFile(image, { .exif = exif }));
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->orientation, Orientation::topLeft);
    EXPECT_EQ(decoded->metadata.exif, exif);
    EXPECT_GT(test::psnr(decoded->image, image), 36.0);
}

// ---- colour ----

TEST(HeicDecoder, codedDescriptionsAreHonoured)
{
    const Image image = test::gradient({ 64, 64 }, rgb8);
    const auto spaceFor
        = [&image](heif_color_primaries primaries, heif_transfer_characteristics transfer) {
              heif_color_profile_nclx description {};
              description.version = 1;
              description.color_primaries = primaries;
              description.transfer_characteristics = transfer;
              description.matrix_coefficients = heif_matrix_coefficients_ITU_R_BT_601_6;
              description.full_range_flag = 1;
              return decodeFile(heicFile(image, { .description = description }))
                  .value()
                  .image.colorSpace();
          };
    EXPECT_TRUE(
        spaceFor(heif_color_primaries_ITU_R_BT_709_5, heif_transfer_characteristic_IEC_61966_2_1)
        == ColorSpace::sRgb());
    EXPECT_TRUE(spaceFor(heif_color_primaries_unspecified, heif_transfer_characteristic_unspecified)
        == ColorSpace::sRgb());
    const ColorSpace p3
        = spaceFor(heif_color_primaries_SMPTE_EG_432_1, heif_transfer_characteristic_IEC_61966_2_1);
    EXPECT_FALSE(p3.isSRgbEquivalent());
    EXPECT_FALSE(p3.iccProfile().empty());
    EXPECT_FALSE(spaceFor(heif_color_primaries_ITU_R_BT_2020_2_and_2100_0,
        heif_transfer_characteristic_ITU_R_BT_2100_0_PQ)
                     .isSRgbEquivalent());
}

// ---- damaged and excessive files ----

TEST(HeicDecoder, everyCutIsRefused)
{
    const auto file = heicFile(test::syntheticPhoto({ 200, 150 }), {});
    ASSERT_TRUE(decodeFile(file));
    for (std::size_t length = 0; length < file.size(); length += 37) {
        EXPECT_FALSE(
            decodeFile({ file.begin(), file.begin() + static_cast<std::ptrdiff_t>(length) }))
            << length;
    }
    EXPECT_FALSE(decodeFile({ file.begin(), file.end() - 1 }));
}

TEST(HeicDecoder, limitsHoldBeforeDecoding)
{
    const auto file = heicFile(test::gradient({ 200, 100 }, rgb8), {});
    const auto kindUnder = [&file](const Limits& limits) -> std::optional<Error::Kind> {
        const auto decoded = decode(file, { .limits = limits, .wish = {} });
        return decoded ? std::nullopt : std::optional(decoded.error().kind);
    };
    EXPECT_EQ(kindUnder({ .maximumSide = 199 }), Error::Kind::limitExceeded);
    EXPECT_EQ(kindUnder({ .maximumPixels = 19'999 }), Error::Kind::limitExceeded);
    EXPECT_EQ(kindUnder({ .maximumBytes = 59'999 }), Error::Kind::limitExceeded);
    EXPECT_EQ(kindUnder({ .maximumPixels = 20'000, .maximumSide = 200, .maximumBytes = 60'000 }),
        std::nullopt);
}

TEST(HeicDecoder, fourThreadsDecodeAndEncodeAtOnce)
{
    const Image image = test::syntheticPhoto({ 200, 150 });
    const Image small = test::gradient(test::oddSize, rgb8);
    const auto file = heicFile(image, {});
    std::array<double, 4> fidelity {};
    {
        std::vector<std::jthread> threads;
        for (double& result : fidelity) {
            threads.emplace_back([&] {
                double lowest = 99.0;
                for (int round = 0; round < 3; ++round) {
                    const auto decoded = decodeFile(file);
                    const auto again = encodeHeic(small, { .quality = 0.9, .metadata = {} });
                    const auto reread = again ? decodeFile(*again) : tl::unexpected(again.error());
                    if (!decoded || !reread) {
                        return; // leaves 0
                    }
                    lowest = std::min({ lowest, test::psnr(decoded->image, image),
                        test::psnr(reread->image, small) });
                }
                result = lowest;
            });
        }
    }
    for (const double decibels : fidelity) {
        EXPECT_GT(decibels, 30.0);
    }
}

} // namespace
} // namespace vellumine::imaging::heic
