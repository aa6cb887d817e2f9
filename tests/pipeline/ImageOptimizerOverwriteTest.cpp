#include "pipeline/Optimize.h"

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
