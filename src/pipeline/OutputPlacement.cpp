#include "pipeline/ImageOptimizer.h"
#include "pipeline/SourceName.h"
#include "platform/FileOperations.h"
#include "platform/FilePath.h"

#include <cerrno>

namespace vellumine {

using imaging::UniformType;
using platform::ExistingItem;
using platform::ItemKind;
using platform::toPath;

namespace {

QUrl withExtension(const std::filesystem::path& path, const QString& extension)
{
    return platform::fileUrl(std::filesystem::path(path.string() + '.' + extension.toStdString()));
}

} // namespace

std::optional<std::filesystem::path> ImageOptimizer::outputPathWithoutExtension(
    const QUrl& url, const OptimizerSettings& settings)
{
    QUrl folder = platform::parentFolder(url);
    if (settings.destinationMode == DestinationMode::selectedFolder) {
        if (!settings.destinationFolderURL) {
            return std::nullopt;
        }
        folder = *settings.destinationFolderURL;
    }
    const QByteArray name = settings.filenamePrefix.toUtf8() + SourceName::of(url).base
        + settings.filenameSuffix.toUtf8();
    return toPath(folder).string() + '/' + name.toStdString();
}

QString ImageOptimizer::outputExtension(
    const QUrl& url, std::optional<UniformType> sourceType, const OptimizerSettings& settings)
{
    switch (settings.outputFormat) {
    case OutputFormat::webp:
    case OutputFormat::webpLossless:
        return QStringLiteral("webp");
    case OutputFormat::jpeg:
        return QStringLiteral("jpg");
    case OutputFormat::png:
        return QStringLiteral("png");
    case OutputFormat::heic:
        return QStringLiteral("heic");
    case OutputFormat::original:
        break;
    }
    if (sourceType) {
        const auto extension = preferredExtension(*sourceType);
        return QString::fromLatin1(extension.data(), qsizetype(extension.size()));
    }
    const QString extension = SourceName::of(url).extension;
    return extension.isEmpty() ? QStringLiteral("png") : extension;
}

Outcome<QUrl> ImageOptimizer::outputURL(const QUrl& url, std::optional<UniformType> sourceType,
    const OptimizerSettings& settings, const NeededFiles* needed)
{
    auto path = outputPathWithoutExtension(url, settings);
    if (!path) {
        return failed(MissingDestinationFolder {});
    }
    const QString extension = outputExtension(url, sourceType, settings);
    constexpr const char* marker = "-optimized";
    QUrl candidate = withExtension(*path, extension);
    if (platform::standardized(candidate) == platform::standardized(url)) {
        *path += marker;
        candidate = withExtension(*path, extension);
    }
    // A link to the source, or the source in other letters on a disk that takes them for the same,
    // is the source too: writing there would destroy it.
    while (platform::isSameFile(toPath(candidate), toPath(url))
        || (needed != nullptr && needed->isAt(toPath(candidate)))) {
        *path += marker;
        candidate = withExtension(*path, extension);
    }
    return candidate;
}

Outcome<ExistingItem> ImageOptimizer::confirmOverwrite(const QUrl& outputURL,
    const OptimizerSettings& settings, const ConversionEnvironment& environment)
{
    const std::filesystem::path path = toPath(outputURL);
    switch (platform::itemAt(path)) {
    case ItemKind::none:
        // Nothing was asked about, so nothing that turns up meanwhile may be replaced.
        return settings.warnBeforeOverwrite ? ExistingItem::keep : ExistingItem::replace;
    case ItemKind::folder:
        return tl::unexpected<OptimizeError>(platform::FileError::fromErrno(EISDIR));
    case ItemKind::other:
        break;
    }
    if (const auto writable = platform::checkWritableFolder(path.parent_path()); !writable) {
        return tl::unexpected<OptimizeError>(writable.error());
    }
    if (settings.warnBeforeOverwrite
        && environment.confirmOverwrite(outputURL) == OverwriteDecision::skip) {
        return failed(OverwriteDeclined {});
    }
    return ExistingItem::replace;
}

void ImageOptimizer::preserveModificationDate(const QUrl& source, const QUrl& output)
{
    // The output is complete with or without it: a disk that cannot keep times is no failure.
    (void)platform::copyModificationTime(toPath(source), toPath(output));
}

qint64 ImageOptimizer::fileSize(const QUrl& url)
{
    return platform::fileSize(toPath(url));
}

} // namespace vellumine
