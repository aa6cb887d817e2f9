#include "batch/PreviewSamples.h"

#include "pipeline/TemporaryFile.h"
#include "platform/FilePath.h"
#include "platform/UniqueName.h"

#include <QUuid>

#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <string_view>
#include <system_error>
#include <utility>

namespace vellumine {
namespace {

namespace fs = std::filesystem;

// Conversions name samples by UUIDs of version 4, random ones. Samples that were given away have
// names of the same form with a UUID of version 5: so they are told from what a crash left.

fs::path givenName()
{
    const QUuid uuid = QUuid::createUuidV5(QUuid::createUuid(), QByteArray());
    return std::string(samplePrefix) + uuid.toString(QUuid::WithoutBraces).toUpper().toStdString()
        + std::string(sampleSuffix);
}

/// A preview sample that nobody was given, or a file that a conversion hands to the WebP encoder or
/// gets from it.
bool isOurName(std::string_view name)
{
    return platform::isUniqueName(name, samplePrefix, sampleSuffix)
        || platform::isUniqueName(name, workFilePrefix, encoderInputSuffix)
        || platform::isUniqueName(name, workFilePrefix, encoderOutputSuffix);
}

/// A regular file of this user's. Others share the temporary folder.
bool isOurs(const fs::path& path)
{
    struct stat status { };
    return ::lstat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode)
        && status.st_uid == ::geteuid();
}

void removeFile(const fs::path& path)
{
    std::error_code ignored;
    fs::remove(path, ignored);
}

/// Gives the sample a name that no clearing up meets.
bool keepSample(QUrl& sample)
{
    const fs::path path = platform::toPath(sample);
    const fs::path kept = path.parent_path() / givenName();
    std::error_code error;
    fs::rename(path, kept, error);
    if (!error) {
        sample = platform::fileUrl(kept);
    }
    return !error;
}

fs::path lockPath(const fs::path& folder)
{
    return folder / (std::string(samplePrefix) + std::to_string(::geteuid()) + ".lock");
}

} // namespace

PreviewSamples::PreviewSamples(fs::path temporaryFolder)
    : m_folder(std::move(temporaryFolder))
{
    takeLock();
}

// Without a lock nothing is known about others, and nothing of theirs is touched.
void PreviewSamples::takeLock()
{
    do {
        auto lock = platform::FileLock::open(lockPath(m_folder));
        m_lock.reset();
        if (!lock) {
            return;
        }
        m_lock.emplace(std::move(*lock));
        if (m_lock->tryExclusive() && m_lock->isAtItsPath()) {
            removeLeftOver();
        }
        // Giving the lock up for a moment on the way is harmless: there are no samples yet.
        if (!m_lock->share()) {
            m_lock.reset();
            return;
        }
    } while (!m_lock->isAtItsPath());
}

PreviewSamples::~PreviewSamples()
{
    for (const fs::path& sample : m_own) {
        removeFile(sample);
    }
    if (m_lock && m_lock->tryExclusive()) {
        removeLeftOver(); // outcomes that nobody collected have samples too
        m_lock->removeFile();
    }
}

void PreviewSamples::add(const ProcessingResult& result)
{
    if (result.comparisonPreview) {
        m_own.push_back(platform::toPath(result.comparisonPreview->sourceSampleURL));
        m_own.push_back(platform::toPath(result.comparisonPreview->outputSampleURL));
    }
}

ProcessingResult PreviewSamples::given(const ProcessingResult& result)
{
    ProcessingResult theirs = result;
    if (theirs.comparisonPreview
        && !(keepSample(theirs.comparisonPreview->sourceSampleURL)
            && keepSample(theirs.comparisonPreview->outputSampleURL))) {
        add(theirs); // one of them alone is of no use
        theirs.comparisonPreview.reset();
    }
    return theirs;
}

void PreviewSamples::removeLeftOver() const
{
    std::error_code error;
    std::vector<fs::path> leftOver;
    for (fs::directory_iterator entry(m_folder, error), end; !error && entry != end;
         entry.increment(error)) {
        if (isOurName(entry->path().filename().string()) && isOurs(entry->path())) {
            leftOver.push_back(entry->path());
        }
    }
    for (const fs::path& sample : leftOver) {
        removeFile(sample);
    }
}

} // namespace vellumine
