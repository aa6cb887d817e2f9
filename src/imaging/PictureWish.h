#pragma once

#include "imaging/DeferredPixels.h"
#include "imaging/Geometry.h"
#include "imaging/Orientation.h"
#include "imaging/colour/ColorSpace.h"
#include "imaging/resample/InterpolationQuality.h"

#include <cstdint>
#include <optional>

namespace vellumine::imaging {

/// What becomes of a decoded picture.
enum class ImageUse {
    asRows, ///< it is needed in rows, the whole of it or parts
    toBeDrawn, ///< into a bitmap: its pixels may be deferred where that is faster
};

/// The colours of a bitmap.
enum class BitmapColors : std::uint8_t {
    sRgb,
    deviceRgb,
    own, ///< the picture's, which must be RGB
};

[[nodiscard]] ColorSpace colorSpaceOf(BitmapColors colors, const ColorSpace& own);

/// How a picture will be drawn, as far as that is known before it is open. A decoder may draw it
/// so while it decodes, and have nothing else of it in memory than its middle.
struct DrawingPlan {
    Size size; ///< of the bitmap
    Size turnedSize; ///< of the bitmap, where the orientation exchanges the picture's sides
    BitmapColors colors = BitmapColors::sRgb;
    InterpolationQuality quality = InterpolationQuality::high;
    /// Of the upright picture. The part of this size around its middle, or of a smaller one, will
    /// be asked for in rows.
    Size middle;

    [[nodiscard]] Drawing drawing(Orientation orientation, const ColorSpace& own) const;
};

/// What of a picture is wanted, and what for.
struct PictureWish {
    std::optional<Rect> region
        = std::nullopt; ///< the only part of the stored picture that is needed
    ImageUse use = ImageUse::asRows;
    std::optional<DrawingPlan> plan = std::nullopt; ///< for a picture that is to be drawn
};

} // namespace vellumine::imaging
