#pragma once

#include "core/RawValue.h"

#include <cstdint>

namespace vellumine {

/// The encoding of the written file.
enum class OutputFormat : std::uint8_t {
    webp,
    webpLossless,
    jpeg,
    png,
    heic,
    original, ///< the format of the source
};

template <>
inline constexpr std::array choiceTable<OutputFormat> {
    ChoiceTexts<OutputFormat> { OutputFormat::webp, "webp", "WebP Lossy" },
    ChoiceTexts<OutputFormat> { OutputFormat::webpLossless, "webpLossless", "WebP Lossless" },
    ChoiceTexts<OutputFormat> { OutputFormat::jpeg, "jpeg", "JPEG" },
    ChoiceTexts<OutputFormat> { OutputFormat::png, "png", "PNG" },
    ChoiceTexts<OutputFormat> { OutputFormat::heic, "heic", "HEIC" },
    ChoiceTexts<OutputFormat> { OutputFormat::original, "original", "Original Format" },
};
static_assert(isInDeclarationOrder<OutputFormat>());

/// Whether the external WebP encoder writes the format.
[[nodiscard]] constexpr bool isWebP(OutputFormat format)
{
    return format == OutputFormat::webp || format == OutputFormat::webpLossless;
}

/// Whether the format has no quality setting.
[[nodiscard]] constexpr bool isLosslessOnly(OutputFormat format)
{
    return format == OutputFormat::webpLossless || format == OutputFormat::png;
}

} // namespace vellumine
