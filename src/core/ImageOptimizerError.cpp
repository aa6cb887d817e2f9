#include "core/ImageOptimizerError.h"

#include "platform/FilePath.h"

namespace vellumine {

using platform::lastPathComponent;

namespace {

struct Describe {
    // One wording on every system, whatever the image service is called: people search for it.
    QString operator()(const UnsupportedFormat& error) const
    {
        return error.text + QStringLiteral(" is not supported by this macOS ImageIO installation.");
    }

    QString operator()(const CannotCreateDestination& error) const
    {
        return QStringLiteral("Could not create ") + lastPathComponent(error.url) + u'.';
    }

    QString operator()(const CannotFinalize& error) const
    {
        const QString text
            = QStringLiteral("Could not finish writing ") + lastPathComponent(error.url);
        if (!error.detail || error.detail->isEmpty()) {
            return text + u'.';
        }
        return text + QStringLiteral(": ") + *error.detail;
    }

    QString operator()(const CannotWriteOutput& error) const
    {
        return QStringLiteral("Could not save ") + lastPathComponent(error.url)
            + QStringLiteral(": ") + error.detail;
    }

    QString operator()(UnreadableImage /*error*/) const
    {
        return QStringLiteral("The image could not be read.");
    }

    QString operator()(OverwriteDeclined /*error*/) const
    {
        return QStringLiteral("Skipped because the output file already exists.");
    }

    QString operator()(MissingDestinationFolder /*error*/) const
    {
        return QStringLiteral("The selected destination folder is no longer available.");
    }
};

} // namespace

QString errorDescription(const ImageOptimizerError& error)
{
    return std::visit(Describe {}, error);
}

QString localizedDescription(const OptimizeError& error)
{
    if (const auto* own = std::get_if<ImageOptimizerError>(&error)) {
        return errorDescription(*own);
    }
    return std::get<platform::FileError>(error).text;
}

} // namespace vellumine
