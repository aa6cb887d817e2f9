#include "confined/service/DecoderService.h"

#include "confined/protocol/PictureAttachments.h"
#include "confined/protocol/SharedMemory.h"

#include <cstring>
#include <new>

namespace vellumine::confined {

using imaging::Error;
using imaging::FileDescriptor;
using imaging::Image;
using imaging::Result;
using imaging::SourcePicture;

namespace {

DecoderService::Answer failed(Error error)
{
    return { FailedReply { std::move(error) }, std::nullopt };
}

/// The picture over pixels that can be handed over: itself, where its codec made them so.
Result<Image> shared(const Image& image)
{
    if (SharedMemory::behind(image.pixels()) != nullptr) {
        return image;
    }
    const std::size_t rowBytes = image.row(0).size();
    auto pixels = SharedMemory::allocate(rowBytes * static_cast<std::size_t>(image.height()));
    if (!pixels) {
        return imaging::failure(Error::Kind::outOfMemory, "no memory to share");
    }
    for (int y = 0; y < image.height(); ++y) {
        const auto row = image.row(y);
        std::memcpy(pixels.get() + static_cast<std::size_t>(y) * rowBytes, row.data(), row.size());
    }
    return Image(image.size(), image.layout(), rowBytes, image.colorSpace(), std::move(pixels));
}

/// Seals the picture's memory with everything in it. The picture is gone then: what is mapped for
/// writing cannot be sealed.
DecoderService::Answer handedOver(SourcePicture picture)
{
    auto image = shared(picture.image);
    if (!image) {
        return failed(std::move(image.error()));
    }
    picture.image = std::move(*image);
    image = imaging::failure(Error::Kind::io, "moved");
    const SharedMemory& memory = *SharedMemory::behind(picture.image.pixels());
    DecodedReply reply {
        .size = picture.image.size(),
        .layout = picture.image.layout(),
        .rowBytes = picture.image.rowBytes(),
        .pixelOffset = static_cast<std::uint64_t>(picture.image.pixels().get() - memory.begin()),
        .attachmentsOffset = memory.size(),
        .attachmentsBytes = 0,
        .isRegion = picture.isRegion,
    };
    auto descriptor = FileDescriptor::duplicateOf(memory.descriptor().number());
    if (!descriptor) {
        return failed(std::move(descriptor.error()));
    }
    const imaging::ByteBuffer attachments = serialised(PictureAttachments {
        picture.image.colorSpace(), picture.orientation, std::move(picture.properties) });
    reply.attachmentsBytes = attachments.size();
    {
        const SourcePicture released = std::move(picture);
    }
    if (auto sealed = appendAndSeal(*descriptor, reply.attachmentsOffset, attachments); !sealed) {
        return failed(std::move(sealed.error()));
    }
    return { reply, std::move(*descriptor) };
}

} // namespace

void DecoderService::serve(const Channel& channel)
{
    while (true) {
        auto message = channel.receive();
        if (!message) {
            return;
        }
        const auto request = parseRequest(message->bytes);
        if (!request) {
            return;
        }
        const Answer answered = answer(*request, std::move(message->descriptor));
        if (!channel.send(serialised(answered.reply),
                answered.descriptor ? &*answered.descriptor : nullptr)) {
            return;
        }
    }
}

DecoderService::Answer DecoderService::answer(
    const Request& request, std::optional<FileDescriptor> descriptor)
{
    try {
        if (const auto* const asked = std::get_if<OpenRequest>(&request)) {
            return open(*asked, std::move(descriptor));
        }
        return decode(std::get<DecodeRequest>(request));
    } catch (const std::bad_alloc&) {
        m_decoder.reset();
        return failed({ Error::Kind::outOfMemory, "no memory for the picture" });
    }
}

DecoderService::Answer DecoderService::open(
    const OpenRequest& request, std::optional<FileDescriptor> file)
{
    m_decoder.reset();
    if (!file) {
        return failed({ Error::Kind::io, "no file came along" });
    }
    auto decoder = imaging::decodingHere(std::move(*file), request.limits);
    if (!decoder) {
        return failed(std::move(decoder.error()));
    }
    m_decoder = std::move(*decoder);
    return { OpenedReply { m_decoder->type(), m_decoder->header() }, std::nullopt };
}

DecoderService::Answer DecoderService::decode(const DecodeRequest& request)
{
    if (!m_decoder) {
        return failed({ Error::Kind::io, "no picture is open" });
    }
    if (request.region && !contains(m_decoder->header().size, *request.region)) {
        return failed({ Error::Kind::malformed, "the part lies outside of the picture" });
    }
    auto picture = m_decoder->decode(request.region);
    if (!picture || !picture->isRegion) {
        m_decoder.reset(); // the file has served
    }
    if (!picture) {
        return failed(std::move(picture.error()));
    }
    return handedOver(std::move(*picture));
}

} // namespace vellumine::confined
