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
using imaging::ImageHeader;
using imaging::Limits;
using imaging::Rect;
using imaging::Result;
using imaging::SourcePicture;

namespace {

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

bool isWhatWasAskedFor(const DecodedReply& reply, const ImageHeader& header,
    const std::optional<Rect>& region, const Limits& limits)
{
    return (!reply.isRegion || region)
        && reply.size == (reply.isRegion ? region->size() : header.size)
        && limits.check(reply.size.width, reply.size.height, reply.layout.bytesPerPixel())
        && reply.attachmentsBytes <= 2 * limits.maximumBytes;
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
