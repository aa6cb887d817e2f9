#include "confined/protocol/Messages.h"

#include "confined/protocol/ByteStream.h"
#include "confined/protocol/PictureAttachments.h"
#include "imaging/colour/ColorSpaceData.h"
#include "support/NamedRows.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <string>

namespace vellumine::confined {
namespace {

using imaging::AlphaInfo;
using imaging::BitmapColors;
using imaging::ByteBuffer;
using imaging::ByteSpan;
using imaging::ColorModel;
using imaging::ColorSpace;
using imaging::Error;
using imaging::PixelLayout;
using imaging::PropertyKey;

constexpr PixelLayout deepColour { ColorModel::rgb, 16, AlphaInfo::last };

DecodedReply decodedReply()
{
    return { .size = { 47, 33 },
        .layout = deepColour,
        .isRegion = true,
        .attachmentsAddress = 8192,
        .attachmentsBytes = 12 };
}

constexpr imaging::DrawingPlan plan { .size = { 50, 60 },
    .turnedSize = { 60, 50 },
    .colors = BitmapColors::own,
    .quality = imaging::InterpolationQuality::medium,
    .middle = { 9, 7 } };

constexpr DrawRequest drawRequest { { 5, 6 }, BitmapColors::deviceRgb,
    imaging::InterpolationQuality::low, imaging::Orientation::leftTop };

PixelsReply pixelsReply()
{
    return { .size = { 47, 33 }, .layout = deepColour, .rowBytes = 400, .address = 4096 };
}

PlanesReply planesReply()
{
    return { .size = { 47, 33 },
        .subsampling = { 2, 1 },
        .planes = { { { 64, 4096 }, { 24, 8192 }, { 32, 12288 } } } };
}

template <typename Message> const Message& as(const imaging::Result<Reply>& reply)
{
    return std::get<Message>(reply.value());
}

TEST(Messages, requestsComeBackAsTheyWere)
{
    imaging::Limits limits { .maximumPixels = 1, .maximumSide = 2, .maximumBytes = 3 };
    const auto open
        = std::get<OpenRequest>(*parseRequest(serialised(Request(OpenRequest { limits }))));
    EXPECT_EQ(open.limits.maximumPixels, 1U);
    EXPECT_EQ(open.limits.maximumSide, 2U);
    EXPECT_EQ(open.limits.maximumBytes, 3U);
    const auto whole
        = std::get<DecodeRequest>(*parseRequest(serialised(Request(DecodeRequest {}))));
    EXPECT_FALSE(whole.wish.region);
    EXPECT_EQ(whole.wish.use, imaging::ImageUse::asRows);
    EXPECT_FALSE(whole.wish.plan);
    const imaging::Rect rect { 1, -2, 3, 4 };
    const auto part = std::get<DecodeRequest>(*parseRequest(
        serialised(Request(DecodeRequest { { rect, imaging::ImageUse::toBeDrawn } }))));
    EXPECT_EQ(part.wish.region, rect);
    EXPECT_EQ(part.wish.use, imaging::ImageUse::toBeDrawn);
    const auto planned = std::get<DecodeRequest>(*parseRequest(serialised(
        Request(DecodeRequest { { std::nullopt, imaging::ImageUse::toBeDrawn, plan } }))));
    EXPECT_FALSE(planned.wish.region);
    ASSERT_TRUE(planned.wish.plan);
    EXPECT_EQ(planned.wish.plan->size, plan.size);
    EXPECT_EQ(planned.wish.plan->turnedSize, plan.turnedSize);
    EXPECT_EQ(planned.wish.plan->colors, plan.colors);
    EXPECT_EQ(planned.wish.plan->quality, plan.quality);
    EXPECT_EQ(planned.wish.plan->middle, plan.middle);
    for (const auto picture : { RowsRequest::Of::decoded, RowsRequest::Of::drawn }) {
        const auto rows = std::get<RowsRequest>(
            *parseRequest(serialised(Request(RowsRequest { rect, picture }))));
        EXPECT_EQ(rows.part, rect);
        EXPECT_EQ(rows.picture, picture);
        EXPECT_EQ(
            std::get<PlanesRequest>(*parseRequest(serialised(Request(PlanesRequest { picture }))))
                .picture,
            picture);
    }
    const auto draw = std::get<DrawRequest>(*parseRequest(serialised(Request(drawRequest))));
    EXPECT_EQ(draw.size, drawRequest.size);
    EXPECT_EQ(draw.colors, drawRequest.colors);
    EXPECT_EQ(draw.quality, drawRequest.quality);
    EXPECT_EQ(draw.orientation, drawRequest.orientation);
    EXPECT_FALSE(draw.mayBeDeferred);
    DrawRequest patient = drawRequest;
    patient.mayBeDeferred = true;
    EXPECT_TRUE(std::get<DrawRequest>(*parseRequest(serialised(Request(patient)))).mayBeDeferred);
}

TEST(Messages, repliesComeBackAsTheyWere)
{
    const Confinement confinement { .systemCallFilter = true, .landlockVersion = 7 };
    EXPECT_EQ(as<ReadyReply>(parseReply(serialised(Reply(ReadyReply { confinement })))).confinement,
        confinement);
    const auto opened = parseReply(
        serialised(Reply(OpenedReply { imaging::UniformType::tiff, { { 5, 6 }, deepColour } })));
    EXPECT_EQ(as<OpenedReply>(opened).type, imaging::UniformType::tiff);
    EXPECT_EQ(as<OpenedReply>(opened).header.size, (imaging::Size { 5, 6 }));
    EXPECT_EQ(as<OpenedReply>(opened).header.layout, deepColour);
    const auto decoded = parseReply(serialised(Reply(decodedReply())));
    EXPECT_EQ(as<DecodedReply>(decoded).size, (imaging::Size { 47, 33 }));
    EXPECT_EQ(as<DecodedReply>(decoded).attachmentsAddress, 8192U);
    EXPECT_EQ(as<DecodedReply>(decoded).attachmentsBytes, 12U);
    EXPECT_TRUE(as<DecodedReply>(decoded).isRegion);
    const auto given = parseReply(serialised(Reply(pixelsReply())));
    EXPECT_EQ(as<PixelsReply>(given).size, (imaging::Size { 47, 33 }));
    EXPECT_EQ(as<PixelsReply>(given).layout, deepColour);
    EXPECT_EQ(as<PixelsReply>(given).rowBytes, 400U);
    EXPECT_EQ(as<PixelsReply>(given).address, 4096U);
    EXPECT_FALSE(as<PixelsReply>(given).isDeferred());
    const auto deferred
        = parseReply(serialised(Reply(PixelsReply { { 47, 33 }, imaging::rgba8Premultiplied })));
    EXPECT_TRUE(as<PixelsReply>(deferred).isDeferred());
    const auto planes = parseReply(serialised(Reply(planesReply())));
    EXPECT_EQ(as<PlanesReply>(planes).size, (imaging::Size { 47, 33 }));
    EXPECT_EQ(as<PlanesReply>(planes).subsampling, (imaging::ycc::Subsampling { 2, 1 }));
    for (std::size_t plane = 0; plane < 3; ++plane) {
        const auto& [rowBytes, address] = as<PlanesReply>(planes).planes.at(plane);
        EXPECT_EQ(rowBytes, planesReply().planes.at(plane).rowBytes);
        EXPECT_EQ(address, planesReply().planes.at(plane).address);
    }
    const Error error { Error::Kind::truncated, "data is missing" };
    EXPECT_EQ(as<FailedReply>(parseReply(serialised(Reply(FailedReply { error })))).error, error);
}

TEST(Messages, aLongReasonStillFits)
{
    const auto bytes
        = serialised(Reply(FailedReply { { Error::Kind::io, std::string(1'000'000, 'x') } }));
    EXPECT_LE(bytes.size(), largestMessage);
    EXPECT_EQ(
        as<FailedReply>(parseReply(bytes)).error.detail.substr(0, 100), std::string(100, 'x'));
}

TEST(Messages, areRefusedWhenTheyAreCutOrLonger)
{
    for (const Reply& reply : { Reply(ReadyReply {}),
             Reply(OpenedReply { imaging::UniformType::png, { { 5, 6 }, deepColour } }),
             Reply(decodedReply()), Reply(pixelsReply()), Reply(planesReply()),
             Reply(FailedReply { { Error::Kind::io, "why" } }) }) {
        ByteBuffer bytes = serialised(reply);
        for (std::size_t length = 0; length < bytes.size(); ++length) {
            EXPECT_FALSE(parseReply(ByteSpan(bytes).first(length)))
                << reply.index() << ' ' << length;
        }
        bytes.push_back(std::byte { 0 });
        EXPECT_FALSE(parseReply(bytes)) << reply.index();
    }
    for (const Request& request :
        { Request(OpenRequest {}), Request(DecodeRequest { { imaging::Rect { 1, 2, 3, 4 } } }),
            Request(DecodeRequest { { std::nullopt, imaging::ImageUse::toBeDrawn, plan } }),
            Request(RowsRequest { { 1, 2, 3, 4 } }), Request(PlanesRequest {}),
            Request(drawRequest) }) {
        ByteBuffer bytes = serialised(request);
        for (std::size_t length = 0; length < bytes.size(); ++length) {
            EXPECT_FALSE(parseRequest(ByteSpan(bytes).first(length)));
        }
        bytes.push_back(std::byte { 0 });
        EXPECT_FALSE(parseRequest(bytes));
    }
}

struct BadRow {
    const char* name;
    void (*spoil)(PixelsReply& reply);
};

class BadReply : public testing::TestWithParam<BadRow> { };

TEST_P(BadReply, isRefused)
{
    PixelsReply reply = pixelsReply();
    ASSERT_TRUE(parseReply(serialised(Reply(reply))));
    GetParam().spoil(reply);
    EXPECT_FALSE(parseReply(serialised(Reply(reply))));
}

constexpr std::uint64_t huge = std::numeric_limits<std::uint64_t>::max();

INSTANTIATE_TEST_SUITE_P(With, BadReply,
    testing::Values(BadRow { "noWidth", [](PixelsReply& reply) { reply.size.width = 0; } },
        BadRow { "negativeHeight", [](PixelsReply& reply) { reply.size.height = -33; } },
        BadRow { "unknownModel",
            [](PixelsReply& reply) { reply.layout.model = static_cast<ColorModel>(3); } },
        BadRow { "unknownAlpha",
            [](PixelsReply& reply) { reply.layout.alpha = static_cast<AlphaInfo>(8); } },
        BadRow { "oddDepth", [](PixelsReply& reply) { reply.layout.bitsPerComponent = 12; } },
        BadRow { "shortRows", [](PixelsReply& reply) { reply.rowBytes = 374; } },
        BadRow { "noRows", [](PixelsReply& reply) { reply.rowBytes = 0; } },
        BadRow { "hugeRows", [](PixelsReply& reply) { reply.rowBytes = huge; } },
        BadRow { "rowsThatWrapAround",
            [](PixelsReply& reply) { reply.rowBytes = std::uint64_t { 1 } << 59U; } }),
    test::RowName());

TEST(Messages, planesThatCannotBeAreRefused)
{
    const auto isRefused = [](void (*spoil)(PlanesReply&)) {
        PlanesReply reply = planesReply();
        spoil(reply);
        return !parseReply(serialised(Reply(reply)));
    };
    EXPECT_TRUE(isRefused([](PlanesReply& reply) { reply.size.width = 0; }));
    EXPECT_TRUE(isRefused([](PlanesReply& reply) { reply.size.height = -33; }));
    EXPECT_TRUE(
        isRefused([](PlanesReply& reply) { reply.size.width = std::numeric_limits<int>::max(); }));
    EXPECT_TRUE(isRefused([](PlanesReply& reply) {
        reply.size = { 1, std::numeric_limits<int>::max() };
        reply.planes = { { { huge / 2, 0 }, { huge / 2, 0 }, { huge / 2, 0 } } };
    }));
    EXPECT_TRUE(isRefused([](PlanesReply& reply) { reply.subsampling.x = 0; }));
    EXPECT_TRUE(isRefused([](PlanesReply& reply) { reply.subsampling.y = 3; }));
    EXPECT_TRUE(isRefused([](PlanesReply& reply) { reply.planes[0].rowBytes = 46; }));
    EXPECT_TRUE(isRefused([](PlanesReply& reply) { reply.planes[1].rowBytes = 23; }));
    EXPECT_TRUE(isRefused([](PlanesReply& reply) { reply.planes[2].rowBytes = huge; }));
    EXPECT_FALSE(isRefused([](PlanesReply&) {}));
}

TEST(Messages, picturesThatCannotBeAreRefused)
{
    DecodedReply reply = decodedReply();
    reply.size.height = 0;
    EXPECT_FALSE(parseReply(serialised(Reply(reply))));
    reply = decodedReply();
    reply.layout.bitsPerComponent = 4;
    EXPECT_FALSE(parseReply(serialised(Reply(reply))));
}

TEST(Messages, drawingsThatCannotBeAreRefused)
{
    const auto isRefused = [](void (*spoil)(DrawRequest&)) {
        DrawRequest request = drawRequest;
        spoil(request);
        return !parseRequest(serialised(Request(request)));
    };
    EXPECT_TRUE(isRefused([](DrawRequest& request) { request.size.width = 0; }));
    EXPECT_TRUE(isRefused([](DrawRequest& request) { request.size.height = -1; }));
    EXPECT_TRUE(
        isRefused([](DrawRequest& request) { request.colors = static_cast<BitmapColors>(3); }));
    EXPECT_TRUE(isRefused([](DrawRequest& request) {
        request.quality = static_cast<imaging::InterpolationQuality>(4);
    }));
    EXPECT_TRUE(isRefused(
        [](DrawRequest& request) { request.orientation = static_cast<imaging::Orientation>(9); }));
    EXPECT_FALSE(isRefused([](DrawRequest&) {}));
}

TEST(Messages, yesIsOneAndNoIsZero)
{
    for (const Request& request : { Request(drawRequest), Request(RowsRequest { { 0, 0, 1, 1 } }),
             Request(PlanesRequest {}) }) {
        ByteBuffer bytes = serialised(request);
        bytes.back() = std::byte { 1 };
        EXPECT_TRUE(parseRequest(bytes));
        bytes.back() = std::byte { 2 };
        EXPECT_FALSE(parseRequest(bytes));
    }
}

TEST(Messages, plansThatCannotBeAreRefused)
{
    const auto isRefused = [](void (*spoil)(imaging::DrawingPlan&)) {
        imaging::DrawingPlan spoiled = plan;
        spoil(spoiled);
        return !parseRequest(serialised(
            Request(DecodeRequest { { std::nullopt, imaging::ImageUse::toBeDrawn, spoiled } })));
    };
    EXPECT_TRUE(isRefused([](imaging::DrawingPlan& bad) { bad.size.width = 0; }));
    EXPECT_TRUE(isRefused([](imaging::DrawingPlan& bad) { bad.turnedSize.height = -1; }));
    EXPECT_TRUE(isRefused([](imaging::DrawingPlan& bad) { bad.middle = {}; }));
    EXPECT_TRUE(
        isRefused([](imaging::DrawingPlan& bad) { bad.colors = static_cast<BitmapColors>(3); }));
    EXPECT_TRUE(isRefused([](imaging::DrawingPlan& bad) {
        bad.quality = static_cast<imaging::InterpolationQuality>(4);
    }));
    EXPECT_FALSE(isRefused([](imaging::DrawingPlan&) {}));
}

TEST(Messages, thoseWithoutContentAreToldApart)
{
    EXPECT_TRUE(
        std::holds_alternative<ShareRequest>(*parseRequest(serialised(Request(ShareRequest {})))));
    EXPECT_TRUE(std::holds_alternative<ReleaseRequest>(
        *parseRequest(serialised(Request(ReleaseRequest {})))));
    EXPECT_TRUE(
        std::holds_alternative<SharedReply>(*parseReply(serialised(Reply(SharedReply {})))));
    EXPECT_FALSE(parseReply(serialised(Request(ShareRequest {}))));
    EXPECT_FALSE(parseRequest(serialised(Reply(SharedReply {}))));
    EXPECT_FALSE(parseReply({}));
    EXPECT_FALSE(parseRequest({}));
}

ByteBuffer bytesOf(std::string_view text)
{
    const auto bytes = std::as_bytes(std::span(text));
    return { bytes.begin(), bytes.end() };
}

PictureAttachments fullAttachments()
{
    ColorSpace::Data data;
    data.kind = ColorSpace::Data::Kind::icc;
    data.model = ColorModel::cmyk;
    data.icc = bytesOf("profile");
    data.name = "Ink";
    PictureAttachments attached { ColorSpace::fromData(data), imaging::Orientation::leftBottom,
        {} };
    attached.properties.setKnownBlocks(
        { bytesOf("exif"), bytesOf("xmp"), {} }, imaging::Orientation::leftBottom);
    attached.properties.set(PropertyKey::exif, imaging::DictionaryPresent {});
    attached.properties.set(PropertyKey::pixelWidth, std::int64_t { 47 });
    attached.properties.set(PropertyKey::lossyCompressionQuality, 0.5);
    attached.properties.set(PropertyKey::profileName, std::string("Ink"));
    attached.properties.set(PropertyKey::resolution,
        *imaging::Resolution::create(11'811, 5906, imaging::Resolution::Unit::metre));
    imaging::FileTexts texts;
    texts.add({ .keyword = "Title", .content = bytesOf("A picture") });
    texts.add({ .keyword = "Title",
        .content = bytesOf("Ein Bild"),
        .international = imaging::InternationalKeyword { "de", "Titel" } });
    attached.properties.set(PropertyKey::png, std::move(texts));
    return attached;
}

TEST(Attachments, comeBackAsTheyWere)
{
    const PictureAttachments before = fullAttachments();
    const auto after = parseAttachments(serialised(before));
    ASSERT_TRUE(after);
    EXPECT_EQ(after->colorSpace, before.colorSpace);
    EXPECT_EQ(after->colorSpace.profileName(), "Ink");
    EXPECT_EQ(after->orientation, imaging::Orientation::leftBottom);
    EXPECT_EQ(after->properties.values(), before.properties.values());
    EXPECT_EQ(after->properties.blocks(), before.properties.blocks());
    EXPECT_EQ(after->properties.storedOrientation(), imaging::Orientation::leftBottom);
}

TEST(Attachments, knowTheSpacesWithoutAProfile)
{
    for (const ColorSpace& space : { ColorSpace::sRgb(), ColorSpace::deviceRgb(),
             ColorSpace::grey(), ColorSpace::deviceCmyk() }) {
        const auto after = parseAttachments(
            serialised(PictureAttachments { space, imaging::Orientation::topLeft, {} }));
        ASSERT_TRUE(after);
        EXPECT_EQ(after->colorSpace, space);
    }
}

TEST(Attachments, areRefusedWhenTheyAreCutOrLonger)
{
    ByteBuffer bytes = serialised(fullAttachments());
    for (std::size_t length = 0; length < bytes.size(); ++length) {
        EXPECT_FALSE(parseAttachments(ByteSpan(bytes).first(length))) << length;
    }
    bytes.push_back(std::byte { 0 });
    EXPECT_FALSE(parseAttachments(bytes));
}

TEST(Attachments, numbersThatStandForNothingAreRefused)
{
    const ByteBuffer good = serialised(fullAttachments());
    // The kind of space, its model, and the orientation behind "profile" and "Ink".
    for (const std::size_t at : { 0U, 1U, 3U + 8U + 7U + 8U + 3U }) {
        ByteBuffer bytes = good;
        bytes.at(at) = std::byte { 77 };
        EXPECT_FALSE(parseAttachments(bytes)) << at;
    }
}

/// Attachments with nothing but that value.
ByteBuffer attachmentsWith(PropertyKey key, const imaging::PropertyValue& value)
{
    PictureAttachments attached { ColorSpace::sRgb(), imaging::Orientation::topLeft, {} };
    attached.properties.set(key, value);
    return serialised(attached);
}

TEST(Attachments, resolutionsThatCannotBeAreRefused)
{
    const ByteBuffer good = attachmentsWith(PropertyKey::resolution,
        *imaging::Resolution::create(300, 150, imaging::Resolution::Unit::inch));
    ASSERT_TRUE(parseAttachments(good));
    // Two numbers and the unit, at the end.
    ByteBuffer bytes = good;
    bytes.back() = std::byte { 3 };
    EXPECT_FALSE(parseAttachments(bytes));
    for (const double bad : { 0.0, -300.0, 1e300, std::numeric_limits<double>::quiet_NaN(),
             std::numeric_limits<double>::infinity() }) {
        for (const std::size_t fromTheEnd : { 17U, 9U }) {
            bytes = good;
            std::memcpy(bytes.data() + bytes.size() - fromTheEnd, &bad, sizeof(bad));
            EXPECT_FALSE(parseAttachments(bytes)) << bad;
        }
    }
}

TEST(Attachments, moreTextThanAFileMayHoldIsRefused)
{
    imaging::FileTexts texts;
    while (texts.add({ .keyword = "Title" })) { }
    const ByteBuffer good = attachmentsWith(PropertyKey::png, texts);
    ASSERT_TRUE(parseAttachments(good));
    ByteWriter one;
    one.text("Title");
    one.bytes({});
    one.number(std::uint8_t { 0 });
    const ByteBuffer more = std::move(one).take();
    ByteBuffer bytes = good;
    bytes.insert(bytes.end(), more.begin(), more.end());
    const auto count = static_cast<std::uint32_t>(texts.list().size());
    const std::uint32_t tooMany = count + 1;
    auto* const countAt = bytes.data() + good.size() - count * more.size() - sizeof(count);
    ASSERT_EQ(std::memcmp(countAt, &count, sizeof(count)), 0);
    std::memcpy(countAt, &tooMany, sizeof(tooMany));
    EXPECT_FALSE(parseAttachments(bytes));

    bytes = good;
    bytes.back() = std::byte { 2 }; // neither international nor not
    EXPECT_FALSE(parseAttachments(bytes));
}

TEST(ByteReader, readsNothingPastTheEnd)
{
    const ByteBuffer bytes(3);
    ByteReader reader(bytes);
    EXPECT_EQ(reader.number<std::uint16_t>(), 0);
    EXPECT_TRUE(reader.isWhole());
    EXPECT_EQ(reader.number<std::uint16_t>(), 0);
    EXPECT_FALSE(reader.isWhole());
    EXPECT_EQ(reader.number<std::uint8_t>(), 0); // not the byte that is left
    EXPECT_FALSE(reader.isAtTheEnd());
}

TEST(ConfinementText, namesWhatIsInForce)
{
    EXPECT_EQ(confinementText(std::nullopt),
        "Pictures are decoded in the program itself: the decoder is missing.");
    EXPECT_EQ(confinementText(Confinement {}), "Pictures are decoded in a process of their own.");
    EXPECT_EQ(confinementText(Confinement { .memoryLimit = true }),
        "Pictures are decoded in a process of their own, confined by a memory limit.");
    EXPECT_EQ(confinementText(Confinement { true, 7, true, true, true }),
        "Pictures are decoded in a process of their own, confined by a system call filter, "
        "Landlock 7, no new privileges, a memory limit and a processor time limit.");
}

} // namespace
} // namespace vellumine::confined
