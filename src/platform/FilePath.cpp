#include "platform/FilePath.h"

#include <QStringDecoder>
#include <QSysInfo>

#include <optional>

namespace vellumine::platform {
namespace {

/// Nothing where the URL names no file: one elsewhere, or a name with a zero byte in it, which for
/// the system would end there and be another file's.
QByteArray localPath(const QUrl& url)
{
    if (!url.isLocalFile()) {
        return {};
    }
    const QByteArray path
        = QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toLatin1());
    if (path.contains('\0')) {
        return {};
    }
    const QString host = url.host();
    return host.isEmpty() ? path : "//" + host.toUtf8() + path;
}

std::optional<QString> textOfUtf8(const QByteArray& bytes)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = decoder(bytes);
    if (decoder.hasError()) {
        return std::nullopt;
    }
    return text;
}

QUrl urlOfPath(const QByteArray& path)
{
    if (const std::optional<QString> text = textOfUtf8(path)) {
        return fileUrl(*text);
    }
    return QUrl::fromEncoded("file://" + path.toPercentEncoding("/"), QUrl::StrictMode);
}

bool isStandard(const QByteArray& path)
{
    return !path.contains("//") && !path.contains("/./") && !path.contains("/../")
        && !path.endsWith("/.") && !path.endsWith("/..")
        && (path.size() <= 1 || !path.endsWith('/'));
}

QByteArray standardizedBytes(const QByteArray& path)
{
    if (isStandard(path)) {
        return path;
    }
    std::string normal = std::filesystem::path(path.toStdString()).lexically_normal().string();
    while (normal.size() > 1 && normal.back() == '/') {
        normal.pop_back();
    }
    return QByteArray::fromStdString(normal);
}

QByteArray withoutSlashesAtTheEnd(QByteArray path)
{
    while (path.size() > 1 && path.endsWith('/')) {
        path.chop(1);
    }
    return path;
}

} // namespace

QUrl onThisMachine(const QUrl& url)
{
    const QString host = url.host();
    if (!url.isLocalFile()
        || (!host.isEmpty() && host != QStringLiteral("localhost")
            && host.compare(QSysInfo::machineHostName(), Qt::CaseInsensitive) != 0)) {
        return {};
    }
    QUrl file = url;
    file.setHost(QString());
    return localPath(file).isEmpty() ? QUrl() : file;
}

std::filesystem::path toPath(const QUrl& url)
{
    return localPath(url).toStdString();
}

QUrl fileUrl(const QString& path)
{
    qsizetype slashes = 0;
    while (slashes < path.size() && path.at(slashes) == u'/') {
        ++slashes;
    }
    return QUrl::fromLocalFile(slashes > 1 ? path.sliced(slashes - 1) : path);
}

QUrl fileUrl(const std::filesystem::path& path)
{
    return urlOfPath(QByteArray::fromStdString(path.string()));
}

QUrl standardized(const QUrl& url)
{
    const QByteArray path = localPath(url);
    return isStandard(path) && !path.isEmpty() ? url : urlOfPath(standardizedBytes(path));
}

QByteArray standardizedPath(const QUrl& url)
{
    return standardizedBytes(localPath(url));
}

QUrl parentFolder(const QUrl& url)
{
    const QByteArray path = withoutSlashesAtTheEnd(localPath(url));
    const qsizetype slash = path.lastIndexOf('/');
    return urlOfPath(slash > 0 ? withoutSlashesAtTheEnd(path.first(slash)) : path.first(slash + 1));
}

QByteArray lastPathComponentBytes(const QUrl& url)
{
    const QByteArray path = withoutSlashesAtTheEnd(localPath(url));
    return path.sliced(path.lastIndexOf('/') + 1);
}

QString lastPathComponent(const QUrl& url)
{
    return QString::fromUtf8(lastPathComponentBytes(url));
}

} // namespace vellumine::platform
