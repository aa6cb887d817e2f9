#include "platform/PendingFile.h"
#include "platform/FileOperations.h"
#include "support/ChangedSystem.h"
#include "support/FakeProgram.h"
#include "support/QtPrinters.h"
#include "support/TestImages.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace vellumine::platform {
namespace {

using test::listing;
using test::TemporaryFolder;
using test::writeFile;

std::string content(const std::filesystem::path& path)
{
    const auto bytes = test::readFile(path);
    return { reinterpret_cast<const char*>(bytes.data()), bytes.size() };
}

/// What becomes out.png, with what has been written of it.
Result<PendingFile> outputWith(std::string_view text, const TemporaryFolder& folder)
{
    auto pending = PendingFile::beside(folder / "out.png");
    if (pending) {
        writeFile(pending->path(), text);
    }
    return pending;
}

TEST(PendingFile, isHiddenBesideItsTargetUntilItIsPublished)
{
    const TemporaryFolder folder;
    writeFile(folder / "out.png", "old");
    {
        auto pending = PendingFile::beside(folder / "out.png");
        ASSERT_TRUE(pending);
        EXPECT_EQ(pending->path().parent_path(), folder.path());
        const std::string name = pending->path().filename().string();
        EXPECT_TRUE(name.starts_with(".vellumine-"));
        EXPECT_TRUE(name.ends_with(".part"));
        writeFile(pending->path(), "new");
        EXPECT_EQ(content(folder / "out.png"), "old");
        ASSERT_TRUE(std::move(*pending).publish(ExistingItem::replace));
        EXPECT_EQ(content(folder / "out.png"), "new");
    }
    EXPECT_EQ(listing(folder.path()), "out.png");
}

TEST(PendingFile, hasThePermissionsOfANewFile)
{
    const TemporaryFolder folder;
    const mode_t before = ::umask(027);
    const auto pending = PendingFile::beside(folder / "out.png");
    ::umask(before);
    ASSERT_TRUE(pending);
    struct stat status { };
    ASSERT_EQ(::stat(pending->path().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0640U);
}

TEST(PendingFile, whatAKilledProcessLeftIsRemoved)
{
    const TemporaryFolder folder;
    const pid_t child = ::fork();
    if (child == 0) {
        const auto pending = PendingFile::beside(folder / "out.png");
        ::kill(::getpid(), SIGKILL);
    }
    ASSERT_EQ(::waitpid(child, nullptr, 0), child);
    ASSERT_EQ(listing(folder.path()).find(".vellumine-"), 0U);
    PendingFile::removeLeftOver(folder.path());
    EXPECT_EQ(listing(folder.path()), "");
}

TEST(PendingFile, whatIsStillBeingWrittenIsNoLeftOver)
{
    const TemporaryFolder folder;
    auto pending = outputWith("half", folder);
    ASSERT_TRUE(pending);
    PendingFile::removeLeftOver(folder.path());
    EXPECT_EQ(content(pending->path()), "half");
    ASSERT_TRUE(std::move(*pending).publish(ExistingItem::replace));
    EXPECT_EQ(listing(folder.path()), "out.png");
}

TEST(PendingFile, onlyFilesOfItsNameCountAsLeftOver)
{
    const TemporaryFolder folder;
    const std::string uuid = "01234567-89AB-4DEF-8123-456789ABCDEF";
    writeFile(folder / ".vellumine-short.part", "x");
    writeFile(folder / (".vellumine-" + uuid + ".part.jpg"), "x");
    writeFile(folder / ("vellumine-" + uuid + ".part"), "x");
    writeFile(folder / "target", "x");
    std::filesystem::create_directory(folder / (".vellumine-" + uuid + ".part"));
    std::filesystem::create_symlink("target", folder / (".vellumine-1" + uuid.substr(1) + ".part"));
    const std::string before = listing(folder.path());
    PendingFile::removeLeftOver(folder.path());
    PendingFile::removeLeftOver(folder / "none");
    EXPECT_EQ(listing(folder.path()), before);
}

TEST(PendingFile, leavesNothingWhenItIsDropped)
{
    const TemporaryFolder folder;
    writeFile(folder / "out.png", "old");
    {
        auto pending = PendingFile::beside(folder / "out.png");
        ASSERT_TRUE(pending);
        const PendingFile moved = std::move(*pending);
        writeFile(moved.path(), "half");
    }
    EXPECT_EQ(listing(folder.path()), "out.png");
    EXPECT_EQ(content(folder / "out.png"), "old");
}

TEST(PendingFile, keepsAnItemThatAppearedMeanwhile)
{
    const TemporaryFolder folder;
    auto pending = outputWith("new", folder);
    ASSERT_TRUE(pending);
    writeFile(folder / "out.png", "somebody else's");
    const auto published = std::move(*pending).publish(ExistingItem::keep);
    ASSERT_FALSE(published);
    EXPECT_EQ(published.error().text, QStringLiteral("File exists"));
    EXPECT_EQ(content(folder / "out.png"), "somebody else's");
    EXPECT_EQ(listing(folder.path()), "out.png");
}

TEST(PendingFile, takesAFreeName)
{
    const TemporaryFolder folder;
    auto pending = outputWith("new", folder);
    ASSERT_TRUE(pending);
    ASSERT_TRUE(std::move(*pending).publish(ExistingItem::keep));
    EXPECT_EQ(content(folder / "out.png"), "new");
    EXPECT_EQ(listing(folder.path()), "out.png");
}

TEST(PendingFile, takesAFreeNameOnAnyFileSystem)
{
    for (const bool hasLinks : { true, false }) {
        const TemporaryFolder folder;
        const int status = test::onPlainFileSystem(hasLinks, [&folder] {
            auto pending = outputWith("new", folder);
            return pending && std::move(*pending).publish(ExistingItem::keep) ? 0 : 1;
        });
        EXPECT_EQ(status, 0) << hasLinks;
        EXPECT_EQ(content(folder / "out.png"), "new") << hasLinks;
        EXPECT_EQ(listing(folder.path()), "out.png") << hasLinks;
    }
}

TEST(PendingFile, keepsAnItemThatAppearedMeanwhileOnAnyFileSystem)
{
    for (const bool hasLinks : { true, false }) {
        const TemporaryFolder folder;
        const int status = test::onPlainFileSystem(hasLinks, [&folder] {
            auto pending = outputWith("new", folder);
            writeFile(folder / "out.png", "somebody else's");
            const auto published = std::move(*pending).publish(ExistingItem::keep);
            return !published && published.error() == FileError::fromErrno(EEXIST) ? 0 : 1;
        });
        EXPECT_EQ(status, 0) << hasLinks;
        EXPECT_EQ(content(folder / "out.png"), "somebody else's") << hasLinks;
        EXPECT_EQ(listing(folder.path()), "out.png") << hasLinks;
    }
}

TEST(PendingFile, itsFolderIsSyncedWhenItIsPublished)
{
    const TemporaryFolder folder;
    const int syncs = test::syncsDuring([&folder] {
        auto pending = outputWith("new", folder);
        (void)std::move(*pending).publish(ExistingItem::replace);
    });
    EXPECT_EQ(syncs, 1);
    EXPECT_EQ(content(folder / "out.png"), "new");
}

TEST(PendingFile, aFolderThatCannotBeSyncedIsNoFailure)
{
    const TemporaryFolder folder;
    EXPECT_EQ(test::whereSyncingFails(EINVAL,
                  [&folder] {
                      auto pending = outputWith("new", folder);
                      return std::move(*pending).publish(ExistingItem::replace) ? 0 : 1;
                  }),
        0);
}

TEST(PendingFile, aNameThatWasClaimedInVainIsFreeAgain)
{
    const TemporaryFolder folder;
    const int status = test::onPlainFileSystem(false, [&folder] {
        auto pending = outputWith("new", folder);
        std::filesystem::remove(pending->path());
        const auto published = std::move(*pending).publish(ExistingItem::keep);
        return !published && published.error() == FileError::fromErrno(ENOENT) ? 0 : 1;
    });
    EXPECT_EQ(status, 0);
    EXPECT_EQ(listing(folder.path()), "");
}

TEST(PendingFile, replacesALinkAndNotWhatItPointsTo)
{
    const TemporaryFolder folder;
    writeFile(folder / "precious", "precious");
    std::filesystem::create_symlink(folder / "precious", folder / "out.png");
    auto pending = outputWith("new", folder);
    ASSERT_TRUE(pending);
    ASSERT_TRUE(std::move(*pending).publish(ExistingItem::replace));
    EXPECT_FALSE(std::filesystem::is_symlink(folder / "out.png"));
    EXPECT_EQ(content(folder / "precious"), "precious");
}

TEST(PendingFile, cannotReplaceAFolder)
{
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder / "out.png");
    auto pending = outputWith("new", folder);
    ASSERT_TRUE(pending);
    const auto published = std::move(*pending).publish(ExistingItem::replace);
    ASSERT_FALSE(published);
    EXPECT_EQ(published.error().text, QStringLiteral("Is a directory"));
    EXPECT_EQ(listing(folder.path()), "out.png");
}

TEST(PendingFile, refusesATargetThatCanHaveNoFile)
{
    const TemporaryFolder folder;
    writeFile(folder / "file", "x");
    const auto below = PendingFile::beside(folder / "file/out.png");
    ASSERT_FALSE(below);
    EXPECT_EQ(below.error().text, QStringLiteral("Not a directory"));
    const auto gone = PendingFile::beside(folder / "gone/out.png");
    ASSERT_FALSE(gone);
    EXPECT_EQ(gone.error().text, QStringLiteral("No such file or directory"));
    const auto tooLong = PendingFile::beside(folder / std::string(256, 'n'));
    ASSERT_FALSE(tooLong);
    EXPECT_EQ(tooLong.error().text, QStringLiteral("File name too long"));
}

} // namespace
} // namespace vellumine::platform
