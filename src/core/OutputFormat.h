#pragma once

#include "core/RawValue.h"

#include <cstdint>

namespace vellumine {

/// The encoding of the written file.
enum class OutputFormat : std::uint8_t {
    WebP,
    WebPLossless,
    Jpeg,
    Png,
    Heic,
    Original, ///< the format of the source
};

template <>
inline constexpr std::array choiceTable<OutputFormat> {
    ChoiceTexts<OutputFormat> { OutputFormat::WebP, "webp", "WebP Lossy" },
    ChoiceTexts<OutputFormat> { OutputFormat::WebPLossless, "webpLossless", "WebP Lossless" },
    ChoiceTexts<OutputFormat> { OutputFormat::Jpeg, "jpeg", "JPEG" },
    ChoiceTexts<OutputFormat> { OutputFormat::Png, "png", "PNG" },
    ChoiceTexts<OutputFormat> { OutputFormat::Heic, "heic", "HEIC" },
    ChoiceTexts<OutputFormat> { OutputFormat::Original, "original", "Original Format" },
};
static_assert(isInDeclarationOrder<OutputFormat>());

/// Whether the external WebP encoder writes the format.
[[nodiscard]] constexpr bool isWebP(OutputFormat format)
{
    return format == OutputFormat::WebP || format == OutputFormat::WebPLossless;
}

/// Whether the format has no quality setting.
[[nodiscard]] constexpr bool isLosslessOnly(OutputFormat format)
{
    return format == OutputFormat::WebPLossless || format == OutputFormat::Png;
}

} // namespace vellumine
