#include "confined/protocol/Messages.h"

#include "confined/protocol/ByteStream.h"

#include <algorithm>
#include <optional>

namespace vellumine::confined {

using imaging::AlphaInfo;
using imaging::ByteBuffer;
using imaging::ByteSpan;
using imaging::ColorModel;
using imaging::Error;
using imaging::PixelLayout;
using imaging::Rect;
using imaging::Result;
using imaging::Size;

namespace {

enum class Tag : std::uint8_t {
    open,
    decode,
    decodeRegion,
    rows,
    planes,
    draw,
    share,
    release,
    ready,
    opened,
    decoded,
    pixels,
    planesFound,
    shared,
    failed,
};

// Texts of errors are for developers; the rest of a very long one says nothing more.
constexpr std::size_t longestDetail = 512;

tl::unexpected<Error> malformed()
{
    return imaging::failure(Error::Kind::malformed, "the message makes no sense");
}

void write(ByteWriter& writer, Tag tag)
{
    writer.number(static_cast<std::uint8_t>(tag));
}

void write(ByteWriter& writer, Size size)
{
    writer.number(std::int32_t { size.width });
    writer.number(std::int32_t { size.height });
}

void write(ByteWriter& writer, const Rect& rect)
{
    writer.number(std::int32_t { rect.x });
    writer.number(std::int32_t { rect.y });
    write(writer, rect.size());
}

void write(ByteWriter& writer, const PixelLayout& layout)
{
    writer.number(static_cast<std::uint8_t>(layout.model));
    writer.number(static_cast<std::uint8_t>(layout.bitsPerComponent));
    writer.number(static_cast<std::uint8_t>(layout.alpha));
}

void write(ByteWriter& writer, const imaging::DrawingPlan& plan)
{
    write(writer, plan.size);
    write(writer, plan.turnedSize);
    writer.number(static_cast<std::uint8_t>(plan.colors));
    writer.number(static_cast<std::uint8_t>(plan.quality));
    write(writer, plan.middle);
}

Size readSize(ByteReader& reader)
{
    const auto width = reader.number<std::int32_t>();
    return { width, reader.number<std::int32_t>() };
}

Rect readRect(ByteReader& reader)
{
    const auto x = reader.number<std::int32_t>();
    const auto y = reader.number<std::int32_t>();
    const Size size = readSize(reader);
    return { x, y, size.width, size.height };
}

/// With numbers that may stand for nothing: isValid() tells.
PixelLayout readLayout(ByteReader& reader)
{
    PixelLayout layout;
    layout.model = static_cast<ColorModel>(reader.number<std::uint8_t>());
    layout.bitsPerComponent = reader.number<std::uint8_t>();
    layout.alpha = static_cast<AlphaInfo>(reader.number<std::uint8_t>());
    return layout;
}

bool hasPixels(Size size)
{
    return size.width > 0 && size.height > 0;
}

/// Whether rows have room, and an end.
bool haveRoom(std::uint64_t used, int rows, std::uint64_t rowBytes)
{
    const auto gaps = static_cast<std::uint64_t>(rows) - 1;
    return rowBytes >= used && (gaps == 0 || rowBytes <= (~std::uint64_t { 0 } - used) / gaps);
}

bool isConsistent(const PixelsReply& reply)
{
    if (reply.isDeferred()) {
        return true;
    }
    return haveRoom(tightRowBytes(reply.size, reply.layout), reply.size.height, reply.rowBytes);
}

bool isConsistent(const PlanesReply& reply)
{
    for (int plane = 0; plane < 3; ++plane) {
        const Size samples = imaging::ycc::samplesOf(reply.size, reply.subsampling, plane);
        if (!haveRoom(static_cast<std::uint64_t>(samples.width), samples.height,
                reply.planes.at(static_cast<std::size_t>(plane)).rowBytes)) {
            return false;
        }
    }
    return true;
}

Result<Reply> parseReady(ByteReader& reader)
{
    const auto version = reader.number<std::uint32_t>();
    Confinement found;
    found.systemCallFilter = reader.number<std::uint8_t>() != 0;
    found.landlockVersion = reader.number<std::int32_t>();
    found.noNewPrivileges = reader.number<std::uint8_t>() != 0;
    if (!reader.isAtTheEnd() || version != protocolVersion) {
        return malformed();
    }
    return ReadyReply { found };
}

Result<Reply> parseOpened(ByteReader& reader)
{
    const auto type = static_cast<imaging::UniformType>(reader.number<std::uint8_t>());
    const Size size = readSize(reader);
    const PixelLayout layout = readLayout(reader);
    const bool isKnown
        = std::ranges::find(imaging::allUniformTypes, type) != imaging::allUniformTypes.end();
    if (!reader.isAtTheEnd() || !isKnown || !hasPixels(size) || !isValid(layout)) {
        return malformed();
    }
    return OpenedReply { type, { size, layout } };
}

Result<Reply> parseDecoded(ByteReader& reader)
{
    DecodedReply reply;
    reply.size = readSize(reader);
    reply.layout = readLayout(reader);
    reply.isRegion = reader.number<std::uint8_t>() != 0;
    reply.attachmentsAddress = reader.number<std::uint64_t>();
    reply.attachmentsBytes = reader.number<std::uint64_t>();
    if (!reader.isAtTheEnd() || !hasPixels(reply.size) || !isValid(reply.layout)) {
        return malformed();
    }
    return reply;
}

Result<Reply> parsePixels(ByteReader& reader)
{
    PixelsReply reply;
    reply.size = readSize(reader);
    reply.layout = readLayout(reader);
    reply.rowBytes = reader.number<std::uint64_t>();
    reply.address = reader.number<std::uint64_t>();
    if (!reader.isAtTheEnd() || !hasPixels(reply.size) || !isValid(reply.layout)
        || !isConsistent(reply)) {
        return malformed();
    }
    return reply;
}

bool isShared(int pixels)
{
    return pixels == 1 || pixels == 2;
}

Result<Reply> parsePlanes(ByteReader& reader)
{
    PlanesReply reply;
    reply.size = readSize(reader);
    reply.subsampling.x = reader.number<std::uint8_t>();
    reply.subsampling.y = reader.number<std::uint8_t>();
    for (PlanesReply::Plane& plane : reply.planes) {
        plane.rowBytes = reader.number<std::uint64_t>();
        plane.address = reader.number<std::uint64_t>();
    }
    if (!reader.isAtTheEnd() || !hasPixels(reply.size) || !isShared(reply.subsampling.x)
        || !isShared(reply.subsampling.y) || !isConsistent(reply)) {
        return malformed();
    }
    return reply;
}

Result<Reply> parseFailed(ByteReader& reader)
{
    const auto kind = reader.number<std::uint8_t>();
    std::string detail = reader.text();
    if (!reader.isAtTheEnd() || kind > static_cast<std::uint8_t>(Error::Kind::encodingFailed)) {
        return malformed();
    }
    return FailedReply { Error { static_cast<Error::Kind>(kind), std::move(detail) } };
}

/// None where a number stands for no enumerator.
template <typename Enumeration>
std::optional<Enumeration> readEnumerator(ByteReader& reader, Enumeration last)
{
    const auto number = reader.number<std::uint8_t>();
    if (number > static_cast<std::uint8_t>(last)) {
        return std::nullopt;
    }
    return static_cast<Enumeration>(number);
}

OpenRequest readOpen(ByteReader& reader)
{
    imaging::Limits limits;
    limits.maximumPixels = reader.number<std::uint64_t>();
    limits.maximumSide = reader.number<std::uint32_t>();
    limits.maximumBytes = reader.number<std::uint64_t>();
    return { limits };
}

std::optional<imaging::DrawingPlan> readPlan(ByteReader& reader)
{
    imaging::DrawingPlan plan;
    plan.size = readSize(reader);
    plan.turnedSize = readSize(reader);
    const auto colors = readEnumerator(reader, imaging::BitmapColors::own);
    const auto quality = readEnumerator(reader, imaging::InterpolationQuality::high);
    plan.middle = readSize(reader);
    if (!colors || !quality || !hasPixels(plan.size) || !hasPixels(plan.turnedSize)
        || !hasPixels(plan.middle)) {
        return std::nullopt;
    }
    plan.colors = *colors;
    plan.quality = *quality;
    return plan;
}

enum class HasRegion { no, yes };

std::optional<Request> readDecode(ByteReader& reader, HasRegion hasRegion)
{
    const auto use = readEnumerator(reader, imaging::ImageUse::toBeDrawn);
    const auto plans = reader.number<std::uint8_t>();
    if (!use || plans > 1) {
        return std::nullopt;
    }
    DecodeRequest request { { .region = std::nullopt, .use = *use, .plan = std::nullopt } };
    if (hasRegion == HasRegion::yes) {
        request.wish.region = readRect(reader);
    }
    if (plans == 1) {
        request.wish.plan = readPlan(reader);
        if (!request.wish.plan) {
            return std::nullopt;
        }
    }
    return request;
}

std::optional<Request> readDraw(ByteReader& reader)
{
    const Size size = readSize(reader);
    const auto colors = readEnumerator(reader, imaging::BitmapColors::own);
    const auto quality = readEnumerator(reader, imaging::InterpolationQuality::high);
    const auto orientation = imaging::orientationFromTag(reader.number<std::uint8_t>());
    const auto mayBeDeferred = reader.number<std::uint8_t>();
    if (!colors || !quality || !orientation || !hasPixels(size) || mayBeDeferred > 1) {
        return std::nullopt;
    }
    return DrawRequest { size, *colors, *quality, *orientation, mayBeDeferred == 1 };
}

std::optional<Request> readRows(ByteReader& reader)
{
    const Rect part = readRect(reader);
    const auto picture = readEnumerator(reader, RowsRequest::Of::drawn);
    if (!picture) {
        return std::nullopt;
    }
    return RowsRequest { part, *picture };
}

std::optional<Request> readPlanes(ByteReader& reader)
{
    const auto picture = readEnumerator(reader, RowsRequest::Of::drawn);
    return picture ? std::optional<Request>(PlanesRequest { *picture }) : std::nullopt;
}

struct Serialiser {
    ByteWriter& writer;

