#include "confined/client/HelperSession.h"

#include <unistd.h>

#include <cassert>
#include <utility>

namespace vellumine::confined {

using imaging::ColorSpace;
using imaging::Error;
using imaging::FileDescriptor;
using imaging::Image;
using imaging::ImageHeader;
using imaging::Limits;
using imaging::PictureWish;
using imaging::Rect;
using imaging::Result;
using imaging::UniformType;

namespace {

PixelsReply drawn(const DrawRequest& request)
{
    return { .size = request.size, .layout = imaging::rgba8Premultiplied };
}

bool mayBeDeferred(const Request& request)
{
    const auto* const draw = std::get_if<DrawRequest>(&request);
    return draw != nullptr && draw->mayBeDeferred;
}

} // namespace

Result<std::shared_ptr<HelperSession>> HelperSession::open(std::shared_ptr<DecoderPool> pool,
    FileDescriptor file, const Limits& limits, const std::stop_token& interruption)
{
    const auto size = file.size();
    if (!size) {
        return tl::unexpected(size.error());
    }
    const auto session = std::shared_ptr<HelperSession>(
        new HelperSession(std::move(pool), std::move(file), *size, limits, interruption));
    auto loan = session->m_pool->takeAny();
    if (!loan) {
        return tl::unexpected(loan.error());
    }
    session->m_loan = std::move(*loan);
    auto opened = session->openInHelper();
    if (!opened && session->mayTryAgain()) {
        opened = session->openInFreshHelper();
    }
    if (!opened) {
        return tl::unexpected(opened.error());
    }
    session->m_hasBeenOpened = true;
    return session;
}

HelperSession::~HelperSession()
{
    close();
}

Result<HelperSession::Decoded> HelperSession::decode(const PictureWish& wish)
{
    const std::scoped_lock lock(m_mutex);
    m_wish = wish;
    auto decoded = decodeInHelper(wish);
    if (!decoded && mayTryAgain()) {
        decoded = openInFreshHelper().and_then([&] { return decodeInHelper(wish); });
    }
    m_decoded = decoded ? std::optional(*decoded) : std::nullopt;
    return decoded;
}

Result<Image> HelperSession::rows(Rect part)
{
    const std::scoped_lock lock(m_mutex);
    assert(m_decoded && contains(m_decoded->size, part));
    return pixels(RowsRequest { part }, { .size = part.size(), .layout = m_decoded->layout },
        m_decoded->attachments.colorSpace);
}

Result<Image> HelperSession::draw(const DrawRequest& request, const ColorSpace& colorSpace)
{
    const std::scoped_lock lock(m_mutex);
    assert(m_decoded);
    return pixels(request, drawn(request), colorSpace);
}

Result<HelperSession::KeptDrawing> HelperSession::drawAndKeep(const DrawRequest& request)
{
    const std::scoped_lock lock(m_mutex);
    assert(m_decoded);
    if (m_pool->handover() != Handover::fetched) {
        return imaging::failure(Error::Kind::unsupported, "pictures are handed over");
    }
    DrawRequest patient = request;
    patient.mayBeDeferred = true;
    const auto given = askForPixels(patient, drawn(request));
    if (!given) {
        return tl::unexpected(given.error());
    }
    // Whether it may be fetched is known when some of it is.
    const auto firstRow = partOfDrawing(*given, { 0, 0, given->size.width, 1 }, ColorSpace::sRgb());
    if (!firstRow) {
        return tl::unexpected(firstRow.error());
    }
    return KeptDrawing { *given, m_drawings };
}

Result<Image> HelperSession::keptRows(
    const KeptDrawing& drawing, Rect part, const ColorSpace& colorSpace)
{
    const std::scoped_lock lock(m_mutex);
    assert(contains(drawing.given.size, part));
    if (!m_loan.process || drawing.number != m_drawings) {
        return imaging::failure(Error::Kind::io, "the drawn picture is gone");
    }
    return partOfDrawing(drawing.given, part, colorSpace);
}

Result<HelperSession::KeptPlanes> HelperSession::planes()
{
    const std::scoped_lock lock(m_mutex);
    assert(m_decoded);
    return planesOf(RowsRequest::Of::decoded, m_decoded->size);
}

Result<HelperSession::KeptPlanes> HelperSession::planes(const KeptDrawing& drawing)
{
    const std::scoped_lock lock(m_mutex);
    if (drawing.number != m_drawings) {
        return imaging::failure(Error::Kind::io, "the drawn picture is gone");
    }
    return planesOf(RowsRequest::Of::drawn, drawing.given.size);
}

Result<void> HelperSession::copyPlane(
    const KeptPlanes& planes, int plane, Rect part, std::uint8_t* to, std::size_t rowBytes)
{
    const std::scoped_lock lock(m_mutex);
    return copied(planes, plane, part, to, rowBytes);
}

HelperSession::HelperSession(std::shared_ptr<DecoderPool> pool, FileDescriptor file,
    std::uint64_t fileBytes, const Limits& limits, std::stop_token interruption)
    : m_pool(std::move(pool))
    , m_file(std::move(file))
    , m_fileBytes(fileBytes)
    , m_limits(limits)
    , m_interruption(std::move(interruption))
{
}

bool HelperSession::mayTryAgain() const
{
    return m_hasLostServant && !m_interruption.stop_requested();
}

Result<DecoderProcess::Answer> HelperSession::ask(
    const Request& request, const FileDescriptor* descriptor, const Allowance& allowance)
{
    if (!m_loan.process) {
        return imaging::failure(Error::Kind::io, "the helper is gone");
    }
    const auto deadline = Channel::Clock::now() + allowance.time;
    auto answer = m_loan.process->ask(request, descriptor, allowance, m_interruption);
    if (!answer) {
        const bool isOverdue = Channel::Clock::now() >= deadline;
        loseHelper();
        m_hasLostServant = m_hasLostServant && !isOverdue; // another one would take as long
        return answer;
    }
    const auto* const failed = std::get_if<FailedReply>(&answer->reply);
    if (failed != nullptr && failed->error.kind == Error::Kind::outOfMemory) {
        // It may have dropped whatever it had.
        ++m_decodings;
        ++m_drawings;
    }
    return answer;
}

Result<void> HelperSession::openInHelper()
{
    ++m_decodings;
    ++m_drawings;
    ::lseek(m_file.number(), 0, SEEK_SET); // another helper may have read it
    auto answer = ask(OpenRequest { m_limits }, &m_file, m_pool->patience().toOpen(m_fileBytes));
    if (!answer) {
        return tl::unexpected(answer.error());
    }
    if (const auto* const failed = std::get_if<FailedReply>(&answer->reply)) {
        giveHelperBack();
        return tl::unexpected(failed->error);
    }
    const auto* const opened = std::get_if<OpenedReply>(&answer->reply);
    if (opened == nullptr
        || !m_limits.check(opened->header.size.width, opened->header.size.height,
            opened->header.layout.bytesPerPixel())) {
        loseHelper();
        return imaging::failure(Error::Kind::io, "the helper makes no sense");
    }
    m_type = opened->type;
    m_header = opened->header;
    return {};
}

Result<void> HelperSession::openInFreshHelper()
{
    m_hasLostServant = false;
    auto loan = m_pool->takeFresh();
    if (!loan) {
        return tl::unexpected(loan.error());
    }
    m_loan = std::move(*loan);
    const UniformType type = m_type;
    const ImageHeader header = m_header;
    if (auto opened = openInHelper(); !opened) {
        return opened;
    }
    if (m_hasBeenOpened && (m_type != type || m_header.size != header.size)) {
        return imaging::failure(Error::Kind::io, "the file has changed");
    }
    return {};
}

Allowance HelperSession::allowance() const
{
    return m_pool->patience().toDecode(m_fileBytes, m_header);
}

Result<HelperSession::Decoded> HelperSession::decodeInHelper(const PictureWish& wish)
{
    ++m_decodings;
    ++m_drawings;
    auto answer = ask(DecodeRequest { wish }, nullptr, allowance());
    if (!answer) {
        return tl::unexpected(answer.error());
    }
    if (const auto* const failed = std::get_if<FailedReply>(&answer->reply)) {
        return tl::unexpected(failed->error);
    }
    const auto* const decoded = std::get_if<DecodedReply>(&answer->reply);
    if (decoded == nullptr
        || !isWhatWasAskedFor(*decoded, { m_header, wish.region, m_limits, m_fileBytes })) {
        loseHelper();
        return notWhatWasAskedFor();
    }
    return handedOver(
        [decoded](const DecoderProcess& process) { return fetchAttachments(process, *decoded); },
        [decoded](const FileDescriptor& memory) { return mapAttachments(memory, *decoded); })
        .map([decoded](PictureAttachments&& attachments) {
            return Decoded { decoded->size, decoded->layout, decoded->isRegion,
                std::move(attachments) };
        });
}

Result<Image> HelperSession::pixels(
    const Request& request, const PixelsReply& expected, const ColorSpace& colorSpace)
{
    auto image = pixelsFromHelper(request, expected, colorSpace);
    if (!image && mayTryAgain()) {
        image
            = openInFreshHelper()
                  .and_then([this] { return decodeInHelper(m_wish); })
                  .and_then([&](const Decoded& decoded) -> Result<Image> {
                      return decoded.layout == m_decoded->layout && decoded.size == m_decoded->size
                          ? pixelsFromHelper(request, expected, colorSpace)
                          : notWhatWasAskedFor();
                  });
    }
    return image;
}

Result<PixelsReply> HelperSession::askForPixels(const Request& request, const PixelsReply& expected)
{
    if (std::holds_alternative<DrawRequest>(request)) {
        ++m_drawings;
    }
    auto answer = ask(request, nullptr, allowance());
    if (!answer) {
        return tl::unexpected(answer.error());
    }
    if (const auto* const failed = std::get_if<FailedReply>(&answer->reply)) {
        return tl::unexpected(failed->error);
    }
    const auto* const given = std::get_if<PixelsReply>(&answer->reply);
    if (given == nullptr || given->size != expected.size || given->layout != expected.layout
        || (given->isDeferred() && !mayBeDeferred(request))) {
        loseHelper();
        return notWhatWasAskedFor();
    }
    return *given;
}

Result<Image> HelperSession::pixelsFromHelper(
    const Request& request, const PixelsReply& expected, const ColorSpace& colorSpace)
{
    const auto given = askForPixels(request, expected);
    if (!given) {
        return tl::unexpected(given.error());
    }
    return handedOver(
        [&](const DecoderProcess& process) { return fetchPixels(process, *given, colorSpace); },
        [&](const FileDescriptor& memory) { return mapPixels(memory, *given, colorSpace); });
}

Result<HelperSession::KeptPlanes> HelperSession::planesOf(
    RowsRequest::Of picture, imaging::Size size)
{
    if (m_pool->handover() != Handover::fetched) {
        return imaging::failure(Error::Kind::unsupported, "pictures are handed over");
    }
    auto answer = ask(PlanesRequest { picture }, nullptr, allowance());
    if (!answer) {
        return tl::unexpected(answer.error());
    }
    if (const auto* const failed = std::get_if<FailedReply>(&answer->reply)) {
        return tl::unexpected(failed->error);
    }
    const auto* const given = std::get_if<PlanesReply>(&answer->reply);
    if (given == nullptr || given->size != size) {
        loseHelper();
        return notWhatWasAskedFor();
    }
    const KeptPlanes planes { *given, picture, numberOf(picture) };
    // Whether they may be read is known when some of them is.
    std::uint8_t first = 0;
    return copied(planes, 0, { 0, 0, 1, 1 }, &first, 1).map([&planes] { return planes; });
}

Result<void> HelperSession::copied(
    const KeptPlanes& planes, int plane, Rect part, std::uint8_t* to, std::size_t rowBytes)
{
    const auto& [size, subsampling, all] = planes.given;
    assert(contains(imaging::ycc::samplesOf(size, subsampling, plane), part));
    if (m_interruption.stop_requested()) {
        return imaging::failure(Error::Kind::io, "a stop was requested");
    }
    if (!m_loan.process || planes.number != numberOf(planes.picture)) {
        return imaging::failure(Error::Kind::io, "the picture is gone");
    }
    const PlanesReply::Plane& from = all.at(static_cast<std::size_t>(plane));
    const auto above = static_cast<std::uint64_t>(part.y) * from.rowBytes;
    auto copied = m_loan.process->fetch(
        { from.address + above + static_cast<std::uint64_t>(part.x), from.rowBytes,
            static_cast<std::size_t>(part.width), part.height },
        reinterpret_cast<std::byte*>(to), rowBytes);
    if (!copied && copied.error().kind == Error::Kind::io) {
        loseHelper();
    }
    return copied;
}

std::uint64_t HelperSession::numberOf(RowsRequest::Of picture) const
{
    return picture == RowsRequest::Of::drawn ? m_drawings : m_decodings;
}

Result<Image> HelperSession::partOfDrawing(
    const PixelsReply& given, Rect part, const ColorSpace& colorSpace)
{
    if (!given.isDeferred()) {
        return fetchedPart(given, part, colorSpace);
    }
    return askForPixels(RowsRequest { part, RowsRequest::Of::drawn },
        { .size = part.size(), .layout = given.layout })
        .and_then([&](const PixelsReply& laidOut) {
            return fetchedPart(laidOut, { 0, 0, part.width, part.height }, colorSpace);
        });
}

Result<Image> HelperSession::fetchedPart(
    const PixelsReply& given, Rect part, const ColorSpace& colorSpace)
{
    const auto before = static_cast<std::uint64_t>(part.x)
        * static_cast<std::uint64_t>(given.layout.bytesPerPixel());
    auto image = fetchPixels(*m_loan.process,
        { .size = part.size(),
            .layout = given.layout,
            .rowBytes = given.rowBytes,
            .address
            = given.address + static_cast<std::uint64_t>(part.y) * given.rowBytes + before },
        colorSpace);
    if (!image && image.error().kind == Error::Kind::io) {
        loseHelper();
    }
    return image;
}

/// What the helper has ready, in one way or the other. A helper whose things are not where it said
/// is of no use any more.
template <typename Fetch, typename Map>
std::invoke_result_t<Map, const FileDescriptor&> HelperSession::handedOver(
    const Fetch& fetch, const Map& map)
{
    if (m_pool->handover() == Handover::fetched) {
        auto fetched = fetch(*m_loan.process);
        if (fetched || fetched.error().kind != Error::Kind::unsupported) {
            if (!fetched) {
                loseHelper();
            }
            return fetched;
        }
    }
    auto answer = ask(ShareRequest {}, nullptr, allowance());
    if (!answer) {
        return tl::unexpected(answer.error());
    }
    std::invoke_result_t<Map, const FileDescriptor&> mapped = notWhatWasAskedFor();
    if (std::holds_alternative<SharedReply>(answer->reply) && answer->descriptor) {
        mapped = map(*answer->descriptor);
    }
    if (!mapped) {
        loseHelper();
    }
    return mapped;
}

void HelperSession::close()
{
    const std::scoped_lock lock(m_mutex);
    giveHelperBack();
}

void HelperSession::giveHelperBack()
{
    if (m_loan.process) {
        m_loan.process->tell(ReleaseRequest {});
        m_pool->giveBack(std::move(m_loan));
    }
}

void HelperSession::loseHelper()
{
    m_loan.process.reset();
    m_hasLostServant = m_loan.hasServedBefore;
    if (!m_interruption.stop_requested()) {
        m_pool->countDeath();
    }
}

} // namespace vellumine::confined
