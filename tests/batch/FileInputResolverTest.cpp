#include "batch/FileInputResolver.h"

#include "RecordingScope.h"
#include "platform/FilePath.h"
#include "support/NamedRows.h"
#include "support/QtPrinters.h"
#include "support/TestImages.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace vellumine {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

class FileInputResolverTest : public testing::Test {
protected:
    /// Makes an empty file and the folders on its way.
    fs::path file(const fs::path& relative) const
    {
        fs::path path = m_folder.path() / relative;
        fs::create_directories(path.parent_path());
        test::writeFile(path, std::string_view());
        return path;
    }

    fs::path folder(const fs::path& relative) const
    {
        fs::path path = m_folder.path() / relative;
        fs::create_directories(path);
        return path;
    }

    /// The paths found, relative to the test's folder.
    std::vector<std::string> resolve(const std::vector<fs::path>& dropped)
    {
        QList<QUrl> urls;
        for (const fs::path& path : dropped) {
            urls.append(platform::fileUrl(m_folder.path() / path));
        }
        std::vector<std::string> found;
        for (const QUrl& url : FileInputResolver::imageURLs(urls, m_scope)) {
            const std::string path = platform::toPath(url).string();
            const std::string root = m_folder.path().string() + '/';
            EXPECT_TRUE(path.starts_with(root)) << path;
            found.push_back(path.substr(root.size()));
        }
        EXPECT_TRUE(m_scope.isBalanced());
        return found;
    }

    test::TemporaryFolder m_folder;
    test::RecordingScope m_scope;
};

struct NameRow {
    const char* name;
    const char* file;
    bool taken;
};

class DroppedNames : public FileInputResolverTest, public testing::WithParamInterface<NameRow> { };

TEST_P(DroppedNames, areJudgedByTheExtensionAlone)
{
    file(GetParam().file);
    EXPECT_EQ(resolve({ GetParam().file }).size(), GetParam().taken ? 1U : 0U);
}

INSTANTIATE_TEST_SUITE_P(FileInputResolver, DroppedNames,
    testing::Values(NameRow { "jpg", "a.jpg", true }, NameRow { "jpeg", "a.jpeg", true },
        NameRow { "png", "a.png", true }, NameRow { "gif", "a.gif", true },
        NameRow { "tif", "a.tif", true }, NameRow { "tiff", "a.tiff", true },
        NameRow { "bmp", "a.bmp", true }, NameRow { "heic", "a.heic", true },
        NameRow { "heif", "a.heif", true }, NameRow { "webp", "a.webp", true },
        NameRow { "upperCase", "Photo.JPG", true }, NameRow { "mixedCase", "photo.Jpeg", true },
        NameRow { "upperCaseTiff", "scan.TIFF", true },
        NameRow { "severalFullStops", "a.b.c.png", true },
        NameRow { "hiddenButDroppedItself", ".hidden.png", true },
        NameRow { "jpe", "photo.jpe", false }, NameRow { "avif", "image.avif", false },
        NameRow { "zip", "archive.zip", false }, NameRow { "noExtension", "png", false },
        NameRow { "onlyAnExtension", ".png", false }, NameRow { "emptyExtension", "a.", false },
        NameRow { "extensionInTheMiddle", "a.png.bak", false },
        NameRow { "spaceBehind", "a.png ", false },
        NameRow { "longExtension", "a.jpgjpgjpgjpgjpgjpgjpgjpgjpgjpg", false }),
    test::RowName());

TEST_F(FileInputResolverTest, aSingleUnsupportedFileYieldsNothing)
{
    file("notes.txt");
    EXPECT_THAT(resolve({ "notes.txt" }), IsEmpty());
}

TEST_F(FileInputResolverTest, foldersAreSearchedAtAnyDepth)
{
    file("drop/a.png");
    file("drop/.hidden.png");
    file("drop/deep/b.webp");
    file("drop/deep/notes.txt");
    file("drop/deep/deeper/deepest/c.JPG");
    EXPECT_THAT(resolve({ "drop" }),
        ElementsAre("drop/a.png", "drop/deep/b.webp", "drop/deep/deeper/deepest/c.JPG"));
}

TEST_F(FileInputResolverTest, hiddenFoldersAreNotEntered)
{
    file("drop/.thumbnails/a.png");
    file("drop/x/.git/b.png");
    file("drop/x/c.png");
    EXPECT_THAT(resolve({ "drop" }), ElementsAre("drop/x/c.png"));
}

TEST_F(FileInputResolverTest, aHiddenFolderThatWasDroppedItselfIsSearched)
{
    file(".wallpapers/a.png");
    EXPECT_THAT(resolve({ ".wallpapers" }), ElementsAre(".wallpapers/a.png"));
}

