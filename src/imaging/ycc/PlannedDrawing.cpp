#include "imaging/ycc/PlannedDrawing.h"

#include "imaging/ycc/YccToRgb.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <utility>

namespace vellumine::imaging::ycc {

namespace {

/// Around what is kept: the colour of a pixel is spread from the samples beside it, and a part in
/// the middle may be rounded to either side.
constexpr int margin = 4;

/// The part around the middle with its margin, inside the picture, from pixels on that begin a
/// sample of colour.
Rect partToKeep(Size stored, Size middle)
{
    const auto along = [](int whole, int wanted) {
        const int first = std::max((whole - wanted) / 2 - margin, 0) / 2 * 2;
        return std::pair(first, std::min((whole + wanted) / 2 + margin, whole));
    };
    const auto [left, right] = along(stored.width, std::min(middle.width, stored.width));
    const auto [top, bottom] = along(stored.height, std::min(middle.height, stored.height));
    return { left, top, right - left, bottom - top };
}

/// The part and what its colour is made of.
Rect withNeighbours(Rect part, Size whole)
{
    constexpr int reach = 2;
    const int left = std::max(part.x - reach, 0);
    const int top = std::max(part.y - reach, 0);
    return { left, top, std::min(part.x + part.width + reach, whole.width) - left,
        std::min(part.y + part.height + reach, whole.height) - top };
}

bool holds(Rect outer, Rect inner)
{
    return contains(
        outer.size(), { inner.x - outer.x, inner.y - outer.y, inner.width, inner.height });
}

/// What is left of a photograph that was drawn while it was decoded.
class PlannedPixels final : public DeferredPixels {
public:
    PlannedPixels(
        Size stored, Drawing drawing, Image drawn, YccPlanes kept, Rect keptPart, ColorSpace space)
        : m_stored(stored)
        , m_drawing(std::move(drawing))
        , m_drawn(std::move(drawn))
        , m_kept(std::move(kept))
        , m_keptPart(keptPart)
        , m_colorSpace(std::move(space))
    {
    }

    [[nodiscard]] Result<Image> rows(Rect part) const override
    {
        if (!holds(m_keptPart, withNeighbours(part, m_stored))) {
            return failure(Error::Kind::unsupported, "the part was not kept");
        }
        return toRgb(
            m_kept, { part.x - m_keptPart.x, part.y - m_keptPart.y, part.width, part.height })
            .map([this](PixelBuffer&& pixels) { return Image(std::move(pixels), m_colorSpace); });
    }

    [[nodiscard]] Result<Image> drawn(const Drawing& drawing) const override
    {
        if (drawing.size != m_drawing.size || drawing.orientation != m_drawing.orientation
            || drawing.quality != m_drawing.quality
            || !(drawing.colorSpace == m_drawing.colorSpace)) {
            return failure(Error::Kind::unsupported, "the picture was drawn otherwise");
        }
        return m_drawn;
    }

private:
    Size m_stored;
    Drawing m_drawing;
    Image m_drawn;
    YccPlanes m_kept;
    Rect m_keptPart;
    ColorSpace m_colorSpace;
};

} // namespace

bool PlannedDrawing::isFor(const Drawing& drawing, Size stored)
{
    const Size target = uprightSize(drawing.size, drawing.orientation); // as it is stored
    return drawing.quality == InterpolationQuality::high && target != stored
        && target.width <= stored.width && target.height <= stored.height;
}

PlannedDrawing::PlannedDrawing(Size stored, ColorSpace colorSpace, Drawing drawing,
    ColorTransform&& transform, PixelBuffer&& target, YccPlanes&& kept, Rect keptPart)
    : m_stored(stored)
    , m_colorSpace(std::move(colorSpace))
    , m_drawing(std::move(drawing))
    , m_transform(std::move(transform))
    , m_target(std::move(target))
    , m_kept(std::move(kept))
    , m_keptPart(keptPart)
{
}

Result<std::unique_ptr<PlannedDrawing>> PlannedDrawing::create(Size stored, Subsampling subsampling,
    const ColorSpace& colorSpace, const Drawing& drawing, Size middle)
{
    auto transform = ColorTransform::create(colorSpace, 8, drawing.colorSpace);
    if (!transform) {
        return tl::unexpected(transform.error());
    }
    auto target = PixelBuffer::create(drawing.size, rgba8Premultiplied);
    if (!target) {
        return tl::unexpected(target.error());
    }
    const Rect keptPart = partToKeep(stored, uprightSize(middle, drawing.orientation));
    auto kept = YccPlanes::create(keptPart.size(), subsampling, keptPart.size());
    if (!kept) {
        return tl::unexpected(kept.error());
    }
    std::unique_ptr<PlannedDrawing> planned(new PlannedDrawing(stored, colorSpace, drawing,
        std::move(*transform), std::move(*target), std::move(*kept), keptPart));
    if (auto begun = planned->begin(subsampling); !begun) {
        return tl::unexpected(begun.error());
    }
    return planned;
}

Result<void> PlannedDrawing::begin(Subsampling subsampling)
{
    auto rows = UprightRows::create(m_target, m_drawing.orientation);
    if (!rows) {
        return tl::unexpected(rows.error());
    }
    m_rows.emplace(std::move(*rows));
    m_writer.emplace(*m_rows, m_transform);
    auto scaler = YccScaler::create(m_stored, subsampling, m_rows->storedSize(),
        [this](const PlanarRow& row) { m_writer->write(row); });
    if (!scaler) {
        return tl::unexpected(scaler.error());
    }
    m_scaler.emplace(std::move(*scaler));
    return {};
}

void PlannedDrawing::take(const YccPlanes& rows)
{
    m_scaler->take(bandAt(rows, 0));
    keep(rows);
    m_rowsTaken += YccBand::rows;
}

/// Copies what of the rows belongs to the middle.
void PlannedDrawing::keep(const YccPlanes& rows)
{
    const int begin = std::max(m_keptPart.y, m_rowsTaken);
    const int end = std::min(m_keptPart.y + m_keptPart.height, m_rowsTaken + YccBand::rows);
    for (int plane = 0; plane < 3 && begin < end; ++plane) {
        const Subsampling shared = plane == 0 ? Subsampling {} : rows.subsampling();
        const int left = m_keptPart.x / shared.x;
        const auto count = static_cast<std::size_t>(m_kept.planeSize(plane).width);
        for (int y = begin; y < end; y += shared.y) {
            std::memcpy(m_kept.row(plane, (y - m_keptPart.y) / shared.y),
                rows.row(plane, (y - m_rowsTaken) / shared.y) + left, count);
        }
    }
}

std::shared_ptr<const DeferredPixels> PlannedDrawing::finish() &&
{
    Image drawn(std::move(m_target), m_drawing.colorSpace);
    return std::make_shared<PlannedPixels>(m_stored, std::move(m_drawing), std::move(drawn),
        std::move(m_kept), m_keptPart, std::move(m_colorSpace));
}

} // namespace vellumine::imaging::ycc
