#pragma once

#include "core/ImageOptimizerError.h"

#include <QSizeF>
#include <QString>
#include <QUrl>
#include <QUuid>

#include <optional>

namespace vellumine {

/// What a conversion did to the picture. The three flags are the settings as requested: true also
/// where the source had nothing to take away.
struct ConversionAudit {
    QSizeF inputDimensions; ///< upright, before resizing
    QSizeF outputDimensions; ///< as handed to the encoder
    QString inputFormat; ///< "JPEG" for example
    QString outputFormat; ///< "WebP Lossy" for example
    bool metadataRemoved = false;
    bool colorOptimized = false;
    bool colorManagementRemoved = false;
    bool sourceHasAlpha = false;
    bool outputSupportsAlpha = false;

    friend bool operator==(const ConversionAudit&, const ConversionAudit&) = default;
};

/// The same part of the source and of the written file, as two PNG files in the temporary folder.
struct ComparisonPreview {
    QUrl sourceSampleURL;
    QUrl outputSampleURL;
    QString sourceName; ///< last path component of the source
    QString outputName;
    QSizeF sourcePixelSize; ///< of the whole upright source
    QSizeF outputPixelSize; ///< of the whole written picture
    QSizeF displaySize; ///< of both samples

    friend bool operator==(const ComparisonPreview&, const ComparisonPreview&) = default;
};

/// The outcome of one file. Made once, copied between threads, never changed.
struct ProcessingResult {
    QUuid id;
    QUrl sourceURL; ///< as it was handed in
    std::optional<QUrl> outputURL; ///< none on failure
    qint64 originalBytes = 0; ///< 0 when unknown and on failure
    qint64 outputBytes = 0; ///< 0 on failure
    QString message; ///< one line for the user
    bool isSuccess = false;
    std::optional<ConversionAudit> audit; ///< on success
    std::optional<ComparisonPreview> comparisonPreview; ///< when both samples could be written

    friend bool operator==(const ProcessingResult&, const ProcessingResult&) = default;
};

enum class OriginalInTrash { asWished, couldNotBeMoved };

/// The line for a written file: what was saved, or "Converted" when nothing was. A saving that
/// does not fit 64 bits is a fatal error.
[[nodiscard]] QString successMessage(
    qint64 originalBytes, qint64 outputBytes, OriginalInTrash original);

/// The result of a file whose conversion failed, with a fresh id.
[[nodiscard]] ProcessingResult failureResult(const QUrl& sourceURL, const OptimizeError& error);

} // namespace vellumine
