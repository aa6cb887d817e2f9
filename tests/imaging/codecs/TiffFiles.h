#pragma once

#include "imaging/Bytes.h"
#include "imaging/Geometry.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <tiffio.h>
#include <vector>

namespace vellumine::test {

/// A TIFF file of a kind that the product itself does not write.
struct TiffRecipe {
    const char* mode = "wl"; ///< the library's: l or b for the byte order, 8 for BigTIFF
    imaging::Size size { 47, 33 };
    std::uint16_t bits = 8;
    std::uint16_t samples = 1;
    std::uint16_t format = SAMPLEFORMAT_UINT;
    std::uint16_t photometric = PHOTOMETRIC_MINISBLACK;
    std::uint16_t compression = COMPRESSION_NONE;
    std::uint16_t predictor = PREDICTOR_NONE;
    std::uint16_t planar = PLANARCONFIG_CONTIG;
    std::uint32_t tile = 0; ///< side of a tile, 0 for strips
    std::uint32_t rowsPerStrip = 7;
    std::vector<std::uint16_t> extraSamples {};
    std::optional<std::uint16_t> orientation {};
    std::vector<std::uint16_t> colourMap {}; ///< red, green and blue values, one after the other
    imaging::ByteBuffer profile {};
    /// Last chance to set tags.
    std::function<void(TIFF*)> customise {};
};

/// The bits of the sample `s` at x, y, right aligned.
using RawSample = std::function<std::uint64_t(int x, int y, int s)>;

/// A file with one page for each recipe.
[[nodiscard]] imaging::ByteBuffer tiffPages(
    const std::vector<TiffRecipe>& pages, const RawSample& sample);
[[nodiscard]] imaging::ByteBuffer tiffFile(const TiffRecipe& recipe, const RawSample& sample);

} // namespace vellumine::test
