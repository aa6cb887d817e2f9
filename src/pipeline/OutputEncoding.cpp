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
constexpr std::array metadataKeys { PropertyKey::exif, PropertyKey::gps, PropertyKey::tiff,
    PropertyKey::iptc, PropertyKey::png, PropertyKey::jfif, PropertyKey::gif };

UniformType typeFor(std::optional<UniformType> sourceType, OutputFormat format)
{
    switch (format) {
    case OutputFormat::webp:
    case OutputFormat::webpLossless:
        return UniformType::webp;
    case OutputFormat::jpeg:
        return UniformType::jpeg;
    case OutputFormat::png:
        return UniformType::png;
    case OutputFormat::heic:
        return UniformType::heic;
    case OutputFormat::original:
        return sourceType.value_or(UniformType::png);
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
    if (compression == CompressionQuality::include && settings.outputFormat != OutputFormat::png) {
        const double quality = settings.usesLossyCompression()
            ? std::clamp(settings.quality, 1.0, 100.0) / 100.0
            : 1.0;
        properties.set(PropertyKey::lossyCompressionQuality, quality);
    }
    if (settings.removeMetadata) {
        for (const PropertyKey key : metadataKeys) {
            properties.remove(key);
        }
    }
    // The picture is upright by now: a tag would turn it once more.
    properties.remove(PropertyKey::orientation);
    if (settings.removeColorManagement) {
        properties.remove(PropertyKey::colorModel);
        properties.remove(PropertyKey::profileName);
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
    return settings.outputFormat == OutputFormat::original ? inputFormatTitle(url, sourceType)
                                                           : displayTitle(settings.outputFormat);
}

bool ImageOptimizer::outputSupportsAlpha(OutputFormat format, std::optional<UniformType> sourceType)
{
    switch (format) {
    case OutputFormat::webp:
    case OutputFormat::webpLossless:
    case OutputFormat::png:
        return true;
    case OutputFormat::jpeg:
    case OutputFormat::heic:
        return false;
    case OutputFormat::original:
        return sourceType == UniformType::png || sourceType == UniformType::webp;
    }
    Q_UNREACHABLE();
}

} // namespace vellumine
