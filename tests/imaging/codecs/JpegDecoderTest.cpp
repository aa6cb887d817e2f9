#include "imaging/codecs/JpegFiles.h"
#include "imaging/codecs/jpeg/JpegCodec.h"
#include "support/NamedRows.h"
#include "support/TestImages.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace vellumine::imaging {
namespace {

using test::gradient;
using test::jpegFile;
using test::JpegRecipe;
using test::maximumDifference;
using test::oddSize;
using test::psnr;
using test::scanHeader;
using test::syntheticPhoto;
using Coding = JpegRecipe::Coding;

constexpr PixelLayout grey8 { ColorModel::grey, 8, AlphaInfo::none };
constexpr PixelLayout rgb8 { ColorModel::rgb, 8, AlphaInfo::none };
constexpr PixelLayout cmyk8 { ColorModel::cmyk, 8, AlphaInfo::none };

Image decoded(ByteSpan file)
{
    return jpeg::decode(file, {}).value().image;
}

Error::Kind refusal(ByteSpan file, const DecodeOptions& options = {})
{
    const auto result = jpeg::decode(file, options);
    EXPECT_FALSE(result.has_value());
    return result ? Error::Kind::io : result.error().kind;
}

// --- Kinds of files -----------------------------------------------------------------------------

struct KindCase {
    const char* name;
    JpegRecipe recipe;
};

void PrintTo(const KindCase& kind, std::ostream* stream)
{
    *stream << kind.name;
}

class JpegKinds : public testing::TestWithParam<KindCase> { };

const std::vector<KindCase> colourKinds {
    { "sampling444", { .horizontalSampling = 1, .verticalSampling = 1 } },
    { "sampling422", { .horizontalSampling = 2, .verticalSampling = 1 } },
    { "sampling440", { .horizontalSampling = 1, .verticalSampling = 2 } },
    { "sampling420", { .horizontalSampling = 2, .verticalSampling = 2 } },
    { "sampling411", { .horizontalSampling = 4, .verticalSampling = 1 } },
    { "sampling410", { .horizontalSampling = 4, .verticalSampling = 2 } },
    { "sampling441", { .horizontalSampling = 1, .verticalSampling = 4 } },
    { "rgb", { .fileSpace = JCS_RGB } },
    { "progressive444", { .coding = Coding::progressive } },
    { "progressive422", { .horizontalSampling = 2, .coding = Coding::progressive } },
    { "progressive420",
        { .horizontalSampling = 2, .verticalSampling = 2, .coding = Coding::progressive } },
    { "separateScans420",
        { .horizontalSampling = 2, .verticalSampling = 2, .coding = Coding::separateScans } },
    { "arithmetic420",
        { .horizontalSampling = 2, .verticalSampling = 2, .coding = Coding::arithmetic } },
    { "restarts420", { .horizontalSampling = 2, .verticalSampling = 2, .restartInterval = 3 } },
};

TEST_P(JpegKinds, decodesToThePicture)
{
    const Image original = gradient(oddSize, rgb8);
    const auto file = jpegFile(original, GetParam().recipe);
    const auto header = jpeg::readHeader(file).value();
    const auto result = jpeg::decode(file, {}).value();
    EXPECT_EQ(header.size, oddSize);
    EXPECT_EQ(header.layout, rgb8);
    EXPECT_EQ(result.storedSize, oddSize);
    EXPECT_FALSE(result.isRegion);
    EXPECT_EQ(result.image.layout(), rgb8);
    EXPECT_EQ(result.image.colorSpace(), ColorSpace::sRgb());
    EXPECT_GT(psnr(original, result.image), 34.0);
}

TEST_P(JpegKinds, regionEqualsTheFullDecode)
{
    const Size size { 211, 173 };
    const auto file = jpegFile(syntheticPhoto(size), GetParam().recipe);
    const Image whole = decoded(file);
    std::vector<Rect> regions { { 0, 0, 211, 173 }, { 0, 0, 1, 1 }, { 210, 172, 1, 1 },
        { 0, 100, 211, 73 }, { 100, 0, 111, 1 } };
    for (int i = 0; i < 60; ++i) {
        const int x = (i * 37) % 180;
        const int y = (i * 53) % 150;
        regions.push_back({ x, y, 1 + (i * 29) % (211 - x), 1 + (i * 31) % (173 - y) });
    }
    for (const Rect& region : regions) {
        const auto part
            = jpeg::decode(file, { .limits = {}, .wish = { .region = region } }).value();
        ASSERT_TRUE(part.isRegion);
        ASSERT_EQ(part.storedSize, size);
        ASSERT_EQ(part.image.size(), region.size());
        ASSERT_EQ(maximumDifference(part.image, whole.cropped(region)), 0.0)
            << region.x << ' ' << region.y << ' ' << region.width << ' ' << region.height;
    }
}

TEST_P(JpegKinds, refusesEveryCutOfThePictureDataAndPassesWithoutTheEndMarker)
{
    const auto file = jpegFile(syntheticPhoto({ 83, 61 }), GetParam().recipe);
    const Image whole = decoded(file);
    const ByteSpan bytes(file);
    // The last bytes of a scan may hold nothing but the bits that fill it up.
    const std::size_t dataEnd = file.size() - 2 - 2;
    for (std::size_t cut = test::pictureDataStart(file); cut < dataEnd; ++cut) {
        const auto result = jpeg::decode(bytes.first(cut), {});
        ASSERT_FALSE(result.has_value()) << "cut at " << cut << " of " << file.size();
        ASSERT_EQ(result.error().kind, Error::Kind::truncated) << result.error().detail;
    }
    for (std::size_t cut = 0; cut < test::pictureDataStart(file); ++cut) {
        ASSERT_EQ(refusal(bytes.first(cut)), Error::Kind::truncated) << cut;
    }
    for (const std::size_t missing : { 1U, 2U }) {
        const auto result = jpeg::decode(bytes.first(file.size() - missing), {});
        if (GetParam().recipe.coding == Coding::arithmetic) {
            // Nobody can tell a whole arithmetic scan from one that lost its end.
            EXPECT_FALSE(result.has_value());
        } else {
            ASSERT_TRUE(result.has_value()) << result.error().detail;
            EXPECT_EQ(maximumDifference(whole, result->image), 0.0);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Jpeg, JpegKinds, testing::ValuesIn(colourKinds), test::RowName());

TEST(JpegDecoder, readsGrey)
{
    const Image original = gradient(oddSize, grey8);
    const auto file = jpegFile(original, { .fileSpace = JCS_GRAYSCALE });
    EXPECT_EQ(jpeg::readHeader(file).value().layout, grey8);
    const Image image = decoded(file);
    EXPECT_EQ(image.layout(), grey8);
    EXPECT_EQ(image.colorSpace(), ColorSpace::grey());
    EXPECT_GT(psnr(original, image), 40.0);
}

Image inverted(const Image& image)
{
    return test::makeImage(image.size(), image.layout(), image.colorSpace(),
        [&](int x, int y, int channel) { return 1.0 - test::sampleAt(image, x, y, channel); });
}

TEST(JpegDecoder, countsInkInCmykFilesOfAdobe)
{
    const Image ink = gradient(oddSize, cmyk8);
    for (const J_COLOR_SPACE space : { JCS_CMYK, JCS_YCCK }) {
        const auto file = jpegFile(inverted(ink), { .fileSpace = space });
        const Image image = decoded(file);
        EXPECT_EQ(image.layout(), cmyk8);
        EXPECT_EQ(image.colorSpace(), ColorSpace::deviceCmyk());
        EXPECT_GT(psnr(ink, image), 36.0);
    }
}

TEST(JpegDecoder, takesCmykWithoutTheMarkerOfAdobeAsInk)
{
    const Image ink = gradient(oddSize, cmyk8);
    const auto file = jpegFile(ink, { .fileSpace = JCS_CMYK, .adobe = JpegRecipe::Adobe::without });
    EXPECT_GT(psnr(ink, decoded(file)), 36.0);
}

// --- What is refused ----------------------------------------------------------------------------

TEST(JpegDecoder, refusesPictureDataThatEndsAtAnEndMarkerTooEarly)
{
    for (const Coding coding : { Coding::baseline, Coding::progressive, Coding::separateScans }) {
        auto file = jpegFile(syntheticPhoto({ 83, 61 }), { .coding = coding });
        const std::size_t start = test::pictureDataStart(file);
        file.resize(start + (file.size() - start) / 2);
        file.push_back(std::byte { 0xFF });
        file.push_back(std::byte { 0xD9 });
        EXPECT_FALSE(jpeg::decode(file, {}).has_value());
    }
}

TEST(JpegDecoder, refusesMissingScans)
{
    const auto photo = syntheticPhoto({ 83, 61 });
    const auto progressive = jpegFile(photo, { .coding = Coding::progressive });
    for (int scan = 1; scan < 10; ++scan) {
        const std::size_t cut = scanHeader(progressive, scan);
        ASSERT_LT(cut, progressive.size());
        EXPECT_EQ(refusal(ByteSpan(progressive).first(cut)), Error::Kind::truncated) << scan;
    }
    auto separate = jpegFile(photo, { .coding = Coding::separateScans });
    separate.resize(scanHeader(separate, 2));
    EXPECT_EQ(refusal(separate), Error::Kind::truncated);
    separate.push_back(std::byte { 0xFF });
    separate.push_back(std::byte { 0xD9 });
    EXPECT_EQ(refusal(separate), Error::Kind::truncated) << "the last colour never came";
}

TEST(JpegDecoder, acceptsAProgressiveFileThatEndsEarlyOnPurpose)
{
    const auto file = test::endedEarlyOnPurpose(
        jpegFile(syntheticPhoto({ 83, 61 }), { .coding = Coding::progressive }));
    EXPECT_TRUE(jpeg::decode(file, {}).has_value());
}

TEST(JpegDecoder, refusesLostRestartIntervals)
{
    auto file = jpegFile(syntheticPhoto({ 83, 61 }), { .restartInterval = 5 });
    const auto isMarker = [](std::byte a, std::byte b) {
        return a == std::byte { 0xFF } && b == std::byte { 0xD2 };
    };
    const auto found = std::ranges::adjacent_find(file, isMarker);
    ASSERT_NE(found, file.end());
    const auto next = std::adjacent_find(found + 2, file.end(), [](std::byte a, std::byte b) {
        return a == std::byte { 0xFF } && b == std::byte { 0xD3 };
    });
    ASSERT_NE(next, file.end());
    file.erase(found, next);
    EXPECT_EQ(refusal(file), Error::Kind::malformed);
}

TEST(JpegDecoder, acceptsStrayBytesBetweenMarkers)
{
    const auto photo = syntheticPhoto(oddSize);
    auto file = jpegFile(photo, {});
    const Image whole = decoded(file);
    const std::string stray(5, 'x');
    const auto bytes = std::as_bytes(std::span(stray));
    file.insert(file.begin() + 20, bytes.begin(), bytes.end()); // behind the JFIF segment
    EXPECT_EQ(maximumDifference(whole, decoded(file)), 0.0);
    file.insert(file.end(), bytes.begin(), bytes.end());
    EXPECT_EQ(maximumDifference(whole, decoded(file)), 0.0);
}

TEST(JpegDecoder, refusesAFloodOfScans)
{
    auto file = jpegFile(syntheticPhoto(oddSize), { .coding = Coding::progressive });
    const std::size_t first = scanHeader(file, 0);
    const std::size_t second = scanHeader(file, 1);
    const ByteBuffer last(file.end() - 2, file.end());
    const ByteBuffer scan(file.begin() + static_cast<std::ptrdiff_t>(first),
        file.begin() + static_cast<std::ptrdiff_t>(second));
    file.resize(file.size() - 2);
    for (int i = 0; i < 600; ++i) {
        file.insert(file.end(), scan.begin(), scan.end());
    }
    file.insert(file.end(), last.begin(), last.end());
    EXPECT_EQ(refusal(file), Error::Kind::malformed);
}

/// The file with other numbers in its frame header: precision, height and width.
ByteBuffer withFrame(ByteBuffer file, unsigned precision, unsigned height, unsigned width)
{
    std::size_t at = 2;
    while (std::to_integer<unsigned>(file[at + 1]) != 0xC0
        && std::to_integer<unsigned>(file[at + 1]) != 0xC2) {
        at += 2 + std::to_integer<std::size_t>(file[at + 2]) * 256
            + std::to_integer<std::size_t>(file[at + 3]);
    }
    const std::array numbers { precision, height >> 8U, height & 0xFFU, width >> 8U,
        width & 0xFFU };
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        file[at + 4 + i] = static_cast<std::byte>(numbers.at(i));
    }
    return file;
}

TEST(JpegDecoder, checksTheLimitsBeforeItAllocates)
{
    const auto file = jpegFile(gradient({ 64, 64 }, rgb8), {});
    EXPECT_EQ(refusal(withFrame(file, 8, 65500, 65500)), Error::Kind::limitExceeded);
    EXPECT_EQ(refusal(file, { .limits = { .maximumPixels = 4095 }, .wish = {} }),
        Error::Kind::limitExceeded);
    EXPECT_EQ(
        refusal(file, { .limits = { .maximumSide = 63 }, .wish = {} }), Error::Kind::limitExceeded);
    const Limits exact { .maximumPixels = 4096, .maximumSide = 64, .maximumBytes = 4096 * 3 };
    EXPECT_TRUE(jpeg::decode(file, { .limits = exact, .wish = {} }).has_value());
}

TEST(JpegDecoder, countsTheCoefficientsOfProgressiveFilesAgainstTheLimits)
{
    const auto file = jpegFile(gradient({ 64, 64 }, rgb8), { .coding = Coding::progressive });
    Limits limits;
    limits.maximumBytes = 4096 * (3 + 6); // samples, and 16 bits for each coefficient
    EXPECT_TRUE(jpeg::decode(file, { .limits = limits, .wish = {} }).has_value());
    --limits.maximumBytes;
    EXPECT_EQ(refusal(file, { .limits = limits, .wish = {} }), Error::Kind::limitExceeded);
}

TEST(JpegDecoder, saysWhatItDoesNotSupport)
{
    const auto file = jpegFile(gradient(oddSize, rgb8), {});
    EXPECT_EQ(refusal(withFrame(file, 12, 33, 47)), Error::Kind::unsupported);
    auto lossless = file;
    const auto frame = std::ranges::adjacent_find(lossless, [](std::byte a, std::byte b) {
        return a == std::byte { 0xFF } && b == std::byte { 0xC0 };
    });
    *(frame + 1) = std::byte { 0xC3 };
    EXPECT_EQ(refusal(lossless), Error::Kind::unsupported);
}

struct MalformedCase {
    const char* name;
    std::string_view content;
    Error::Kind kind;
};

void PrintTo(const MalformedCase& malformed, std::ostream* stream)
{
    *stream << malformed.name;
}

class JpegMalformed : public testing::TestWithParam<MalformedCase> { };

TEST_P(JpegMalformed, isRefused)
{
    const auto bytes = std::as_bytes(std::span(GetParam().content));
    const auto header = jpeg::readHeader(bytes);
    ASSERT_FALSE(header.has_value());
    EXPECT_EQ(header.error().kind, GetParam().kind) << header.error().detail;
    EXPECT_EQ(refusal(bytes), GetParam().kind);
}

using namespace std::string_view_literals;

INSTANTIATE_TEST_SUITE_P(Jpeg, JpegMalformed,
    testing::Values(MalformedCase { "empty", ""sv, Error::Kind::truncated },
        MalformedCase { "startMarkerOnly", "\xFF\xD8"sv, Error::Kind::truncated },
        MalformedCase { "notAJpeg", "GIF89a and something more"sv, Error::Kind::malformed },
        MalformedCase { "endAtOnce", "\xFF\xD8\xFF\xD9"sv, Error::Kind::malformed },
        MalformedCase {
            "segmentBeyondTheEnd", "\xFF\xD8\xFF\xE1\xFF\xFFxx"sv, Error::Kind::truncated },
        MalformedCase {
            "segmentOfLengthOne", "\xFF\xD8\xFF\xC4\0\x01xxxxxxxxx"sv, Error::Kind::malformed },
        MalformedCase { "scanWithoutFrame", "\xFF\xD8\xFF\xDA\0\x08\x01\x01\0\0\x3F\0"sv,
            Error::Kind::malformed },
        MalformedCase { "noHeight", "\xFF\xD8\xFF\xC0\0\x0B\x08\0\0\0\x10\x01\x01\x11\0\xFF\xD9"sv,
            Error::Kind::malformed },
        MalformedCase { "twoComponents",
            "\xFF\xD8\xFF\xC0\0\x0E\x08\0\x10\0\x10\x02\x01\x11\0\x02\x11\0"
            "\xFF\xDA\0\x0A\x02\x01\0\x02\0\0\x3F\0"sv,
            Error::Kind::unsupported }),
    test::RowName());

TEST(JpegDecoder, survivesEveryBrokenByteOfTheHeader)
{
    const auto file = jpegFile(gradient({ 19, 17 }, rgb8), { .coding = Coding::progressive });
    for (std::size_t at = 0; at < test::pictureDataStart(file); ++at) {
        for (const unsigned value : { 0U, 1U, 0x7FU, 0x80U, 0xFFU }) {
            auto broken = file;
            broken[at] = static_cast<std::byte>(value);
            const auto header = jpeg::readHeader(broken);
            const auto result
                = jpeg::decode(broken, { .limits = { .maximumPixels = 1U << 20U }, .wish = {} });
            if (result) {
                ASSERT_TRUE(header.has_value());
                ASSERT_EQ(header->size, result->image.size());
            }
        }
    }
}

} // namespace
} // namespace vellumine::imaging
