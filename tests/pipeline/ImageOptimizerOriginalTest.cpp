#include "pipeline/Optimize.h"
#include "platform/SecurityScope.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <mutex>

namespace vellumine {
namespace {

using test::Optimize;
using test::urlOf;
using test::writeFile;

class CountingScope final : public platform::SecurityScope {
public:
    bool startAccessing(const QUrl& url) override
    {
        const std::lock_guard lock(m_mutex);
        events.push_back(QStringLiteral("start ") + platform::lastPathComponent(url));
        return !refuses.contains(platform::lastPathComponent(url));
    }
    void stopAccessing(const QUrl& url) override
    {
        const std::lock_guard lock(m_mutex);
        events.push_back(QStringLiteral("stop ") + platform::lastPathComponent(url));
    }

    QStringList events;
    QStringList refuses;

private:
    std::mutex m_mutex;
};

TEST_F(Optimize, modificationTimeIsCarriedOverToTheNanosecond)
{
    const auto source = makeSource();
    const struct timespec times[2] { { 1, 1 }, { 1'234'567'890, 123'456'789 } };
    ASSERT_EQ(::utimensat(AT_FDCWD, source.c_str(), times, 0), 0);
    ASSERT_TRUE(optimize(source));
    struct stat status { };
    ASSERT_EQ(::stat(in("a.webp").c_str(), &status), 0);
    EXPECT_EQ(status.st_mtim.tv_sec, 1'234'567'890);
    EXPECT_EQ(status.st_mtim.tv_nsec, 123'456'789);

    m_settings.preserveModificationTime = false;
    ASSERT_TRUE(optimize(source));
    ASSERT_EQ(::stat(in("a.webp").c_str(), &status), 0);
    EXPECT_GT(status.st_mtim.tv_sec, 1'700'000'000);
}

TEST_F(Optimize, originalGoesToTheTrashAfterItsOutputWasReadBack)
{
    m_settings.moveOriginalToTrash = true;
    bool outputWasThere = false;
    m_environment.moveToTrash = [&](const QUrl& url) -> platform::Result<void> {
        outputWasThere = test::readPicture(in("a.webp")).size() == test::oddSize;
        m_trashed.push_back(url);
        return {};
    };
    const auto result = optimize(makeSource());
    ASSERT_TRUE(result);
    EXPECT_EQ(m_trashed, std::vector { urlOf(in("a.bmp")) });
    EXPECT_TRUE(outputWasThere);
    EXPECT_FALSE(result->message.contains(QStringLiteral("Trash")));
    EXPECT_TRUE(result->comparisonPreview);
}

TEST_F(Optimize, outputOfATrashedOriginalHasItsTime)
{
    m_settings.moveOriginalToTrash = true;
    const auto source = makeSource();
    const struct timespec times[2] { { 1, 1 }, { 1'234'567'890, 123'456'789 } };
    ASSERT_EQ(::utimensat(AT_FDCWD, source.c_str(), times, 0), 0);
    ASSERT_TRUE(optimize(source));
    EXPECT_FALSE(std::filesystem::exists(source));
    struct stat status { };
    ASSERT_EQ(::stat(in("a.webp").c_str(), &status), 0);
    EXPECT_EQ(status.st_mtim.tv_sec, 1'234'567'890);
    EXPECT_EQ(status.st_mtim.tv_nsec, 123'456'789);
}

TEST_F(Optimize, originalStaysWhenItIsNotWanted)
{
    ASSERT_TRUE(optimize(makeSource()));
    EXPECT_TRUE(m_trashed.empty());
}

TEST_F(Optimize, originalStaysWhenTheOutputCannotBeReadBack)
{
    m_settings.moveOriginalToTrash = true;
    m_workplace.replaceEncoder(R"(
while [ "$1" != "-o" ]; do shift; done
printf garbage > "$2"
)");
    const auto result = optimize(makeSource());
    ASSERT_TRUE(result);
    EXPECT_TRUE(m_trashed.empty());
    EXPECT_TRUE(std::filesystem::exists(in("a.bmp")));
    EXPECT_TRUE(result->isSuccess);
    EXPECT_TRUE(result->message.endsWith(QStringLiteral(". Original could not be moved to Trash")));
}

TEST_F(Optimize, originalStaysWhenTheOutputHasAnotherSize)
{
    m_settings = test::plainSettings(OutputFormat::webpLossless);
    ASSERT_TRUE(optimize(makeSource("small.bmp", { 9, 9 })));
    m_settings.moveOriginalToTrash = true;
    m_workplace.replaceEncoder("while [ \"$1\" != \"-o\" ]; do shift; done\ncp '"
        + in("small.webp").string() + "' \"$2\"\n");
    const auto result = optimize(makeSource("a.bmp"));
    ASSERT_TRUE(result);
    EXPECT_TRUE(m_trashed.empty());
    EXPECT_TRUE(result->message.contains(QStringLiteral("could not be moved to Trash")));
}

TEST_F(Optimize, originalGoesOnlyWithAProofWhereSamplesAreNotWanted)
{
    m_environment.comparisonSamples = ComparisonSamples::leaveOut;
    m_settings.moveOriginalToTrash = true;
    const auto result = optimize(makeSource());
    ASSERT_TRUE(result);
    EXPECT_EQ(m_trashed, std::vector { urlOf(in("a.bmp")) });
    EXPECT_FALSE(result->comparisonPreview);

    m_workplace.replaceEncoder(R"(
while [ "$1" != "-o" ]; do shift; done
printf garbage > "$2"
)");
    ASSERT_TRUE(optimize(makeSource("b.bmp")));
    EXPECT_EQ(m_trashed.size(), 1U);
    EXPECT_TRUE(std::filesystem::exists(in("b.bmp")));
}

TEST_F(Optimize, trashThatFailsIsOnlyMentioned)
{
    m_settings.moveOriginalToTrash = true;
    m_environment.moveToTrash = [](const QUrl&) { return platform::failure(EPERM); };
    const auto result = optimize(makeSource());
    ASSERT_TRUE(result);
    EXPECT_TRUE(result->isSuccess);
    EXPECT_TRUE(result->message.endsWith(QStringLiteral(". Original could not be moved to Trash")));
}

TEST_F(Optimize, accessesAreEndedOnEveryWayOut)
{
    const auto run = [this](const std::filesystem::path& path) {
        const auto scope = std::make_shared<CountingScope>();
        m_environment.securityScope = scope;
        (void)optimize(path);
        return scope->events;
    };
    const QStringList expected { QStringLiteral("start a.bmp"), QStringLiteral("start pictures"),
        QStringLiteral("stop pictures"), QStringLiteral("stop a.bmp") };
    EXPECT_EQ(run(makeSource()), expected);
    m_workplace.removeEncoder();
    EXPECT_EQ(run(in("a.bmp")), expected);
    writeFile(in("a.bmp"), "broken");
    EXPECT_EQ(run(in("a.bmp")), expected);
}

TEST_F(Optimize, accessThatWasNotGrantedIsNotEnded)
{
    const auto scope = std::make_shared<CountingScope>();
    scope->refuses = QStringList { QStringLiteral("a.bmp") };
    m_environment.securityScope = scope;
    ASSERT_TRUE(optimize(makeSource()));
    EXPECT_EQ(scope->events,
        (QStringList { QStringLiteral("start a.bmp"), QStringLiteral("start pictures"),
            QStringLiteral("stop pictures") }));
}

TEST_F(Optimize, folderOfThePreferencesIsAccessedWhateverTheMode)
{
    const auto scope = std::make_shared<CountingScope>();
    m_environment.securityScope = scope;
    m_settings.destinationFolderURL = urlOf(m_workplace.programs());
    ASSERT_TRUE(optimize(makeSource()));
    EXPECT_TRUE(scope->events.contains(QStringLiteral("start programs")));
    EXPECT_TRUE(std::filesystem::exists(in("a.webp")));
}

} // namespace
} // namespace vellumine