TEST_F(FileInputResolverTest, packagesAreNotEntered)
{
    file("drop/Program.app/Contents/icon.png");
    file("drop/Mine.photoslibrary/originals/1.jpg");
    file("drop/Kit.Framework/a.png");
    file("drop/Plain.folder/b.png");
    EXPECT_THAT(resolve({ "drop" }), ElementsAre("drop/Plain.folder/b.png"));
}

TEST_F(FileInputResolverTest, aFileAndItsFolderListTheFileOnceWhereItWasReachedFirst)
{
    file("drop/a.png");
    file("drop/x.png");
    EXPECT_THAT(resolve({ "drop/x.png", "drop" }), ElementsAre("drop/x.png", "drop/a.png"));
    EXPECT_THAT(resolve({ "drop", "drop/x.png" }), ElementsAre("drop/a.png", "drop/x.png"));
}

TEST_F(FileInputResolverTest, foldersThatOverlapListEachFileOnce)
{
    file("drop/a.png");
    file("drop/inner/b.png");
    EXPECT_THAT(resolve({ "drop/inner", "drop" }), ElementsAre("drop/inner/b.png", "drop/a.png"));
}

TEST_F(FileInputResolverTest, pathsAreComparedStandardisedButListedAsTheyWereDropped)
{
    file("a/x.png");
    EXPECT_THAT(resolve({ "a/../a/x.png", "a/x.png" }), ElementsAre("a/../a/x.png"));
    EXPECT_THAT(resolve({ "a/../a", "a/x.png" }), ElementsAre("a/../a/x.png"));
    EXPECT_THAT(resolve({ "a/./", "a" }), ElementsAre("a/./x.png"));
}

TEST_F(FileInputResolverTest, namesThatDifferInCaseAreTwoFiles)
{
    file("drop/A.png");
    file("drop/a.png");
    EXPECT_THAT(resolve({ "drop" }), ElementsAre("drop/A.png", "drop/a.png"));
}

TEST_F(FileInputResolverTest, aDroppedFolderWithThePicturesExtensionIsTakenAsAFile)
{
    file("album.png/a.jpg");
    EXPECT_THAT(resolve({ "album.png" }), ElementsAre("album.png"));
    EXPECT_THAT(resolve({ "album.png/" }), ElementsAre("album.png/"));
}

TEST_F(FileInputResolverTest, aSubfolderWithThePicturesExtensionIsListedAndSearched)
{
    file("drop/album.png/a.jpg");
    EXPECT_THAT(resolve({ "drop" }), ElementsAre("drop/album.png", "drop/album.png/a.jpg"));
}

TEST_F(FileInputResolverTest, aMissingFileIsTakenByItsNameAndAMissingFolderIgnored)
{
    EXPECT_THAT(resolve({ "gone.png", "gone" }), ElementsAre("gone.png"));
}

TEST_F(FileInputResolverTest, anEmptyDropAndAnEmptyFolderYieldNothing)
{
    EXPECT_THAT(resolve({}), IsEmpty());
    folder("drop");
    EXPECT_THAT(resolve({ "drop" }), IsEmpty());
}

TEST_F(FileInputResolverTest, whatIsNoLocalFileIsIgnored)
{
    EXPECT_TRUE(FileInputResolver::imageURLs(
        { QUrl(QStringLiteral("https://kestrova.example/a.png")), QUrl() }, m_scope)
                    .isEmpty());
    EXPECT_TRUE(m_scope.opened().isEmpty());
}

TEST_F(FileInputResolverTest, linksToFilesAreListedAndLinksToFoldersNotFollowed)
{
    file("elsewhere/a.png");
    folder("drop");
    fs::create_symlink(m_folder / "elsewhere/a.png", m_folder / "drop/link.png");
    fs::create_symlink(m_folder / "elsewhere", m_folder / "drop/linked");
    EXPECT_THAT(resolve({ "drop" }), ElementsAre("drop/link.png"));
}

TEST_F(FileInputResolverTest, aDroppedLinkToAFolderIsFollowed)
{
    file("elsewhere/a.png");
    fs::create_directory_symlink(m_folder / "elsewhere", m_folder / "link");
    EXPECT_THAT(resolve({ "link" }), ElementsAre("link/a.png"));
}

TEST_F(FileInputResolverTest, loopsOfLinksEnd)
{
    file("drop/inner/a.png");
    fs::create_directory_symlink(m_folder / "drop", m_folder / "drop/inner/again");
    fs::create_symlink("itself.d", m_folder / "drop/itself.d");
    EXPECT_THAT(resolve({ "drop" }), ElementsAre("drop/inner/a.png"));
    EXPECT_THAT(resolve({ "drop/itself.d" }), IsEmpty());
}

using FileInputResolverDeathTest = FileInputResolverTest;

