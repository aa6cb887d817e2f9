#include "imaging/ImageDestination.h"
#include "pipeline/ImageOptimizer.h"
#include "pipeline/SourceName.h"

#include <algorithm>
#include <array>

namespace vellumine {

using imaging::ImageProperties;
using imaging::PropertyKey;
using imaging::UniformType;

namespace {

/// The properties that say something about who made the picture, where and with what.
constexpr std::array metadataKeys { PropertyKey::Exif, PropertyKey::Gps, PropertyKey::Tiff,
    PropertyKey::Iptc, PropertyKey::Png, PropertyKey::Jfif, PropertyKey::Gif };

UniformType typeFor(std::optional<UniformType> sourceType, OutputFormat format)
{
    switch (format) {
    case OutputFormat::WebP:
    case OutputFormat::WebPLossless:
        return UniformType::WebP;
    case OutputFormat::Jpeg:
        return UniformType::Jpeg;
    case OutputFormat::Png:
        return UniformType::Png;
    case OutputFormat::Heic:
        return UniformType::Heic;
    case OutputFormat::Original:
        return sourceType.value_or(UniformType::Png);
    }
    Q_UNREACHABLE();
}

} // namespace

Outcome<UniformType> ImageOptimizer::outputUTI(
    std::optional<UniformType> sourceType, const OptimizerSettings& settings)
{
    const UniformType type = typeFor(sourceType, settings.outputFormat);
    const auto encodable = imaging::ImageDestination::encodableTypes();
    if (std::find(encodable.begin(), encodable.end(), type) == encodable.end()) {
        return failed(UnsupportedFormat { displayTitle(settings.outputFormat) });
    }
    return type;
}

ImageProperties ImageOptimizer::destinationProperties(const OptimizerSettings& settings,
    const ImageProperties& sourceProperties, CompressionQuality compression)
{
    ImageProperties properties = settings.removeMetadata ? ImageProperties() : sourceProperties;
    if (compression == CompressionQuality::Include && settings.outputFormat != OutputFormat::Png) {
        const double quality = settings.usesLossyCompression()
            ? std::clamp(settings.quality, 1.0, 100.0) / 100.0
            : 1.0;
        properties.set(PropertyKey::LossyCompressionQuality, quality);
    }
    if (settings.removeMetadata) {
        for (const PropertyKey key : metadataKeys) {
            properties.remove(key);
        }
    }
    // The picture is upright by now: a tag would turn it once more.
    properties.remove(PropertyKey::Orientation);
    if (settings.removeColorManagement) {
        properties.remove(PropertyKey::ColorModel);
        properties.remove(PropertyKey::ProfileName);
    }
    return properties;
}

QString ImageOptimizer::inputFormatTitle(const QUrl& url, std::optional<UniformType> sourceType)
{
    if (sourceType) {
        const auto extension = preferredExtension(*sourceType);
        return QString::fromLatin1(extension.data(), qsizetype(extension.size())).toUpper();
    }
    const QString extension = SourceName::of(url).extension;
    return extension.isEmpty() ? QStringLiteral("Image") : extension.toUpper();
}

QString ImageOptimizer::outputFormatTitle(
    const QUrl& url, std::optional<UniformType> sourceType, const OptimizerSettings& settings)
{
    return settings.outputFormat == OutputFormat::Original ? inputFormatTitle(url, sourceType)
                                                           : displayTitle(settings.outputFormat);
}

bool ImageOptimizer::outputSupportsAlpha(OutputFormat format, std::optional<UniformType> sourceType)
{
    switch (format) {
    case OutputFormat::WebP:
    case OutputFormat::WebPLossless:
    case OutputFormat::Png:
        return true;
    case OutputFormat::Jpeg:
    case OutputFormat::Heic:
        return false;
    case OutputFormat::Original:
        return sourceType == UniformType::Png || sourceType == UniformType::WebP;
    }
    Q_UNREACHABLE();
}

} // namespace vellumine
