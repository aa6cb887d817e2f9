// Names and kinds of files that cannot lie in the samples folder as they are: they come in an
// archive, with a named pipe, links that loop or dangle, and names that are no text.

#include "samples/BatchRun.h"
#include "samples/Manifest.h"
#include "support/Samples.h"
#include "support/TestImages.h"

#include <gtest/gtest.h>

#include <QProcess>

#include <map>
#include <unistd.h>

namespace vellumine::test {

namespace {

bool unpack(const std::filesystem::path& archive, const std::filesystem::path& folder)
{
    return QProcess::execute(QStringLiteral("tar"),
               { QStringLiteral("--extract"), QStringLiteral("--no-same-owner"),
                   QStringLiteral("--file"), QString::fromStdString(archive.string()),
                   QStringLiteral("--directory"), QString::fromStdString(folder.string()) })
        == 0;
}

/// The bytes of every regular file in a folder; none where the system refuses to read.
std::map<std::filesystem::path, imaging::ByteBuffer> contentOf(const std::filesystem::path& folder)
{
    std::map<std::filesystem::path, imaging::ByteBuffer> content;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        std::error_code loops;
        if (std::filesystem::is_regular_file(entry.symlink_status(loops))) {
            const bool readable = access(entry.path().c_str(), R_OK) == 0;
            content.emplace(
                entry.path(), readable ? readFile(entry.path()) : imaging::ByteBuffer());
        }
    }
    return content;
}

class OddNames : public testing::Test {
protected:
    void SetUp() override
    {
        const auto samples = samplesFolder();
        if (!samples) {
            GTEST_SKIP() << "There are no samples. Name their folder in VELLUMINE_SAMPLES.";
        }
        std::filesystem::create_directory(m_scratch / "sources");
        ASSERT_TRUE(unpack(*samples / "hostile/odd-names.tar", m_scratch / "sources"));
        m_folder = m_scratch / "sources/odd-names";
        m_before = contentOf(m_folder);
        ASSERT_FALSE(m_before.empty());
    }

    void expectSoundAfter(const BatchRun& run) const
    {
        for (const std::string& fault : run.faults) {
            ADD_FAILURE() << fault;
        }
        auto after = contentOf(m_folder);
        for (const auto& [path, bytes] : m_before) {
            ASSERT_TRUE(after.contains(path)) << path;
            EXPECT_EQ(after.at(path), bytes) << path << " was changed";
            after.erase(path);
        }
        for (const auto& [source, result] : run.results) {
            const bool success = result.value(QStringLiteral("isSuccess")).toBool();
            const QString message = result.value(QStringLiteral("message")).toString();
            EXPECT_FALSE(message.isEmpty()) << source;
            EXPECT_FALSE(success && isNoPicture(source)) << source;
            after.erase(pathOf(result.value(QStringLiteral("outputURL"))));
        }
        for (const auto& [path, bytes] : after) {
            ADD_FAILURE() << path << " was left behind";
        }
        const auto real = run.results.find(m_folder / "real.jpg");
        ASSERT_NE(real, run.results.end());
        EXPECT_TRUE(real->second.value(QStringLiteral("isSuccess")).toBool());
        EXPECT_TRUE(temporaryLeftovers(m_scratch.path()).empty());
    }

    TemporaryFolder m_scratch;
    std::filesystem::path m_folder;
    std::map<std::filesystem::path, imaging::ByteBuffer> m_before;

private:
    static bool isNoPicture(const std::filesystem::path& path)
    {
        const std::string name = path.filename().string();
        return name == "pipe.jpg" || name == "dangling.png" || name == "loop.gif"
            || name == "empty-dir.png";
    }
};

} // namespace

TEST_F(OddNames, InAFolderAreConvertedOrReported)
{
    expectSoundAfter(runBatch({}, { m_folder }, m_scratch.path()));
}

TEST_F(OddNames, NamedOneByOneAreConvertedOrReported)
{
    std::vector<std::filesystem::path> paths;
    for (const auto& entry : std::filesystem::directory_iterator(m_folder)) {
        paths.push_back(entry.path());
    }
    expectSoundAfter(runBatch({}, paths, m_scratch.path()));
}

} // namespace vellumine::test
