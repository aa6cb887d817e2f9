#pragma once

#include "imaging/Bytes.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace vellumine::imaging::heic {

/// A number in the format's byte order; at most 8 bytes.
[[nodiscard]] std::uint64_t bigEndian(ByteSpan bytes);

/// The bytes as characters.
[[nodiscard]] std::string_view asText(ByteSpan bytes);

/// One box of a container (ISO/IEC 14496-12): length, type of four characters, content.
struct Box {
    std::string_view type;
    ByteSpan content;
};

/// Walks the boxes that stand one behind the other in some bytes.
class BoxWalk {
public:
    explicit BoxWalk(ByteSpan bytes)
        : m_rest(bytes)
    {
    }

    /// The next box; none at the end, and none where a box does not fit into what is left.
    [[nodiscard]] std::optional<Box> next();
    /// Whether the walk stopped short of the end.
    [[nodiscard]] bool hasRest() const { return !m_rest.empty(); }

private:
    ByteSpan m_rest;
};

} // namespace vellumine::imaging::heic
