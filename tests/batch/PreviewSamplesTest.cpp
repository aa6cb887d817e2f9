#include "batch/PreviewSamples.h"

#include "platform/FilePath.h"
#include "support/TestImages.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

#include <filesystem>
#include <iterator>
#include <memory>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace vellumine {
namespace {

namespace fs = std::filesystem;

class PreviewSamplesTest : public testing::Test {
protected:
    std::unique_ptr<PreviewSamples> start() const
    {
        return std::make_unique<PreviewSamples>(m_folder.path());
    }

    fs::path sample(char digit) const
    {
        const std::string uuid = std::string(8, digit) + "-0000-4000-8000-000000000001";
        fs::path path = m_folder.path() / ("vellumine-preview-" + uuid + ".png");
        test::writeFile(path, std::string_view("png"));
        return path;
    }

    static ProcessingResult resultWith(const fs::path& source, const fs::path& output)
    {
        ProcessingResult result;
        result.comparisonPreview.emplace();
        result.comparisonPreview->sourceSampleURL = platform::fileUrl(source);
        result.comparisonPreview->outputSampleURL = platform::fileUrl(output);
        return result;
    }

    test::TemporaryFolder m_folder;
};

TEST_F(PreviewSamplesTest, itsOwnAreRemovedAtTheEnd)
{
    auto samples = start();
    const fs::path source = sample('A');
    const fs::path output = sample('B');
    samples->add(resultWith(source, output));
    samples->add(ProcessingResult());
    EXPECT_TRUE(fs::exists(source));
    samples.reset();
    EXPECT_TRUE(fs::is_empty(m_folder.path()));
}

TEST_F(PreviewSamplesTest, thoseThatACrashLeftAreRemovedAtTheNextStart)
{
    const fs::path left = sample('A');
    const auto samples = start();
    EXPECT_FALSE(fs::exists(left));
}

TEST_F(PreviewSamplesTest, thoseOfAnotherRunningProgramStay)
{
    auto first = start();
    const fs::path itsSample = sample('A');
    const auto second = start();
    EXPECT_TRUE(fs::exists(itsSample));
}

TEST_F(PreviewSamplesTest, theEndOfOneProgramLeavesTheOthersSamples)
{
    auto first = start();
    auto second = start();
    const fs::path firsts = sample('A');
    const fs::path seconds = sample('B');
    first->add(resultWith(firsts, firsts));
    second->add(resultWith(seconds, seconds));
    first.reset();
    EXPECT_FALSE(fs::exists(firsts));
    EXPECT_TRUE(fs::exists(seconds));
}

TEST_F(PreviewSamplesTest, aProgramThatWasKilledHoldsNothingBack)
{
    const fs::path left = m_folder.path() / "marker";
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        const auto samples = start();
        sample('A');
        test::writeFile(left, std::string_view("made"));
        ::kill(::getpid(), SIGKILL);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(fs::exists(left));
    const auto samples = start();
    const fs::path same
        = m_folder.path() / "vellumine-preview-AAAAAAAA-0000-4000-8000-000000000001.png";
    EXPECT_FALSE(fs::exists(same));
}

TEST_F(PreviewSamplesTest, outcomesThatNobodyCollectedLeaveNothing)
{
    auto samples = start();
    const fs::path lost = sample('A');
    samples.reset();
    EXPECT_FALSE(fs::exists(lost));
}

TEST_F(PreviewSamplesTest, thoseThatWereGivenStayForEver)
{
    auto samples = start();
    const ProcessingResult given = samples->given(resultWith(sample('A'), sample('B')));
    ASSERT_TRUE(given.comparisonPreview);
    samples.reset();
    start().reset();
    const fs::path source = platform::toPath(given.comparisonPreview->sourceSampleURL);
    const fs::path output = platform::toPath(given.comparisonPreview->outputSampleURL);
    EXPECT_NE(source, output);
    EXPECT_TRUE(fs::exists(source));
    EXPECT_TRUE(fs::exists(output));
    EXPECT_EQ(std::distance(fs::directory_iterator(m_folder.path()), {}), 2);
}

TEST_F(PreviewSamplesTest, thoseThatWereGivenAreNamedLikeTheOthers)
{
    auto samples = start();
    const ProcessingResult given = samples->given(resultWith(sample('A'), sample('B')));
    ASSERT_TRUE(given.comparisonPreview);
    for (const QUrl& url :
        { given.comparisonPreview->sourceSampleURL, given.comparisonPreview->outputSampleURL }) {
        EXPECT_EQ(platform::toPath(url).parent_path(), m_folder.path());
        const QString name = platform::lastPathComponent(url);
        EXPECT_TRUE(
            QRegularExpression(QStringLiteral("^vellumine-preview-[0-9A-F]{8}-[0-9A-F]{4}-"
                                              "[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{12}\\.png$"))
                .match(name)
                .hasMatch())
            << name.toStdString();
    }
}

TEST_F(PreviewSamplesTest, thoseThatWereGivenAfterAllCanBeTakenBack)
{
    auto samples = start();
    samples->add(samples->given(resultWith(sample('A'), sample('B'))));
    samples.reset();
    EXPECT_TRUE(fs::is_empty(m_folder.path()));
}

TEST_F(PreviewSamplesTest, whatCannotBeKeptIsNotGiven)
{
    auto samples = start();
    const fs::path source = sample('A');
    const ProcessingResult given = samples->given(resultWith(source, m_folder / "gone.png"));
    EXPECT_FALSE(given.comparisonPreview);
    samples.reset();
    EXPECT_TRUE(fs::is_empty(m_folder.path()));
}

TEST_F(PreviewSamplesTest, aResultWithoutSamplesIsGivenAsItIs)
{
    EXPECT_EQ(start()->given(ProcessingResult()), ProcessingResult());
}

TEST_F(PreviewSamplesTest, workFilesThatACrashLeftAreRemovedToo)
{
    for (const char* name : { "vellumine-0A1B2C3D-0000-4000-8000-000000000001.pam",
             "vellumine-0A1B2C3D-0000-4000-8000-000000000002.webp" }) {
        test::writeFile(m_folder / name, std::string_view("half"));
    }
    const auto running = start();
    EXPECT_FALSE(fs::exists(m_folder / "vellumine-0A1B2C3D-0000-4000-8000-000000000001.pam"));
    EXPECT_FALSE(fs::exists(m_folder / "vellumine-0A1B2C3D-0000-4000-8000-000000000002.webp"));
}

TEST_F(PreviewSamplesTest, nothingElseIsTouched)
{
    for (const char* name :
        { "vellumine-preview-.png", "vellumine-preview-notes.png", "vellumine-notes.pam",
            "photo.png", "vellumine-abcdefghijklmnopqrstuvwxyz0123456789.webp",
            "vellumine-my_holiday_photo_from_the_beach_2026.webp",
            "vellumine-cccccccc-0000-4000-8000-000000000001.pam" }) {
        test::writeFile(m_folder / name, std::string_view("x"));
    }
    const fs::path folder = m_folder / "vellumine-preview-CCCCCCCC-0000-4000-8000-000000000001.png";
    fs::create_directory(folder);
    start().reset();
    EXPECT_TRUE(fs::exists(m_folder / "vellumine-preview-.png"));
    EXPECT_TRUE(fs::exists(m_folder / "vellumine-preview-notes.png"));
    EXPECT_TRUE(fs::exists(m_folder / "vellumine-notes.pam"));
    EXPECT_TRUE(fs::exists(m_folder / "photo.png"));
    EXPECT_TRUE(fs::exists(m_folder / "vellumine-abcdefghijklmnopqrstuvwxyz0123456789.webp"));
    EXPECT_TRUE(fs::exists(m_folder / "vellumine-my_holiday_photo_from_the_beach_2026.webp"));
    EXPECT_TRUE(fs::exists(m_folder / "vellumine-cccccccc-0000-4000-8000-000000000001.pam"));
    EXPECT_TRUE(fs::exists(folder));
}

TEST_F(PreviewSamplesTest, aLockThatCannotBeHadLeavesOthersAlone)
{
    const fs::path lock
        = m_folder.path() / ("vellumine-preview-" + std::to_string(::geteuid()) + ".lock");
    fs::create_symlink(m_folder / "elsewhere", lock);
    const fs::path other = sample('A');
    const fs::path own = sample('B');
    auto samples = start();
    samples->add(resultWith(own, own));
    samples.reset();
    EXPECT_TRUE(fs::exists(other));
    EXPECT_FALSE(fs::exists(own));
    EXPECT_FALSE(fs::exists(m_folder / "elsewhere"));
}

} // namespace
} // namespace vellumine
