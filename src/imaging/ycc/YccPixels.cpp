#include "imaging/ycc/YccPixels.h"

#include "imaging/colour/ColorTransform.h"
#include "imaging/resample/Resampler.h"
#include "imaging/resample/UprightRows.h"
#include "imaging/ycc/YccRowWriter.h"
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

Result<Image> YccPixels::drawn(const Drawing& drawing) const
{
    const auto transform = ColorTransform::create(m_colorSpace, 8, drawing.colorSpace);
    if (!transform) {
        return tl::unexpected(transform.error());
    }
    auto target = PixelBuffer::create(drawing.size, rgba8Premultiplied);
    if (!target) {
        return tl::unexpected(target.error());
    }
    auto rows = UprightRows::create(*target, drawing.orientation);
    if (!rows) {
        return tl::unexpected(rows.error());
    }
    if (rows->storedSize() == m_planes.size()) {
        toRgba(m_planes, *transform, *rows);
    } else {
        YccRowWriter writer(*rows, *transform);
        const auto done = resample(m_planes, rows->storedSize(), filterFor(drawing.quality),
            [&writer](const PlanarRow& row) { writer.write(row); });
        if (!done) {
            return tl::unexpected(done.error());
        }
    }
    return Image(std::move(*target), drawing.colorSpace);
}

} // namespace vellumine::imaging::ycc
