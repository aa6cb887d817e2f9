#include "platform/FileOperations.h"
#include "platform/FileDescriptor.h"
#include "support/QtPrinters.h"
#include "support/TestImages.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>

namespace vellumine::platform {
namespace {

using test::TemporaryFolder;
using test::writeFile;

TEST(ItemAt, looksAtTheLinkAndNotThroughIt)
{
    const TemporaryFolder folder;
    writeFile(folder / "file", "x");
    std::filesystem::create_directory_symlink(folder.path(), folder / "toFolder");
    std::filesystem::create_symlink(folder / "nowhere", folder / "dangling");
    EXPECT_EQ(itemAt(folder / "none"), ItemKind::none);
    EXPECT_EQ(itemAt(folder.path()), ItemKind::folder);
    EXPECT_EQ(itemAt(folder / "file"), ItemKind::other);
    EXPECT_EQ(itemAt(folder / "toFolder"), ItemKind::other);
    EXPECT_EQ(itemAt(folder / "dangling"), ItemKind::other);
}

TEST(TheTemporaryFolder, isTheUsersOwnWhereThatIsAFolder)
{
    const TemporaryFolder folder;
    writeFile(folder / "file", "x");
    const QByteArray before = qgetenv("TMPDIR");
    const bool wasSet = qEnvironmentVariableIsSet("TMPDIR");
    qputenv("TMPDIR", folder.path().c_str());
    EXPECT_EQ(temporaryFolder(), folder.path());
    for (const auto& noFolder : { folder / "missing", folder / "file" }) {
        qputenv("TMPDIR", noFolder.c_str());
        EXPECT_EQ(temporaryFolder(), "/tmp") << noFolder;
    }
    qputenv("TMPDIR", ".");
    EXPECT_TRUE(temporaryFolder().is_absolute()) << temporaryFolder();
    EXPECT_TRUE(std::filesystem::equivalent(temporaryFolder(), std::filesystem::current_path()));
    wasSet ? qputenv("TMPDIR", before) : qunsetenv("TMPDIR");
}

TEST(FileSize, followsLinksAndIsZeroWhenUnknown)
{
    const TemporaryFolder folder;
    writeFile(folder / "file", "12345");
    std::filesystem::create_symlink(folder / "file", folder / "link");
    EXPECT_EQ(fileSize(folder / "file"), 5);
    EXPECT_EQ(fileSize(folder / "link"), 5);
    EXPECT_EQ(fileSize(folder / "none"), 0);
    EXPECT_EQ(fileSize(folder.path()), 0);
}

TEST(IsSameFile, seesThroughLinksOfBothKinds)
{
    const TemporaryFolder folder;
    writeFile(folder / "a", "same");
    writeFile(folder / "b", "same");
    std::filesystem::create_symlink(folder / "a", folder / "soft");
    std::filesystem::create_hard_link(folder / "a", folder / "hard");
    EXPECT_TRUE(isSameFile(folder / "a", folder / "soft"));
    EXPECT_TRUE(isSameFile(folder / "hard", folder / "soft"));
    EXPECT_FALSE(isSameFile(folder / "a", folder / "b"));
    EXPECT_FALSE(isSameFile(folder / "none", folder / "none"));
}

TEST(AbsoluteByText, leadsToTheSameFileWithoutItsWaysBack)
{
    const TemporaryFolder folder;
    std::filesystem::create_directories(folder / "real/deep");
    std::filesystem::create_directory_symlink("real/deep", folder / "link");
    writeFile(folder / "a", "where the text leads");
    writeFile(folder / "real/a", "where the system leads");
    std::filesystem::create_symlink("a", folder / "real/another");
    const std::filesystem::path real = std::filesystem::canonical(folder / "real");
    EXPECT_EQ(absoluteByText(folder / "link/../a"), real / "a");
    EXPECT_EQ(absoluteByText(folder / "link/../another"), real / "another");
    EXPECT_EQ(absoluteByText(folder / "link/.."), real);
    EXPECT_EQ(absoluteByText(folder / "link/../none"), real / "none");
    for (const char* plain : { "a", "link", "link/", "real/../a", "missing/../a" }) {
        EXPECT_EQ(absoluteByText(folder / plain), folder / plain);
    }
}

TEST(IdentityAt, isOfTheVeryPath)
{
    const TemporaryFolder folder;
    writeFile(folder / "a", "same");
    std::filesystem::create_symlink("a", folder / "soft");
    std::filesystem::create_hard_link(folder / "a", folder / "hard");
    EXPECT_EQ(identityAt(folder / "a"), identityAt(folder / "hard"));
    EXPECT_NE(identityAt(folder / "a"), identityAt(folder / "soft"));
    EXPECT_EQ(identityAt(folder / "none"), std::nullopt);
}

TEST(PathsToFile, areTheLinksAndTheFile)
{
    using Paths = std::vector<std::filesystem::path>;
    const TemporaryFolder folder;
    writeFile(folder / "file", "x");
    std::filesystem::create_symlink("file", folder / "second");
    std::filesystem::create_symlink(folder / "second", folder / "first");
    EXPECT_EQ(pathsToFile(folder / "first"),
        (Paths { folder / "first", folder / "second", folder / "file" }));
    EXPECT_EQ(pathsToFile(folder / "file"), Paths { folder / "file" });
    EXPECT_EQ(pathsToFile(folder / "none"), Paths { folder / "none" });
}

TEST(PathsToFile, ofACircleOfLinksEnd)
{
    const TemporaryFolder folder;
    std::filesystem::create_symlink("b", folder / "a");
    std::filesystem::create_symlink("a", folder / "b");
    EXPECT_LE(pathsToFile(folder / "a").size(), 41U);
}

TEST(IsExecutableFile, wantsAFileWithThePermission)
{
    const TemporaryFolder folder;
    writeFile(folder / "plain", "x");
    writeFile(folder / "program", "x");
    std::filesystem::permissions(folder / "program", std::filesystem::perms::owner_all);
    EXPECT_TRUE(isExecutableFile(folder / "program"));
    EXPECT_FALSE(isExecutableFile(folder / "plain"));
    EXPECT_FALSE(isExecutableFile(folder.path()));
    EXPECT_FALSE(isExecutableFile(folder / "none"));
}

TEST(CopyModificationTime, isExactToTheNanosecondAndKeepsTheAccessTime)
{
    const TemporaryFolder folder;
    writeFile(folder / "from", "x");
    writeFile(folder / "to", "y");
    const struct timespec fromTimes[2] { { 1, 1 }, { 1'234'567'890, 123'456'789 } };
    const struct timespec toTimes[2] { { 2'000'000'000, 987'654'321 }, { 5, 5 } };
    ASSERT_EQ(::utimensat(AT_FDCWD, (folder / "from").c_str(), fromTimes, 0), 0);
    ASSERT_EQ(::utimensat(AT_FDCWD, (folder / "to").c_str(), toTimes, 0), 0);

    ASSERT_TRUE(copyModificationTime(folder / "from", folder / "to"));

    struct stat status { };
    ASSERT_EQ(::stat((folder / "to").c_str(), &status), 0);
    EXPECT_EQ(status.st_mtim.tv_sec, 1'234'567'890);
    EXPECT_EQ(status.st_mtim.tv_nsec, 123'456'789);
    EXPECT_EQ(status.st_atim.tv_sec, 2'000'000'000);
    EXPECT_EQ(status.st_atim.tv_nsec, 987'654'321);
}

TEST(CopyModificationTime, ofNothingFails)
{
    const TemporaryFolder folder;
    writeFile(folder / "to", "y");
    EXPECT_FALSE(copyModificationTime(folder / "from", folder / "to"));
}

TEST(PrivateFile, isForThisUserAloneAndNeverWritesOver)
{
    const TemporaryFolder folder;
    const std::string text = "content";
    const auto file = FileDescriptor::createPrivateFile(folder / "file");
    ASSERT_TRUE(file);
    ASSERT_TRUE(file->writeAll(std::as_bytes(std::span(text))));
    EXPECT_EQ(test::readFile(folder / "file").size(), text.size());
    EXPECT_EQ(std::filesystem::status(folder / "file").permissions(),
        std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);

    const auto again = FileDescriptor::createPrivateFile(folder / "file");
    ASSERT_FALSE(again);
    EXPECT_EQ(again.error().text, QStringLiteral("File exists"));
    EXPECT_EQ(fileSize(folder / "file"), 7);
}

TEST(FileDescriptor, saysWhyItCannotWrite)
{
    const FileDescriptor full(::open("/dev/full", O_WRONLY | O_CLOEXEC));
    ASSERT_TRUE(full.isOpen());
    const auto written = full.writeAll(std::as_bytes(std::span("x", 1)));
    ASSERT_FALSE(written);
    EXPECT_EQ(written.error().text, QStringLiteral("No space left on device"));
}

TEST(CopyInto, copiesLargeContentAndSaysWhatFails)
{
    const TemporaryFolder folder;
    writeFile(folder / "from", std::string(3'000'001, 'z'));
    const auto to = FileDescriptor::createPrivateFile(folder / "to");
    ASSERT_TRUE(to);
    ASSERT_TRUE(copyInto(folder / "from", *to));
    EXPECT_EQ(test::readFile(folder / "to"), test::readFile(folder / "from"));
    const auto missing = copyInto(folder / "none", *to);
    ASSERT_FALSE(missing);
    EXPECT_EQ(missing.error().text, QStringLiteral("No such file or directory"));
    const FileDescriptor full(::open("/dev/full", O_WRONLY | O_CLOEXEC));
    const auto written = copyInto(folder / "from", full);
    ASSERT_FALSE(written);
    EXPECT_EQ(written.error().text, QStringLiteral("No space left on device"));
}

} // namespace
} // namespace vellumine::platform
