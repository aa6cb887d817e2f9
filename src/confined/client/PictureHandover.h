#pragma once

#include "imaging/Error.h"
#include "imaging/FileDescriptor.h"
#include "imaging/Limits.h"
#include "imaging/SourceDecoder.h"

#include <cstdint>
#include <optional>

namespace vellumine::confined {

class DecoderProcess;
struct DecodedReply;

/// How a decoded picture comes from its helper.
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

/// Reads a picture that was asked for from the helper's memory. Fails with Unsupported where this
/// process may not, and with Io when what is there is no such picture.
[[nodiscard]] imaging::Result<imaging::SourcePicture> fetchPicture(
    const DecoderProcess& process, const DecodedReply& reply);

/// The picture that was asked for, in memory that was handed over: its pixels, then what is said
/// about them. Fails when the memory is not sealed or is no such picture.
[[nodiscard]] imaging::Result<imaging::SourcePicture> mapPicture(
    const imaging::FileDescriptor& memory, const DecodedReply& reply);

/// The failure of an answer that makes no sense.
[[nodiscard]] tl::unexpected<imaging::Error> notWhatWasAskedFor();

} // namespace vellumine::confined
