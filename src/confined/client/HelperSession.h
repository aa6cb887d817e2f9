#pragma once

#include "confined/client/DecoderPool.h"
#include "confined/client/PictureHandover.h"
#include "confined/protocol/Messages.h"
#include "imaging/SourceDecoder.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <type_traits>

namespace vellumine::confined {

/// One file, and the helper that has it open. A helper that dies or makes no sense over this file
/// after it had served others is replaced once: one of those may have harmed it. Safe to use from
/// several threads, which wait for each other.
///
/// Everything fails with Io when there is no helper, when it dies or is overdue over the file, and
/// when a stop is requested; else as decoding in this process does.
class HelperSession {
public:
    [[nodiscard]] static imaging::Result<std::shared_ptr<HelperSession>> open(
        std::shared_ptr<DecoderPool> pool, imaging::FileDescriptor file,
        const imaging::Limits& limits, const std::stop_token& interruption);

    ~HelperSession();
    HelperSession(const HelperSession&) = delete;
    HelperSession& operator=(const HelperSession&) = delete;

    [[nodiscard]] imaging::UniformType type() const { return m_type; }
    [[nodiscard]] const imaging::ImageHeader& header() const { return m_header; }

    /// What is known about a decoded picture; its pixels stay with the helper.
    struct Decoded {
        imaging::Size size;
        imaging::PixelLayout layout;
        bool isRegion = false;
        PictureAttachments attachments;
    };
    [[nodiscard]] imaging::Result<Decoded> decode(const imaging::PictureWish& wish);

    /// A part of the decoded picture as it is stored, which must lie inside it.
    [[nodiscard]] imaging::Result<imaging::Image> rows(imaging::Rect part);
    /// The decoded picture drawn; `colorSpace` is that of the request in this process.
    [[nodiscard]] imaging::Result<imaging::Image> draw(
        const DrawRequest& request, const imaging::ColorSpace& colorSpace);

    /// A drawn picture that stays with the helper until the next one is drawn.
    struct KeptDrawing {
        PixelsReply given;
        std::uint64_t number = 0;
    };
    /// Fails with Unsupported where this process may not read the helper's memory.
    [[nodiscard]] imaging::Result<KeptDrawing> drawAndKeep(const DrawRequest& request);
    /// A part of it, which must lie inside. Fails with Io when the helper has it no longer.
    [[nodiscard]] imaging::Result<imaging::Image> keptRows(
        const KeptDrawing& drawing, imaging::Rect part, const imaging::ColorSpace& colorSpace);

    /// Where the planes are of a picture that stays with the helper.
    struct KeptPlanes {
        PlanesReply given;
        RowsRequest::Of picture = RowsRequest::Of::decoded;
        std::uint64_t number = 0;
    };
    /// Those of the decoded picture, or of a drawn one. Fail with Unsupported where it has none, or
    /// this process may not read the helper's memory, and with Io when the helper has the picture
    /// no longer.
    [[nodiscard]] imaging::Result<KeptPlanes> planes();
    [[nodiscard]] imaging::Result<KeptPlanes> planes(const KeptDrawing& drawing);
    /// Copies a part of a plane, which must lie inside it, to rows so many bytes from each other.
    /// Fails with Io when the helper has it no longer.
    [[nodiscard]] imaging::Result<void> copyPlane(const KeptPlanes& planes, int plane,
        imaging::Rect part, std::uint8_t* to, std::size_t rowBytes);

    /// Gives the helper back when nothing else will be asked for.
    void close();

private:
    HelperSession(std::shared_ptr<DecoderPool> pool, imaging::FileDescriptor file,
        std::uint64_t fileBytes, const imaging::Limits& limits, std::stop_token interruption);

    imaging::Result<DecoderProcess::Answer> ask(const Request& request,
        const imaging::FileDescriptor* descriptor, const Allowance& allowance);
    imaging::Result<void> openInHelper();
    imaging::Result<void> openInFreshHelper();
    imaging::Result<Decoded> decodeInHelper(const imaging::PictureWish& wish);
    imaging::Result<PixelsReply> askForPixels(const Request& request, const PixelsReply& expected);
    imaging::Result<imaging::Image> pixelsFromHelper(
        const Request& request, const PixelsReply& expected, const imaging::ColorSpace& colorSpace);
    imaging::Result<KeptPlanes> planesOf(RowsRequest::Of picture, imaging::Size size);
    imaging::Result<void> copied(const KeptPlanes& planes, int plane, imaging::Rect part,
        std::uint8_t* to, std::size_t rowBytes);
    [[nodiscard]] std::uint64_t numberOf(RowsRequest::Of picture) const;
    imaging::Result<imaging::Image> partOfDrawing(
        const PixelsReply& given, imaging::Rect part, const imaging::ColorSpace& colorSpace);
    imaging::Result<imaging::Image> fetchedPart(
        const PixelsReply& given, imaging::Rect part, const imaging::ColorSpace& colorSpace);
    imaging::Result<imaging::Image> pixels(
        const Request& request, const PixelsReply& expected, const imaging::ColorSpace& colorSpace);
    template <typename Fetch, typename Map>
    std::invoke_result_t<Map, const imaging::FileDescriptor&> handedOver(
        const Fetch& fetch, const Map& map);

    [[nodiscard]] Allowance allowance() const;
    [[nodiscard]] bool mayTryAgain() const;
    void loseHelper();
    void giveHelperBack();

    std::mutex m_mutex;
    const std::shared_ptr<DecoderPool> m_pool;
    imaging::FileDescriptor m_file;
    std::uint64_t m_fileBytes;
    imaging::Limits m_limits;
    std::stop_token m_interruption;
    DecoderPool::Loan m_loan;
    bool m_hasLostServant = false; ///< one that had served before
    bool m_hasBeenOpened = false;
    imaging::UniformType m_type {};
    imaging::ImageHeader m_header;
    imaging::PictureWish m_wish; ///< of the last decode()
    std::optional<Decoded> m_decoded;
    // Counted, so that what is gone is not asked for.
    std::uint64_t m_decodings = 0;
    std::uint64_t m_drawings = 0;
};

} // namespace vellumine::confined
