#include "core/ProcessingResult.h"
#include "support/QtPrinters.h"

#include <QLocale>
#include <gtest/gtest.h>

#include <limits>

namespace vellumine {
namespace {

const QUrl photo = QUrl::fromLocalFile(QStringLiteral("/somewhere/deep/photo.jpg"));

struct ErrorRow {
    const char* name;
    ImageOptimizerError error;
    const char* text;
};

class ErrorTexts : public testing::TestWithParam<ErrorRow> { };

TEST_P(ErrorTexts, isTheTextForTheUser)
{
    const QString expected = QString::fromUtf8(GetParam().text);
    EXPECT_EQ(errorDescription(GetParam().error), expected);
    EXPECT_EQ(localizedDescription(GetParam().error), expected);
}

INSTANTIATE_TEST_SUITE_P(ImageOptimizerError, ErrorTexts,
    testing::Values(ErrorRow { "unsupportedFormat", UnsupportedFormat { QStringLiteral("HEIC") },
                        "HEIC is not supported by this macOS ImageIO installation." },
        ErrorRow { "unsupportedFormatRunsTwoSentencesTogether",
            UnsupportedFormat { QStringLiteral("WebP support is not bundled in this build.") },
            "WebP support is not bundled in this build. is not supported by this macOS ImageIO "
            "installation." },
        ErrorRow { "cannotCreateDestination", CannotCreateDestination { photo },
            "Could not create photo.jpg." },
        ErrorRow { "cannotFinalizeWithDetail",
            CannotFinalize { photo, QStringLiteral("No space left on device") },
            "Could not finish writing photo.jpg: No space left on device" },
        ErrorRow { "cannotFinalizeWithoutDetail", CannotFinalize { photo, std::nullopt },
            "Could not finish writing photo.jpg." },
        ErrorRow { "cannotFinalizeWithEmptyDetail", CannotFinalize { photo, QString() },
            "Could not finish writing photo.jpg." },
        ErrorRow { "cannotWriteOutput", CannotWriteOutput { photo, QStringLiteral("File exists") },
            "Could not save photo.jpg: File exists" },
        ErrorRow { "unreadableImage", UnreadableImage {}, "The image could not be read." },
        ErrorRow { "overwriteDeclined", OverwriteDeclined {},
            "Skipped because the output file already exists." },
        ErrorRow { "missingDestinationFolder", MissingDestinationFolder {},
            "The selected destination folder is no longer available." }),
    [](const auto& instance) { return std::string(instance.param.name); });

TEST(ImageOptimizerError, hasTheSevenCasesInOrder)
{
    EXPECT_EQ(ImageOptimizerError(UnsupportedFormat {}).index(), 0U);
    EXPECT_EQ(ImageOptimizerError(CannotCreateDestination {}).index(), 1U);
    EXPECT_EQ(ImageOptimizerError(CannotFinalize {}).index(), 2U);
    EXPECT_EQ(ImageOptimizerError(CannotWriteOutput {}).index(), 3U);
    EXPECT_EQ(ImageOptimizerError(UnreadableImage {}).index(), 4U);
    EXPECT_EQ(ImageOptimizerError(OverwriteDeclined {}).index(), 5U);
    EXPECT_EQ(ImageOptimizerError(MissingDestinationFolder {}).index(), 6U);
    EXPECT_EQ(std::variant_size_v<ImageOptimizerError>, 7U);
}

TEST(ImageOptimizerError, namesOnlyTheLastPathComponentAsOnDisk)
{
    const QUrl url = QUrl::fromLocalFile(QStringLiteral("/a/100%20 #1? ü.webp"));
    EXPECT_EQ(errorDescription(CannotCreateDestination { url }),
        QStringLiteral("Could not create 100%20 #1? ü.webp."));
}

TEST(OptimizeError, systemErrorsKeepTheSystemsText)
{
    EXPECT_EQ(localizedDescription(platform::FileError { QStringLiteral("Is a directory") }),
        QStringLiteral("Is a directory"));
}

struct MessageRow {
    const char* name;
    qint64 original;
    qint64 output;
    OriginalInTrash trash;
    const char* text;
};

class SuccessMessage : public testing::TestWithParam<MessageRow> {
protected:
    void SetUp() override { QLocale::setDefault(QLocale::c()); }
};

TEST_P(SuccessMessage, saysWhatWasSaved)
{
    EXPECT_EQ(successMessage(GetParam().original, GetParam().output, GetParam().trash),
        QString::fromUtf8(GetParam().text));
}

INSTANTIATE_TEST_SUITE_P(ProcessingResult, SuccessMessage,
    testing::Values(
        MessageRow { "saved", 2'000'000, 800'000, OriginalInTrash::asWished, "Saved 1.2 MB" },
        MessageRow { "savedOneByte", 2, 1, OriginalInTrash::asWished, "Saved 1 byte" },
        MessageRow { "equalSizes", 7, 7, OriginalInTrash::asWished, "Converted" },
        MessageRow { "oneByteLarger", 7, 8, OriginalInTrash::asWished, "Converted" },
        MessageRow { "unknownOriginal", 0, 1000, OriginalInTrash::asWished, "Converted" },
        MessageRow { "savedButNotTrashed", 340'000, 0, OriginalInTrash::couldNotBeMoved,
            "Saved 340 KB. Original could not be moved to Trash" },
        MessageRow { "convertedButNotTrashed", 1, 1, OriginalInTrash::couldNotBeMoved,
            "Converted. Original could not be moved to Trash" }),
    [](const auto& instance) { return std::string(instance.param.name); });

TEST(SuccessMessageDeathTest, savingBeyond64BitsIsFatal)
{
    EXPECT_DEATH(
        (void)successMessage(std::numeric_limits<qint64>::max(), -1, OriginalInTrash::asWished),
        "64 bits");
}

TEST(FailureResult, hasTheMessageAndNothingElse)
{
    const ProcessingResult result = failureResult(photo, ImageOptimizerError(UnreadableImage {}));
    EXPECT_FALSE(result.id.isNull());
    EXPECT_EQ(result.sourceURL, photo);
    EXPECT_EQ(result.outputURL, std::nullopt);
    EXPECT_EQ(result.originalBytes, 0);
    EXPECT_EQ(result.outputBytes, 0);
    EXPECT_EQ(result.message, QStringLiteral("The image could not be read."));
    EXPECT_FALSE(result.isSuccess);
    EXPECT_EQ(result.audit, std::nullopt);
    EXPECT_EQ(result.comparisonPreview, std::nullopt);
}

TEST(FailureResult, everyOneHasAnIdOfItsOwn)
{
    const OptimizeError error = platform::FileError { QStringLiteral("x") };
    EXPECT_NE(failureResult(photo, error).id, failureResult(photo, error).id);
}

} // namespace
} // namespace vellumine
