#include "cli/Report.h"
#include "cli/ResultJson.h"
#include "cli/Terminal.h"
#include "support/QtPrinters.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>

#include <gtest/gtest.h>

namespace vellumine::cli {
namespace {

ProcessingResult success()
{
    return {
        .id = QUuid::fromString(QStringLiteral("0a1b2c3d-0000-4000-8000-000000000001")),
        .sourceURL = QUrl::fromLocalFile(QStringLiteral("/a/b ü.png")),
        .outputURL = QUrl::fromLocalFile(QStringLiteral("/a/b ü.webp")),
        .originalBytes = 9'007'199'254'740'993,
        .outputBytes = 1'200,
        .message = QStringLiteral("Saved 1 KB"),
        .isSuccess = true,
        .audit = ConversionAudit { { 40, 30 }, { 20, 15 }, QStringLiteral("PNG"),
            QStringLiteral("WebP Lossy"), true, false, true, false, true },
        .comparisonPreview = ComparisonPreview { QUrl::fromLocalFile(QStringLiteral("/t/1.png")),
            QUrl::fromLocalFile(QStringLiteral("/t/2.png")), QStringLiteral("b ü.png"),
            QStringLiteral("b ü.webp"), { 40, 30 }, { 20, 15 }, { 20, 15 } },
    };
}

TEST(ResultJson, hasEveryFieldUnderItsName)
{
    const QByteArray text = resultJson(success());
    EXPECT_FALSE(text.contains('\n'));
    const QJsonObject object = QJsonDocument::fromJson(text).object();
    EXPECT_EQ(object.keys(),
        (QStringList { QStringLiteral("audit"), QStringLiteral("comparisonPreview"),
            QStringLiteral("id"), QStringLiteral("isSuccess"), QStringLiteral("message"),
            QStringLiteral("originalBytes"), QStringLiteral("outputBytes"),
            QStringLiteral("outputURL"), QStringLiteral("sourceURL") }));
    EXPECT_EQ(object[QStringLiteral("id")].toString(),
        QStringLiteral("0A1B2C3D-0000-4000-8000-000000000001"));
    EXPECT_EQ(
        object[QStringLiteral("sourceURL")].toString(), QStringLiteral("file:///a/b%20%C3%BC.png"));
    EXPECT_EQ(object[QStringLiteral("originalBytes")].toInteger(), 9'007'199'254'740'993);
    const QJsonObject audit = object[QStringLiteral("audit")].toObject();
    EXPECT_EQ(audit.size(), 9);
    EXPECT_EQ(audit[QStringLiteral("inputDimensions")].toObject(),
        (QJsonObject { { QStringLiteral("width"), 40 }, { QStringLiteral("height"), 30 } }));
    EXPECT_EQ(audit[QStringLiteral("colorOptimized")].toBool(true), false);
    const QJsonObject preview = object[QStringLiteral("comparisonPreview")].toObject();
    EXPECT_EQ(preview.size(), 7);
    EXPECT_EQ(
        preview[QStringLiteral("outputSampleURL")].toString(), QStringLiteral("file:///t/2.png"));
}

TEST(ResultJson, absentFieldsAreNull)
{
    const ProcessingResult failure = failureResult(QUrl(), ImageOptimizerError(UnreadableImage {}));
    const QJsonObject object = QJsonDocument::fromJson(resultJson(failure)).object();
    EXPECT_EQ(object.size(), 9);
    for (const char* key : { "outputURL", "audit", "comparisonPreview" }) {
        EXPECT_TRUE(object[QString::fromLatin1(key)].isNull()) << key;
    }
    EXPECT_FALSE(object[QStringLiteral("isSuccess")].toBool(true));
}

TEST(ResultLine, namesTheFileTheMessageAndTheSizes)
{
    QLocale::setDefault(QLocale::c());
    ProcessingResult result = success();
    result.originalBytes = 2'000;
    EXPECT_EQ(resultLine(result), QStringLiteral("b ü.png: Saved 1 KB (b ü.webp, 2 KB to 1 KB)"));
    EXPECT_EQ(resultLine(failureResult(result.sourceURL, ImageOptimizerError(UnreadableImage {}))),
        QStringLiteral("b ü.png: The image could not be read."));
}

TEST(ReportTest, tellsWhatWasSavedOrAdded)
{
    QLocale::setDefault(QLocale::c());
    const auto summary = [](qint64 original, qint64 output) {
        Report report(OutputStyle::json);
        ProcessingResult result = success();
        result.originalBytes = original;
        result.outputBytes = output;
        report.add(result);
        return report.summary();
    };
    EXPECT_EQ(summary(4'000, 1'000), QStringLiteral("1 file optimized, 3 KB saved (75.0%)"));
    EXPECT_EQ(summary(4'000, 4'000), QStringLiteral("1 file optimized, Zero KB saved (0.0%)"));
    EXPECT_EQ(summary(1'000, 6'000), QStringLiteral("1 file optimized, 5 KB larger (+500.0%)"));
}

TEST(Printable, keepsNamesFromBreakingTheLine)
{
    EXPECT_EQ(printable(QStringLiteral("a\nb\tc\x1b[31m\x7fü")),
        QStringLiteral("a\\nb\\tc\\x1b[31m\\x7fü"));
}

} // namespace
} // namespace vellumine::cli
