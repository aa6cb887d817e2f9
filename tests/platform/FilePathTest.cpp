#include "platform/FilePath.h"
#include "support/QtPrinters.h"

#include <QSysInfo>
#include <gtest/gtest.h>

namespace vellumine::platform {
namespace {

TEST(FilePath, awkwardNamesSurviveTheWayThroughAUrl)
{
    for (const char* path : { "/a/b c.png", "/a/100%20.png", "/a/what?#1.png", "/a/file:x.gif",
             "/a/back\\slash.gif", "/a/page.png[0]", "/a/übergröße 日本語.jpg", "/a/-leading.jpg",
             "/a/line\nbreak.jpg" }) {
        SCOPED_TRACE(path);
        const QUrl url = fileUrl(QString::fromUtf8(path));
        EXPECT_EQ(toPath(url).string(), path);
        EXPECT_EQ(lastPathComponent(url).toStdString(), std::string(path).substr(3));
    }
}

TEST(FilePath, severalSlashesInFrontAreNoHost)
{
    EXPECT_EQ(toPath(fileUrl(QStringLiteral("///a/b.png"))).string(), "/a/b.png");
    EXPECT_EQ(toPath(fileUrl(QStringLiteral("/a/b.png"))).string(), "/a/b.png");
}

TEST(FilePath, theNameOfThisMachineIsNoPartOfIt)
{
    const QUrl file = QUrl::fromEncoded("file:///a/%FF%20b.png");
    const QString path = QStringLiteral("/a/%FF%20b.png");
    EXPECT_EQ(onThisMachine(file), file);
    EXPECT_EQ(onThisMachine(QUrl(QStringLiteral("file://localhost") + path)), file);
    EXPECT_EQ(onThisMachine(QUrl(QStringLiteral("file://LOCALHOST") + path)), file);
    EXPECT_EQ(
        onThisMachine(QUrl(QStringLiteral("file://") + QSysInfo::machineHostName() + path)), file);
}

TEST(FilePath, aNameWithAZeroByteIsNoFiles)
{
    const QUrl url = QUrl::fromEncoded("file:///a/b%00c.png");
    EXPECT_EQ(onThisMachine(url), QUrl());
    EXPECT_EQ(toPath(url), std::filesystem::path());
    EXPECT_EQ(onThisMachine(QUrl::fromEncoded("file:///a/b%2500c.png")).fileName(),
        QStringLiteral("b%00c.png"));
}

TEST(FilePath, filesOfOtherMachinesAreNotHere)
{
    for (const char* url : { "", "file://nas.kestrova.example/a.png", "https://localhost/a.png",
             "/a.png", "smb://localhost/a.png" }) {
        EXPECT_TRUE(onThisMachine(QUrl(QString::fromLatin1(url))).isEmpty()) << url;
    }
}

TEST(FilePath, standardizedResolvesDots)
{
    EXPECT_EQ(standardized(fileUrl(QStringLiteral("/a/../a/./x.png"))),
        fileUrl(QStringLiteral("/a/x.png")));
    EXPECT_NE(
        standardized(fileUrl(QStringLiteral("/a/X.png"))), fileUrl(QStringLiteral("/a/x.png")));
}

TEST(FilePath, parentFolderHoldsTheFile)
{
    EXPECT_EQ(parentFolder(fileUrl(QStringLiteral("/a/b/c.png"))), fileUrl(QStringLiteral("/a/b")));
    EXPECT_EQ(parentFolder(fileUrl(QStringLiteral("/c.png"))), fileUrl(QStringLiteral("/")));
}

} // namespace
} // namespace vellumine::platform
