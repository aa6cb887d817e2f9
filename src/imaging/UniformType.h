#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace vellumine::imaging {

/// The picture formats that the service knows.
enum class UniformType : std::uint8_t { jpeg, png, heic, heif, tiff, gif, bmp, webp };

inline constexpr std::array allUniformTypes { UniformType::jpeg, UniformType::png,
    UniformType::heic, UniformType::heif, UniformType::tiff, UniformType::gif, UniformType::bmp,
    UniformType::webp };

/// The registered identifier, "public.jpeg" for example.
[[nodiscard]] std::string_view identifier(UniformType type);

/// The file-name extension that files of the type get, lower case, without the dot.
[[nodiscard]] std::string_view preferredExtension(UniformType type);

} // namespace vellumine::imaging
