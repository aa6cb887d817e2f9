#pragma once

#include "imaging/Error.h"
#include "imaging/Geometry.h"
#include "imaging/colour/ColorSpace.h"
#include "imaging/resample/InterpolationQuality.h"

#include <cstdint>
#include <memory>

namespace vellumine::imaging {

namespace ycc {
class PlaneSource;
}

class Image;
enum class Orientation : std::uint8_t;

/// How a picture is drawn into a bitmap.
struct Drawing {
    Size size; ///< of the bitmap
    ColorSpace colorSpace; ///< of the bitmap
    InterpolationQuality quality;
    Orientation orientation; ///< in which the picture is stored; it is drawn upright
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
    /// The picture drawn into a bitmap. Within rounding the same as if its rows were drawn, and
    /// just the same where the size is the picture's own.
    [[nodiscard]] virtual Result<Image> drawn(const Drawing& drawing) const = 0;
    /// The planes of which the formula of ITU-T T.871 alone makes the picture's RGB numbers; null
    /// where they come from something else, or are not at hand.
    [[nodiscard]] virtual std::shared_ptr<const ycc::PlaneSource> planes() const { return nullptr; }
};

} // namespace vellumine::imaging
