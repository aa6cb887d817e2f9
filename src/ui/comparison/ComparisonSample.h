#pragma once

#include "core/ProcessingResult.h"
#include "imaging/Limits.h"
#include "pipeline/ConversionEnvironment.h"
#include "platform/SecurityScope.h"

#include <QImage>
#include <QSizeF>
#include <QString>
#include <QUrl>

#include <optional>

namespace vellumine {

/// The same part out of the middle of a picture before and after, to be laid over each other.
struct ComparisonSample {
    /// The largest sample cut from two files.
    static constexpr QSize largest { 720, 460 };

    QImage sourceImage; ///< sRGB, `displaySize` pixels
    QImage outputImage;
    QString sourceName; ///< file names
    QString outputName;
    QSizeF sourcePixelSize; ///< of the whole upright pictures
    QSizeF outputPixelSize;
    QSizeF displaySize;

    /// From the samples that a conversion wrote; none when either cannot be loaded.
    [[nodiscard]] static std::optional<ComparisonSample> fromPreview(
        const ComparisonPreview& preview);

    /// From the two files, decoded whole and turned upright: the part that fits both and `largest`,
    /// from the middle of each. None when either cannot be read.
    [[nodiscard]] static std::optional<ComparisonSample> fromFiles(const QUrl& sourceURL,
        const QUrl& outputURL, platform::SecurityScope& scope, const OpenImage& openImage,
        const imaging::Limits& limits);
};

} // namespace vellumine
