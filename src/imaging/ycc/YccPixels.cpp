#include "imaging/ycc/YccPixels.h"

#include "imaging/BitmapContext.h"
#include "imaging/colour/ColorTransform.h"
#include "imaging/resample/UprightRows.h"
#include "imaging/ycc/YccRowWriter.h"
#include "imaging/ycc/YccScaler.h"
#include "imaging/ycc/YccToRgb.h"

#include <utility>

namespace vellumine::imaging::ycc {

YccPixels::YccPixels(YccPlanes planes, ColorSpace colorSpace)
    : m_planes(std::move(planes))
    , m_colorSpace(std::move(colorSpace))
{
}

Result<Image> YccPixels::rows(Rect part) const
{
    return toRgb(m_planes, part).map([this](PixelBuffer&& pixels) {
        return Image(std::move(pixels), m_colorSpace);
    });
}

Result<Image> YccPixels::drawn(const Drawing& drawing) const
{
    if (drawing.quality != InterpolationQuality::high) {
        return rows({ 0, 0, m_planes.size().width, m_planes.size().height })
            .and_then([&drawing](const Image& image) { return drawnUpright(image, drawing); });
    }
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
        auto scaler = YccScaler::create(m_planes.size(), m_planes.subsampling(), rows->storedSize(),
            [&writer](const PlanarRow& row) { writer.write(row); });
        if (!scaler) {
            return tl::unexpected(scaler.error());
        }
        for (int row = 0; row < m_planes.size().height; row += YccBand::rows) {
            scaler->take(bandAt(m_planes, row));
        }
    }
    return Image(std::move(*target), drawing.colorSpace);
}

} // namespace vellumine::imaging::ycc
