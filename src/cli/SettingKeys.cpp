#include "cli/SettingKeys.h"

#include "platform/FileOperations.h"
#include "platform/FilePath.h"

#include <QFile>

#include <array>
#include <cmath>
#include <filesystem>
#include <system_error>

namespace vellumine::cli {

namespace {

/// Takes a value over; false when it is none of the key's.
using Apply = bool (*)(OptimizerSettings& settings, const QByteArray& value);

struct Key {
    const char* name;
    QString (*values)();
    Apply apply;
};

QString textOf(const QByteArray& value)
{
    return QFile::decodeName(value);
}

template <auto Field>
using FieldType = std::decay_t<decltype(std::declval<OptimizerSettings>().*Field)>;

template <auto Field> bool applyChoice(OptimizerSettings& settings, const QByteArray& value)
{
    const auto choice = fromRawValue<FieldType<Field>>(textOf(value));
    if (choice) {
        settings.*Field = *choice;
    }
    return choice.has_value();
}

template <auto Field> QString choiceValues()
{
    QStringList values;
    for (const auto choice : allCases<FieldType<Field>>()) {
        values.append(rawValue(choice));
    }
    return values.join(QStringLiteral(", "));
}

std::optional<bool> booleanFrom(const QByteArray& value)
{
    if (value == "true") {
        return true;
    }
    if (value == "false") {
        return false;
    }
    return std::nullopt;
}

template <auto Field> bool applyBoolean(OptimizerSettings& settings, const QByteArray& value)
{
    const auto boolean = booleanFrom(value);
    if (boolean) {
        settings.*Field = *boolean;
    }
    return boolean.has_value();
}

QString booleanValues()
{
    return QStringLiteral("true, false");
}

template <auto Field> bool applyText(OptimizerSettings& settings, const QByteArray& value)
{
    settings.*Field = textOf(value);
    return true;
}

QString textValues()
{
    return QStringLiteral("any text, also none");
}

bool applyMaximumPixels(OptimizerSettings& settings, const QByteArray& value)
{
    bool isNumber = false;
    const qint64 pixels = value.toLongLong(&isNumber);
    if (!isNumber || pixels < 1) {
        return false;
    }
    settings.maximumPixels = pixels;
    return true;
}

QString pixelValues()
{
    return QStringLiteral("a whole number from 1");
}

bool applyQuality(OptimizerSettings& settings, const QByteArray& value)
{
    bool isNumber = false;
    const double quality = value.toDouble(&isNumber);
    if (!isNumber || !std::isfinite(quality) || quality < 0 || quality > 100) {
        return false;
    }
    settings.quality = quality;
    return true;
}

QString qualityValues()
{
    return QStringLiteral("a number from 0 to 100");
}

bool applyDestinationFolder(OptimizerSettings& settings, const QByteArray& value)
{
    if (value.isEmpty()) {
        settings.destinationFolderURL.reset();
        return true;
    }
    const std::filesystem::path folder(value.toStdString());
    std::error_code error;
    if (!std::filesystem::is_directory(folder, error)) {
        return false;
    }
    settings.destinationFolderURL
        = platform::standardized(platform::fileUrl(platform::absoluteByText(folder)));
    return true;
}

QString folderValues()
{
    return QStringLiteral("the path of a folder, or nothing");
}

bool ignored(OptimizerSettings& /*settings*/, const QByteArray& /*value*/)
{
    return true;
}

QString ignoredValues()
{
    return QStringLiteral("anything; means nothing here");
}

bool ignoredBoolean(OptimizerSettings& /*settings*/, const QByteArray& value)
{
    return booleanFrom(value).has_value();
}

QString ignoredBooleanValues()
{
    return QStringLiteral("true, false; means nothing here");
}

constexpr std::array<Key, 16> keys { {
    { "resizeMode", choiceValues<&OptimizerSettings::resizeMode>,
        applyChoice<&OptimizerSettings::resizeMode> },
    { "maximumPixels", pixelValues, applyMaximumPixels },
    { "outputFormat", choiceValues<&OptimizerSettings::outputFormat>,
        applyChoice<&OptimizerSettings::outputFormat> },
    { "quality", qualityValues, applyQuality },
    { "optimizeColorForSharing", booleanValues,
        applyBoolean<&OptimizerSettings::optimizeColorForSharing> },
    { "removeColorManagement", booleanValues,
        applyBoolean<&OptimizerSettings::removeColorManagement> },
    { "removeMetadata", booleanValues, applyBoolean<&OptimizerSettings::removeMetadata> },
    { "destinationMode", choiceValues<&OptimizerSettings::destinationMode>,
        applyChoice<&OptimizerSettings::destinationMode> },
    { "destinationFolderBookmark", folderValues, applyDestinationFolder },
    { "originalLocationFolderBookmarks", ignoredValues, ignored },
    { "filenamePrefix", textValues, applyText<&OptimizerSettings::filenamePrefix> },
    { "filenameSuffix", textValues, applyText<&OptimizerSettings::filenameSuffix> },
    { "moveOriginalToTrash", booleanValues, applyBoolean<&OptimizerSettings::moveOriginalToTrash> },
    { "preserveModificationTime", booleanValues,
        applyBoolean<&OptimizerSettings::preserveModificationTime> },
    { "warnBeforeOverwrite", booleanValues, applyBoolean<&OptimizerSettings::warnBeforeOverwrite> },
    { "exitWhenComplete", ignoredBooleanValues, ignoredBoolean },
} };

const Key* keyNamed(const QString& name)
{
    for (const Key& key : keys) {
        if (name == QLatin1StringView(key.name)) {
            return &key;
        }
    }
    return nullptr;
}

} // namespace

QStringList settingKeys()
{
    QStringList names;
    for (const Key& key : keys) {
        names.append(QString::fromLatin1(key.name));
    }
    return names;
}

QString valuesOf(const QString& key)
{
    const Key* known = keyNamed(key);
    return known != nullptr ? known->values() : QString();
}

std::optional<QString> applySetting(
    OptimizerSettings& settings, const QString& key, const QByteArray& value)
{
    const Key* known = keyNamed(key);
    if (known == nullptr) {
        return QStringLiteral("there is no setting \"%1\"").arg(key);
    }
    if (!known->apply(settings, value)) {
        return QStringLiteral("\"%1\" is no value for %2: %3")
            .arg(textOf(value), key, known->values());
    }
    return std::nullopt;
}

} // namespace vellumine::cli
