#include "confined/client/ConfinedDecoders.h"

#include "confined/client/DecoderProcess.h"
#include "confined/protocol/PictureAttachments.h"
#include "confined/protocol/SharedMemory.h"
#include "imaging/SourceDecoder.h"

#include <unistd.h>

#include <functional>
#include <mutex>
#include <utility>
#include <vector>

namespace vellumine::confined {

using imaging::Error;
using imaging::FileDescriptor;
using imaging::Image;
using imaging::ImageHeader;
using imaging::ImageSource;
using imaging::Limits;
using imaging::Rect;
using imaging::Result;
using imaging::SourcePicture;
using imaging::UniformType;

namespace {

constexpr const char* helperName = "vellumine-decoder";

tl::unexpected<Error> nonsense()
{
    return imaging::failure(Error::Kind::io, "the picture is not what was asked for");
}

/// Whether the answer is to the question.
bool isWhatWasAskedFor(const DecodedReply& reply, const ImageHeader& header,
    const std::optional<Rect>& region, const Limits& limits)
{
    return (!reply.isRegion || region)
        && reply.size == (reply.isRegion ? region->size() : header.size)
        && limits.check(reply.size.width, reply.size.height, reply.layout.bytesPerPixel())
        && reply.attachmentsBytes <= 2 * limits.maximumBytes;
}

Result<SourcePicture> described(const DecodedReply& reply, imaging::ByteSpan attachments,
    const std::function<Image(imaging::ColorSpace)>& image)
{
    auto attached = parseAttachments(attachments);
    if (!attached || attached->colorSpace.model() != reply.layout.model) {
        return nonsense();
    }
    return SourcePicture { image(std::move(attached->colorSpace)), reply.isRegion,
        attached->orientation, std::move(attached->properties) };
}

/// Reads the picture from the helper's memory.
Result<SourcePicture> fetched(const DecoderProcess& process, const DecodedReply& reply)
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

/// The picture in memory that was handed over.
Result<SourcePicture> mapped(const FileDescriptor& memory, const DecodedReply& reply)
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

} // namespace

/// The helpers, and what is known about them.
class ConfinedDecoders::Pool {
public:
    /// A helper on loan. It goes back only where it is said to be of use still.
    struct Loan {
        std::unique_ptr<DecoderProcess> process;
        bool hasServedBefore = false;
    };

    Pool(std::filesystem::path executable, Patience patience, Handover handover)
        : m_executable(std::move(executable))
        , m_patience(patience)
        , m_handover(handover)
    {
    }

    [[nodiscard]] const Patience& patience() const { return m_patience; }
    [[nodiscard]] Handover handover() const { return m_handover; }

    Result<Loan> takeAny()
    {
        while (auto idle = takeIdle()) {
            if (idle->isAlive()) {
                return Loan { std::move(idle), true };
            }
            countDeath();
        }
        return takeFresh();
    }

    [[nodiscard]] Result<Loan> takeFresh() const
    {
        return DecoderProcess::start(m_executable)
            .map([](std::unique_ptr<DecoderProcess>&& process) {
                return Loan { std::move(process), false };
            });
    }

    void giveBack(Loan loan)
    {
        const std::scoped_lock lock(m_mutex);
        m_idle.push_back(std::move(loan.process));
    }

    void countDeath()
    {
        const std::scoped_lock lock(m_mutex);
        ++m_deaths;
    }

    [[nodiscard]] std::size_t deathCount() const
    {
        const std::scoped_lock lock(m_mutex);
        return m_deaths;
    }

    void releaseIdle()
    {
        std::vector<std::unique_ptr<DecoderProcess>> ending;
        const std::scoped_lock lock(m_mutex);
        ending.swap(m_idle);
    }

private:
    std::unique_ptr<DecoderProcess> takeIdle()
    {
        const std::scoped_lock lock(m_mutex);
        if (m_idle.empty()) {
            return nullptr;
        }
        auto process = std::move(m_idle.back());
        m_idle.pop_back();
        return process;
    }

