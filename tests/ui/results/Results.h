#pragma once

#include "core/ProcessingResult.h"
#include "platform/FilePath.h"

#include <QString>

namespace vellumine::test {

inline ConversionAudit someAudit()
{
    return {
        .inputDimensions = { 4032, 3024 },
        .outputDimensions = { 2048, 1536 },
        .inputFormat = QStringLiteral("JPEG"),
        .outputFormat = QStringLiteral("WebP Lossy"),
        .metadataRemoved = true,
        .colorOptimized = true,
    };
}

inline ProcessingResult success(
    qint64 originalBytes, qint64 outputBytes, const QString& name = QStringLiteral("a.jpg"))
{
    return {
        .id = QUuid::createUuid(),
        .sourceURL = platform::fileUrl(QStringLiteral("/pictures/") + name),
        .outputURL = platform::fileUrl(QStringLiteral("/out/") + name),
        .originalBytes = originalBytes,
        .outputBytes = outputBytes,
        .message = successMessage(originalBytes, outputBytes, OriginalInTrash::asWished),
        .isSuccess = true,
        .audit = someAudit(),
        .comparisonPreview = std::nullopt,
    };
}

inline ProcessingResult failure(const QString& name = QStringLiteral("b.jpg"))
{
    ProcessingResult result;
    result.id = QUuid::createUuid();
    result.sourceURL = platform::fileUrl(QStringLiteral("/pictures/") + name);
    result.message = QStringLiteral("The image could not be read.");
    return result;
}

} // namespace vellumine::test
