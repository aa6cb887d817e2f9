#include "ui/drop/DroppedUrls.h"

#include "batch/FileInputResolver.h"
#include "platform/FilePath.h"

#include <QMimeData>

#include <algorithm>
#include <iterator>

namespace vellumine {

QList<QUrl> fileUrls(const QMimeData& data)
{
    QList<QUrl> files;
    const QList<QUrl> urls = data.urls();
    for (const QUrl& url : urls) {
        if (const QUrl file = platform::onThisMachine(url); !file.isEmpty()) {
            files.append(file);
        }
    }
    return files;
}

QList<QUrl> acceptedUrls(const QList<QUrl>& urls)
{
    QList<QUrl> accepted;
    std::copy_if(urls.cbegin(), urls.cend(), std::back_inserter(accepted), [](const QUrl& url) {
        return FileInputResolver::hasSupportedExtension(url) || FileInputResolver::isDirectory(url);
    });
    return accepted;
}

} // namespace vellumine
