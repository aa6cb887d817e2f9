#include "ui/drop/DroppedUrls.h"

#include "platform/FilePath.h"
#include "support/NamedRows.h"
#include "support/QtPrinters.h"
#include "support/TestImages.h"

#include <QMimeData>
#include <QSysInfo>
#include <filesystem>
#include <gtest/gtest.h>

namespace vellumine {
namespace {

struct Row {
    const char* name;
    const char* uriList;
    std::vector<std::string> paths;
};

class FileUrlsTest : public testing::TestWithParam<Row> { };

TEST_P(FileUrlsTest, ReadsTheListAsItStands)
{
    QMimeData data;
    data.setData(QStringLiteral("text/uri-list"), GetParam().uriList);
    std::vector<std::string> paths;
    for (const QUrl& url : fileUrls(data)) {
        paths.push_back(platform::toPath(url).string());
    }
    EXPECT_EQ(paths, GetParam().paths);
}

INSTANTIATE_TEST_SUITE_P(Lists, FileUrlsTest,
    testing::Values(Row { "oneFile", "file:///p/a.jpg\r\n", { "/p/a.jpg" } },
        Row { "severalInOrder", "file:///p/b.png\r\nfile:///p/a.jpg\r\nfile:///p/c\r\n",
            { "/p/b.png", "/p/a.jpg", "/p/c" } },
        Row {
            "withoutALastLineEnd", "file:///p/a.jpg\nfile:///p/b.jpg", { "/p/a.jpg", "/p/b.jpg" } },
        Row { "aPercentEncodedSpace", "file:///p/my%20photo.jpg\r\n", { "/p/my photo.jpg" } },
        Row { "aPercentSign", "file:///p/100%25.jpg\r\n", { "/p/100%.jpg" } },
        Row { "aHashAndAQuestionMark", "file:///p/%231%3F.jpg\r\n", { "/p/#1?.jpg" } },
        Row { "utf8", "file:///p/%C3%A9t%C3%A9.jpg\r\n", { "/p/\xC3\xA9t\xC3\xA9.jpg" } },
        Row { "notUtf8", "file:///p/%E9t%E9.jpg\r\n", { "/p/\xE9t\xE9.jpg" } },
        Row { "aLocalHost", "file://localhost/p/a.jpg\r\n", { "/p/a.jpg" } },
        Row { "anotherMachine", "file://nas.kestrova.example/p/a.jpg\r\n", {} },
        Row { "aWebAddress", "https://kestrova.example/a.jpg\r\nfile:///p/a.jpg\r\n",
            { "/p/a.jpg" } },
        Row { "nothing", "", {} }, Row { "lineEndsOnly", "\r\n\r\n", {} }),
    test::RowName());

TEST(FileUrlsTest, TakesTheNameOfThisMachineForNone)
{
    QMimeData data;
    data.setData(QStringLiteral("text/uri-list"),
        "file://" + QSysInfo::machineHostName().toUtf8() + "/p/a.jpg\r\n");
    EXPECT_EQ(fileUrls(data), QList<QUrl> { platform::fileUrl(QStringLiteral("/p/a.jpg")) });
}

TEST(FileUrlsTest, FindsNoneInPlainText)
{
    QMimeData data;
    data.setText(QStringLiteral("/pictures/a.jpg"));
    EXPECT_TRUE(fileUrls(data).isEmpty());
}

class AcceptedUrlsTest : public testing::Test {
protected:
    static QUrl picture(const char* name)
    {
        return platform::fileUrl(QStringLiteral("/pictures/") + QString::fromUtf8(name));
    }
    QUrl folder(const char* name)
    {
        const std::filesystem::path path = m_folder.path() / name;
        std::filesystem::create_directory(path);
        return platform::fileUrl(path);
    }

private:
    test::TemporaryFolder m_folder;
};

TEST_F(AcceptedUrlsTest, KeepsTheTenExtensionsInTheirOrder)
{
    const QList<QUrl> urls { picture("a.jpg"), picture("a.jpeg"), picture("a.png"),
        picture("a.gif"), picture("a.tif"), picture("a.tiff"), picture("a.bmp"), picture("a.heic"),
        picture("a.heif"), picture("a.webp") };
    EXPECT_EQ(acceptedUrls(urls), urls);
}

TEST_F(AcceptedUrlsTest, KeepsAnUpperCaseJpgAndNoJpe)
{
    EXPECT_EQ(
        acceptedUrls({ picture("a.JPG"), picture("a.jpe") }), QList<QUrl> { picture("a.JPG") });
}

TEST_F(AcceptedUrlsTest, KeepsAFolderWithoutAnImageExtension)
{
    const QUrl album = folder("album.d");
    EXPECT_EQ(acceptedUrls({ picture("notes.txt"), album }), QList<QUrl> { album });
}

TEST_F(AcceptedUrlsTest, KeepsNothingOfUnsupportedFiles)
{
    EXPECT_TRUE(acceptedUrls({ picture("a.svg"), picture("a.avif"), picture("README") }).isEmpty());
}

} // namespace
} // namespace vellumine
