#include "imaging/ycc/YccPixels.h"

#include "imaging/BitmapContext.h"
#include "imaging/colour/ColorTransform.h"
#include "imaging/resample/UprightRows.h"
#include "imaging/ycc/YccRowWriter.h"
#include "imaging/ycc/YccScaler.h"
#include "imaging/ycc/YccToRgb.h"

#include <memory>
#include <mutex>
#include <utility>

namespace vellumine::imaging::ycc {

namespace {

/// A photograph in its own size and other colours, which are made where they are looked at.
class ConvertedPixels final : public DeferredPixels {
public:
    ConvertedPixels(YccPlanes planes, ColorTransform transform, ColorSpace colorSpace)
        : m_planes(std::move(planes))
        , m_transform(std::move(transform))
        , m_colorSpace(std::move(colorSpace))
    {
    }

    [[nodiscard]] Result<Image> rows(Rect part) const override
    {
        const std::scoped_lock lock(m_mutex);
        return toRgba(m_planes, m_transform, part).map([this](PixelBuffer&& pixels) {
            return Image(std::move(pixels), m_colorSpace);
        });
    }

    [[nodiscard]] Result<Image> drawn(const Drawing& drawing) const override
    {
        return rows({ 0, 0, m_planes.size().width, m_planes.size().height })
            .and_then([&drawing](const Image& image) { return drawnUpright(image, drawing); });
    }

    [[nodiscard]] std::shared_ptr<const PlaneSource> planes() const override
    {
        return m_transform.isIdentity() ? planesHere(m_planes) : nullptr;
    }

private:
    YccPlanes m_planes;
    mutable std::mutex m_mutex; ///< the transform serves one thread at a time
    ColorTransform m_transform;
    ColorSpace m_colorSpace;
};

} // namespace

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
    auto transform = ColorTransform::create(m_colorSpace, 8, drawing.colorSpace);
    if (!transform) {
        return tl::unexpected(transform.error());
    }
    if (drawing.size == m_planes.size() && drawing.orientation == Orientation::topLeft) {
        return Image(drawing.size, rgba8Premultiplied, drawing.colorSpace,
            std::make_shared<ConvertedPixels>(m_planes, std::move(*transform), drawing.colorSpace),
            Orientation::topLeft);
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

std::shared_ptr<const PlaneSource> YccPixels::planes() const
{
    return planesHere(m_planes);
}

} // namespace vellumine::imaging::ycc
