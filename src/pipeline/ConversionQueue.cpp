#include "pipeline/ConversionQueue.h"

#include "imaging/ImageSource.h"
#include "pipeline/ImageOptimizer.h"
#include "pipeline/SourceName.h"
#include "platform/FileOperations.h"
#include "platform/FilePath.h"

#include <QByteArray>
#include <QHash>
#include <QSet>
#include <QString>
#include <QStringDecoder>

#include <algorithm>
#include <filesystem>
#include <set>
#include <utility>

namespace vellumine {

namespace {

/// A name in the form that is the same for every spelling that some disk takes for the same.
QString folded(const QByteArray& name)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder(name);
    return decoder.hasError() ? QString::fromLatin1(name.toLower())
                              : text.normalized(QString::NormalizationForm_C).toCaseFolded();
}

/// Places are a folder and a folded name in it without extension, which of an output is known for
/// certain only when its source has been read, and without the "-optimized" that it may get. So two
/// files may be said to have the same place that do not meet; the other way round is impossible.
class Places {
public:
    explicit Places(const OptimizerSettings& settings)
        : m_settings(settings)
    {
    }

    [[nodiscard]] QString ofSource(const std::filesystem::path& source)
    {
        return at(source.parent_path(), SourceName::of(platform::fileUrl(source)).base);
    }

    [[nodiscard]] QString ofOutput(const QUrl& source)
    {
        // Without a folder there will be no outputs, and none of them meets another.
        const std::filesystem::path path
            = ImageOptimizer::outputPathWithoutExtension(source, m_settings)
                  .value_or(platform::toPath(source));
        return at(path.parent_path(), QByteArray::fromStdString(path.filename().string()));
    }

private:
    QString at(const std::filesystem::path& folder, const QByteArray& name)
    {
        QString place = folded(name);
        const QString marker = QStringLiteral("-optimized");
        while (place.endsWith(marker)) {
            place.chop(marker.size());
        }
        return identity(folder) + u'/' + place;
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

/// Which files of the batch stand where outputs go.
class Standing {
public:
    Standing(const std::vector<QUrl>& urls, const OptimizerSettings& settings, Places& places,
        const NeededFiles& needed)
        : m_urls(urls)
        , m_settings(settings)
        , m_needed(needed)
    {
        for (const QUrl& url : urls) {
            for (const auto& path : platform::pathsToFile(platform::toPath(url))) {
                if (isNamedLikeAnOutput(path, settings)) {
                    m_places.insert(places.ofSource(path));
                }
            }
        }
    }

    /// The other files where the output of this one goes. To find that out the disk is asked, and
    /// for the original format the file, but only where the place tells that it may matter.
    [[nodiscard]] std::vector<std::size_t> inTheWayOf(std::size_t index, const QString& place) const
    {
        if (!m_places.contains(place)) {
            return {};
        }
        const QUrl& url = m_urls[index];
        std::optional<imaging::UniformType> type;
        if (m_settings.outputFormat == OutputFormat::original) {
            type = imaging::ImageSource::typeOf(platform::toPath(url));
        }
        const auto output = ImageOptimizer::outputURL(url, type, m_settings);
        std::vector<std::size_t> found;
        if (output) {
            found = m_needed.unreadAt(platform::toPath(*output));
            std::erase(found, index);
        }
        return found;
    }

private:
    const std::vector<QUrl>& m_urls;
    const OptimizerSettings& m_settings;
    const NeededFiles& m_needed;
    QSet<QString> m_places;
};

/// By task: those that it waits for.
using Awaited = std::vector<std::vector<std::size_t>>;

/// The first task of a circle of tasks that wait for each other. The given one waits, and so does
/// every one that it leads to.
std::size_t firstOfACircle(
    std::size_t task, const Awaited& awaited, const std::vector<bool>& isPlaced)
{
    std::vector<std::size_t> way;
    std::set<std::size_t> passed;
    while (passed.insert(task).second) {
        way.push_back(task);
        task = *std::ranges::find_if(
            awaited[task], [&isPlaced](std::size_t other) { return !isPlaced[other]; });
    }
    return *std::min_element(std::ranges::find(way, task), way.end());
}

/// All tasks in an order in which each comes after those that it waits for, but for one of every
/// circle.
std::vector<std::size_t> inOrder(const Awaited& awaited)
{
    Precedence precedence(awaited.size());
    for (std::size_t task = 0; task < awaited.size(); ++task) {
        for (const std::size_t other : awaited[task]) {
            precedence.letWait(task, other);
        }
    }
    precedence.start();
    std::vector<std::size_t> order;
    std::vector<bool> isPlaced(awaited.size());
    std::size_t lowest = 0;
    while (order.size() < awaited.size()) {
        const auto ready = precedence.takeNext();
        while (!ready && isPlaced[lowest]) {
            ++lowest;
        }
        const std::size_t next = ready ? *ready : firstOfACircle(lowest, awaited, isPlaced);
        if (!isPlaced[next]) {
            isPlaced[next] = true;
            order.push_back(next);
            precedence.finished(next);
        }
    }
    return order;
}

Precedence precedenceOf(
    const std::vector<QUrl>& urls, const OptimizerSettings& settings, const NeededFiles& needed)
{
    Places places(settings);
    const Standing standing(urls, settings, places, needed);
    std::vector<QString> outputs;
    Awaited inTheWay;
    for (std::size_t index = 0; index < urls.size(); ++index) {
        outputs.push_back(places.ofOutput(urls[index]));
        inTheWay.push_back(standing.inTheWayOf(index, outputs.back()));
    }

    Precedence precedence(urls.size());
    std::vector<bool> isPlaced(urls.size());
    QHash<QString, std::size_t> lastWithOutput;
    for (const std::size_t index : inOrder(inTheWay)) {
        const auto before = lastWithOutput.constFind(outputs[index]);
        if (before != lastWithOutput.constEnd()) {
            precedence.letWait(index, *before);
        }
        for (const std::size_t other : inTheWay[index]) {
            if (isPlaced[other]) {
                precedence.letWait(index, other);
            }
        }
        isPlaced[index] = true;
        lastWithOutput.insert(outputs[index], index);
    }
    precedence.start();
    return precedence;
}

} // namespace

ConversionQueue::ConversionQueue(std::vector<QUrl> urls, const OptimizerSettings& settings)
    : m_urls(std::move(urls))
    , m_whenGone(settings.moveOriginalToTrash ? NeededFiles::WhenGone::inTrash
                                              : NeededFiles::WhenGone::lost)
    , m_needed(std::make_shared<NeededFiles>(m_urls))
    , m_precedence(precedenceOf(m_urls, settings, *m_needed))
{
}

void ConversionQueue::finished(std::size_t index, const std::optional<QUrl>& output)
{
    m_needed->setRead(index, output, m_whenGone);
    m_precedence.finished(index);
}

} // namespace vellumine
