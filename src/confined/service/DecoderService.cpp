#include "confined/service/DecoderService.h"

#include "confined/protocol/PictureAttachments.h"
#include "confined/protocol/SharedMemory.h"
#include "imaging/BitmapContext.h"
#include "imaging/DeferredPixels.h"
#include "imaging/PictureWish.h"
#include "imaging/ycc/PlaneSource.h"

#include <cstdint>
#include <new>

namespace vellumine::confined {

using imaging::Error;
using imaging::FileDescriptor;
using imaging::Image;
using imaging::Result;

namespace {

DecoderService::Answer failed(Error error)
{
    return { FailedReply { std::move(error) }, std::nullopt };
}

std::uint64_t addressOf(const std::byte* memory)
{
    return reinterpret_cast<std::uintptr_t>(memory);
}

Result<void> append(SharedMemory& memory, const Image& image)
{
    const std::size_t rowBytes = image.row(0).size();
    const bool hasGaps = image.rowBytes() != rowBytes;
    const int step = hasGaps ? 1 : image.height();
    for (int y = 0; y < image.height(); y += step) {
        const imaging::ByteSpan rows(
            image.row(y).data(), rowBytes * static_cast<std::size_t>(step));
        if (auto appended = memory.append(rows); !appended) {
            return appended;
        }
    }
    return {};
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
        const auto answered = answer(*request, std::move(message->descriptor));
        if (answered
            && !channel.send(serialised(answered->reply),
                answered->descriptor ? &*answered->descriptor : nullptr)) {
            return;
        }
    }
}

std::optional<DecoderService::Answer> DecoderService::answer(
    const Request& request, std::optional<FileDescriptor> descriptor)
{
    try {
        if (std::holds_alternative<ShareRequest>(request)) {
            return share();
        }
        m_given = {};
        if (const auto* const asked = std::get_if<RowsRequest>(&request)) {
            return rows(*asked);
        }
        if (const auto* const asked = std::get_if<PlanesRequest>(&request)) {
            return planes(*asked);
        }
        if (const auto* const asked = std::get_if<DrawRequest>(&request)) {
            return draw(*asked);
        }
        m_picture.reset();
        m_drawn.reset();
        if (const auto* const asked = std::get_if<OpenRequest>(&request)) {
            return open(*asked, std::move(descriptor));
        }
        if (const auto* const asked = std::get_if<DecodeRequest>(&request)) {
            return decode(*asked);
        }
        return std::nullopt;
    } catch (const std::bad_alloc&) {
        m_decoder.reset();
        m_picture.reset();
        m_drawn.reset();
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
    m_limits = request.limits;
    return { OpenedReply { m_decoder->type(), m_decoder->header() }, std::nullopt };
}

DecoderService::Answer DecoderService::decode(const DecodeRequest& request)
{
    if (!m_decoder) {
        return failed({ Error::Kind::io, "no picture is open" });
    }
    const auto& region = request.wish.region;
    if (region && !contains(m_decoder->header().size, *region)) {
        return failed({ Error::Kind::malformed, "the part lies outside of the picture" });
    }
    auto picture = m_decoder->decode(request.wish);
    if (!picture || !picture->isRegion) {
        m_decoder.reset(); // the file has served
    }
    if (!picture) {
        return failed(std::move(picture.error()));
    }
    m_picture = std::move(picture->image);
    const auto& attachments = m_given.emplace<imaging::ByteBuffer>(serialised(PictureAttachments {
        m_picture->colorSpace(), picture->orientation, std::move(picture->properties) }));
    return { DecodedReply {
                 .size = m_picture->size(),
                 .layout = m_picture->layout(),
                 .isRegion = picture->isRegion,
                 .attachmentsAddress = addressOf(attachments.data()),
                 .attachmentsBytes = attachments.size(),
             },
        std::nullopt };
}

const std::optional<Image>& DecoderService::picture(RowsRequest::Of which) const
{
    return which == RowsRequest::Of::drawn ? m_drawn : m_picture;
}

DecoderService::Answer DecoderService::planes(const PlanesRequest& request) const
{
    const auto& image = picture(request.picture);
    const auto source = image && !image->hasRows() ? image->deferred()->planes() : nullptr;
    const imaging::ycc::YccPlanes* const here = source ? source->here() : nullptr;
    if (here == nullptr) {
        return failed({ Error::Kind::unsupported, "the picture is not in planes" });
    }
    PlanesReply reply { .size = here->size(), .subsampling = here->subsampling(), .planes = {} };
    for (int plane = 0; plane < 3; ++plane) {
        reply.planes.at(static_cast<std::size_t>(plane))
            = { here->rowBytes(plane), reinterpret_cast<std::uintptr_t>(here->row(plane, 0)) };
    }
    return { reply, std::nullopt };
}

DecoderService::Answer DecoderService::rows(const RowsRequest& request)
{
    const auto& picture = this->picture(request.picture);
    if (!picture || !contains(picture->size(), request.part)) {
        return failed({ Error::Kind::io, "there is no such part" });
    }
    return given(picture->rows(request.part));
}

DecoderService::Answer DecoderService::draw(const DrawRequest& request)
{
    if (!m_picture) {
        return failed({ Error::Kind::io, "no picture is there to be drawn" });
    }
    if (auto allowed = m_limits.check(
            request.size.width, request.size.height, imaging::rgba8Premultiplied.bytesPerPixel());
        !allowed) {
        return failed(std::move(allowed.error()));
    }
    m_drawn.reset(); // its memory may serve this one
    auto image = drawnUpright(*m_picture,
        { request.size, colorSpaceOf(request.colors, m_picture->colorSpace()), request.quality,
            request.orientation });
    if (image && !request.mayBeDeferred) {
        image = image->withRows();
    }
    if (image) {
        m_drawn = *image;
    }
    return given(std::move(image));
}

DecoderService::Answer DecoderService::given(Result<Image> pixels)
{
    if (!pixels) {
        return failed(std::move(pixels.error()));
    }
    if (!pixels->hasRows()) {
        return { PixelsReply { .size = pixels->size(), .layout = pixels->layout() }, std::nullopt };
    }
    const Image& image = m_given.emplace<Image>(std::move(*pixels));
    return { PixelsReply {
                 .size = image.size(),
                 .layout = image.layout(),
                 .rowBytes = image.rowBytes(),
                 .address = addressOf(image.row(0).data()),
             },
        std::nullopt };
}

DecoderService::Answer DecoderService::share() const
{
    auto memory = SharedMemory::create();
    if (!memory) {
        return failed(std::move(memory.error()));
    }
    Result<void> appended = imaging::failure(Error::Kind::io, "nothing was given");
    if (const auto* const image = std::get_if<Image>(&m_given)) {
        appended = append(*memory, *image);
    } else if (const auto* const attachments = std::get_if<imaging::ByteBuffer>(&m_given)) {
        appended = memory->append(*attachments);
    }
    if (!appended) {
        return failed(std::move(appended.error()));
    }
    auto sealed = std::move(*memory).seal();
    if (!sealed) {
        return failed(std::move(sealed.error()));
    }
    return { SharedReply {}, std::move(*sealed) };
}

} // namespace vellumine::confined
