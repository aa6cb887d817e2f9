#include "imaging/codecs/heic/HeicBrands.h"

#include "imaging/codecs/heic/HeicBoxes.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <string_view>

namespace vellumine::imaging::heic {

namespace {

// The box: length (4 bytes), "ftyp", major brand, minor version, then compatible brands.
constexpr std::size_t brandBytes = 4;
constexpr std::size_t typeOffset = 4;
constexpr std::size_t majorBrandOffset = 8;
constexpr std::size_t compatibleBrandsOffset = 16;
constexpr std::size_t mostBytes = 4096; ///< far more brands than there are

constexpr std::array<std::string_view, 8> hevcBrands { "heic", "heix", "heim", "heis", "hevc",
    "hevx", "hevm", "hevs" };
constexpr std::array<std::string_view, 3> generalBrands { "mif1", "msf1", "mif2" };
constexpr std::array<std::string_view, 2> av1Brands { "avif", "avis" };

std::string_view textAt(ByteSpan file, std::size_t offset)
{
    return asText(file.subspan(offset, brandBytes));
}

template <std::size_t count>
bool isOneOf(std::string_view brand, const std::array<std::string_view, count>& brands)
{
    return std::ranges::find(brands, brand) != brands.end();
}

} // namespace

std::optional<Container> containerOf(ByteSpan file)
{
    if (file.size() < compatibleBrandsOffset || textAt(file, typeOffset) != "ftyp") {
        return std::nullopt;
    }
    const std::uint64_t length = bigEndian(file.first(4));
    if (length < compatibleBrandsOffset || length > std::min(file.size(), mostBytes)
        || length % brandBytes != 0) {
        return std::nullopt;
    }
    const std::string_view major = textAt(file, majorBrandOffset);
    if (isOneOf(major, hevcBrands)) {
        return Container::heic;
    }
    if (!isOneOf(major, generalBrands)) {
        return std::nullopt;
    }
    bool hasHevc = false;
    bool hasAv1 = false;
    for (std::size_t at = compatibleBrandsOffset; at < length; at += brandBytes) {
        hasHevc |= isOneOf(textAt(file, at), hevcBrands);
        hasAv1 |= isOneOf(textAt(file, at), av1Brands);
    }
    return hasAv1 && !hasHevc ? std::nullopt : std::optional(Container::heif);
}

void makeHeif(std::span<std::byte> file)
{
    assert(containerOf(file));
    std::ranges::copy(
        std::as_bytes(std::span(generalBrands[0])), file.subspan(majorBrandOffset).begin());
}

} // namespace vellumine::imaging::heic
