#pragma once

#include "imaging/Image.h"
#include "imaging/resample/InterpolationQuality.h"

#include <memory>
#include <optional>

namespace vellumine::imaging {

struct Drawing;

/// A bitmap to draw a picture into: scaled to the bitmap's size, in the bitmap's colours.
class BitmapContext {
public:
    /// A transparent bitmap. RGB with 8 bits and alpha last, premultiplied, is what it can be;
    /// anything else, and a colour space that is not RGB, fails with Unsupported.
    static Result<BitmapContext> create(Size size, int bitsPerComponent,
        const ColorSpace& colorSpace, AlphaInfo alpha = AlphaInfo::premultipliedLast);

    void setInterpolationQuality(InterpolationQuality quality) { m_quality = quality; }

    /// Draws the picture over the whole bitmap: one pass, resampled in premultiplied form (Lanczos
    /// with three lobes at High), converted to the bitmap's colour space. Where neither the size
    /// nor the colours change, only the layout does. Fails with OutOfMemory or Unsupported; the
    /// bitmap then is as it was.
    Result<void> draw(const Image& image);

    /// The bitmap as a picture, with rows. Nothing is copied that is in this process; the context
    /// is spent. Fails with OutOfMemory when nothing was drawn and there is no memory for the empty
    /// bitmap, and with what deferred pixels say.
    [[nodiscard]] Result<Image> makeImage() &&;
    /// The same without the pixels being brought here, where they were drawn elsewhere.
    [[nodiscard]] Result<Image> makeImageWhereItIs() &&;

private:
    BitmapContext(Size size, ColorSpace colorSpace);

    Size m_size;
    ColorSpace m_colorSpace;
    InterpolationQuality m_quality = InterpolationQuality::high;
    std::optional<Image> m_drawn;
};

/// The picture drawn upright. One that has rows is turned when it is drawn: that is less work.
/// Fails as BitmapContext::draw() does.
[[nodiscard]] Result<Image> drawnUpright(const Image& image, const Drawing& drawing);

} // namespace vellumine::imaging
