#include "confined/client/ConfinedDecoder.h"

#include <unistd.h>

#include <utility>

namespace vellumine::confined {

using imaging::Error;
using imaging::FileDescriptor;
using imaging::ImageHeader;
using imaging::Limits;
using imaging::Rect;
using imaging::Result;
using imaging::SourcePicture;
using imaging::UniformType;

Result<std::unique_ptr<ConfinedDecoder>> ConfinedDecoder::open(std::shared_ptr<DecoderPool> pool,
    FileDescriptor file, const Limits& limits, const std::stop_token& interruption)
{
    const auto size = file.size();
    if (!size) {
        return tl::unexpected(size.error());
    }
    auto decoder = std::unique_ptr<ConfinedDecoder>(
        new ConfinedDecoder(std::move(pool), std::move(file), *size, limits, interruption));
    auto loan = decoder->m_pool->takeAny();
    if (!loan) {
        return tl::unexpected(loan.error());
    }
    decoder->m_loan = std::move(*loan);
    auto opened = decoder->openInHelper();
    if (!opened && decoder->mayTryAgain()) {
        opened = decoder->openInFreshHelper();
    }
    if (!opened) {
        return tl::unexpected(opened.error());
    }
    return decoder;
}

ConfinedDecoder::~ConfinedDecoder()
{
    giveHelperBack();
}

Result<SourcePicture> ConfinedDecoder::decode(const std::optional<Rect>& region)
{
    auto picture = decodeInHelper(region);
    if (!picture && mayTryAgain()) {
        const UniformType type = m_type;
        const ImageHeader header = m_header;
        if (auto opened = openInFreshHelper(); !opened) {
            return tl::unexpected(opened.error());
        }
        if (m_type != type || m_header.size != header.size) {
            return imaging::failure(Error::Kind::io, "the file has changed");
        }
        picture = decodeInHelper(region);
    }
    if (picture && !picture->isRegion) {
        giveHelperBack(); // nothing else will be asked for
    }
    return picture;
}

ConfinedDecoder::ConfinedDecoder(std::shared_ptr<DecoderPool> pool, FileDescriptor file,
    std::uint64_t fileBytes, const Limits& limits, std::stop_token interruption)
    : m_pool(std::move(pool))
    , m_file(std::move(file))
    , m_fileBytes(fileBytes)
    , m_limits(limits)
    , m_interruption(std::move(interruption))
{
}

bool ConfinedDecoder::mayTryAgain() const
{
    return m_hasLostServant && !m_interruption.stop_requested();
}

Result<DecoderProcess::Answer> ConfinedDecoder::ask(
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
    }
    return answer;
}

Result<void> ConfinedDecoder::openInHelper()
{
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

Result<void> ConfinedDecoder::openInFreshHelper()
{
    m_hasLostServant = false;
    auto loan = m_pool->takeFresh();
    if (!loan) {
        return tl::unexpected(loan.error());
    }
    m_loan = std::move(*loan);
    return openInHelper();
}

Result<SourcePicture> ConfinedDecoder::decodeInHelper(const std::optional<Rect>& region)
{
    auto answer = ask(
        DecodeRequest { region }, nullptr, m_pool->patience().toDecode(m_fileBytes, m_header));
    if (!answer) {
        return tl::unexpected(answer.error());
    }
    if (const auto* const failed = std::get_if<FailedReply>(&answer->reply)) {
        return tl::unexpected(failed->error);
    }
    const auto* const decoded = std::get_if<DecodedReply>(&answer->reply);
    auto picture = decoded != nullptr
            && isWhatWasAskedFor(*decoded, { m_header, region, m_limits, m_fileBytes })
        ? handedOver(*decoded)
        : notWhatWasAskedFor();
    if (m_loan.process && picture) {
        m_loan.process->tell(ReleaseRequest {});
    } else if (m_loan.process) {
        loseHelper();
    }
    return picture;
}

Result<SourcePicture> ConfinedDecoder::handedOver(const DecodedReply& reply)
{
    if (m_pool->handover() == Handover::fetched) {
        auto picture = fetchPicture(*m_loan.process, reply);
        if (picture || picture.error().kind != Error::Kind::unsupported) {
            return picture;
        }
    }
    auto answer = ask(ShareRequest {}, nullptr, m_pool->patience().toDecode(m_fileBytes, m_header));
    if (!answer) {
        return tl::unexpected(answer.error());
    }
    if (!std::holds_alternative<SharedReply>(answer->reply) || !answer->descriptor) {
        return notWhatWasAskedFor();
    }
    return mapPicture(*answer->descriptor, reply);
}

void ConfinedDecoder::giveHelperBack()
{
    if (m_loan.process) {
        m_pool->giveBack(std::move(m_loan));
    }
}

void ConfinedDecoder::loseHelper()
{
    m_loan.process.reset();
    m_hasLostServant = m_loan.hasServedBefore;
    if (!m_interruption.stop_requested()) {
        m_pool->countDeath();
    }
}

} // namespace vellumine::confined
