#pragma once

#include "pipeline/OverwritePrompt.h"

#include <QString>
#include <QUrl>

namespace vellumine::cli {

/// Text as it can be shown on one line: control characters as escapes, so that a file's name can
/// neither break the line nor command the terminal.
[[nodiscard]] QString printable(const QString& text);

/// Asks on the terminal whether the file may be replaced. Anything but "y" or "yes" is "Skip", as
/// is having no terminal, and as is `interruption` when that descriptor can be read from.
[[nodiscard]] OverwriteDecision askOnTerminal(const QUrl& url, int interruption);

} // namespace vellumine::cli
