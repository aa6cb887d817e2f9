#include "batch/ConversionQueue.h"

#include "platform/FilePath.h"

#include <QHash>

#include <filesystem>
#include <utility>

namespace vellumine {
namespace {

QString withoutExtension(const QString& name)
{
    const qsizetype dot = name.lastIndexOf(u'.');
    return dot > 0 && dot < name.size() - 1 ? name.first(dot) : name;
}

/// The part of the key that names the file. The output is called after it, with any number of
/// markers behind.
QString nameKey(const QUrl& url, const OptimizerSettings& settings)
{
    const QString marker = QStringLiteral("-optimized");
    QString name = settings.filenamePrefix + withoutExtension(platform::lastPathComponent(url))
        + settings.filenameSuffix;
    while (name.endsWith(marker)) {
        name.chop(marker.size());
    }
    return name.normalized(QString::NormalizationForm_C).toCaseFolded();
}

/// Numbers the folders: equal numbers for the same folder, by whatever links it was reached.
class FolderNumbers {
public:
    qsizetype numberOf(const QUrl& folder)
    {
        const QByteArray path = platform::standardizedPath(folder);
        if (path == m_lastPath) {
            return m_lastNumber;
        }
        m_lastPath = path;
        m_lastNumber = m_byPath.contains(path) ? m_byPath.value(path) : added(path);
        return m_lastNumber;
    }

private:
    qsizetype added(const QByteArray& path)
    {
        std::error_code error;
        const auto real = std::filesystem::canonical(path.toStdString(), error);
        const QByteArray identity = error ? path : QByteArray::fromStdString(real.string());
        const qsizetype number = m_byIdentity.value(identity, m_byIdentity.size());
        m_byIdentity.insert(identity, number);
        m_byPath.insert(path, number);
        return number;
    }

    QByteArray m_lastPath;
    qsizetype m_lastNumber = -1;
    QHash<QByteArray, qsizetype> m_byPath;
    QHash<QByteArray, qsizetype> m_byIdentity;
};

} // namespace

ConversionQueue::ConversionQueue(QList<QUrl> urls, const OptimizerSettings& settings)
    : m_urls(std::move(urls))
    , m_waitsBehind(static_cast<std::size_t>(m_urls.size()), nobody)
{
    const bool inOneFolder = settings.destinationMode == DestinationMode::SelectedFolder;
    FolderNumbers folders;
    QHash<std::pair<qsizetype, QString>, qsizetype> lastWithKey;
    lastWithKey.reserve(m_urls.size());
    for (qsizetype position = 0; position < m_urls.size(); ++position) {
        const QUrl& url = m_urls.at(position);
        const qsizetype folder = inOneFolder ? 0 : folders.numberOf(platform::parentFolder(url));
        const std::pair key { folder, nameKey(url, settings) };
        const qsizetype before = lastWithKey.value(key, nobody);
        if (before == nobody) {
            m_ready.push(position);
        } else {
            m_waitsBehind[static_cast<std::size_t>(before)] = position;
        }
        lastWithKey.insert(key, position);
    }
}

std::optional<qsizetype> ConversionQueue::takeNext()
{
    if (m_ready.empty()) {
        return std::nullopt;
    }
    const qsizetype position = m_ready.top();
    m_ready.pop();
    return position;
}

void ConversionQueue::release(qsizetype position)
{
    const qsizetype next = m_waitsBehind.at(static_cast<std::size_t>(position));
    if (next != nobody) {
        m_ready.push(next);
    }
}

} // namespace vellumine
