#pragma once

#include "confined/protocol/PictureAttachments.h"
#include "imaging/Error.h"
#include "imaging/FileDescriptor.h"
#include "imaging/Image.h"
#include "imaging/Limits.h"
#include "imaging/SourceDecoder.h"

#include <cstdint>
#include <optional>

namespace vellumine::confined {

class DecoderProcess;
struct DecodedReply;
struct PixelsReply;

/// How pixels and attachments come from a helper.
enum class Handover : std::uint8_t {
    fetched, ///< read from its memory; shared where that is not allowed
    shared, ///< in sealed memory
};

/// What a picture is asked for by.
struct PictureQuestion {
    imaging::ImageHeader header;
    std::optional<imaging::Rect> region;
    imaging::Limits limits;
    std::uint64_t fileBytes = 0;
};

/// Whether the answer is to the question: of the size that was asked for, within the limits, and
/// with no more attached than its file can hold.
[[nodiscard]] bool isWhatWasAskedFor(const DecodedReply& reply, const PictureQuestion& question);

// All of these fail with Io when what is there is not what was said, and the first two with
// Unsupported where this process may not read the helper's memory.

[[nodiscard]] imaging::Result<PictureAttachments> fetchAttachments(
    const DecoderProcess& process, const DecodedReply& reply);
[[nodiscard]] imaging::Result<imaging::Image> fetchPixels(
    const DecoderProcess& process, const PixelsReply& reply, const imaging::ColorSpace& colorSpace);

/// From memory that was handed over, which must be sealed.
[[nodiscard]] imaging::Result<PictureAttachments> mapAttachments(
    const imaging::FileDescriptor& memory, const DecodedReply& reply);
[[nodiscard]] imaging::Result<imaging::Image> mapPixels(const imaging::FileDescriptor& memory,
    const PixelsReply& reply, const imaging::ColorSpace& colorSpace);

/// The failure of an answer that makes no sense.
[[nodiscard]] tl::unexpected<imaging::Error> notWhatWasAskedFor();

} // namespace vellumine::confined
