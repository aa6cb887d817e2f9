#include "confined/client/PictureHandover.h"

#include "confined/client/DecoderProcess.h"
#include "confined/protocol/Messages.h"
#include "confined/protocol/PictureAttachments.h"
#include "confined/protocol/SharedMemory.h"

#include <functional>
#include <utility>

namespace vellumine::confined {

using imaging::Error;
using imaging::FileDescriptor;
using imaging::Image;
using imaging::Result;
using imaging::SourcePicture;

namespace {

/// What is attached is stored in the file, most of it as it stands; what a PNG holds compressed is
/// bounded by its codec, well below the constant.
std::uint64_t mostAttachments(std::uint64_t fileBytes)
{
    constexpr std::uint64_t inflated = std::uint64_t { 64 } << 20U;
    return inflated + 2 * fileBytes;
}

Result<SourcePicture> described(const DecodedReply& reply, imaging::ByteSpan attachments,
    const std::function<Image(imaging::ColorSpace)>& image)
{
    auto attached = parseAttachments(attachments);
    if (!attached || attached->colorSpace.model() != reply.layout.model) {
        return notWhatWasAskedFor();
    }
    return SourcePicture { image(std::move(attached->colorSpace)), reply.isRegion,
        attached->orientation, std::move(attached->properties) };
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

Result<SourcePicture> fetchPicture(const DecoderProcess& process, const DecodedReply& reply)
{
    auto pixels = imaging::PixelBuffer::create(reply.size, reply.layout);
    if (!pixels) {
        return tl::unexpected(pixels.error());
    }
    imaging::ByteBuffer attachments(static_cast<std::size_t>(reply.attachmentsBytes));
    auto done
        = process.fetch(pixels->bytes(), pixels->rowBytes(), reply.pixelsAddress, reply.rowBytes);
    if (done) {
        done = process.fetch(
            attachments, attachments.size(), reply.attachmentsAddress, attachments.size());
    }
    if (!done) {
        return tl::unexpected(done.error());
    }
    return described(reply, attachments, [&pixels](imaging::ColorSpace&& space) {
        return Image(std::move(*pixels), std::move(space));
    });
}

Result<SourcePicture> mapPicture(const FileDescriptor& memory, const DecodedReply& reply)
{
    const std::size_t rowBytes = tightRowBytes(reply.size, reply.layout);
    const std::size_t pixelBytes = rowBytes * static_cast<std::size_t>(reply.size.height);
    const auto attachmentsBytes = static_cast<std::size_t>(reply.attachmentsBytes);
    const auto bytes = mapSealed(memory, pixelBytes + attachmentsBytes);
    if (!bytes) {
        return tl::unexpected(bytes.error());
    }
    return described(
        reply, { bytes->get() + pixelBytes, attachmentsBytes }, [&](imaging::ColorSpace&& space) {
            return Image(reply.size, reply.layout, rowBytes, std::move(space), *bytes);
        });
}

tl::unexpected<Error> notWhatWasAskedFor()
{
    return imaging::failure(Error::Kind::io, "the picture is not what was asked for");
}

} // namespace vellumine::confined
