#include "pipeline/ConversionQueue.h"

#include "pipeline/ImageOptimizer.h"
#include "pipeline/SourceName.h"
#include "platform/FileOperations.h"
#include "platform/FilePath.h"

#include <QByteArray>
#include <QHash>
#include <QString>

#include <filesystem>
#include <system_error>
#include <utility>

namespace vellumine {

namespace {

/// A folder and a name in it without extension, which of an output is known for certain only when
/// its source has been read. The name is in a form that is the same for every spelling that some
/// disk takes for the same. That makes more files wait than necessary, but only a little.
struct Place {
    QString key; ///< of the folder and the name without the "-optimized" that an output may get
    qsizetype markers = 0; ///< how many of those the name has
};

class Places {
public:
    explicit Places(const OptimizerSettings& settings)
        : m_settings(settings)
    {
    }

    [[nodiscard]] Place ofSource(const std::filesystem::path& source)
    {
        return at(source.parent_path(), SourceName::of(platform::fileUrl(source)).base);
    }

    /// Where the output goes, but for the markers that it may get.
    [[nodiscard]] Place ofOutput(const QUrl& source)
    {
        const bool selected = m_settings.destinationMode == DestinationMode::selectedFolder
            && m_settings.destinationFolderURL;
        const std::filesystem::path folder = platform::toPath(
            selected ? *m_settings.destinationFolderURL : platform::parentFolder(source));
        const QByteArray name = m_settings.filenamePrefix.toUtf8() + SourceName::of(source).base
            + m_settings.filenameSuffix.toUtf8();
        // With slashes in it, it is a way to another folder.
        const std::filesystem::path path(folder.string() + '/' + name.toStdString());
        return at(path.parent_path(), QByteArray::fromStdString(path.filename().string()));
    }

private:
    Place at(const std::filesystem::path& folder, const QByteArray& name)
    {
        Place place {
            QString::fromUtf8(name).normalized(QString::NormalizationForm_C).toCaseFolded(), 0
        };
        const QString marker = QStringLiteral("-optimized");
        while (place.key.endsWith(marker)) {
            place.key.chop(marker.size());
            ++place.markers;
        }
        place.key = identity(folder) + u'/' + place.key;
        return place;
    }

    /// The same for all names of a folder; where there is none, its name.
    const QString& identity(const std::filesystem::path& folder)
    {
        const auto name = QByteArray::fromStdString(folder.string());
        const auto known = m_identities.constFind(name);
        if (known != m_identities.constEnd()) {
            return *known;
        }
        const auto version = platform::fileVersion(folder);
        return *m_identities.insert(name,
            version ? QStringLiteral("%1:%2").arg(version->device).arg(version->number)
                    : QString::fromLatin1(name));
    }

    const OptimizerSettings& m_settings;
    QHash<QByteArray, QString> m_identities;
};

/// Whether a file of that name could stand where another file's output goes. In the original format
/// the types' own extensions are written, which these two never are.
bool isNamedLikeAnOutput(const std::filesystem::path& path, const OptimizerSettings& settings)
{
    const QUrl url = platform::fileUrl(path);
    const QString extension = SourceName::of(url).extension.toLower();
    if (settings.outputFormat == OutputFormat::original) {
        return extension != QLatin1StringView("jpg") && extension != QLatin1StringView("tif");
    }
    return extension == ImageOptimizer::outputExtension(url, std::nullopt, settings);
}

/// The file itself, and what it is where it is a link: an output may take the place of both.
std::vector<std::filesystem::path> pathsOf(const QUrl& url)
{
    std::vector<std::filesystem::path> paths { platform::toPath(url) };
    std::error_code error;
    if (std::filesystem::is_symlink(paths.front(), error)) {
        const auto target = std::filesystem::canonical(paths.front(), error);
        if (!error) {
            paths.push_back(target);
        }
    }
    return paths;
}

/// Which files stand where outputs may go.
class Standing {
public:
    Standing(const std::vector<QUrl>& urls, const OptimizerSettings& settings, Places& places)
    {
        for (std::size_t index = 0; index < urls.size(); ++index) {
            for (const std::filesystem::path& path : pathsOf(urls[index])) {
                if (isNamedLikeAnOutput(path, settings)) {
                    const Place place = places.ofSource(path);
                    m_files[place.key].emplace_back(index, place.markers);
                }
            }
        }
    }

    /// The files where the output of this one may go.
    [[nodiscard]] std::vector<std::size_t> inTheWayOf(std::size_t index, const Place& output) const
    {
        std::vector<std::size_t> found;
        const auto files = m_files.constFind(output.key);
        if (files != m_files.constEnd()) {
            for (const auto& [other, markers] : *files) {
                if (other != index && markers >= output.markers) {
                    found.push_back(other);
                }
            }
        }
        return found;
    }

private:
    QHash<QString, std::vector<std::pair<std::size_t, qsizetype>>> m_files; ///< and their markers
};

/// All tasks in an order in which each comes after those that it waits for. Where some wait for
/// each other in a circle the first of them comes first.
std::vector<std::size_t> inOrder(Precedence precedence, std::size_t count)
{
    precedence.start();
    std::vector<std::size_t> order;
    std::vector<bool> isPlaced(count);
    std::size_t lowest = 0;
    while (order.size() < count) {
        const auto ready = precedence.takeNext();
        while (!ready && isPlaced[lowest]) {
            ++lowest;
        }
        const std::size_t next = ready.value_or(lowest);
        if (!isPlaced[next]) {
            isPlaced[next] = true;
            order.push_back(next);
            precedence.finished(next);
        }
    }
    return order;
}

Precedence precedenceOf(const std::vector<QUrl>& urls, const OptimizerSettings& settings)
{
    Places places(settings);
    const Standing standing(urls, settings, places);
    std::vector<Place> outputs;
    std::vector<std::vector<std::size_t>> inTheWay;
    Precedence readFirst(urls.size());
    for (std::size_t index = 0; index < urls.size(); ++index) {
        outputs.push_back(places.ofOutput(urls[index]));
        inTheWay.push_back(standing.inTheWayOf(index, outputs.back()));
        for (const std::size_t other : inTheWay.back()) {
            readFirst.letWait(index, other);
        }
    }

    Precedence precedence(urls.size());
    std::vector<bool> isPlaced(urls.size());
    QHash<QString, std::size_t> lastWithOutput;
    for (const std::size_t index : inOrder(std::move(readFirst), urls.size())) {
        const auto before = lastWithOutput.constFind(outputs[index].key);
        if (before != lastWithOutput.constEnd()) {
            precedence.letWait(index, *before);
        }
        for (const std::size_t other : inTheWay[index]) {
            if (isPlaced[other]) {
                precedence.letWait(index, other);
            }
        }
        isPlaced[index] = true;
        lastWithOutput.insert(outputs[index].key, index);
    }
    precedence.start();
    return precedence;
}

} // namespace

ConversionQueue::ConversionQueue(std::vector<QUrl> urls, const OptimizerSettings& settings)
    : m_urls(std::move(urls))
    , m_precedence(precedenceOf(m_urls, settings))
{
}

} // namespace vellumine
