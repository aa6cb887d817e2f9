#include "platform/FilePath.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace vellumine::platform {

std::filesystem::path toPath(const QUrl& url)
{
    return QFile::encodeName(url.toLocalFile()).toStdString();
}

QUrl fileUrl(const QString& path)
{
    qsizetype slashes = 0;
    while (slashes < path.size() && path.at(slashes) == u'/') {
        ++slashes;
    }
    return QUrl::fromLocalFile(slashes > 1 ? path.sliced(slashes - 1) : path);
}

QUrl standardized(const QUrl& url)
{
    return fileUrl(QDir::cleanPath(url.toLocalFile()));
}

QUrl parentFolder(const QUrl& url)
{
    return fileUrl(QFileInfo(url.toLocalFile()).path());
}

QString lastPathComponent(const QUrl& url)
{
    return QFileInfo(url.toLocalFile()).fileName();
}

} // namespace vellumine::platform
