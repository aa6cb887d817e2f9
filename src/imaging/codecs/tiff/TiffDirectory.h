#pragma once

#include "imaging/Error.h"
#include "imaging/Geometry.h"
#include "imaging/Limits.h"
#include "imaging/Orientation.h"
#include "imaging/PixelLayout.h"
#include "imaging/codecs/tiff/TiffSamples.h"
#include "imaging/colour/ColorSpace.h"

#include <cstdint>
#include <optional>
#include <tiffio.h>

namespace vellumine::imaging::tiff {

/// How the stored samples become colour.
enum class Colour : std::uint8_t {
    direct, ///< grey, RGB or CMYK samples
    invertedGrey, ///< grey where zero is white
    palette,
    cieLab, ///< a* and b* signed
    iccLab, ///< a* and b* offset by half the range
    ituLab, ///< L*, a* and b* in the ranges of the fax standard
    library, ///< through the library's 8-bit RGBA conversion: YCbCr, old-style JPEG, LogLuv
};

/// What the first directory of a file says about its picture.
struct TiffDirectory {
    std::int64_t width = 0;
    std::int64_t height = 0;
    Colour colour = Colour::direct;
    SampleType sample;
    int samplesPerPixel = 1;
    bool isPlanar = false;
    bool isTiled = false;
    /// Of a tile, or of a strip that is not cut short by the picture's lower edge.
    std::int64_t blockWidth = 0;
    std::int64_t blockHeight = 0;
    /// Which of the stored samples is alpha.
    std::optional<int> alphaSample;
    /// What decoding gives.
    PixelLayout layout;
    std::optional<Orientation> orientation;

    /// Also tells the library to hand JPEG-coded YCbCr out as RGB. Fails with Malformed or
    /// Unsupported.
    static Result<TiffDirectory> read(TIFF* tiff);

    /// Whether the picture, and a strip or tile of it, are within the limits.
    [[nodiscard]] Result<void> check(const Limits& limits) const;
    /// Valid after check().
    [[nodiscard]] Size size() const;
};

/// The embedded profile when it fits the model, else what the Exif directory of the file says, else
/// the model's space without a profile.
[[nodiscard]] ColorSpace colorSpaceOf(TIFF* tiff, ByteSpan file, const TiffDirectory& directory);

} // namespace vellumine::imaging::tiff
