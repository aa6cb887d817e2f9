#include "core/ProcessingResult.h"

#include "platform/ByteCount.h"

#include <QCoreApplication>

namespace vellumine {
namespace {

struct Translated {
    Q_DECLARE_TR_FUNCTIONS(ProcessingResult)
};

} // namespace

QString successMessage(qint64 originalBytes, qint64 outputBytes, OriginalInTrash original)
{
    qint64 saved = 0;
    if (__builtin_sub_overflow(originalBytes, outputBytes, &saved)) {
        qFatal("the saving does not fit 64 bits");
    }
    const QString message = saved < 1
        ? Translated::tr("Converted")
        : Translated::tr("Saved %1").arg(platform::byteCountText(saved));
    return original == OriginalInTrash::couldNotBeMoved
        ? Translated::tr("%1. Original could not be moved to Trash").arg(message)
        : message;
}

ProcessingResult failureResult(const QUrl& sourceURL, const OptimizeError& error)
{
    ProcessingResult result;
    result.id = QUuid::createUuid();
    result.sourceURL = sourceURL;
    result.message = localizedDescription(error);
    return result;
}

} // namespace vellumine
