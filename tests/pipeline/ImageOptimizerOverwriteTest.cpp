#include "pipeline/GivenPicture.h"
#include "pipeline/Optimize.h"
#include "support/NamedRows.h"

#include <filesystem>

namespace vellumine {
namespace {

using test::listing;
using test::Optimize;
using test::textOf;
using test::urlOf;
using test::writeFile;

TEST_F(Optimize, skipLeavesTheExistingFileUntouched)
{
    m_settings.warnBeforeOverwrite = true;
    writeFile(in("a.webp"), "old");
    m_environment.confirmOverwrite = [](const QUrl&) { return OverwriteDecision::skip; };
    expectFailure(makeSource(), "Skipped because the output file already exists.");
    EXPECT_EQ(textOf(in("a.webp")), "old");
    EXPECT_EQ(listing(in("")), "a.bmp a.webp");
}

TEST_F(Optimize, replaceReplaces)
{
    m_settings.warnBeforeOverwrite = true;
    writeFile(in("a.webp"), "old");
    m_environment.confirmOverwrite = [](const QUrl&) { return OverwriteDecision::replace; };
    ASSERT_TRUE(optimize(makeSource()));
    EXPECT_EQ(test::readPicture(in("a.webp")).size(), test::oddSize);
}

TEST_F(Optimize, fileThatVanishesAfterTheQuestionIsNoProblem)
{
    m_settings.warnBeforeOverwrite = true;
    writeFile(in("a.webp"), "old");
    m_environment.confirmOverwrite = [this](const QUrl&) {
        std::filesystem::remove(in("a.webp"));
        return OverwriteDecision::replace;
    };
    ASSERT_TRUE(optimize(makeSource()));
    EXPECT_EQ(test::readPicture(in("a.webp")).size(), test::oddSize);
}

struct LateRow {
    const char* name;
    OutputFormat format;
    const char* output;
    const char* message; ///< of a conversion that would have asked
};

/// Somebody writes a file to the output's place after it was found free.
class OptimizeToAPlaceThatIsTaken : public Optimize, public testing::WithParamInterface<LateRow> {
protected:
    Outcome<ProcessingResult> optimizeWhileTheOutputAppears()
    {
        const auto source = makeSource();
        const auto image = test::watched(test::gradient(test::oddSize, test::rgb8), [this] {
            if (!std::filesystem::exists(in(GetParam().output))) {
                writeFile(in(GetParam().output), "other");
            }
        });
        m_environment.openImage = test::openAs(source, image);
        m_environment.confirmOverwrite = [this](const QUrl&) {
            ++m_questions;
            return OverwriteDecision::replace;
        };
        m_settings.outputFormat = GetParam().format;
        return optimize(source);
    }

    int m_questions = 0;
};

TEST_P(OptimizeToAPlaceThatIsTaken, keepsWhatItWouldHaveAskedAbout)
{
    m_settings.warnBeforeOverwrite = true;
    const auto result = optimizeWhileTheOutputAppears();
    ASSERT_FALSE(result);
    EXPECT_EQ(localizedDescription(result.error()).toStdString(), GetParam().message);
    EXPECT_EQ(m_questions, 0);
    EXPECT_EQ(textOf(in(GetParam().output)), "other");
    EXPECT_EQ(listing(in("")), std::string("a.bmp ") + GetParam().output);
}

TEST_P(OptimizeToAPlaceThatIsTaken, replacesItWhereTheUserWantsNoQuestions)
{
    m_settings.warnBeforeOverwrite = false;
    const auto result = optimizeWhileTheOutputAppears();
    ASSERT_TRUE(result) << localizedDescription(result.error()).toStdString();
    EXPECT_EQ(m_questions, 0);
    EXPECT_EQ(test::readPicture(in(GetParam().output)).size(), test::oddSize);
}

INSTANTIATE_TEST_SUITE_P(ImageOptimizer, OptimizeToAPlaceThatIsTaken,
    testing::Values(
        LateRow { "webp", OutputFormat::webp, "a.webp", "Could not save a.webp: File exists" },
        LateRow {
            "jpeg", OutputFormat::jpeg, "a.jpg", "Could not finish writing a.jpg: File exists" },
        LateRow {
            "png", OutputFormat::png, "a.png", "Could not finish writing a.png: File exists" },
        LateRow {
            "heic", OutputFormat::heic, "a.heic", "Could not finish writing a.heic: File exists" }),
    test::RowName());

TEST_F(Optimize, existingFileStandsWhenTheEncoderFails)
{
    writeFile(in("a.webp"), "old");
    m_workplace.replaceEncoder("exit 1\n");
    expectFailure(makeSource(), "Could not finish writing a.webp: cwebp exited with status 1");
    EXPECT_EQ(textOf(in("a.webp")), "old");
    EXPECT_EQ(listing(in("")), "a.bmp a.webp");
}

TEST_F(Optimize, folderInTheWayFailsWithTheSystemsText)
{
    for (const OutputFormat format : { OutputFormat::webp, OutputFormat::jpeg }) {
        m_settings.outputFormat = format;
        const char* name = format == OutputFormat::webp ? "a.webp" : "a.jpg";
        std::filesystem::create_directory(in(name));
        m_workplace.replaceEncoder("touch '" + (m_workplace.programs() / "ran").string() + "'\n");
        expectFailure(
            makeSource(format == OutputFormat::webp ? "a.bmp" : "a.tif"), "Is a directory");
        EXPECT_TRUE(std::filesystem::is_directory(in(name)));
    }
    EXPECT_FALSE(std::filesystem::exists(m_workplace.programs() / "ran"));
}

TEST_F(Optimize, outputThatIsALinkIsReplacedItself)
{
    writeFile(in("precious"), "precious");
    std::filesystem::create_symlink("precious", in("a.webp"));
    ASSERT_TRUE(optimize(makeSource()));
    EXPECT_FALSE(std::filesystem::is_symlink(in("a.webp")));
    EXPECT_EQ(textOf(in("precious")), "precious");
}

TEST_F(Optimize, sourceIsNeverWrittenOverByAnotherName)
{
    makeSource("a.bmp");
    const auto before = test::readFile(in("a.bmp"));
    std::filesystem::create_hard_link(in("a.bmp"), in("a.webp"));
    const auto hard = optimize(in("a.bmp"));
    ASSERT_TRUE(hard);
    EXPECT_EQ(hard->outputURL, urlOf(in("a-optimized.webp")));

    std::filesystem::remove(in("a.webp"));
    std::filesystem::create_symlink("a.bmp", in("a.webp"));
    const auto soft = optimize(in("a.bmp"));
    ASSERT_TRUE(soft);
    EXPECT_EQ(soft->outputURL, urlOf(in("a-optimized.webp")));
    EXPECT_EQ(test::readFile(in("a.bmp")), before);
}

} // namespace
} // namespace vellumine
