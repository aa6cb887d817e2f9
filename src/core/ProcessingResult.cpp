#include "core/ProcessingResult.h"

#include "platform/ByteCount.h"

namespace vellumine {

QString successMessage(qint64 originalBytes, qint64 outputBytes, OriginalInTrash original)
{
    qint64 saved = 0;
    if (__builtin_sub_overflow(originalBytes, outputBytes, &saved)) {
        qFatal("the saving does not fit 64 bits");
    }
    QString message = saved < 1 ? QStringLiteral("Converted")
                                : QStringLiteral("Saved ") + platform::byteCountText(saved);
    if (original == OriginalInTrash::couldNotBeMoved) {
        message += QStringLiteral(". Original could not be moved to Trash");
    }
    return message;
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
