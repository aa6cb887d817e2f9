#include "core/VellumineSettings.h"

#include "core/OptimizerSettings.h"
#include "core/Product.h"
#include "core/StoredValue.h"

namespace vellumine {
namespace {

const OptimizerSettings defaults;

namespace key {
const QString resizeMode = QStringLiteral("resizeMode");
const QString maximumPixels = QStringLiteral("maximumPixels");
const QString outputFormat = QStringLiteral("outputFormat");
const QString quality = QStringLiteral("quality");
const QString optimizeColorForSharing = QStringLiteral("optimizeColorForSharing");
const QString removeColorManagement = QStringLiteral("removeColorManagement");
const QString removeMetadata = QStringLiteral("removeMetadata");
const QString destinationMode = QStringLiteral("destinationMode");
const QString destinationFolderBookmark = QStringLiteral("destinationFolderBookmark");
const QString originalLocationFolderBookmarks = QStringLiteral("originalLocationFolderBookmarks");
const QString filenamePrefix = QStringLiteral("filenamePrefix");
const QString filenameSuffix = QStringLiteral("filenameSuffix");
const QString moveOriginalToTrash = QStringLiteral("moveOriginalToTrash");
const QString preserveModificationTime = QStringLiteral("preserveModificationTime");
const QString warnBeforeOverwrite = QStringLiteral("warnBeforeOverwrite");
const QString exitWhenComplete = QStringLiteral("exitWhenComplete");
} // namespace key

} // namespace

std::unique_ptr<QSettings> userPreferences()
{
    auto preferences
        = std::make_unique<QSettings>(QString(product::organisation), QString(product::name));
    // The preferences of the whole organisation or of the whole machine are not this program's.
    preferences->setFallbacksEnabled(false);
    return preferences;
}

VellumineSettings::VellumineSettings(std::unique_ptr<QSettings> preferences, QObject* parent)
    : QObject(parent)
    , m_preferences(std::move(preferences))
{
}

void VellumineSettings::write(const QString& key, const QVariant& value, Notification notification)
{
    m_preferences->setValue(key, value);
    Q_EMIT(this->*notification)();
    Q_EMIT changed();
}

ResizeMode VellumineSettings::resizeMode() const
{
    return storedChoice<ResizeMode>(m_preferences->value(key::resizeMode))
        .value_or(defaults.resizeMode);
}

void VellumineSettings::setResizeMode(ResizeMode mode)
{
    write(key::resizeMode, rawValue(mode), &VellumineSettings::resizeModeChanged);
}

qint64 VellumineSettings::maximumPixels() const
{
    return storedInteger(m_preferences->value(key::maximumPixels)).value_or(defaults.maximumPixels);
}

void VellumineSettings::setMaximumPixels(qint64 pixels)
{
    write(key::maximumPixels, pixels, &VellumineSettings::maximumPixelsChanged);
}

OutputFormat VellumineSettings::outputFormat() const
{
    return storedChoice<OutputFormat>(m_preferences->value(key::outputFormat))
        .value_or(defaults.outputFormat);
}

void VellumineSettings::setOutputFormat(OutputFormat format)
{
    write(key::outputFormat, rawValue(format), &VellumineSettings::outputFormatChanged);
}

double VellumineSettings::quality() const
{
    return storedNumber(m_preferences->value(key::quality)).value_or(defaults.quality);
}

void VellumineSettings::setQuality(double percent)
{
    write(key::quality, percent, &VellumineSettings::qualityChanged);
}

bool VellumineSettings::optimizeColorForSharing() const
{
    return storedBool(m_preferences->value(key::optimizeColorForSharing))
        .value_or(defaults.optimizeColorForSharing);
}

void VellumineSettings::setOptimizeColorForSharing(bool on)
{
    write(key::optimizeColorForSharing, on, &VellumineSettings::optimizeColorForSharingChanged);
}

bool VellumineSettings::removeColorManagement() const
{
    return storedBool(m_preferences->value(key::removeColorManagement))
        .value_or(defaults.removeColorManagement);
}

void VellumineSettings::setRemoveColorManagement(bool on)
{
    write(key::removeColorManagement, on, &VellumineSettings::removeColorManagementChanged);
}

bool VellumineSettings::removeMetadata() const
{
    return storedBool(m_preferences->value(key::removeMetadata)).value_or(defaults.removeMetadata);
}

void VellumineSettings::setRemoveMetadata(bool on)
{
    write(key::removeMetadata, on, &VellumineSettings::removeMetadataChanged);
}

DestinationMode VellumineSettings::destinationMode() const
{
    return storedChoice<DestinationMode>(m_preferences->value(key::destinationMode))
        .value_or(defaults.destinationMode);
}

void VellumineSettings::setDestinationMode(DestinationMode mode)
{
    write(key::destinationMode, rawValue(mode), &VellumineSettings::destinationModeChanged);
}

QByteArray VellumineSettings::destinationFolderBookmark() const
{
    return storedData(m_preferences->value(key::destinationFolderBookmark)).value_or(QByteArray());
}

void VellumineSettings::setDestinationFolderBookmark(const QByteArray& bookmark)
{
    write(key::destinationFolderBookmark, bookmark,
        &VellumineSettings::destinationFolderBookmarkChanged);
}

QByteArray VellumineSettings::originalLocationFolderBookmarks() const
{
    return storedData(m_preferences->value(key::originalLocationFolderBookmarks))
        .value_or(QByteArray());
}

void VellumineSettings::setOriginalLocationFolderBookmarks(const QByteArray& propertyList)
{
    write(key::originalLocationFolderBookmarks, propertyList,
        &VellumineSettings::originalLocationFolderBookmarksChanged);
}

QString VellumineSettings::filenamePrefix() const
{
    return storedText(m_preferences->value(key::filenamePrefix)).value_or(defaults.filenamePrefix);
}

void VellumineSettings::setFilenamePrefix(const QString& prefix)
{
    write(key::filenamePrefix, prefix, &VellumineSettings::filenamePrefixChanged);
}

QString VellumineSettings::filenameSuffix() const
{
    return storedText(m_preferences->value(key::filenameSuffix)).value_or(defaults.filenameSuffix);
}

void VellumineSettings::setFilenameSuffix(const QString& suffix)
{
    write(key::filenameSuffix, suffix, &VellumineSettings::filenameSuffixChanged);
}

bool VellumineSettings::moveOriginalToTrash() const
{
    return storedBool(m_preferences->value(key::moveOriginalToTrash))
        .value_or(defaults.moveOriginalToTrash);
}

void VellumineSettings::setMoveOriginalToTrash(bool on)
{
    write(key::moveOriginalToTrash, on, &VellumineSettings::moveOriginalToTrashChanged);
}

bool VellumineSettings::preserveModificationTime() const
{
    return storedBool(m_preferences->value(key::preserveModificationTime))
        .value_or(defaults.preserveModificationTime);
}

void VellumineSettings::setPreserveModificationTime(bool on)
{
    write(key::preserveModificationTime, on, &VellumineSettings::preserveModificationTimeChanged);
}

bool VellumineSettings::warnBeforeOverwrite() const
{
    return storedBool(m_preferences->value(key::warnBeforeOverwrite))
        .value_or(defaults.warnBeforeOverwrite);
}

void VellumineSettings::setWarnBeforeOverwrite(bool on)
{
    write(key::warnBeforeOverwrite, on, &VellumineSettings::warnBeforeOverwriteChanged);
}

bool VellumineSettings::exitWhenComplete() const
{
    return storedBool(m_preferences->value(key::exitWhenComplete)).value_or(false);
}

void VellumineSettings::setExitWhenComplete(bool on)
{
    write(key::exitWhenComplete, on, &VellumineSettings::exitWhenCompleteChanged);
}

} // namespace vellumine
