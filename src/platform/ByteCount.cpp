#include "platform/ByteCount.h"

#include <QCoreApplication>

#include <array>

namespace vellumine::platform {

namespace {

struct Translated {
    Q_DECLARE_TR_FUNCTIONS(ByteCount)
};

struct Unit {
    quint64 bytes;
    int decimals;
    const char* name;
};

constexpr std::array<Unit, 6> units { {
    { 1'000, 0, "KB" },
    { 1'000'000, 1, "MB" },
    { 1'000'000'000, 2, "GB" },
    { 1'000'000'000'000, 2, "TB" },
    { 1'000'000'000'000'000, 2, "PB" },
    { 1'000'000'000'000'000'000, 2, "EB" },
} };

constexpr quint64 powerOfTen(int exponent)
{
    return exponent == 0 ? 1 : 10 * powerOfTen(exponent - 1);
}

constexpr quint64 dividedHalfToEven(quint64 value, quint64 divisor)
{
    const quint64 quotient = value / divisor;
    const quint64 twice = 2 * (value % divisor);
    const bool up = twice > divisor || (twice == divisor && quotient % 2 == 1);
    return up ? quotient + 1 : quotient;
}

/// In the locale's digits, all of them in one number.
QString digits(quint64 number, const QLocale& locale, int width = 1)
{
    QString text;
    for (; number > 0 || width > 0; number /= 10, --width) {
        text.prepend(locale.toString(number % 10));
    }
    return text;
}

/// `scaled` divided by 10 to the power of `decimals`, without trailing zeros.
QString decimalText(quint64 scaled, int decimals, const QLocale& locale)
{
    while (decimals > 0 && scaled % 10 == 0) {
        scaled /= 10;
        --decimals;
    }
    const quint64 scale = powerOfTen(decimals);
    const QString whole = digits(scaled / scale, locale);
    return decimals == 0 ? whole
                         : whole + locale.decimalPoint() + digits(scaled % scale, locale, decimals);
}

QString magnitudeText(quint64 bytes, const QLocale& locale)
{
    if (bytes == 0) {
        return Translated::tr("Zero KB");
    }
    if (bytes < 1000) {
        const QString count = digits(bytes, locale);
        return bytes == 1 ? Translated::tr("%1 byte").arg(count)
                          : Translated::tr("%1 bytes").arg(count);
    }
    for (const Unit& unit : units) {
        const quint64 scale = powerOfTen(unit.decimals);
        const quint64 scaled = dividedHalfToEven(bytes, unit.bytes / scale);
        if (scaled < 1000 * scale || &unit == &units.back()) {
            return decimalText(scaled, unit.decimals, locale) + u' '
                + QString::fromLatin1(unit.name);
        }
    }
    Q_UNREACHABLE();
}

} // namespace

QString byteCountText(qint64 bytes, const QLocale& locale)
{
    if (bytes < 0) {
        // Unsigned arithmetic: the smallest count has no positive counterpart of its own type.
        return u'-' + magnitudeText(quint64 { 0 } - static_cast<quint64>(bytes), locale);
    }
    return magnitudeText(static_cast<quint64>(bytes), locale);
}

} // namespace vellumine::platform
