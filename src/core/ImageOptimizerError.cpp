#include "core/ImageOptimizerError.h"

#include "platform/FilePath.h"

#include <QCoreApplication>

namespace vellumine {

using platform::lastPathComponent;

namespace {

struct Describe {
    Q_DECLARE_TR_FUNCTIONS(ImageOptimizerError)

public:
    // One wording on every system, whatever the image service is called: people search for it.
    QString operator()(const UnsupportedFormat& error) const
    {
        return tr("%1 is not supported by this macOS ImageIO installation.").arg(error.text);
    }

    QString operator()(const CannotCreateDestination& error) const
    {
        return tr("Could not create %1.").arg(lastPathComponent(error.url));
    }

    QString operator()(const CannotFinalize& error) const
    {
        const QString name = lastPathComponent(error.url);
        return !error.detail || error.detail->isEmpty()
            ? tr("Could not finish writing %1.").arg(name)
            : tr("Could not finish writing %1: %2").arg(name, *error.detail);
    }

    QString operator()(const CannotWriteOutput& error) const
    {
        return tr("Could not save %1: %2").arg(lastPathComponent(error.url), error.detail);
    }

    QString operator()(UnreadableImage /*error*/) const
    {
        return tr("The image could not be read.");
    }

    QString operator()(OverwriteDeclined /*error*/) const
    {
        return tr("Skipped because the output file already exists.");
    }

    QString operator()(MissingDestinationFolder /*error*/) const
    {
        return tr("The selected destination folder is no longer available.");
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
