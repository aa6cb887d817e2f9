#pragma once

#include "core/RawValue.h"

#include <cstdint>

namespace vellumine {

/// How the pixel limit is applied. Pictures are never enlarged.
enum class ResizeMode : std::uint8_t {
    maxWidth,
    maxHeight,
    longestEdge,
    none, ///< the limit is ignored
};

template <>
inline constexpr std::array choiceTable<ResizeMode> {
    ChoiceTexts<ResizeMode> { ResizeMode::maxWidth, "maxWidth", "Max Width" },
    ChoiceTexts<ResizeMode> { ResizeMode::maxHeight, "maxHeight", "Max Height" },
    ChoiceTexts<ResizeMode> { ResizeMode::longestEdge, "longestEdge", "Longest Edge" },
    ChoiceTexts<ResizeMode> { ResizeMode::none, "none", "No Resize" },
};
static_assert(isInDeclarationOrder<ResizeMode>());

} // namespace vellumine
