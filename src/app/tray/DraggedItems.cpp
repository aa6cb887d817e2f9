#include "app/tray/DraggedItems.h"

#include "batch/FileInputResolver.h"
#include "platform/FilePath.h"

#include <QMimeData>

#include <algorithm>

namespace vellumine {

QList<QUrl> draggedUrls(const QMimeData& data)
{
    // Not QMimeData::urls(), which passes over what is no URL.
    return draggedUrls(data.data(QStringLiteral("text/uri-list")));
}

QList<QUrl> draggedUrls(const QByteArray& uriList)
{
    QList<QUrl> urls;
    for (const QByteArray& line : uriList.split('\n')) {
        const QByteArray text = line.trimmed();
        if (text.isEmpty() || text == QByteArray(1, '\0') || text.startsWith('#')) {
            continue;
        }
        const QUrl url = QUrl::fromEncoded(text, QUrl::TolerantMode);
        if (!url.isValid() || url.isRelative()) {
            return {};
        }
        const QUrl file = platform::onThisMachine(url);
        urls.append(file.isEmpty() ? url : file);
    }
    return urls;
}

bool isAcceptedItem(const QUrl& url)
{
    return !platform::onThisMachine(url).isEmpty()
        && (FileInputResolver::hasSupportedExtension(url) || FileInputResolver::isDirectory(url));
}

bool hasAcceptedItem(const QList<QUrl>& urls)
{
    return std::any_of(urls.begin(), urls.end(), isAcceptedItem);
}

QList<QUrl> acceptedItems(const QList<QUrl>& urls)
{
    QList<QUrl> accepted;
    std::copy_if(urls.begin(), urls.end(), std::back_inserter(accepted), isAcceptedItem);
    return accepted;
}

} // namespace vellumine
