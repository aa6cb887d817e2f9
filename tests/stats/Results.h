#pragma once

#include "core/ProcessingResult.h"

#include <QtGlobal>

namespace vellumine::test {

/// All of a success that counts for the totals.
inline ProcessingResult success(qint64 originalBytes, qint64 outputBytes)
{
    ProcessingResult result;
    result.originalBytes = originalBytes;
    result.outputBytes = outputBytes;
    result.isSuccess = true;
    return result;
}

} // namespace vellumine::test
