#include "imaging/BitmapContext.h"

#include "imaging/DeferredPixels.h"
#include "imaging/Orientation.h"
#include "imaging/PixelConversion.h"
#include "imaging/colour/ColorTransform.h"
#include "imaging/resample/PlanarPixels.h"
#include "imaging/resample/Resampler.h"

#include <array>
#include <cassert>
#include <utility>
#include <vector>

namespace vellumine::imaging {

namespace {

/// Colours converted, size kept: every row goes through the planes, without a resampling between.
void convertRows(const PlanarReader& reader, RgbaWriter& writer, Size size)
{
    std::array<std::vector<std::uint16_t>, 4> rows;
    PlanarRow row { 0, 0, size.width, {} };
    for (int i = 0; i < reader.planes(); ++i) {
        const auto at = static_cast<std::size_t>(i);
        rows.at(at).resize(static_cast<std::size_t>(size.width));
        row.planes.at(at) = rows.at(at).data();
    }
    for (row.y = 0; row.y < size.height; ++row.y) {
        reader.read(row);
        writer.write(row);
    }
}

/// The same for opaque colour that the transform can read where it stands.
void convertRowsInPlace(const Image& image, const ColorTransform& transform, PixelBuffer& target)
{
    for (int y = 0; y < image.height(); ++y) {
        std::uint8_t* const rgba = target.row8(y);
        transform.apply(image.row(y).data(), rgba, image.width());
        for (int x = 0; x < image.width(); ++x) {
            rgba[4 * static_cast<std::ptrdiff_t>(x) + 3] = 255;
        }
    }
}

} // namespace

BitmapContext::BitmapContext(Size size, ColorSpace colorSpace)
    : m_size(size)
    , m_colorSpace(std::move(colorSpace))
{
}

Result<BitmapContext> BitmapContext::create(
    Size size, int bitsPerComponent, const ColorSpace& colorSpace, AlphaInfo alpha)
{
    if (size.width < 1 || size.height < 1) {
        return failure(Error::Kind::malformed, "the bitmap has no pixels");
    }
    if (bitsPerComponent != 8 || alpha != AlphaInfo::premultipliedLast
        || colorSpace.model() != ColorModel::rgb) {
        return failure(Error::Kind::unsupported, "only premultiplied 8-bit RGBA can be drawn into");
    }
    return BitmapContext(size, colorSpace);
}

Result<void> BitmapContext::draw(const Image& image)
{
    if (image.layout().alpha == AlphaInfo::only) {
        return failure(Error::Kind::unsupported, "a mask has no colour to draw");
    }
    const bool scales = image.size() != m_size;
    if (!image.hasRows()) {
        return image.deferred()
            ->drawn({ m_size, m_colorSpace, m_quality, image.orientation() })
            .map([this](Image&& drawn) { m_drawn = std::move(drawn); });
    }
    if (!scales && image.layout().model == ColorModel::rgb
        && sameNumbers(image.colorSpace(), m_colorSpace)) {
        auto same = relayout(image, rgba8Premultiplied);
        if (!same) {
            return tl::unexpected(same.error());
        }
        m_drawn = same->withColorSpace(m_colorSpace);
        return {};
    }

    const PixelLayout layout = image.layout();
    const auto transform
        = ColorTransform::create(image.colorSpace(), layout.bitsPerComponent, m_colorSpace);
    if (!transform) {
        return tl::unexpected(transform.error());
    }
    auto target = PixelBuffer::create(m_size, rgba8Premultiplied);
    if (!target) {
        return tl::unexpected(target.error());
    }
    if (!scales && layout.alpha == AlphaInfo::none) {
        convertRowsInPlace(image, *transform, *target);
    } else {
        const PlanarReader reader(image);
        RgbaWriter writer(*target, *transform, layout.colorChannels(), layout.bitsPerComponent,
            reader.hasAlpha());
        if (scales) {
            auto done = resample({ image.size(), m_size, reader.planes(), filterFor(m_quality),
                [&reader](const PlanarRow& row) { reader.read(row); },
                [&writer](const PlanarRow& row) { writer.write(row); } });
            if (!done) {
                return done;
            }
        } else {
            convertRows(reader, writer, m_size);
        }
    }
    m_drawn.emplace(std::move(*target), m_colorSpace);
    return {};
}

Result<Image> BitmapContext::makeImage() &&
{
    return std::move(*this).makeImageWhereItIs().and_then(
        [](const Image& image) { return image.withRows(); });
}

Result<Image> BitmapContext::makeImageWhereItIs() &&
{
    if (m_drawn) {
        return std::move(*m_drawn);
    }
    auto transparent = PixelBuffer::createZeroed(m_size, rgba8Premultiplied);
    if (!transparent) {
        return tl::unexpected(transparent.error());
    }
    return Image(std::move(*transparent), m_colorSpace);
}

Result<Image> drawnUpright(const Image& image, const Drawing& drawing)
{
    if (!image.hasRows()) {
        return image.deferred()->drawn(drawing);
    }
    auto context = BitmapContext::create(
        uprightSize(drawing.size, drawing.orientation), 8, drawing.colorSpace);
    if (!context) {
        return tl::unexpected(context.error());
    }
    context->setInterpolationQuality(drawing.quality);
    return context->draw(image)
        .and_then([&context] { return std::move(*context).makeImage(); })
        .and_then([&drawing](const Image& stored) { return upright(stored, drawing.orientation); });
}

} // namespace vellumine::imaging
