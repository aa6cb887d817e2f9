#include "imaging/codecs/JpegFiles.h"
#include "imaging/codecs/jpeg/JpegCodec.h"
#include "support/NamedRows.h"
#include "support/TestImages.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace vellumine::imaging {
namespace {

using test::jpegFile;
using test::JpegRecipe;
using test::maximumDifference;
using test::syntheticPhoto;
using Coding = JpegRecipe::Coding;

constexpr Size photoSize { 211, 173 };

ByteBuffer photoFile(const JpegRecipe& recipe)
{
    return jpegFile(syntheticPhoto(photoSize), recipe);
}

/// Every way that a JPEG file is decoded: in rows, in planes, and while it is drawn.
std::vector<PictureWish> everyWish()
{
    const DrawingPlan plan {
        .size = { 105, 86 }, .turnedSize = { 105, 128 }, .middle = { 72, 46 }
    };
    return { { .use = ImageUse::asRows }, { .use = ImageUse::toBeDrawn },
        { .use = ImageUse::toBeDrawn, .plan = plan } };
}

void expectRefusal(ByteSpan file, Error::Kind kind)
{
    for (const PictureWish& wish : everyWish()) {
        const auto result = jpeg::decode(file, { .limits = {}, .wish = wish });
        ASSERT_FALSE(result.has_value());
        EXPECT_EQ(result.error().kind, kind) << result.error().detail;
    }
}

void expectSamePicture(ByteSpan file, ByteSpan whole)
{
    for (const PictureWish& wish : everyWish()) {
        const auto result = jpeg::decode(file, { .limits = {}, .wish = wish });
        ASSERT_TRUE(result.has_value()) << result.error().detail;
        EXPECT_EQ(result->isDrawn, wish.plan.has_value());
    }
    EXPECT_EQ(maximumDifference(
                  jpeg::decode(file, {}).value().image, jpeg::decode(whole, {}).value().image),
        0.0);
}

ByteBuffer withInserted(const ByteBuffer& file, std::size_t at, ByteSpan bytes)
{
    ByteBuffer result(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(at));
    result.insert(result.end(), bytes.begin(), bytes.end());
    result.insert(result.end(), file.begin() + static_cast<std::ptrdiff_t>(at), file.end());
    return result;
}

ByteBuffer repeated(std::initializer_list<unsigned> bytes, std::size_t times)
{
    ByteBuffer result;
    for (std::size_t i = 0; i < times; ++i) {
        std::ranges::transform(bytes, std::back_inserter(result),
            [](unsigned byte) { return static_cast<std::byte>(byte); });
    }
    return result;
}

/// Where a marker stands from some place on.
std::size_t markerAt(ByteSpan file, unsigned marker, std::size_t from)
{
    for (std::size_t at = from; at + 1 < file.size(); ++at) {
        if (file[at] == std::byte { 0xFF } && file[at + 1] == static_cast<std::byte>(marker)) {
            return at;
        }
    }
    ADD_FAILURE() << "no such marker";
    return file.size();
}

std::size_t endMarkerAt(const ByteBuffer& file)
{
    return file.size() - 2;
}

struct KindCase {
    const char* name;
    JpegRecipe recipe;
};

void PrintTo(const KindCase& kind, std::ostream* stream)
{
    *stream << kind.name;
}

class JpegLeftovers : public testing::TestWithParam<KindCase> { };

TEST_P(JpegLeftovers, ofPictureDataAtTheEndAreRefused)
{
    const auto file = photoFile(GetParam().recipe);
    for (const std::size_t count : { 40U, 5000U }) {
        expectRefusal(withInserted(file, endMarkerAt(file), repeated({ 0x5A }, count)),
            Error::Kind::malformed);
    }
}

TEST_P(JpegLeftovers, thatEncodersAreKnownForChangeNothing)
{
    const auto file = photoFile(GetParam().recipe);
    for (const ByteBuffer& padding : { repeated({ 0x7F }, 1), repeated({ 0x5A }, 11),
             repeated({ 0 }, 5000), repeated({ 0xFF }, 300), repeated({ 0xFF, 0 }, 300) }) {
        expectSamePicture(withInserted(file, endMarkerAt(file), padding), file);
    }
}

TEST_P(JpegLeftovers, ofZerosChangeNothingWithoutAnEndMarkerEither)
{
    const auto file = photoFile(GetParam().recipe);
    auto padded = file;
    padded.resize(endMarkerAt(file));
    padded.resize(padded.size() + 5000);
    expectSamePicture(padded, file);
}

INSTANTIATE_TEST_SUITE_P(Jpeg, JpegLeftovers,
    testing::Values(KindCase { "baseline444", {} },
        KindCase { "baseline420", { .horizontalSampling = 2, .verticalSampling = 2 } },
        KindCase { "restarts", { .restartInterval = 3 } },
        KindCase { "progressive", { .coding = Coding::progressive } },
        KindCase { "separateScans", { .coding = Coding::separateScans } },
        KindCase { "arithmetic", { .coding = Coding::arithmetic } }),
    test::RowName());

TEST(JpegLeftoversOfIntervals, areRefusedUnlessTheyAreFew)
{
    const auto file = photoFile({ .restartInterval = 5 });
    const std::size_t at = markerAt(file, 0xD2, test::pictureDataStart(file));
    expectRefusal(withInserted(file, at, repeated({ 0x5A }, 60)), Error::Kind::malformed);
    expectSamePicture(withInserted(file, at, repeated({ 0x5A }, 9)), file);
    expectSamePicture(withInserted(file, at, repeated({ 0 }, 300)), file);
}

TEST(JpegLeftoversOfScans, areRefusedUnlessTheyAreFew)
{
    for (const Coding coding : { Coding::progressive, Coding::separateScans }) {
        const auto file = photoFile({ .coding = coding });
        const std::size_t next = coding == Coding::progressive
            ? markerAt(file, 0xC4, test::pictureDataStart(file))
            : test::scanHeader(file, 1);
        expectRefusal(withInserted(file, next, repeated({ 0x5A }, 60)), Error::Kind::malformed);
        expectSamePicture(withInserted(file, next, repeated({ 0x5A }, 9)), file);
    }
}

TEST(JpegLeftoversOfARegion, areNotLookedFor)
{
    const auto file = photoFile({});
    const auto damaged = withInserted(file, endMarkerAt(file), repeated({ 0x5A }, 60));
    const auto part
        = jpeg::decode(damaged, { .limits = {}, .wish = { .region = Rect { 0, 0, 20, 20 } } });
    EXPECT_TRUE(part.has_value());
}

TEST(JpegLeftoversOfFiles, aTrailerWithoutAnEndMarkerIsNone)
{
    const auto file = photoFile({});
    auto trailed = file;
    trailed.resize(endMarkerAt(file));
    const std::string_view trailer
        = "the maker's own: a film and what it is called \xFF\x46 and so on";
    const auto bytes = std::as_bytes(std::span(trailer));
    trailed.insert(trailed.end(), bytes.begin(), bytes.end());
    expectSamePicture(trailed, file);
}

/// The file with another height in its frame header.
ByteBuffer withHeight(ByteBuffer file, unsigned height)
{
    const std::size_t frame = markerAt(file, 0xC0, 2);
    file.at(frame + 5) = static_cast<std::byte>(height >> 8U);
    file.at(frame + 6) = static_cast<std::byte>(height & 0xFFU);
    return file;
}

TEST(JpegLeftoversOfFiles, ofRowsBelowThePictureAreToldByTheirRestartMarkers)
{
    // 27 blocks in a row: the last row of the lower picture ends inside an interval.
    const auto marked = withHeight(photoFile({ .restartInterval = 7 }), 160);
    for (const PictureWish& wish : everyWish()) {
        EXPECT_TRUE(jpeg::decode(marked, { .limits = {}, .wish = wish }).has_value());
    }
    expectRefusal(withHeight(photoFile({}), 160), Error::Kind::malformed);
}

TEST(JpegLeftoversOfFiles, ofZerosFromWhichBlocksWereMadeAreMissingData)
{
    const auto file = photoFile({});
    const std::size_t start = test::pictureDataStart(file);
    auto lost = file;
    lost.resize(start + (file.size() - start) * 6 / 10);
    lost.resize(lost.size() + 100'000);
    expectRefusal(lost, Error::Kind::truncated);
    lost.push_back(std::byte { 0xFF });
    lost.push_back(std::byte { 0xD9 });
    expectRefusal(lost, Error::Kind::malformed);
}

TEST(JpegLeftoversOfFiles, beforeTheFirstScanAreNone)
{
    const auto file = photoFile({});
    expectSamePicture(withInserted(file, markerAt(file, 0xC4, 2), repeated({ 0x5A }, 300)), file);
}

} // namespace
} // namespace vellumine::imaging
