#include "confined/client/ConfinedPixels.h"

#include "imaging/BitmapContext.h"
#include "imaging/ycc/PlaneSource.h"

#include <mutex>
#include <optional>
#include <utility>

namespace vellumine::confined {

using imaging::BitmapColors;
using imaging::ColorSpace;
using imaging::Drawing;
using imaging::Image;
using imaging::Rect;
using imaging::Result;
using imaging::ycc::PlaneSource;

namespace {

/// None for colours that a helper cannot be told.
std::optional<BitmapColors> bitmapColors(const ColorSpace& wanted, const ColorSpace& own)
{
    for (const auto colors : { BitmapColors::sRgb, BitmapColors::deviceRgb, BitmapColors::own }) {
        if (wanted == colorSpaceOf(colors, own)) {
            return colors;
        }
    }
    return std::nullopt;
}

/// The planes of a picture that stays with its helper. When that has them no longer they are gone:
/// whoever began with them must not go on with those of another picture.
class HelpersPlanes final : public PlaneSource {
public:
    HelpersPlanes(std::shared_ptr<HelperSession> session, HelperSession::KeptPlanes planes)
        : m_session(std::move(session))
        , m_planes(planes)
    {
    }

    [[nodiscard]] imaging::Size size() const override { return m_planes.given.size; }
    [[nodiscard]] imaging::ycc::Subsampling subsampling() const override
    {
        return m_planes.given.subsampling;
    }
    [[nodiscard]] Result<void> copy(
        int plane, Rect part, std::uint8_t* to, std::size_t rowBytes) const override
    {
        return m_session->copyPlane(m_planes, plane, part, to, rowBytes);
    }

private:
    const std::shared_ptr<HelperSession> m_session;
    const HelperSession::KeptPlanes m_planes;
};

/// Null where there are none.
std::shared_ptr<const PlaneSource> planeSource(
    const std::shared_ptr<HelperSession>& session, const Result<HelperSession::KeptPlanes>& planes)
{
    return planes ? std::make_shared<HelpersPlanes>(session, *planes) : nullptr;
}

/// A drawn picture that stays with its helper. When that has it no longer it is drawn once more,
/// and then brought here.
class DrawnPixels final : public imaging::DeferredPixels {
public:
    DrawnPixels(std::shared_ptr<HelperSession> session, DrawRequest request,
        HelperSession::KeptDrawing drawing, ColorSpace colorSpace)
        : m_session(std::move(session))
        , m_request(request)
        , m_drawing(drawing)
        , m_colorSpace(std::move(colorSpace))
    {
    }

    [[nodiscard]] Result<Image> rows(Rect part) const override
    {
        const std::scoped_lock lock(m_mutex);
        if (!m_whole) {
            auto fetched = m_session->keptRows(m_drawing, part, m_colorSpace);
            if (fetched) {
                return fetched;
            }
            auto again = m_session->draw(m_request, m_colorSpace);
            if (!again) {
                return again;
            }
            m_whole = std::move(*again);
        }
        return m_whole->cropped(part);
    }

    [[nodiscard]] Result<Image> drawn(const Drawing& drawing) const override
    {
        return rows({ 0, 0, m_request.size.width, m_request.size.height })
            .and_then([&drawing](const Image& image) { return drawnUpright(image, drawing); });
    }

    [[nodiscard]] std::shared_ptr<const PlaneSource> planes() const override
    {
        const std::scoped_lock lock(m_mutex);
        if (!m_planes) {
            m_planes = planeSource(m_session, m_session->planes(m_drawing));
        }
        return m_planes;
    }

private:
    const std::shared_ptr<HelperSession> m_session;
    const DrawRequest m_request;
    const HelperSession::KeptDrawing m_drawing;
    const ColorSpace m_colorSpace;
    mutable std::mutex m_mutex;
    mutable std::optional<Image> m_whole;
    mutable std::shared_ptr<const PlaneSource> m_planes;
};

} // namespace

ConfinedPixels::ConfinedPixels(std::shared_ptr<HelperSession> session, ColorSpace colorSpace)
    : m_session(std::move(session))
    , m_colorSpace(std::move(colorSpace))
{
}

Result<Image> ConfinedPixels::rows(Rect part) const
{
    return m_session->rows(part);
}

Result<Image> ConfinedPixels::drawn(const Drawing& drawing) const
{
    const auto colors = bitmapColors(drawing.colorSpace, m_colorSpace);
    if (!colors) {
        return imaging::failure(imaging::Error::Kind::unsupported, "not in these colours");
    }
    const DrawRequest request { drawing.size, *colors, drawing.quality, drawing.orientation };
    const auto kept = m_session->drawAndKeep(request);
    if (!kept) {
        return m_session->draw(request, drawing.colorSpace);
    }
    return Image(request.size, imaging::rgba8Premultiplied, drawing.colorSpace,
        std::make_shared<DrawnPixels>(m_session, request, *kept, drawing.colorSpace),
        imaging::Orientation::topLeft);
}

std::shared_ptr<const PlaneSource> ConfinedPixels::planes() const
{
    const std::scoped_lock lock(m_mutex);
    if (!m_planes) {
        m_planes = planeSource(m_session, m_session->planes());
    }
    return m_planes;
}

} // namespace vellumine::confined
