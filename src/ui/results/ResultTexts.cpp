#include "ui/results/ResultTexts.h"

#include "platform/ByteCount.h"

#include <QCoreApplication>

#include <cmath>

namespace vellumine::results {
namespace {

struct Translated {
    Q_DECLARE_TR_FUNCTIONS(ResultTexts)
};

/// What comes before the point. 2^63 is the first value that 64 bits do not hold.
qint64 truncated(double side)
{
    constexpr double limit = 9223372036854775808.0;
    if (!(side >= -limit && side < limit)) {
        qFatal("a side of a picture does not fit 64 bits");
    }
    return static_cast<qint64>(side);
}

} // namespace

qint64 difference(qint64 from, qint64 subtracted)
{
    qint64 result = 0;
    if (__builtin_sub_overflow(from, subtracted, &result)) {
        qFatal("a difference of sizes does not fit 64 bits");
    }
    return result;
}

QString percentage(qint64 part, qint64 whole, const QLocale& locale)
{
    const double percent = std::abs(static_cast<double>(part)) / static_cast<double>(whole) * 100;
    return locale.toString(percent, 'f', 1);
}

QString metrics(const ProcessingResult& result, const QLocale& locale)
{
    const auto bytes = [&locale](qint64 count) { return platform::byteCountText(count, locale); };
    const QString before = bytes(result.originalBytes);
    const QString after = bytes(result.outputBytes);
    if (result.originalBytes < 1) {
        return Translated::tr("%1 -> %2").arg(before, after);
    }
    const qint64 saved = difference(result.originalBytes, result.outputBytes);
    if (saved == 0) {
        return Translated::tr("%1 -> %2 | no size change").arg(before, after);
    }
    const QString percent = percentage(saved, result.originalBytes, locale);
    return saved > 0
        ? Translated::tr("%1 -> %2 | saved %3 (%4%)").arg(before, after, bytes(saved), percent)
        : Translated::tr("%1 -> %2 | larger by %3 (%4%)")
              .arg(before, after, bytes(difference(result.outputBytes, result.originalBytes)),
                  percent);
}

QString pixelSize(const QSizeF& size)
{
    return QString::number(truncated(size.width())) + QLatin1Char('x')
        + QString::number(truncated(size.height()));
}

QString dimensions(const ConversionAudit& audit)
{
    return pixelSize(audit.inputDimensions) + QStringLiteral(" -> ")
        + pixelSize(audit.outputDimensions);
}

} // namespace vellumine::results
