#pragma once

#include "core/DestinationMode.h"
#include "core/OutputFormat.h"
#include "core/ResizeMode.h"

#include <QString>

// The words for settings that more than one view uses.

namespace vellumine::settings_text {

/// What a picker shows for the case, in the user's language.
[[nodiscard]] QString title(ResizeMode mode);
[[nodiscard]] QString title(OutputFormat format);
[[nodiscard]] QString title(DestinationMode mode);

/// The name of a format as a conversion's audit carries it, in the user's language.
[[nodiscard]] QString formatName(const QString& name);

/// The name of the symbol that stands for the mode.
[[nodiscard]] QString symbol(ResizeMode mode);

/// Towards zero; numbers beyond 64 bits give the nearest that fits.
[[nodiscard]] qint64 integerPart(double number);

/// "Version 1.2 (15)"; a missing version reads "0.0", a missing build "0".
[[nodiscard]] QString appVersion(QStringView version, QStringView build);
[[nodiscard]] QString appVersion(QLatin1StringView version, QLatin1StringView build);

} // namespace vellumine::settings_text
