#include "imaging/ycc/YccPixels.h"

#include "imaging/BitmapContext.h"
#include "imaging/colour/ColorTransform.h"
#include "imaging/resample/PlanarPixels.h"
#include "imaging/resample/Resampler.h"
#include "imaging/ycc/YccToRgb.h"

#include <utility>

namespace vellumine::imaging::ycc {

YccPixels::YccPixels(YccPlanes planes, ColorSpace colorSpace)
    : m_planes(std::move(planes))
    , m_colorSpace(std::move(colorSpace))
{
    m_planes.completeLastPairs();
}

Result<Image> YccPixels::rows(Rect part) const
{
    return toRgb(m_planes, part).map([this](PixelBuffer&& pixels) {
        return Image(std::move(pixels), m_colorSpace);
    });
}

Result<Image> YccPixels::drawn(
    Size size, const ColorSpace& colorSpace, InterpolationQuality quality) const
{
    const auto transform = ColorTransform::create(m_colorSpace, 8, colorSpace);
    if (!transform) {
        return tl::unexpected(transform.error());
    }
    auto target = PixelBuffer::create(size, rgba8Premultiplied);
    if (!target) {
        return tl::unexpected(target.error());
    }
    RgbaWriter writer(*target, *transform, 3, 8, false);
    const auto done = resample(
        m_planes, size, filterFor(quality), [&writer](const PlanarRow& row) { writer.write(row); });
    if (!done) {
        return tl::unexpected(done.error());
    }
    return Image(std::move(*target), colorSpace);
}

} // namespace vellumine::imaging::ycc
