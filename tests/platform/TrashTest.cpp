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
        base = pattern;
        // GLib reads it once, at its first use in the process.
        ASSERT_EQ(::setenv("XDG_DATA_HOME", (base / "data").c_str(), 1), 0);
        std::filesystem::create_directory(base / "data");
    }
    static void TearDownTestSuite() { std::filesystem::remove_all(base); }

    static QUrl url(const std::filesystem::path& path)
    {
        return fileUrl(QString::fromStdString(path.string()));
    }

    static std::filesystem::path base;
};

std::filesystem::path Trash::base;

TEST_F(Trash, holdsTheFileWithItsOriginalPlace)
{
    test::writeFile(base / "photo ü.jpg", "picture");
    ASSERT_TRUE(moveToTrash(url(base / "photo ü.jpg")));
    EXPECT_FALSE(std::filesystem::exists(base / "photo ü.jpg"));
    EXPECT_TRUE(std::filesystem::exists(base / "data/Trash/files/photo ü.jpg"));
    EXPECT_TRUE(std::filesystem::exists(base / "data/Trash/info/photo ü.jpg.trashinfo"));
}

TEST_F(Trash, isReadByOtherPrograms)
{
    const QString program = QStandardPaths::findExecutable(QStringLiteral("trash-list"));
    if (program.isEmpty()) {
        GTEST_SKIP() << "trash-list is not installed";
    }
    test::writeFile(base / "listed.jpg", "picture");
    ASSERT_TRUE(moveToTrash(url(base / "listed.jpg")));
    QProcess process;
    process.start(program, {});
    ASSERT_TRUE(process.waitForFinished());
    EXPECT_TRUE(process.readAllStandardOutput().contains((base / "listed.jpg").c_str()));
}

TEST_F(Trash, takesTheLinkAndLeavesItsTarget)
{
    test::writeFile(base / "target.jpg", "picture");
    std::filesystem::create_symlink(base / "target.jpg", base / "link.jpg");
    ASSERT_TRUE(moveToTrash(url(base / "link.jpg")));
    EXPECT_FALSE(std::filesystem::is_symlink(base / "link.jpg"));
    EXPECT_TRUE(std::filesystem::exists(base / "target.jpg"));
}

TEST_F(Trash, saysWhyAFileCannotBeMoved)
{
    const auto moved = moveToTrash(url(base / "gone.jpg"));
    ASSERT_FALSE(moved);
    EXPECT_FALSE(moved.error().text.isEmpty());
}

} // namespace
} // namespace vellumine::platform
