#include "ui/settings/SettingsText.h"

#include <QCoreApplication>

#include <array>
#include <limits>

namespace vellumine::settings_text {
namespace {

constexpr const char* context = "SettingsText";

/// The titles of the choices, for the tools that gather what is to be translated.
[[maybe_unused]] constexpr std::array titles {
    QT_TRANSLATE_NOOP("SettingsText", "Max Width"),
    QT_TRANSLATE_NOOP("SettingsText", "Max Height"),
    QT_TRANSLATE_NOOP("SettingsText", "Longest Edge"),
    QT_TRANSLATE_NOOP("SettingsText", "No Resize"),
    QT_TRANSLATE_NOOP("SettingsText", "WebP Lossy"),
    QT_TRANSLATE_NOOP("SettingsText", "WebP Lossless"),
    QT_TRANSLATE_NOOP("SettingsText", "Original Format"),
    QT_TRANSLATE_NOOP("SettingsText", "Original Location"),
    QT_TRANSLATE_NOOP("SettingsText", "Selected Folder"),
};

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

QString formatName(const QString& name)
{
    return QCoreApplication::translate(context, name.toUtf8().constData());
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
    return QCoreApplication::translate("SettingsText", "Version %1 (%2)")
        .arg(version.isEmpty() ? QStringView(u"0.0") : version,
            build.isEmpty() ? QStringView(u"0") : build);
}

QString appVersion(QLatin1StringView version, QLatin1StringView build)
{
    return appVersion(QString(version), QString(build));
}

} // namespace vellumine::settings_text
