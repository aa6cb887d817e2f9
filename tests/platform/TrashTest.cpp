#include "platform/Trash.h"
#include "platform/FilePath.h"
#include "support/TestImages.h"

#include <gtest/gtest.h>

#include <QProcess>
#include <QProcessEnvironment>
#include <QStandardPaths>

#include <cstdlib>

namespace vellumine::platform {
namespace {

/// Folders below the user's home: the desktop has no Trash for the disks that systems keep to
/// themselves, which a folder for temporary files may be on.
class Trash : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        const char* home = std::getenv("HOME");
        std::string pattern
            = (std::filesystem::path(home != nullptr ? home : "/") / ".vellumine-trash-test-XXXXXX")
                  .string();
        ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
        s_base = pattern;
        // GLib reads it once, at its first use in the process.
        ASSERT_EQ(::setenv("XDG_DATA_HOME", (s_base / "data").c_str(), 1), 0);
        std::filesystem::create_directory(s_base / "data");
    }
    static void TearDownTestSuite() { std::filesystem::remove_all(s_base); }

    static QUrl url(const std::filesystem::path& path)
    {
        return fileUrl(QString::fromStdString(path.string()));
    }

    static std::filesystem::path s_base;
};

std::filesystem::path Trash::s_base;

TEST_F(Trash, holdsTheFileWithItsOriginalPlace)
{
    test::writeFile(s_base / "photo ü.jpg", "picture");
    ASSERT_TRUE(moveToTrash(url(s_base / "photo ü.jpg")));
    EXPECT_FALSE(std::filesystem::exists(s_base / "photo ü.jpg"));
    EXPECT_TRUE(std::filesystem::exists(s_base / "data/Trash/files/photo ü.jpg"));
    EXPECT_TRUE(std::filesystem::exists(s_base / "data/Trash/info/photo ü.jpg.trashinfo"));
}

TEST_F(Trash, isReadByOtherPrograms)
{
    const QString program = QStandardPaths::findExecutable(QStringLiteral("trash-list"));
    if (program.isEmpty()) {
        GTEST_SKIP() << "trash-list is not installed";
    }
    test::writeFile(s_base / "listed.jpg", "picture");
    ASSERT_TRUE(moveToTrash(url(s_base / "listed.jpg")));
    QProcess process;
    process.start(program, {});
    ASSERT_TRUE(process.waitForFinished());
    EXPECT_TRUE(process.readAllStandardOutput().contains((s_base / "listed.jpg").c_str()));
}

TEST_F(Trash, takesTheLinkAndLeavesItsTarget)
{
    test::writeFile(s_base / "target.jpg", "picture");
    std::filesystem::create_symlink(s_base / "target.jpg", s_base / "link.jpg");
    ASSERT_TRUE(moveToTrash(url(s_base / "link.jpg")));
    EXPECT_FALSE(std::filesystem::is_symlink(s_base / "link.jpg"));
    EXPECT_TRUE(std::filesystem::exists(s_base / "target.jpg"));
}

TEST_F(Trash, saysWhyAFileCannotBeMoved)
{
    const auto moved = moveToTrash(url(s_base / "gone.jpg"));
    ASSERT_FALSE(moved);
    EXPECT_FALSE(moved.error().text.isEmpty());
}

} // namespace
} // namespace vellumine::platform
