#pragma once

#include "platform/FileError.h"

#include <QUrl>

namespace vellumine::platform {

/// Moves a file (a link itself, not what it points to) to the desktop's Trash, from where other
/// programs can restore it. Fails with the desktop's text where there is no Trash for its disk.
[[nodiscard]] Result<void> moveToTrash(const QUrl& url);

} // namespace vellumine::platform
