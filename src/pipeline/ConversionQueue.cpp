#include "pipeline/ConversionQueue.h"

#include "pipeline/SourceName.h"
#include "platform/FilePath.h"

#include <QFileInfo>
#include <QHash>

#include <utility>

namespace vellumine {

namespace {

/// Tells which files may get the same output. Their names are compared without extension, which is
/// known for certain only when a file has been read, without the "-optimized" that a name may get,
/// and in a form that is the same for every spelling that some disk takes for the same. That puts
/// more files in a group than necessary, at the price of a little waiting.
class OutputGroup {
public:
    explicit OutputGroup(const OptimizerSettings& settings)
        : m_settings(settings)
    {
    }

    QString key(const QUrl& url)
    {
        const bool selected = m_settings.destinationMode == DestinationMode::SelectedFolder
            && m_settings.destinationFolderURL;
        const QUrl folder
            = selected ? *m_settings.destinationFolderURL : platform::parentFolder(url);
        QString name
            = (m_settings.filenamePrefix + SourceName::of(url).base + m_settings.filenameSuffix)
                  .normalized(QString::NormalizationForm_C)
                  .toCaseFolded();
        const QString marker = QStringLiteral("-optimized");
        while (name.endsWith(marker)) {
            name.chop(marker.size());
        }
        return canonical(folder.toLocalFile()) + u'/' + name;
    }

private:
    const QString& canonical(const QString& folder)
    {
        const auto known = m_canonical.constFind(folder);
        if (known != m_canonical.constEnd()) {
            return *known;
        }
        const QString path = QFileInfo(folder).canonicalFilePath();
        return *m_canonical.insert(folder, path.isEmpty() ? folder : path);
    }

    const OptimizerSettings& m_settings;
    QHash<QString, QString> m_canonical;
};

} // namespace

ConversionQueue::ConversionQueue(std::vector<QUrl> urls, const OptimizerSettings& settings)
    : m_urls(std::move(urls))
{
    OutputGroup outputGroup(settings);
    QHash<QString, std::size_t> groupOfKey;
    for (std::size_t index = 0; index < m_urls.size(); ++index) {
        const QString key = outputGroup.key(m_urls[index]);
        auto group = groupOfKey.constFind(key);
        if (group == groupOfKey.constEnd()) {
            group = groupOfKey.insert(key, m_groups.size());
            m_groups.emplace_back();
            m_ready.insert(index);
        }
        m_groups[*group].push_back(index);
        m_groupOf.push_back(*group);
    }
}

std::optional<std::size_t> ConversionQueue::takeNext()
{
    if (m_ready.empty()) {
        return std::nullopt;
    }
    return m_ready.extract(m_ready.begin()).value();
}

void ConversionQueue::finished(std::size_t index)
{
    auto& group = m_groups.at(m_groupOf.at(index));
    Q_ASSERT(!group.empty() && group.front() == index);
    group.pop_front();
    if (!group.empty()) {
        m_ready.insert(group.front());
    }
}

} // namespace vellumine
