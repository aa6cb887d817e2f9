#include "ui/drop/DroppedUrls.h"

#include "batch/FileInputResolver.h"

#include <QMimeData>
#include <QSysInfo>

#include <algorithm>
#include <iterator>

namespace vellumine {

namespace {

/// Without the host where it is this machine, which some file managers name; nothing for a URL that
/// names no file here.
QUrl onThisMachine(QUrl url)
{
    const QString host = url.host();
    if (!url.isLocalFile()
        || (!host.isEmpty() && host != QStringLiteral("localhost")
            && host.compare(QSysInfo::machineHostName(), Qt::CaseInsensitive) != 0)) {
        return {};
    }
    url.setHost(QString());
    return url;
}

} // namespace

QList<QUrl> fileUrls(const QMimeData& data)
{
    QList<QUrl> files;
    const QList<QUrl> urls = data.urls();
    for (const QUrl& url : urls) {
        if (const QUrl file = onThisMachine(url); !file.isEmpty()) {
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
