#include "pipeline/Optimize.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace vellumine {
namespace {

using test::listing;
using test::Optimize;
using test::textOf;
using test::urlOf;
using test::writeFile;

TEST_F(Optimize, whatIsNoPictureIsUnreadable)
{
    writeFile(in("text.png"), "hello");
    expectFailure(in("text.png"), "The image could not be read.");
    expectFailure(in("missing.png"), "The image could not be read.");
    expectFailure(in(""), "The image could not be read.");
    EXPECT_EQ(listing(in("")), "text.png");
}

TEST_F(Optimize, truncatedPictureIsUnreadableAndLeavesTheOldOutput)
{
    const auto source = makeSource();
    std::filesystem::resize_file(source, std::filesystem::file_size(source) / 2);
    writeFile(in("a.webp"), "old");
    expectFailure(source, "The image could not be read.");
    EXPECT_EQ(textOf(in("a.webp")), "old");
}

TEST_F(Optimize, pictureBeyondTheLimitsIsUnreadable)
{
    m_environment.limits.maximumPixels = 100;
    expectFailure(makeSource(), "The image could not be read.");
}

TEST_F(Optimize, unreadableImageComesBeforeTheMissingFolder)
{
    m_settings.destinationMode = DestinationMode::selectedFolder;
    writeFile(in("text.png"), "hello");
    expectFailure(in("text.png"), "The image could not be read.");
    expectFailure(makeSource(), "The selected destination folder is no longer available.");
    EXPECT_EQ(listing(in("")), "a.bmp text.png");
}

TEST_F(Optimize, vanishedDestinationFolderFailsByFormat)
{
    m_settings.destinationMode = DestinationMode::selectedFolder;
    m_settings.destinationFolderURL = urlOf(in("vanished"));
    m_settings.outputFormat = OutputFormat::jpeg;
    expectFailure(makeSource("a.bmp"), "Could not create a.jpg.");
    m_settings.outputFormat = OutputFormat::webp;
    expectFailure(in("a.bmp"), "Could not save a.webp: No such file or directory");
}

TEST_F(Optimize, nameThatIsTooLongFailsByFormat)
{
    const std::string base(251, 'n');
    makeSource(base + ".bmp");
    m_settings.outputFormat = OutputFormat::heic;
    expectFailure(in(base + ".bmp"), "Could not create " + base + ".heic.");
    m_settings.outputFormat = OutputFormat::webp;
    expectFailure(in(base + ".bmp"), "Could not save " + base + ".webp: File name too long");
    EXPECT_EQ(listing(in("")), base + ".bmp");
}

TEST_F(Optimize, namedPipeIsRefusedWithoutWaiting)
{
    ASSERT_EQ(::mkfifo(in("pipe.png").c_str(), 0600), 0);
    expectFailure(in("pipe.png"), "The image could not be read.");
}

using OptimizeDeathTest = Optimize;

TEST_F(OptimizeDeathTest, folderThatCannotBeWrittenFailsByFormatAndKeepsWhatItHas)
{
    makeSource();
    makeSource("b.bmp");
    writeFile(in("b.jpg"), "old");
    writeFile(in("b.webp"), "old");
    namespace fs = std::filesystem;
    constexpr fs::perms readable { 0555 };
    fs::permissions(in(""), readable);
    fs::permissions(m_workplace.pictures().parent_path(), readable | fs::perms::owner_write);
    fs::permissions(m_workplace.programs(), readable | fs::perms::owner_write);
    fs::permissions(m_workplace.temporary(), fs::perms::all);
    const auto messages = [this] {
        QStringList texts;
        for (const char* name : { "a.bmp", "b.bmp" }) {
            for (const OutputFormat format : { OutputFormat::jpeg, OutputFormat::webp }) {
                m_settings.outputFormat = format;
                const auto result = optimize(in(name));
                texts.append(result ? result->message : localizedDescription(result.error()));
            }
        }
        return texts.join(u'|').toStdString();
    };
    // In a process of its own, which gives up the superuser's rights where the tests have them.
    EXPECT_EXIT(
        {
            if (::geteuid() == 0 && ::setuid(65534) != 0) {
                std::_Exit(1);
            }
            std::fputs(messages().c_str(), stderr);
            std::_Exit(0);
        },
        testing::ExitedWithCode(0),
        "Could not create a.jpg.\\|Could not save a.webp: Permission denied"
        "\\|Permission denied\\|Permission denied");
    fs::permissions(in(""), fs::perms::owner_all);
    EXPECT_EQ(textOf(in("b.jpg")), "old");
    EXPECT_EQ(textOf(in("b.webp")), "old");
    EXPECT_EQ(listing(in("")), "a.bmp b.bmp b.jpg b.webp");
}

} // namespace
} // namespace vellumine