    const std::filesystem::path m_executable;
    const Patience m_patience;
    const Handover m_handover;
    mutable std::mutex m_mutex;
    std::vector<std::unique_ptr<DecoderProcess>> m_idle;
    std::size_t m_deaths = 0;
};

/// One file, and the helper that has it open.
class ConfinedDecoders::Decoder final : public imaging::SourceDecoder {
public:
    static Result<std::unique_ptr<Decoder>> open(std::shared_ptr<Pool> pool, FileDescriptor file,
        const Limits& limits, const std::stop_token& interruption)
    {
        const auto size = file.size();
        if (!size) {
            return tl::unexpected(size.error());
        }
        auto decoder = std::unique_ptr<Decoder>(
            new Decoder(std::move(pool), std::move(file), *size, limits, interruption));
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

    ~Decoder() override { giveHelperBack(); }
    Decoder(const Decoder&) = delete;
    Decoder& operator=(const Decoder&) = delete;

    [[nodiscard]] UniformType type() const override { return m_type; }
    [[nodiscard]] const ImageHeader& header() const override { return m_header; }

    Result<SourcePicture> decode(const std::optional<Rect>& region) override
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

private:
    Decoder(std::shared_ptr<Pool> pool, FileDescriptor file, std::uint64_t fileBytes,
        const Limits& limits, std::stop_token interruption)
        : m_pool(std::move(pool))
        , m_file(std::move(file))
        , m_fileBytes(fileBytes)
        , m_limits(limits)
        , m_interruption(std::move(interruption))
    {
    }

    /// Whether a helper died over this file that had served others: one of them may have harmed it.
    [[nodiscard]] bool mayTryAgain() const
    {
        return m_hasLostServant && !m_interruption.stop_requested();
    }

    Result<DecoderProcess::Answer> ask(
        const Request& request, const FileDescriptor* descriptor, const Allowance& allowance)
    {
        if (!m_loan.process) {
            return imaging::failure(Error::Kind::io, "the helper is gone");
        }
        const auto deadline = Channel::Clock::now() + allowance.time;
        auto answer = m_loan.process->ask(request, descriptor, allowance, m_interruption);
        if (!answer) {
            const bool isOverdue = Channel::Clock::now() >= deadline;
            m_hasLostServant = m_loan.hasServedBefore && !isOverdue;
            loseHelper();
        }
        return answer;
    }

    Result<void> openInHelper()
    {
        ::lseek(m_file.number(), 0, SEEK_SET); // another helper may have read it
        auto answer
            = ask(OpenRequest { m_limits }, &m_file, m_pool->patience().toOpen(m_fileBytes));
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

    Result<void> openInFreshHelper()
    {
        m_hasLostServant = false;
        auto loan = m_pool->takeFresh();
        if (!loan) {
            return tl::unexpected(loan.error());
        }
        m_loan = std::move(*loan);
        return openInHelper();
    }

    Result<SourcePicture> decodeInHelper(const std::optional<Rect>& region)
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
        auto picture = decoded != nullptr && isWhatWasAskedFor(*decoded, m_header, region, m_limits)
            ? handedOver(*decoded)
            : nonsense();
        if (m_loan.process && picture) {
            m_loan.process->tell(ReleaseRequest {});
        } else if (m_loan.process) {
            loseHelper();
        }
        return picture;
    }

    Result<SourcePicture> handedOver(const DecodedReply& reply)
    {
        if (m_pool->handover() == Handover::fetched) {
            auto picture = fetched(*m_loan.process, reply);
            if (picture || picture.error().kind != Error::Kind::unsupported) {
                return picture;
            }
        }
        auto answer
            = ask(ShareRequest {}, nullptr, m_pool->patience().toDecode(m_fileBytes, m_header));
        if (!answer) {
            return tl::unexpected(answer.error());
        }
        if (!std::holds_alternative<SharedReply>(answer->reply) || !answer->descriptor) {
            return nonsense();
        }
        return mapped(*answer->descriptor, reply);
    }

    void giveHelperBack()
    {
        if (m_loan.process) {
            m_pool->giveBack(std::move(m_loan));
        }
    }

    void loseHelper()
    {
        m_loan.process.reset();
        if (!m_interruption.stop_requested()) {
            m_pool->countDeath();
        }
    }

    std::shared_ptr<Pool> m_pool;
    FileDescriptor m_file;
    std::uint64_t m_fileBytes;
    Limits m_limits;
    std::stop_token m_interruption;
    Pool::Loan m_loan;
    bool m_hasLostServant = false;
    UniformType m_type {};
    ImageHeader m_header;
};

ConfinedDecoders::ConfinedDecoders(
    std::filesystem::path executable, Patience patience, Handover handover)
    : m_pool(std::make_shared<Pool>(std::move(executable), patience, handover))
{
}

ConfinedDecoders::~ConfinedDecoders() = default;

std::optional<std::filesystem::path> ConfinedDecoders::findExecutable(
    const std::filesystem::path& programFolder)
{
    for (const std::filesystem::path& candidate :
        { programFolder / helperName, programFolder / "../libexec/vellumine" / helperName }) {
        if (::access(candidate.c_str(), X_OK) == 0) {
            return candidate;
        }
    }
    return std::nullopt;
}

std::shared_ptr<ConfinedDecoders> ConfinedDecoders::ofProgram(
    const std::filesystem::path& programFolder)
{
    auto executable = findExecutable(programFolder);
    return executable ? std::make_shared<ConfinedDecoders>(std::move(*executable)) : nullptr;
}

Result<ImageSource> ConfinedDecoders::open(
    const std::filesystem::path& path, const Limits& limits, const std::stop_token& interruption)
{
    return FileDescriptor::openForReading(path)
        .and_then([&](FileDescriptor&& file) {
            return Decoder::open(m_pool, std::move(file), limits, interruption);
        })
        .map([](std::unique_ptr<Decoder>&& decoder) {
            return ImageSource::create(std::move(decoder));
        });
}

void ConfinedDecoders::releaseIdle()
{
    m_pool->releaseIdle();
}

std::size_t ConfinedDecoders::deathCount() const
{
    return m_pool->deathCount();
}

std::optional<Confinement> ConfinedDecoders::confinement()
{
    auto loan = m_pool->takeAny();
    if (!loan) {
        return std::nullopt;
    }
    const Confinement found = loan->process->confinement();
    m_pool->giveBack(std::move(*loan));
    return found;
}

std::function<Result<ImageSource>(
    const std::filesystem::path& path, const Limits& limits, const std::stop_token& interruption)>
opener(std::shared_ptr<ConfinedDecoders> decoders)
{
    return [decoders = std::move(decoders)](const std::filesystem::path& path, const Limits& limits,
               const std::stop_token& interruption) {
        return decoders->open(path, limits, interruption);
    };
}

} // namespace vellumine::confined
