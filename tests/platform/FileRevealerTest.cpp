#include "platform/FileRevealer.h"

#include "platform/FilePath.h"
#include "support/QtPrinters.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusContext>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QProcess>
#include <QStandardPaths>
#include <QTimer>

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <filesystem>
#include <memory>
#include <string>

namespace vellumine::platform {

/// A file manager that remembers what it was asked for.
class FakeFileManager : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.FileManager1")

public:
    enum class Answer { shown, refused };

    explicit FakeFileManager(Answer answer)
        : m_answer(answer)
    {
    }

    [[nodiscard]] const QList<QStringList>& shown() const { return m_shown; }

public Q_SLOTS:
    void ShowItems(const QStringList& uris, const QString& startupId) // NOLINT: the bus's own name
    {
        EXPECT_TRUE(startupId.isEmpty());
        m_shown.append(uris);
        if (m_answer == Answer::refused) {
            sendErrorReply(QDBusError::Failed, QStringLiteral("not today"));
        }
    }

private:
    Answer m_answer;
    QList<QStringList> m_shown;
};

namespace {

/// A session bus of the test's own, ended with it.
class FileRevealerTest : public testing::Test {
protected:
    void SetUp() override
    {
        m_application = std::make_unique<QCoreApplication>(m_argumentCount, m_arguments.data());
        const QString daemon = QStandardPaths::findExecutable(QStringLiteral("dbus-daemon"));
        if (daemon.isEmpty()) {
            GTEST_SKIP() << "there is no dbus-daemon";
        }
        m_daemon.start(daemon,
            { QStringLiteral("--session"), QStringLiteral("--nofork"),
                QStringLiteral("--nopidfile"), QStringLiteral("--print-address=1") });
        ASSERT_TRUE(m_daemon.waitForStarted());
        while (!m_daemon.canReadLine()) {
            ASSERT_TRUE(m_daemon.waitForReadyRead());
        }
        m_address = QString::fromLatin1(m_daemon.readLine()).trimmed();
    }

    void TearDown() override
    {
        QDBusConnection::disconnectFromBus(QStringLiteral("client"));
        QDBusConnection::disconnectFromBus(QStringLiteral("manager"));
        m_daemon.kill();
        m_daemon.waitForFinished();
    }

    QDBusConnection client()
    {
        return QDBusConnection::connectToBus(m_address, QStringLiteral("client"));
    }

    void start(FakeFileManager& manager)
    {
        auto bus = QDBusConnection::connectToBus(m_address, QStringLiteral("manager"));
        ASSERT_TRUE(bus.registerObject(QStringLiteral("/org/freedesktop/FileManager1"), &manager,
            QDBusConnection::ExportAllSlots));
        ASSERT_TRUE(bus.registerService(QStringLiteral("org.freedesktop.FileManager1")));
    }

    DesktopFileRevealer::OpenFolder rememberFolder()
    {
        return [this](const QUrl& folder) { m_opened.append(folder); };
    }

    template <typename Predicate> [[nodiscard]] static bool runUntil(Predicate predicate)
    {
        const std::chrono::seconds limit(60);
        const QDeadlineTimer deadline(limit);
        QTimer wakeUp;
        wakeUp.start(limit);
        while (!predicate() && !deadline.hasExpired()) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
        return predicate();
    }

    QList<QUrl> m_opened;

private:
    int m_argumentCount = 1;
    std::string m_name = "platform_test";
    std::array<char*, 2> m_arguments { m_name.data(), nullptr };
    std::unique_ptr<QCoreApplication> m_application;
    QProcess m_daemon;
    QString m_address;
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

#include "FileRevealerTest.moc"
