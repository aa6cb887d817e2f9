#include "ui/settings/SettingsPresenter.h"

#include "core/Product.h"
#include "core/VellumineSettings.h"
#include "platform/FilePath.h"
#include "platform/FolderBookmarks.h"
#include "ui/settings/SettingsText.h"

#include <QLocale>
#include <QPointer>

#include <algorithm>
#include <array>

namespace vellumine {
namespace {

constexpr std::array pixelPresetNumbers { 1280, 1920, 2560, 3840 };
constexpr std::array qualityPresetNumbers { 60, 70, 80, 90, 100 };

template <typename Numbers> QVariantList toVariants(const Numbers& numbers)
{
    return QVariantList(numbers.begin(), numbers.end());
}

template <Enumeration Choice> QStringList titles()
{
    QStringList list;
    for (const Choice choice : allCases<Choice>()) {
        list.append(settings_text::title(choice));
    }
    return list;
}

/// The case at that place of its picker.
template <Enumeration Choice> std::optional<Choice> choiceAt(int index)
{
    constexpr auto cases = allCases<Choice>();
    if (index < 0 || static_cast<std::size_t>(index) >= cases.size()) {
        return std::nullopt;
    }
    return cases.at(static_cast<std::size_t>(index));
}

} // namespace

SettingsPresenter::SettingsPresenter(VellumineSettings& settings,
    platform::FolderBookmarks& bookmarks, ShowFolderPanel showFolderPanel, QObject* parent)
    : QObject(parent)
    , m_settings(settings)
    , m_bookmarks(bookmarks)
    , m_showFolderPanel(std::move(showFolderPanel))
{
    connect(&settings, &VellumineSettings::changed, this, &SettingsPresenter::changed);
}

int SettingsPresenter::resizeMode() const
{
    return static_cast<int>(m_settings.resizeMode());
}

void SettingsPresenter::setResizeMode(int mode)
{
    if (const auto choice = choiceAt<ResizeMode>(mode)) {
        m_settings.setResizeMode(*choice);
    }
}

qint64 SettingsPresenter::maximumPixels() const
{
    return m_settings.maximumPixels();
}

void SettingsPresenter::setMaximumPixels(qint64 pixels)
{
    m_settings.setMaximumPixels(pixels);
}

int SettingsPresenter::outputFormat() const
{
    return static_cast<int>(m_settings.outputFormat());
}

void SettingsPresenter::setOutputFormat(int format)
{
    if (const auto choice = choiceAt<OutputFormat>(format)) {
        m_settings.setOutputFormat(*choice);
    }
}

double SettingsPresenter::quality() const
{
    return m_settings.quality();
}

void SettingsPresenter::setQuality(double percent)
{
    m_settings.setQuality(percent);
}

bool SettingsPresenter::optimizeColorForSharing() const
{
    return m_settings.optimizeColorForSharing();
}

void SettingsPresenter::setOptimizeColorForSharing(bool on)
{
    m_settings.setOptimizeColorForSharing(on);
}

bool SettingsPresenter::removeColorManagement() const
{
    return m_settings.removeColorManagement();
}

void SettingsPresenter::setRemoveColorManagement(bool on)
{
    m_settings.setRemoveColorManagement(on);
}

bool SettingsPresenter::removeMetadata() const
{
    return m_settings.removeMetadata();
}

void SettingsPresenter::setRemoveMetadata(bool on)
{
    m_settings.setRemoveMetadata(on);
}

int SettingsPresenter::destinationMode() const
{
    return static_cast<int>(m_settings.destinationMode());
}

void SettingsPresenter::setDestinationMode(int mode)
{
    if (const auto choice = choiceAt<DestinationMode>(mode)) {
        m_settings.setDestinationMode(*choice);
    }
}

QString SettingsPresenter::filenamePrefix() const
{
    return m_settings.filenamePrefix();
}

void SettingsPresenter::setFilenamePrefix(const QString& prefix)
{
    m_settings.setFilenamePrefix(prefix);
}

QString SettingsPresenter::filenameSuffix() const
{
    return m_settings.filenameSuffix();
}

void SettingsPresenter::setFilenameSuffix(const QString& suffix)
{
    m_settings.setFilenameSuffix(suffix);
}

bool SettingsPresenter::moveOriginalToTrash() const
{
    return m_settings.moveOriginalToTrash();
}

void SettingsPresenter::setMoveOriginalToTrash(bool on)
{
    m_settings.setMoveOriginalToTrash(on);
}

bool SettingsPresenter::preserveModificationTime() const
{
    return m_settings.preserveModificationTime();
}

void SettingsPresenter::setPreserveModificationTime(bool on)
{
    m_settings.setPreserveModificationTime(on);
}

bool SettingsPresenter::warnBeforeOverwrite() const
{
    return m_settings.warnBeforeOverwrite();
}

void SettingsPresenter::setWarnBeforeOverwrite(bool on)
{
    m_settings.setWarnBeforeOverwrite(on);
}

bool SettingsPresenter::exitWhenComplete() const
{
    return m_settings.exitWhenComplete();
}

void SettingsPresenter::setExitWhenComplete(bool on)
{
    m_settings.setExitWhenComplete(on);
}

QStringList SettingsPresenter::resizeModeTitles()
{
    return titles<ResizeMode>();
}

QStringList SettingsPresenter::outputFormatTitles()
{
    return titles<OutputFormat>();
}

QStringList SettingsPresenter::destinationModeTitles()
{
    return titles<DestinationMode>();
}

QVariantList SettingsPresenter::pixelPresets()
{
    return toVariants(pixelPresetNumbers);
}

QVariantList SettingsPresenter::qualityPresets()
{
    return toVariants(qualityPresetNumbers);
}

QString SettingsPresenter::pixelPresetTitle(qint64 pixels)
{
    return tr("%1 px").arg(pixels);
}

QString SettingsPresenter::qualityPresetTitle(int percent)
{
    return tr("Quality %1").arg(percent);
}

QString SettingsPresenter::formatText() const
{
    return settings_text::title(m_settings.outputFormat());
}

QString SettingsPresenter::formatSymbol()
{
    return QStringLiteral("photo");
}

QString SettingsPresenter::resizeText() const
{
    return isResizing() ? tr("%1px").arg(maximumPixels()) : tr("No resize");
}

QString SettingsPresenter::resizeSymbol() const
{
    return settings_text::symbol(m_settings.resizeMode());
}

QString SettingsPresenter::qualityText() const
{
    return usesQuality() ? tr("Quality %1").arg(qualityNumberText()) : tr("Lossless");
}

QString SettingsPresenter::qualitySymbol() const
{
    return usesQuality() ? QStringLiteral("slider.horizontal.3") : QStringLiteral("checkmark.seal");
}

QString SettingsPresenter::destinationText() const
{
    if (m_settings.destinationMode() == DestinationMode::originalLocation) {
        return tr("Original location");
    }
    const auto folder = storedFolder();
    const QString name = folder ? platform::lastPathComponent(*folder) : QString();
    return name.isEmpty() ? tr("Choose folder") : name;
}

QString SettingsPresenter::destinationSymbol()
{
    return QStringLiteral("folder");
}

QString SettingsPresenter::metadataText() const
{
    return removeMetadata() ? tr("Remove metadata") : tr("Keep metadata");
}

QString SettingsPresenter::metadataSymbol() const
{
    return removeMetadata() ? QStringLiteral("trash") : QStringLiteral("doc.badge.gearshape");
}

QString SettingsPresenter::colorText() const
{
    return optimizeColorForSharing() ? tr("sRGB") : tr("Original color");
}

QString SettingsPresenter::colorSymbol()
{
    return QStringLiteral("paintpalette");
}

bool SettingsPresenter::isResizing() const
{
    return m_settings.resizeMode() != ResizeMode::none;
}

bool SettingsPresenter::usesQuality() const
{
    return !isLosslessOnly(m_settings.outputFormat());
}

bool SettingsPresenter::canStepUp() const
{
    return maximumPixels() < maximumOfStepper;
}

bool SettingsPresenter::canStepDown() const
{
    return maximumPixels() > minimumOfStepper;
}

QString SettingsPresenter::maximumPixelsText() const
{
    return QLocale().toString(maximumPixels());
}

QString SettingsPresenter::qualityNumberText() const
{
    return QString::number(settings_text::integerPart(quality()));
}

QString SettingsPresenter::destinationFolderButtonTitle() const
{
    return storedFolder() ? tr("Change Folder...") : tr("Choose Folder...");
}

QString SettingsPresenter::destinationFolderDescription() const
{
    if (const auto folder = storedFolder()) {
        return folder->toLocalFile();
    }
    return m_settings.destinationMode() == DestinationMode::selectedFolder
        ? tr("No folder selected")
        : tr("Used when Destination is Selected Folder");
}

QString SettingsPresenter::appVersionText()
{
    return settings_text::appVersion(product::version, product::buildNumber);
}

void SettingsPresenter::choosePixelPreset(qint64 pixels)
{
    setMaximumPixels(pixels);
    if (!isResizing()) {
        m_settings.setResizeMode(ResizeMode::maxWidth);
    }
}

void SettingsPresenter::stepMaximumPixels(int steps)
{
    // Far outside the bounds the first step leads to the nearer one, without an overflow on the
    // way.
    const qint64 near = std::clamp(
        maximumPixels(), minimumOfStepper - stepOfStepper, maximumOfStepper + stepOfStepper);
    setMaximumPixels(std::clamp(near + steps * stepOfStepper, minimumOfStepper, maximumOfStepper));
}

void SettingsPresenter::enterMaximumPixels(const QString& text)
{
    bool isNumber = false;
    const qint64 pixels = QLocale().toLongLong(text.trimmed(), &isNumber);
    if (isNumber) {
        setMaximumPixels(pixels);
    } else {
        Q_EMIT changed();
    }
}

void SettingsPresenter::chooseDestinationFolder()
{
    runFolderChooser(AfterChoosing::keepMode);
}

void SettingsPresenter::chooseAndUseDestinationFolder()
{
    runFolderChooser(AfterChoosing::useFolder);
}

void SettingsPresenter::refresh()
{
    Q_EMIT changed();
}

void SettingsPresenter::runFolderChooser(AfterChoosing after)
{
    if (!m_openChoosers.insert(after).second) {
        return;
    }
    const FolderPanel panel {
        .message = tr("Choose where converted images should be saved."),
        .prompt = {},
        .folder = storedFolder(),
        .newFolders = FolderPanel::NewFolders::allowed,
        .window = after == AfterChoosing::useFolder ? FolderPanel::Window::main
                                                    : FolderPanel::Window::preferences,
    };
    m_showFolderPanel(
        panel, [presenter = QPointer(this), after](const std::optional<QUrl>& folder) {
            if (!presenter) {
                return;
            }
            presenter->m_openChoosers.erase(after);
            if (folder) {
                presenter->takeFolder(*folder, after);
            }
        });
}

void SettingsPresenter::takeFolder(const QUrl& folder, AfterChoosing after)
{
    const auto bookmark = m_bookmarks.create(folder);
    if (!bookmark) {
        return;
    }
    m_settings.setDestinationFolderBookmark(*bookmark);
    if (after == AfterChoosing::useFolder) {
        m_settings.setDestinationMode(DestinationMode::selectedFolder);
    }
}

std::optional<QUrl> SettingsPresenter::storedFolder() const
{
    const QByteArray bookmark = m_settings.destinationFolderBookmark();
    const auto resolution = bookmark.isEmpty() ? std::nullopt : m_bookmarks.resolve(bookmark);
    return resolution ? std::optional(resolution->url) : std::nullopt;
}

} // namespace vellumine
