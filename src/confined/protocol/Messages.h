#pragma once

#include "confined/protocol/Confinement.h"
#include "imaging/Bytes.h"
#include "imaging/Error.h"
#include "imaging/Geometry.h"
#include "imaging/Limits.h"
#include "imaging/Orientation.h"
#include "imaging/PictureWish.h"
#include "imaging/PixelLayout.h"
#include "imaging/SourceDecoder.h"
#include "imaging/UniformType.h"
#include "imaging/codecs/Codec.h"
#include "imaging/resample/InterpolationQuality.h"
#include "imaging/ycc/YccPlanes.h"

#include <array>
#include <cstdint>
#include <optional>
#include <variant>

namespace vellumine::confined {

// What the program asks a helper, and what that answers. Every message is one datagram with at most
// one descriptor. A decoded picture stays with the helper, which gives rows of it or draws it: a
// photograph that is made small never leaves it in full size. What is given is fetched: the program
// reads it from the helper's memory, by addresses that the helper names. Where a program may not do
// that, the helper puts it into sealed memory and hands that over. (Shared memory comes in pages of
// 4 KiB, and costs six times what copying into large pages does.)
// A helper that was taken over by a picture can send anything: only what parses,
// and lies within the limits that were asked with, is believed.

/// Changes with the messages, so that a helper of another build is noticed.
inline constexpr std::uint32_t protocolVersion = 7;

/// Longer messages are not sent and not read.
inline constexpr std::size_t largestMessage = 4096;

/// Opens the picture file whose descriptor comes along. The one that was open is closed.
struct OpenRequest {
    imaging::Limits limits;
};

/// Decodes the open picture, or the region of it where that costs less.
struct DecodeRequest {
    imaging::PictureWish wish;
};

/// Lays rows out: of the decoded picture, as it is stored, or of the one that was drawn last.
struct RowsRequest {
    enum class Of : std::uint8_t { decoded, drawn };

    imaging::Rect part;
    Of picture = Of::decoded;
};

/// Asks where the planes of one of these pictures are.
struct PlanesRequest {
    RowsRequest::Of picture = RowsRequest::Of::decoded;
};

/// Draws the decoded picture, upright.
struct DrawRequest {
    imaging::Size size;
    imaging::BitmapColors colors = imaging::BitmapColors::sRgb;
    imaging::InterpolationQuality quality = imaging::InterpolationQuality::high;
    imaging::Orientation orientation = imaging::Orientation::topLeft;
    /// Whether its rows may be made when they are asked for, where that costs no more.
    bool mayBeDeferred = false;
};

/// Puts what was given last into sealed memory: rows without gaps, or the attachments.
struct ShareRequest { };

/// Forgets the decoded picture. Has no answer.
struct ReleaseRequest { };

using Request = std::variant<OpenRequest, DecodeRequest, RowsRequest, PlanesRequest, DrawRequest,
    ShareRequest, ReleaseRequest>;

/// The helper's first word.
struct ReadyReply {
    Confinement confinement;
};

struct OpenedReply {
    imaging::UniformType type;
    imaging::ImageHeader header;
};

/// The picture is decoded and stays until the next one is, or until it is released. Its attachments
/// (PictureAttachments.h) are in the helper's memory until the next request but one for sharing.
struct DecodedReply {
    imaging::Size size;
    imaging::PixelLayout layout;
    bool isRegion = false;
    std::uint64_t attachmentsAddress = 0;
    std::uint64_t attachmentsBytes = 0;
};

/// Rows are in the helper's memory until the next request but one for sharing; those of a drawn
/// picture until the next one is drawn, or the decoded picture goes. Without a row length and an
/// address the drawing has no rows: they are there to be asked for.
struct PixelsReply {
    imaging::Size size;
    imaging::PixelLayout layout;
    std::uint64_t rowBytes = 0;
    std::uint64_t address = 0;

    [[nodiscard]] bool isDeferred() const { return rowBytes == 0 && address == 0; }
};

/// The brightness and the colour differences that make the picture: in the helper's memory for as
/// long as it has the picture.
struct PlanesReply {
    struct Plane {
        std::uint64_t rowBytes = 0;
        std::uint64_t address = 0;
    };

    imaging::Size size; ///< of the picture
    imaging::ycc::Subsampling subsampling;
    std::array<Plane, 3> planes; ///< Y, Cb, Cr
};

struct FailedReply {
    imaging::Error error;
};

/// The memory's descriptor comes along.
struct SharedReply { };

using Reply = std::variant<ReadyReply, OpenedReply, DecodedReply, PixelsReply, PlanesReply,
    SharedReply, FailedReply>;

[[nodiscard]] imaging::ByteBuffer serialised(const Request& request);
[[nodiscard]] imaging::ByteBuffer serialised(const Reply& reply);

/// Fail with Malformed for anything that serialised() does not give: a wrong length, a number that
/// stands for no enumerator, sizes and offsets that contradict each other.
[[nodiscard]] imaging::Result<Request> parseRequest(imaging::ByteSpan message);
[[nodiscard]] imaging::Result<Reply> parseReply(imaging::ByteSpan message);

/// Bytes of a row without gaps.
[[nodiscard]] std::size_t tightRowBytes(imaging::Size size, const imaging::PixelLayout& layout);

/// Whether the layout is one that pictures have.
[[nodiscard]] bool isValid(const imaging::PixelLayout& layout);

} // namespace vellumine::confined
