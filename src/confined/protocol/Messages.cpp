#include "confined/protocol/Messages.h"

#include "confined/protocol/ByteStream.h"

#include <algorithm>

namespace vellumine::confined {

using imaging::AlphaInfo;
using imaging::ByteBuffer;
using imaging::ByteSpan;
using imaging::ColorModel;
using imaging::Error;
using imaging::PixelLayout;
using imaging::Result;
using imaging::Size;

namespace {

enum class Tag : std::uint8_t {
    open,
    decode,
    decodeRegion,
    share,
    release,
    ready,
    opened,
    decoded,
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

void write(ByteWriter& writer, const PixelLayout& layout)
{
    writer.number(static_cast<std::uint8_t>(layout.model));
    writer.number(static_cast<std::uint8_t>(layout.bitsPerComponent));
    writer.number(static_cast<std::uint8_t>(layout.alpha));
}

Size readSize(ByteReader& reader)
{
    const auto width = reader.number<std::int32_t>();
    return { width, reader.number<std::int32_t>() };
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

/// Whether the rows have room, and an end.
bool isConsistent(const DecodedReply& reply)
{
    const std::uint64_t used = tightRowBytes(reply.size, reply.layout);
    const auto rows = static_cast<std::uint64_t>(reply.size.height);
    return reply.rowBytes >= used
        && (rows == 1 || reply.rowBytes <= (~std::uint64_t { 0 } - used) / (rows - 1));
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
    reply.rowBytes = reader.number<std::uint64_t>();
    reply.pixelsAddress = reader.number<std::uint64_t>();
    reply.attachmentsAddress = reader.number<std::uint64_t>();
    reply.attachmentsBytes = reader.number<std::uint64_t>();
    reply.isRegion = reader.number<std::uint8_t>() != 0;
    if (!reader.isAtTheEnd() || !hasPixels(reply.size) || !isValid(reply.layout)
        || !isConsistent(reply)) {
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
        write(writer, request.region ? Tag::decodeRegion : Tag::decode);
        if (request.region) {
            writer.number(std::int32_t { request.region->x });
            writer.number(std::int32_t { request.region->y });
            write(writer, request.region->size());
        }
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
        writer.number(reply.rowBytes);
        writer.number(reply.pixelsAddress);
        writer.number(reply.attachmentsAddress);
        writer.number(reply.attachmentsBytes);
        writer.number(static_cast<std::uint8_t>(reply.isRegion));
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
    const auto tag = static_cast<Tag>(reader.number<std::uint8_t>());
    Request request;
    if (tag == Tag::open) {
        imaging::Limits limits;
        limits.maximumPixels = reader.number<std::uint64_t>();
        limits.maximumSide = reader.number<std::uint32_t>();
        limits.maximumBytes = reader.number<std::uint64_t>();
        request = OpenRequest { limits };
    } else if (tag == Tag::decode) {
        request = DecodeRequest {};
    } else if (tag == Tag::share) {
        request = ShareRequest {};
    } else if (tag == Tag::release) {
        request = ReleaseRequest {};
    } else if (tag == Tag::decodeRegion) {
        const auto x = reader.number<std::int32_t>();
        const auto y = reader.number<std::int32_t>();
        const Size size = readSize(reader);
        request = DecodeRequest { imaging::Rect { x, y, size.width, size.height } };
    } else {
        return malformed();
    }
    if (!reader.isAtTheEnd()) {
        return malformed();
    }
    return request;
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
    case Tag::shared:
        return reader.isAtTheEnd() ? Result<Reply>(SharedReply {}) : malformed();
    case Tag::failed:
        return parseFailed(reader);
    default:
        return malformed();
    }
}

} // namespace vellumine::confined
