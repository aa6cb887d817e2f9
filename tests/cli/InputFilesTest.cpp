#include "cli/InputFiles.h"
#include "support/QtPrinters.h"
#include "support/TestImages.h"

#include <gtest/gtest.h>

namespace vellumine::cli {
namespace {

using test::TemporaryFolder;
using test::writeFile;

std::string names(const TemporaryFolder& folder, std::vector<std::filesystem::path> paths)
{
    std::string text;
    const QString base = QString::fromStdString(folder.path().string()) + u'/';
    for (const InputFile& file : inputFiles(paths)) {
        QString path = file.url.toLocalFile();
        text += (text.empty() ? "" : " ") + path.remove(base).toStdString();
    }
    return text;
}

TEST(InputFiles, takesPicturesByTheirExtensionInAnyCase)
{
    const TemporaryFolder folder;
    for (const char* name :
        { "Photo.JPG", "photo.Jpeg", "scan.TIFF", "a.tif", "b.png", "c.gif", "d.bmp", "e.heic",
            "f.heif", "g.webp", "photo.jpe", "image.avif", "archive.zip", "noextension" }) {
        writeFile(folder / name, "x");
    }
    EXPECT_EQ(names(folder, { folder.path() }),
        "Photo.JPG a.tif b.png c.gif d.bmp e.heic f.heif g.webp photo.Jpeg scan.TIFF");
}

TEST(InputFiles, walksFoldersButNothingHidden)
{
    const TemporaryFolder folder;
    std::filesystem::create_directories(folder / "deep/er");
    std::filesystem::create_directories(folder / ".secret");
    for (const char* name :
        { "a.png", ".hidden.png", "deep/b.webp", "deep/er/c.gif", ".secret/d.png" }) {
        writeFile(folder / name, "x");
    }
    EXPECT_EQ(names(folder, { folder.path() }), "a.png deep/b.webp deep/er/c.gif");
}

TEST(InputFiles, listsAFileOnceAtItsFirstPlace)
{
    const TemporaryFolder folder;
    writeFile(folder / "x.png", "x");
    writeFile(folder / "a.png", "x");
    EXPECT_EQ(
        names(folder, { folder / "x.png", folder.path(), folder / "./a.png" }), "x.png a.png");
    EXPECT_EQ(inputFiles(std::vector { folder / "x.png", folder / "./x.png" }).size(), 1U);
}

TEST(InputFiles, doesNotFollowLinksToFolders)
{
    const TemporaryFolder folder;
    std::filesystem::create_directory_symlink(".", folder / "loop");
    writeFile(folder / "a.png", "x");
    EXPECT_EQ(names(folder, { folder.path() }), "a.png");
}

TEST(InputFiles, takesAGivenNameAtItsWord)
{
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder / "album.png");
    writeFile(folder / "album.png/inside.png", "x");
    writeFile(folder / "text.txt", "x");
    EXPECT_EQ(names(folder, { folder / "album.png" }), "album.png");
    EXPECT_EQ(names(folder, { folder / "text.txt" }), "");
    EXPECT_EQ(names(folder, { folder / "missing" }), "missing");
}

TEST(InputFiles, marksNamesThatAreNoText)
{
    const TemporaryFolder folder;
    writeFile(folder / "bad\xff.png", "x");
    writeFile(folder / "gut\xc3\xa4.png", "x");
    const auto files = inputFiles(std::vector { folder.path() });
    ASSERT_EQ(files.size(), 2U);
    EXPECT_EQ(files[0].name, InputFile::Name::NotText);
    EXPECT_EQ(files[1].name, InputFile::Name::Text);
}

} // namespace
} // namespace vellumine::cli
