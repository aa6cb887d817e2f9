#pragma once

#include "core/ProcessingResult.h"

#include <QLocale>
#include <QString>

/// What the views write about outcomes. Numbers are the locale's.
namespace vellumine::results {

/// The sizes before and after and what became of them, "2 MB -> 1.5 MB | saved 500 KB (25%)" with
/// exactly one fractional digit. Without a size before, the two sizes alone. A difference that does
/// not fit 64 bits is a fatal error.
[[nodiscard]] QString metrics(const ProcessingResult& result, const QLocale& locale = QLocale());

/// The sides before and after, "4032x3024 -> 2048x1536", fractions of a pixel cut off. A side that
/// is no number or does not fit 64 bits is a fatal error.
[[nodiscard]] QString dimensions(const ConversionAudit& audit);

/// A size in pixels, "4032x3024"; the same rules.
[[nodiscard]] QString pixelSize(const QSizeF& size);

/// One size without another. A difference that does not fit 64 bits is a fatal error.
[[nodiscard]] qint64 difference(qint64 from, qint64 subtracted);

/// The magnitude of `part` out of `whole` (at least 1) in percent, with one fractional digit and no
/// sign: "25.0".
[[nodiscard]] QString percentage(qint64 part, qint64 whole, const QLocale& locale = QLocale());

} // namespace vellumine::results
