#pragma once

#include "imaging/codecs/Codec.h"
#include "imaging/codecs/heic/HeicHandles.h"

namespace vellumine::imaging::heic {

/// The primary picture of a file in memory, its container parsed and its pixels still coded.
class HeicPicture {
public:
    /// `file` must outlive the picture. No picture inside may be larger than `maximumSide`. Fails
    /// with Malformed, Truncated, Unsupported and LimitExceeded.
    static Result<HeicPicture> open(ByteSpan file, std::uint32_t maximumSide);

    /// The size after the container's own crop and rotation, and the layout of what decode() gives.
    [[nodiscard]] Result<ImageHeader> header() const;
    /// Fails with LimitExceeded before anything is decoded, and like open().
    [[nodiscard]] Result<DecodedImage> decode(const Limits& limits) const;

private:
    explicit HeicPicture(ByteSpan file)
        : m_file(file)
    {
    }

    ByteSpan m_file;
    heif_item_id m_item {};
    HeifPointer<heif_context> m_context;
    HeifPointer<heif_image_handle> m_handle;
};

} // namespace vellumine::imaging::heic
