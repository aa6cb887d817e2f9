#include "imaging/BitmapContext.h"
#include "pipeline/ImageOptimizer.h"

#include <QtGlobal>

#include <algorithm>
#include <cmath>
#include <limits>

namespace vellumine {

using imaging::BitmapColors;
using imaging::BitmapContext;
using imaging::Image;
using imaging::Size;

namespace {

/// The side that the limit is for; 0 when there is no limit.
int referenceEdge(Size size, ResizeMode mode)
{
    switch (mode) {
    case ResizeMode::maxWidth:
        return size.width;
    case ResizeMode::maxHeight:
        return size.height;
    case ResizeMode::longestEdge:
        return std::max(size.width, size.height);
    case ResizeMode::none:
        return 0;
    }
    Q_UNREACHABLE();
}

int scaledSide(int side, double scale)
{
    const double scaled = scale * side;
    if (!std::isfinite(scaled) || scaled > std::numeric_limits<int>::max()) {
        qFatal("a side of the resized picture is out of range");
    }
    return std::max(1, static_cast<int>(scaled));
}

} // namespace

Image ImageOptimizer::oriented(imaging::ImageSource& source, const Image& fallback)
{
    return source.thumbnailWithTransform(std::max(fallback.width(), fallback.height()))
        .value_or(fallback);
}

BitmapColors ImageOptimizer::bitmapColors(const OptimizerSettings& settings)
{
    if (settings.optimizeColorForSharing) {
        return BitmapColors::sRgb;
    }
    return settings.removeColorManagement ? BitmapColors::deviceRgb : BitmapColors::own;
}

Size ImageOptimizer::transformedSize(Size size, const OptimizerSettings& settings)
{
    const qint64 limit = std::max<qint64>(settings.maximumPixels, 1);
    const int reference = referenceEdge(size, settings.resizeMode);
    if (limit >= reference) {
        return size;
    }
    const double scale = static_cast<double>(limit) / reference;
    return { scaledSide(size.width, scale), scaledSide(size.height, scale) };
}

Image ImageOptimizer::transformed(const Image& image, const OptimizerSettings& settings)
{
    const Size size = transformedSize(image.size(), settings);
    const BitmapColors colors = bitmapColors(settings);
    if (size == image.size() && colors == BitmapColors::own) {
        return image;
    }
    auto context = BitmapContext::create(size, 8, colorSpaceOf(colors, image.colorSpace()));
    if (!context) {
        return image; // grey or CMYK that is to keep its colours
    }
    context->setInterpolationQuality(imaging::InterpolationQuality::high);
    if (!context->draw(image)) {
        return image;
    }
    return std::move(*context).makeImageWhereItIs().value_or(image);
}

} // namespace vellumine
