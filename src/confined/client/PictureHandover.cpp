#include "confined/client/PictureHandover.h"

#include "confined/client/DecoderProcess.h"
#include "confined/protocol/Messages.h"
#include "confined/protocol/SharedMemory.h"

#include <memory>
#include <utility>

namespace vellumine::confined {

using imaging::ColorSpace;
using imaging::Error;
using imaging::FileDescriptor;
using imaging::Image;
using imaging::Result;

namespace {

/// What is attached is stored in the file, most of it as it stands; what a PNG holds compressed is
/// bounded by its codec, well below the constant.
std::uint64_t mostAttachments(std::uint64_t fileBytes)
{
    constexpr std::uint64_t inflated = std::uint64_t { 64 } << 20U;
    return inflated + 2 * fileBytes;
}

Result<PictureAttachments> parsed(const DecodedReply& reply, imaging::ByteSpan bytes)
{
    auto attachments = parseAttachments(bytes);
    if (!attachments || attachments->colorSpace.model() != reply.layout.model) {
        return notWhatWasAskedFor();
    }
    return attachments;
}

} // namespace

bool isWhatWasAskedFor(const DecodedReply& reply, const PictureQuestion& question)
{
    const auto& [header, region, limits, fileBytes] = question;
    return (!reply.isRegion || region)
        && reply.size == (reply.isRegion ? region->size() : header.size)
        && limits.check(reply.size.width, reply.size.height, reply.layout.bytesPerPixel())
        && reply.attachmentsBytes <= mostAttachments(fileBytes);
}

Result<PictureAttachments> fetchAttachments(
    const DecoderProcess& process, const DecodedReply& reply)
{
    imaging::ByteBuffer bytes(static_cast<std::size_t>(reply.attachmentsBytes));
    const DecoderProcess::Rows all { reply.attachmentsAddress, bytes.size(), bytes.size() };
    if (auto done = process.fetch(all, bytes.data(), bytes.size()); !done) {
        return tl::unexpected(done.error());
    }
    return parsed(reply, bytes);
}

Result<Image> fetchPixels(
    const DecoderProcess& process, const PixelsReply& reply, const ColorSpace& colorSpace)
{
    auto pixels = imaging::PixelBuffer::create(reply.size, reply.layout);
    if (!pixels) {
        return tl::unexpected(pixels.error());
    }
    const DecoderProcess::Rows rows { reply.address, reply.rowBytes,
        tightRowBytes(reply.size, reply.layout), reply.size.height };
    if (auto done = process.fetch(rows, pixels->bytes().data(), pixels->rowBytes()); !done) {
        return tl::unexpected(done.error());
    }
    return Image(std::move(*pixels), colorSpace);
}

Result<PictureAttachments> mapAttachments(const FileDescriptor& memory, const DecodedReply& reply)
{
    const auto size = static_cast<std::size_t>(reply.attachmentsBytes);
    const auto bytes = mapSealed(memory, size);
    if (!bytes) {
        return tl::unexpected(bytes.error());
    }
    return parsed(reply, { bytes->get(), size });
}

Result<Image> mapPixels(
    const FileDescriptor& memory, const PixelsReply& reply, const ColorSpace& colorSpace)
{
    const std::size_t rowBytes = tightRowBytes(reply.size, reply.layout);
    return mapSealed(memory, rowBytes * static_cast<std::size_t>(reply.size.height))
        .map([&](std::shared_ptr<const std::byte[]>&& bytes) {
            return Image(reply.size, reply.layout, rowBytes, colorSpace, std::move(bytes));
        });
}

tl::unexpected<Error> notWhatWasAskedFor()
{
    return imaging::failure(Error::Kind::io, "the picture is not what was asked for");
}

} // namespace vellumine::confined
