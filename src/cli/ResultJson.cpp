#include "cli/ResultJson.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>

namespace vellumine::cli {

namespace {

QJsonValue json(const QUrl& url)
{
    return QString::fromUtf8(url.toEncoded(QUrl::FullyEncoded));
}

QJsonValue json(QSizeF size)
{
    return QJsonObject {
        { QStringLiteral("width"), size.width() },
        { QStringLiteral("height"), size.height() },
    };
}

QJsonValue json(const ConversionAudit& audit)
{
    return QJsonObject {
        { QStringLiteral("inputDimensions"), json(audit.inputDimensions) },
        { QStringLiteral("outputDimensions"), json(audit.outputDimensions) },
        { QStringLiteral("inputFormat"), audit.inputFormat },
        { QStringLiteral("outputFormat"), audit.outputFormat },
        { QStringLiteral("metadataRemoved"), audit.metadataRemoved },
        { QStringLiteral("colorOptimized"), audit.colorOptimized },
        { QStringLiteral("colorManagementRemoved"), audit.colorManagementRemoved },
        { QStringLiteral("sourceHasAlpha"), audit.sourceHasAlpha },
        { QStringLiteral("outputSupportsAlpha"), audit.outputSupportsAlpha },
    };
}

QJsonValue json(const ComparisonPreview& preview)
{
    return QJsonObject {
        { QStringLiteral("sourceSampleURL"), json(preview.sourceSampleURL) },
        { QStringLiteral("outputSampleURL"), json(preview.outputSampleURL) },
        { QStringLiteral("sourceName"), preview.sourceName },
        { QStringLiteral("outputName"), preview.outputName },
        { QStringLiteral("sourcePixelSize"), json(preview.sourcePixelSize) },
        { QStringLiteral("outputPixelSize"), json(preview.outputPixelSize) },
        { QStringLiteral("displaySize"), json(preview.displaySize) },
    };
}

template <typename T> QJsonValue json(const std::optional<T>& value)
{
    return value ? json(*value) : QJsonValue(QJsonValue::Null);
}

} // namespace

QByteArray resultJson(const ProcessingResult& result)
{
    const QJsonObject object {
        { QStringLiteral("id"), result.id.toString(QUuid::WithoutBraces).toUpper() },
        { QStringLiteral("sourceURL"), json(result.sourceURL) },
        { QStringLiteral("outputURL"), json(result.outputURL) },
        { QStringLiteral("originalBytes"), result.originalBytes },
        { QStringLiteral("outputBytes"), result.outputBytes },
        { QStringLiteral("message"), result.message },
        { QStringLiteral("isSuccess"), result.isSuccess },
        { QStringLiteral("audit"), json(result.audit) },
        { QStringLiteral("comparisonPreview"), json(result.comparisonPreview) },
    };
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

} // namespace vellumine::cli
