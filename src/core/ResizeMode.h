#pragma once

#include "core/RawValue.h"

#include <cstdint>

namespace vellumine {

/// How the pixel limit is applied. Pictures are never enlarged.
enum class ResizeMode : std::uint8_t {
    MaxWidth,
    MaxHeight,
    LongestEdge,
    None, ///< the limit is ignored
};

template <>
inline constexpr std::array choiceTable<ResizeMode> {
    ChoiceTexts<ResizeMode> { ResizeMode::MaxWidth, "maxWidth", "Max Width" },
    ChoiceTexts<ResizeMode> { ResizeMode::MaxHeight, "maxHeight", "Max Height" },
    ChoiceTexts<ResizeMode> { ResizeMode::LongestEdge, "longestEdge", "Longest Edge" },
    ChoiceTexts<ResizeMode> { ResizeMode::None, "none", "No Resize" },
};
static_assert(isInDeclarationOrder<ResizeMode>());

} // namespace vellumine
