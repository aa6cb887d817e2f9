#include "confined/client/ConfinedPixels.h"

#include <optional>
#include <utility>

namespace vellumine::confined {

using imaging::ColorSpace;
using imaging::Drawing;
using imaging::Image;
using imaging::Rect;
using imaging::Result;

namespace {

/// None for colours that a helper cannot be told.
std::optional<BitmapColors> bitmapColors(const ColorSpace& wanted, const ColorSpace& own)
{
    for (const auto& [colors, space] : { std::pair(BitmapColors::sRgb, ColorSpace::sRgb()),
             std::pair(BitmapColors::deviceRgb, ColorSpace::deviceRgb()),
             std::pair(BitmapColors::own, own) }) {
        if (wanted == space) {
            return colors;
        }
    }
    return std::nullopt;
}

} // namespace

ConfinedPixels::ConfinedPixels(std::shared_ptr<HelperSession> session, ColorSpace colorSpace)
    : m_session(std::move(session))
    , m_colorSpace(std::move(colorSpace))
{
}

Result<Image> ConfinedPixels::rows(Rect part) const
{
    const std::scoped_lock lock(m_mutex);
    return m_session->rows(part);
}

Result<Image> ConfinedPixels::drawn(const Drawing& drawing) const
{
    const auto colors = bitmapColors(drawing.colorSpace, m_colorSpace);
    if (!colors) {
        return imaging::failure(imaging::Error::Kind::unsupported, "not in these colours");
    }
    const std::scoped_lock lock(m_mutex);
    return m_session->draw(
        { drawing.size, *colors, drawing.quality, drawing.orientation }, drawing.colorSpace);
}

} // namespace vellumine::confined