    void operator()(const OpenRequest& request)
    {
        write(writer, Tag::open);
        writer.number(request.limits.maximumPixels);
        writer.number(request.limits.maximumSide);
        writer.number(request.limits.maximumBytes);
    }
    void operator()(const DecodeRequest& request)
    {
        const auto& [region, use, plan] = request.wish;
        write(writer, region ? Tag::decodeRegion : Tag::decode);
        writer.number(static_cast<std::uint8_t>(use));
        writer.number(static_cast<std::uint8_t>(plan.has_value()));
        if (region) {
            write(writer, *region);
        }
        if (plan) {
            write(writer, *plan);
        }
    }
    void operator()(const RowsRequest& request)
    {
        write(writer, Tag::rows);
        write(writer, request.part);
        writer.number(static_cast<std::uint8_t>(request.picture));
    }
    void operator()(const PlanesRequest& request)
    {
        write(writer, Tag::planes);
        writer.number(static_cast<std::uint8_t>(request.picture));
    }
    void operator()(const DrawRequest& request)
    {
        write(writer, Tag::draw);
        write(writer, request.size);
        writer.number(static_cast<std::uint8_t>(request.colors));
        writer.number(static_cast<std::uint8_t>(request.quality));
        writer.number(static_cast<std::uint8_t>(request.orientation));
        writer.number(static_cast<std::uint8_t>(request.mayBeDeferred));
    }
    void operator()(const ShareRequest& /*request*/) { write(writer, Tag::share); }
    void operator()(const ReleaseRequest& /*request*/) { write(writer, Tag::release); }
    void operator()(const ReadyReply& reply)
    {
        write(writer, Tag::ready);
        writer.number(protocolVersion);
        writer.number(static_cast<std::uint8_t>(reply.confinement.systemCallFilter));
        writer.number(reply.confinement.landlockVersion);
        writer.number(static_cast<std::uint8_t>(reply.confinement.noNewPrivileges));
    }
    void operator()(const OpenedReply& reply)
    {
        write(writer, Tag::opened);
        writer.number(static_cast<std::uint8_t>(reply.type));
        write(writer, reply.header.size);
        write(writer, reply.header.layout);
    }
    void operator()(const DecodedReply& reply)
    {
        write(writer, Tag::decoded);
        write(writer, reply.size);
        write(writer, reply.layout);
        writer.number(static_cast<std::uint8_t>(reply.isRegion));
        writer.number(reply.attachmentsAddress);
        writer.number(reply.attachmentsBytes);
    }
    void operator()(const PixelsReply& reply)
    {
        write(writer, Tag::pixels);
        write(writer, reply.size);
        write(writer, reply.layout);
        writer.number(reply.rowBytes);
        writer.number(reply.address);
    }
    void operator()(const PlanesReply& reply)
    {
        write(writer, Tag::planesFound);
        write(writer, reply.size);
        writer.number(static_cast<std::uint8_t>(reply.subsampling.x));
        writer.number(static_cast<std::uint8_t>(reply.subsampling.y));
        for (const PlanesReply::Plane& plane : reply.planes) {
            writer.number(plane.rowBytes);
            writer.number(plane.address);
        }
    }
    void operator()(const SharedReply& /*reply*/) { write(writer, Tag::shared); }
    void operator()(const FailedReply& reply)
    {
        write(writer, Tag::failed);
        writer.number(static_cast<std::uint8_t>(reply.error.kind));
        writer.text(std::string_view(reply.error.detail).substr(0, longestDetail));
    }
};

template <typename Message> ByteBuffer serialisedMessage(const Message& message)
{
    ByteWriter writer;
    std::visit(Serialiser { writer }, message);
    return std::move(writer).take();
}

} // namespace

std::size_t tightRowBytes(Size size, const PixelLayout& layout)
{
    return static_cast<std::size_t>(size.width) * static_cast<std::size_t>(layout.bytesPerPixel());
}

bool isValid(const PixelLayout& layout)
{
    return layout.model <= ColorModel::cmyk && layout.alpha <= AlphaInfo::only
        && (layout.bitsPerComponent == 8 || layout.bitsPerComponent == 16);
}

ByteBuffer serialised(const Request& request)
{
    return serialisedMessage(request);
}

ByteBuffer serialised(const Reply& reply)
{
    return serialisedMessage(reply);
}

Result<Request> parseRequest(ByteSpan message)
{
    ByteReader reader(message);
    std::optional<Request> request;
    switch (static_cast<Tag>(reader.number<std::uint8_t>())) {
    case Tag::open:
        request = readOpen(reader);
        break;
    case Tag::decode:
        request = readDecode(reader, HasRegion::no);
        break;
    case Tag::decodeRegion:
        request = readDecode(reader, HasRegion::yes);
        break;
    case Tag::rows:
        request = readRows(reader);
        break;
    case Tag::planes:
        request = readPlanes(reader);
        break;
    case Tag::draw:
        request = readDraw(reader);
        break;
    case Tag::share:
        request = ShareRequest {};
        break;
    case Tag::release:
        request = ReleaseRequest {};
        break;
    default:
        break;
    }
    if (!request || !reader.isAtTheEnd()) {
        return malformed();
    }
    return *request;
}

Result<Reply> parseReply(ByteSpan message)
{
    ByteReader reader(message);
    switch (static_cast<Tag>(reader.number<std::uint8_t>())) {
    case Tag::ready:
        return parseReady(reader);
    case Tag::opened:
        return parseOpened(reader);
    case Tag::decoded:
        return parseDecoded(reader);
    case Tag::pixels:
        return parsePixels(reader);
    case Tag::planesFound:
        return parsePlanes(reader);
    case Tag::shared:
        return reader.isAtTheEnd() ? Result<Reply>(SharedReply {}) : malformed();
    case Tag::failed:
        return parseFailed(reader);
    default:
        return malformed();
    }
}

} // namespace vellumine::confined
