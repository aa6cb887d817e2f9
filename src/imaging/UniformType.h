#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace vellumine::imaging {

/// The picture formats that the service knows.
enum class UniformType : std::uint8_t { Jpeg, Png, Heic, Heif, Tiff, Gif, Bmp, WebP };

inline constexpr std::array allUniformTypes { UniformType::Jpeg, UniformType::Png,
    UniformType::Heic, UniformType::Heif, UniformType::Tiff, UniformType::Gif, UniformType::Bmp,
    UniformType::WebP };

/// The registered identifier, "public.jpeg" for example.
[[nodiscard]] std::string_view identifier(UniformType type);

/// The file-name extension that files of the type get, lower case, without the dot.
[[nodiscard]] std::string_view preferredExtension(UniformType type);

} // namespace vellumine::imaging
