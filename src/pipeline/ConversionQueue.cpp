#include "pipeline/ConversionQueue.h"

#include "pipeline/ImageOptimizer.h"
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
        const bool selected = m_settings.destinationMode == DestinationMode::selectedFolder
            && m_settings.destinationFolderURL;
        const QUrl folder
            = selected ? *m_settings.destinationFolderURL : platform::parentFolder(url);
        QString name = (m_settings.filenamePrefix + QString::fromUtf8(SourceName::of(url).base)
            + m_settings.filenameSuffix)
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

/// Whether a file of that name could stand where another file's output goes. In the original format
/// the types' own extensions are written, which these two never are.
bool isNamedLikeAnOutput(const QUrl& url, const OptimizerSettings& settings)
{
    const QString extension = SourceName::of(url).extension.toLower();
    if (settings.outputFormat == OutputFormat::original) {
        return extension != QLatin1StringView("jpg") && extension != QLatin1StringView("tif");
    }
    return extension == ImageOptimizer::outputExtension(url, std::nullopt, settings);
}

} // namespace

ConversionQueue::ConversionQueue(std::vector<QUrl> urls, const OptimizerSettings& settings)
    : m_urls(std::move(urls))
    , m_nextInLine(m_urls.size(), nobody)
{
    OutputGroup outputGroup(settings);
    QHash<QString, std::size_t> lastWithKey;
    const auto append = [&](std::size_t index) {
        const QString key = outputGroup.key(m_urls[index]);
        const std::size_t before = lastWithKey.value(key, nobody);
        if (before == nobody) {
            m_ready.push(index);
        } else {
            m_nextInLine[before] = index;
        }
        lastWithKey.insert(key, index);
    };
    std::vector<std::size_t> others;
    for (std::size_t index = 0; index < m_urls.size(); ++index) {
        if (isNamedLikeAnOutput(m_urls[index], settings)) {
            append(index);
        } else {
            others.push_back(index);
        }
    }
    for (const std::size_t index : others) {
        append(index);
    }
}

std::optional<std::size_t> ConversionQueue::takeNext()
{
    if (m_ready.empty()) {
        return std::nullopt;
    }
    const std::size_t index = m_ready.top();
    m_ready.pop();
    return index;
}

void ConversionQueue::finished(std::size_t index)
{
    const std::size_t next = std::exchange(m_nextInLine.at(index), nobody);
    if (next != nobody) {
        m_ready.push(next);
    }
}

} // namespace vellumine
