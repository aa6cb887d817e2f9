#pragma once

#include "imaging/Error.h"
#include "imaging/Geometry.h"

namespace vellumine::imaging {

class ColorSpace;
class Image;
enum class InterpolationQuality;

/// What becomes of a decoded picture.
enum class ImageUse {
    asRows, ///< it is needed in rows, the whole of it or parts
    toBeScaled, ///< it is drawn smaller: its pixels may be deferred where that is faster
};

/// The pixels of a picture that is decoded, but not laid out in rows: in planes, or in another
/// process. Only what is asked for is ever laid out. Immutable and safe for several threads.
class DeferredPixels {
public:
    DeferredPixels() = default;
    virtual ~DeferredPixels() = default;
    DeferredPixels(const DeferredPixels&) = delete;
    DeferredPixels& operator=(const DeferredPixels&) = delete;

    /// A part of the picture, which lies inside it, in rows. The same pixels as if the picture had
    /// been decoded into rows.
    [[nodiscard]] virtual Result<Image> rows(Rect part) const = 0;
    /// The picture drawn into a bitmap of another size. Within rounding the same as if its rows
    /// were drawn.
    [[nodiscard]] virtual Result<Image> drawn(
        Size size, const ColorSpace& colorSpace, InterpolationQuality quality) const = 0;
};

} // namespace vellumine::imaging
