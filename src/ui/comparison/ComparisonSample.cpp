#include "ui/comparison/ComparisonSample.h"

#include "imaging/BitmapContext.h"
#include "imaging/ImageSource.h"
#include "platform/FilePath.h"

#include <QFile>

#include <algorithm>
#include <memory>

namespace vellumine {
namespace {

using imaging::Image;
using imaging::Size;

/// The first picture of a file, in full size and upright.
std::optional<Image> orientedImage(
    const QUrl& url, const OpenImage& openImage, const imaging::Limits& limits)
{
    auto source = openImage(platform::toPath(url), limits, {});
    if (!source) {
        return std::nullopt;
    }
    const Size size = source->storedSize();
    auto image = source->thumbnailWithTransform(std::max(size.width, size.height));
    return image ? std::optional(std::move(*image)) : std::nullopt;
}

/// The middle of the picture in the screen's colours, with pixels of its own.
QImage centre(const Image& image, Size size)
{
    const auto middle = image.rows(centredRect(image.size(), size));
    auto bitmap = imaging::BitmapContext::create(size, 8, imaging::ColorSpace::sRgb());
    if (!middle || !bitmap || !bitmap->draw(*middle)) {
        return {};
    }
    const auto drawn = std::move(*bitmap).makeImage();
    if (!drawn) {
        return {};
    }
    return QImage(drawn->row8(0), size.width, size.height,
        static_cast<qsizetype>(drawn->rowBytes()), QImage::Format_RGBA8888_Premultiplied)
        .convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

QSizeF sizeF(Size size)
{
    return { static_cast<qreal>(size.width), static_cast<qreal>(size.height) };
}

/// By the bytes of its name: QImage's own loader takes a text.
QImage load(const QUrl& url)
{
    QFile file(QFile::decodeName(platform::toPath(url).c_str()));
    return file.open(QIODevice::ReadOnly) ? QImage::fromData(file.readAll(), "png") : QImage();
}

} // namespace

std::optional<ComparisonSample> ComparisonSample::fromPreview(const ComparisonPreview& preview)
{
    ComparisonSample sample {
        .sourceImage = load(preview.sourceSampleURL),
        .outputImage = load(preview.outputSampleURL),
        .sourceName = preview.sourceName,
        .outputName = preview.outputName,
        .sourcePixelSize = preview.sourcePixelSize,
        .outputPixelSize = preview.outputPixelSize,
        .displaySize = preview.displaySize,
    };
    if (sample.sourceImage.isNull() || sample.outputImage.isNull()) {
        return std::nullopt;
    }
    return sample;
}

std::optional<ComparisonSample> ComparisonSample::fromFiles(const QUrl& sourceURL,
    const QUrl& outputURL, platform::SecurityScope& scope, const OpenImage& openImage,
    const imaging::Limits& limits)
{
    const platform::ScopedAccess sourceAccess(scope, sourceURL);
    const platform::ScopedAccess outputAccess(scope, outputURL);
    const auto source = orientedImage(sourceURL, openImage, limits);
    if (!source) {
        return std::nullopt;
    }
    const auto output = orientedImage(outputURL, openImage, limits);
    if (!output) {
        return std::nullopt;
    }
    const Size size { std::min({ source->width(), output->width(), largest.width() }),
        std::min({ source->height(), output->height(), largest.height() }) };
    ComparisonSample sample {
        .sourceImage = centre(*source, size),
        .outputImage = centre(*output, size),
        .sourceName = platform::lastPathComponent(sourceURL),
        .outputName = platform::lastPathComponent(outputURL),
        .sourcePixelSize = sizeF(source->size()),
        .outputPixelSize = sizeF(output->size()),
        .displaySize = sizeF(size),
    };
    if (sample.sourceImage.isNull() || sample.outputImage.isNull()) {
        return std::nullopt;
    }
    return sample;
}

} // namespace vellumine
