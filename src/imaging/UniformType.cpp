#include "imaging/UniformType.h"

#include <algorithm>

namespace vellumine::imaging {

namespace {

struct Entry {
    UniformType type;
    std::string_view identifier;
    std::string_view preferredExtension;
};

constexpr std::array<Entry, allUniformTypes.size()> registry { {
    { UniformType::jpeg, "public.jpeg", "jpeg" },
    { UniformType::png, "public.png", "png" },
    { UniformType::heic, "public.heic", "heic" },
    { UniformType::heif, "public.heif", "heif" },
    { UniformType::tiff, "public.tiff", "tiff" },
    { UniformType::gif, "com.compuserve.gif", "gif" },
    { UniformType::bmp, "com.microsoft.bmp", "bmp" },
    { UniformType::webp, "org.webmproject.webp", "webp" },
} };

constexpr const Entry& entry(UniformType type)
{
    return registry.at(static_cast<std::size_t>(type));
}

static_assert(std::ranges::all_of(
    allUniformTypes, [](UniformType type) { return entry(type).type == type; }));

} // namespace

std::string_view identifier(UniformType type)
{
    return entry(type).identifier;
}

std::string_view preferredExtension(UniformType type)
{
    return entry(type).preferredExtension;
}

} // namespace vellumine::imaging
