#include "confined/service/DecoderService.h"

#include "confined/protocol/PictureAttachments.h"
#include "confined/protocol/SharedMemory.h"

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

Result<FileDescriptor> sealed(const Image& image, imaging::ByteSpan attachments)
{
    auto memory = SharedMemory::create();
    if (!memory) {
        return tl::unexpected(memory.error());
    }
    const std::size_t rowBytes = image.row(0).size();
    const bool hasGaps = image.rowBytes() != rowBytes;
    const int step = hasGaps ? 1 : image.height();
    for (int y = 0; y < image.height(); y += step) {
        const imaging::ByteSpan rows(
            image.row(y).data(), rowBytes * static_cast<std::size_t>(step));
        if (auto appended = memory->append(rows); !appended) {
            return tl::unexpected(appended.error());
        }
    }
    if (auto appended = memory->append(attachments); !appended) {
        return tl::unexpected(appended.error());
    }
    return std::move(*memory).seal();
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
        m_held.reset();
        if (std::holds_alternative<ReleaseRequest>(request)) {
            return std::nullopt;
        }
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
    m_held.emplace(Held { picture->image,
        serialised(PictureAttachments {
            picture->image.colorSpace(), picture->orientation, std::move(picture->properties) }) });
    const Image& image = m_held->image;
    return { DecodedReply {
                 .size = image.size(),
                 .layout = image.layout(),
                 .rowBytes = image.rowBytes(),
                 .pixelsAddress = addressOf(image.row(0).data()),
                 .attachmentsAddress = addressOf(m_held->attachments.data()),
                 .attachmentsBytes = m_held->attachments.size(),
                 .isRegion = picture->isRegion,
             },
        std::nullopt };
}

DecoderService::Answer DecoderService::share() const
{
    if (!m_held) {
        return failed({ Error::Kind::io, "no picture is held" });
    }
    auto memory = sealed(m_held->image, m_held->attachments);
    if (!memory) {
        return failed(std::move(memory.error()));
    }
    return { SharedReply {}, std::move(*memory) };
}

} // namespace vellumine::confined
