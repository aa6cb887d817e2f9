#include "ui/settings/SettingsText.h"

#include <QCoreApplication>

#include <limits>

namespace vellumine::settings_text {
namespace {

constexpr const char* context = "SettingsText";

template <Enumeration Choice> QString translatedTitle(Choice choice)
{
    return QCoreApplication::translate(context, displayTitle(choice).toUtf8().constData());
}

} // namespace

QString title(ResizeMode mode)
{
    return translatedTitle(mode);
}

QString title(OutputFormat format)
{
    return translatedTitle(format);
}

QString title(DestinationMode mode)
{
    return translatedTitle(mode);
}

QString symbol(ResizeMode mode)
{
    switch (mode) {
    case ResizeMode::maxWidth:
        return QStringLiteral("arrow.left.and.right");
    case ResizeMode::maxHeight:
        return QStringLiteral("arrow.up.and.down");
    case ResizeMode::longestEdge:
        return QStringLiteral("arrow.up.left.and.arrow.down.right");
    case ResizeMode::none:
        return QStringLiteral("aspectratio");
    }
    Q_UNREACHABLE();
}

qint64 integerPart(double number)
{
    using Limits = std::numeric_limits<qint64>;
    // 2^63, the first number that does not fit, is a double; the largest that does is not.
    constexpr double beyond = -static_cast<double>(Limits::min());
    if (number >= beyond) {
        return Limits::max();
    }
    return number <= -beyond ? Limits::min() : static_cast<qint64>(number);
}

QString appVersion(QStringView version, QStringView build)
{
    return QCoreApplication::translate(context, "Version %1 (%2)")
        .arg(version.isEmpty() ? QStringView(u"0.0") : version,
            build.isEmpty() ? QStringView(u"0") : build);
}

QString appVersion(QLatin1StringView version, QLatin1StringView build)
{
    return appVersion(QString(version), QString(build));
}

} // namespace vellumine::settings_text
