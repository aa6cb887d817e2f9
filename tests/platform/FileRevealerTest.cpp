#include "platform/FileRevealer.h"

#include "platform/FakeFileManager.h"
#include "platform/FilePath.h"
#include "support/EventLoop.h"
#include "support/QtPrinters.h"
#include "support/bus/OnPrivateBus.h"

#include <QDBusConnection>

#include <gtest/gtest.h>

#include <filesystem>

namespace vellumine::platform {
namespace {

using test::runUntil;

class FileRevealerTest : public test::OnPrivateBus {
protected:
    void start(FakeFileManager& manager)
    {
        serve(manager, QStringLiteral("/org/freedesktop/FileManager1"),
            QStringLiteral("org.freedesktop.FileManager1"));
    }

    DesktopFileRevealer::OpenFolder rememberFolder()
    {
        return [this](const QUrl& folder) { m_opened.append(folder); };
    }

    QList<QUrl> m_opened;
};

TEST_F(FileRevealerTest, asksTheFileManagerForThatFileAlone)
{
    FakeFileManager manager(FakeFileManager::Answer::shown);
    start(manager);
    DesktopFileRevealer revealer(client(), rememberFolder());

    revealer.reveal(fileUrl(QStringLiteral("/pictures/summer/a b#1%.webp")));
    ASSERT_TRUE(runUntil([&] { return manager.shown().size() == 1; }));
    EXPECT_EQ(manager.shown().first(),
        QStringList { QStringLiteral("file:///pictures/summer/a%20b%231%25.webp") });

    // the answer to a second call says that the first one's has come
    revealer.reveal(fileUrl(QStringLiteral("/pictures/b.png")));
    ASSERT_TRUE(runUntil([&] { return manager.shown().size() == 2; }));
    EXPECT_TRUE(m_opened.isEmpty());
}

TEST_F(FileRevealerTest, namesThatAreNotUtf8ArriveByteForByte)
{
    FakeFileManager manager(FakeFileManager::Answer::shown);
    start(manager);
    DesktopFileRevealer revealer(client(), rememberFolder());

    revealer.reveal(fileUrl(std::filesystem::path("/pictures/caf\xe9.png")));
    ASSERT_TRUE(runUntil([&] { return !manager.shown().isEmpty(); }));
    EXPECT_EQ(
        manager.shown().first(), QStringList { QStringLiteral("file:///pictures/caf%E9.png") });
}

TEST_F(FileRevealerTest, opensTheFolderWhereNobodyAnswers)
{
    DesktopFileRevealer revealer(client(), rememberFolder());
    revealer.reveal(fileUrl(QStringLiteral("/pictures/summer/a.png")));
    ASSERT_TRUE(runUntil([&] { return !m_opened.isEmpty(); }));
    EXPECT_EQ(m_opened, QList<QUrl> { fileUrl(QStringLiteral("/pictures/summer")) });
}

TEST_F(FileRevealerTest, opensTheFolderWhereTheFileManagerRefuses)
{
    FakeFileManager manager(FakeFileManager::Answer::refused);
    start(manager);
    DesktopFileRevealer revealer(client(), rememberFolder());
    revealer.reveal(fileUrl(QStringLiteral("/pictures/a.png")));
    ASSERT_TRUE(runUntil([&] { return !m_opened.isEmpty(); }));
    EXPECT_EQ(m_opened, QList<QUrl> { fileUrl(QStringLiteral("/pictures")) });
    EXPECT_EQ(manager.shown().size(), 1);
}

TEST_F(FileRevealerTest, opensTheFolderWhereThereIsNoBus)
{
    DesktopFileRevealer revealer(
        QDBusConnection(QStringLiteral("no such connection")), rememberFolder());
    revealer.reveal(fileUrl(QStringLiteral("/pictures/a.png")));
    ASSERT_TRUE(runUntil([&] { return !m_opened.isEmpty(); }));
    EXPECT_EQ(m_opened, QList<QUrl> { fileUrl(QStringLiteral("/pictures")) });
}

TEST_F(FileRevealerTest, opensNothingOnceItIsGone)
{
    {
        DesktopFileRevealer revealer(client(), rememberFolder());
        revealer.reveal(fileUrl(QStringLiteral("/pictures/a.png")));
    }
    DesktopFileRevealer second(client(), rememberFolder());
    second.reveal(fileUrl(QStringLiteral("/other/b.png")));
    ASSERT_TRUE(runUntil([&] { return !m_opened.isEmpty(); }));
    EXPECT_EQ(m_opened, QList<QUrl> { fileUrl(QStringLiteral("/other")) });
}

} // namespace
} // namespace vellumine::platform