TEST_F(FileInputResolverDeathTest, anUnreadableFolderContributesNothing)
{
    file("drop/closed/a.png");
    file("drop/open/b.png");
    constexpr fs::perms forEveryone { 0755 };
    fs::permissions(m_folder.path(), forEveryone);
    fs::permissions(m_folder / "drop/closed", fs::perms::none);
    // In a process of its own, which gives up the superuser's rights where the tests have them.
    EXPECT_EXIT(
        {
            if (::geteuid() == 0 && ::setuid(65534) != 0) {
                std::_Exit(1);
            }
            for (const std::string& path : resolve({ "drop", "drop/closed" })) {
                std::fprintf(stderr, "[%s]", path.c_str());
            }
            std::fputs(" is all", stderr);
            std::_Exit(0);
        },
        testing::ExitedWithCode(0), "^\\[drop/open/b\\.png\\] is all$");
    fs::permissions(m_folder / "drop/closed", fs::perms::owner_all);
}

TEST_F(FileInputResolverTest, namesThatAreNotUtf8AreKeptApartAndLeadBackToTheirFiles)
{
    file("drop/\xFF.png");
    file("drop/\xFE.png");
    file("drop/\xC3\xA9t\xE9/b.png");
    const std::vector<std::string> found = resolve({ "drop" });
    EXPECT_THAT(found, ElementsAre("drop/\xFE.png", "drop/\xFF.png", "drop/\xC3\xA9t\xE9/b.png"));
    for (const std::string& path : found) {
        EXPECT_TRUE(fs::exists(m_folder / path));
    }
}

TEST_F(FileInputResolverTest, namesWithEveryOtherByteLeadBackToTheirFiles)
{
    for (int byte = 1; byte < 256; ++byte) {
        if (byte != '/') {
            file(std::string("drop/a") + static_cast<char>(byte) + ".png");
        }
    }
    const std::vector<std::string> found = resolve({ "drop" });
    EXPECT_EQ(found.size(), 254U);
    for (const std::string& path : found) {
        EXPECT_TRUE(fs::exists(m_folder / path)) << path;
    }
}

TEST_F(FileInputResolverTest, foldersDeeperThanTheSystemsLongestPathEnd)
{
    const std::string name(200, 'd');
    const fs::path before = fs::current_path();
    folder("drop");
    fs::current_path(m_folder / "drop");
    for (int depth = 0; depth < 30; ++depth) {
        test::writeFile("a.png", std::string_view());
        fs::create_directory(name);
        fs::current_path(name);
    }
    fs::current_path(before);
    const std::size_t found = resolve({ "drop" }).size();
    EXPECT_GT(found, 15U);
    EXPECT_LT(found, 30U);
    // remove_all works on open folders and so has no such limit.
    fs::remove_all(m_folder / "drop");
}

TEST_F(FileInputResolverTest, theDroppedItemIsAccessedWhileItIsResolvedAndOnlyIt)
{
    file("drop/a.png");
    file("b.png");
    resolve({ "drop", "b.png", "b.txt" });
    EXPECT_EQ(m_scope.opened(),
        QList<QUrl>({ platform::fileUrl(m_folder / "drop"), platform::fileUrl(m_folder / "b.png"),
            platform::fileUrl(m_folder / "b.txt") }));
}

TEST_F(FileInputResolverTest, aRefusedAccessIsNotStoppedAndHidesNothing)
{
    file("drop/a.png");
    m_scope.refuseAll();
    EXPECT_THAT(resolve({ "drop" }), ElementsAre("drop/a.png"));
}

TEST_F(FileInputResolverTest, aRequestedStopEndsTheSearch)
{
    file("drop/a.png");
    std::stop_source stop;
    stop.request_stop();
    EXPECT_TRUE(FileInputResolver::imageURLs(
        { platform::fileUrl(m_folder / "drop") }, m_scope, stop.get_token())
                    .isEmpty());
}

TEST_F(FileInputResolverTest, appendImageKeepsTheFirstOfEqualPaths)
{
    QList<QUrl> list;
    FileInputResolver::SeenPaths seen;
    const QUrl dotted = platform::fileUrl(QStringLiteral("/a/./x.png"));
    FileInputResolver::appendImage(dotted, list, seen);
    FileInputResolver::appendImage(platform::fileUrl(QStringLiteral("/a/x.png")), list, seen);
    EXPECT_EQ(list, QList<QUrl> { dotted });
    EXPECT_TRUE(seen.contains("/a/x.png"));
}

TEST_F(FileInputResolverTest, isDirectoryTellsFoldersFromTheRest)
{
    file("drop/a.png");
    EXPECT_TRUE(FileInputResolver::isDirectory(platform::fileUrl(m_folder / "drop")));
    EXPECT_FALSE(FileInputResolver::isDirectory(platform::fileUrl(m_folder / "drop/a.png")));
    EXPECT_FALSE(FileInputResolver::isDirectory(platform::fileUrl(m_folder / "gone")));
    EXPECT_FALSE(FileInputResolver::isDirectory(QUrl(QStringLiteral("https://kestrova.example/"))));
}

} // namespace
} // namespace vellumine
