#include "platform/FolderBookmarks.h"
#include "platform/FilePath.h"
#include "support/QtPrinters.h"
#include "support/TestImages.h"

#include <QFile>
#include <gtest/gtest.h>

#include <filesystem>

namespace vellumine::platform {
namespace {

class DesktopBookmarks : public testing::Test {
protected:
    [[nodiscard]] QUrl folder(const char* name) const
    {
        const std::filesystem::path path = m_temporary / name;
        std::filesystem::create_directories(path);
        return fileUrl(path);
    }

    test::TemporaryFolder m_temporary;
    DesktopFolderBookmarks m_bookmarks;
};

TEST_F(DesktopBookmarks, leadBackToTheFolder)
{
    for (const char* name :
        { "plain", "with blanks", "100%", "a#b?c", "\xC3\xA9t\xC3\xA9", "a+b;c", "\xFE", "\xFF" }) {
        SCOPED_TRACE(name);
        const QUrl url = folder(name);
        const auto bookmark = m_bookmarks.create(url);
        ASSERT_TRUE(bookmark.has_value());
        EXPECT_FALSE(bookmark->isEmpty());
        const auto resolution = m_bookmarks.resolve(*bookmark);
        ASSERT_TRUE(resolution.has_value());
        EXPECT_EQ(toPath(resolution->url), toPath(url));
        EXPECT_FALSE(resolution->isStale);
    }
}

TEST_F(DesktopBookmarks, leadNowhereOnceTheFolderIsGone)
{
    const QUrl url = folder("short-lived");
    const auto bookmark = m_bookmarks.create(url);
    ASSERT_TRUE(bookmark.has_value());
    std::filesystem::remove(toPath(url));
    EXPECT_FALSE(m_bookmarks.resolve(*bookmark).has_value());
    test::writeFile(toPath(url), std::string_view("now a file"));
    EXPECT_FALSE(m_bookmarks.resolve(*bookmark).has_value());
}

TEST_F(DesktopBookmarks, areMadeOfExistingFoldersOnly)
{
    test::writeFile(m_temporary / "file", std::string_view("x"));
    for (const QUrl& url : { QUrl(), QUrl(QStringLiteral("https://kestrova.example/")),
             fileUrl(QFile::decodeName((m_temporary / "file").c_str())),
             fileUrl(QFile::decodeName((m_temporary / "missing").c_str())) }) {
        EXPECT_EQ(m_bookmarks.create(url), std::nullopt) << url.toEncoded().toStdString();
    }
}

TEST_F(DesktopBookmarks, otherBytesAreNone)
{
    for (const QByteArray& bytes : { QByteArray(), QByteArray("\0\xFF\x01", 3), QByteArray("file:"),
             QByteArray("/"), QByteArray("file:.."), QByteArray("file://%zz"),
             QByteArray("https://kestrova.example/") }) {
        EXPECT_FALSE(m_bookmarks.resolve(bytes).has_value()) << bytes.toHex().toStdString();
    }
}

} // namespace
} // namespace vellumine::platform
