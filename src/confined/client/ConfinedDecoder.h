#pragma once

#include "confined/client/DecoderPool.h"
#include "imaging/SourceDecoder.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <stop_token>

namespace vellumine::confined {

/// One file, and the helper that has it open.
class ConfinedDecoder final : public imaging::SourceDecoder {
public:
    /// Fails with Io when there is no helper, when it dies or is overdue over the file, and when a
    /// stop is requested; else as imaging::decodingHere() does.
    [[nodiscard]] static imaging::Result<std::unique_ptr<ConfinedDecoder>> open(
        std::shared_ptr<DecoderPool> pool, imaging::FileDescriptor file,
        const imaging::Limits& limits, const std::stop_token& interruption);

    ~ConfinedDecoder() override;
    ConfinedDecoder(const ConfinedDecoder&) = delete;
    ConfinedDecoder& operator=(const ConfinedDecoder&) = delete;

    [[nodiscard]] imaging::UniformType type() const override { return m_type; }
    [[nodiscard]] const imaging::ImageHeader& header() const override { return m_header; }

    imaging::Result<imaging::SourcePicture> decode(
        const std::optional<imaging::Rect>& region) override;

private:
    ConfinedDecoder(std::shared_ptr<DecoderPool> pool, imaging::FileDescriptor file,
        std::uint64_t fileBytes, const imaging::Limits& limits, std::stop_token interruption);

    imaging::Result<DecoderProcess::Answer> ask(const Request& request,
        const imaging::FileDescriptor* descriptor, const Allowance& allowance);
    imaging::Result<void> openInHelper();
    imaging::Result<void> openInFreshHelper();
    imaging::Result<imaging::SourcePicture> decodeInHelper(
        const std::optional<imaging::Rect>& region);
    imaging::Result<imaging::SourcePicture> handedOver(const DecodedReply& reply);

    /// Whether a helper died or made no sense over this file that had served others: one of them
    /// may have harmed it.
    [[nodiscard]] bool mayTryAgain() const;
    void giveHelperBack();
    void loseHelper();

    const std::shared_ptr<DecoderPool> m_pool;
    imaging::FileDescriptor m_file;
    std::uint64_t m_fileBytes;
    imaging::Limits m_limits;
    std::stop_token m_interruption;
    DecoderPool::Loan m_loan;
    bool m_hasLostServant = false;
    imaging::UniformType m_type {};
    imaging::ImageHeader m_header;
};

} // namespace vellumine::confined
