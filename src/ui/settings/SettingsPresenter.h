#pragma once

#include "ui/settings/FolderPanel.h"

#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

#include <cstdint>
#include <optional>
#include <set>

namespace vellumine {

class VellumineSettings;

namespace platform {
class FolderBookmarks;
}

/// The preferences as the chips and the preferences window show and change them. Of the
/// preferences it keeps nothing: each property reads the store, and each write goes to it at once.
/// Choices are numbered as their pickers list them.
class SettingsPresenter : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The program makes the one presenter of its preferences.")

    Q_PROPERTY(int resizeMode READ resizeMode WRITE setResizeMode NOTIFY changed)
    Q_PROPERTY(qint64 maximumPixels READ maximumPixels WRITE setMaximumPixels NOTIFY changed)
    Q_PROPERTY(int outputFormat READ outputFormat WRITE setOutputFormat NOTIFY changed)
    Q_PROPERTY(double quality READ quality WRITE setQuality NOTIFY changed)
    Q_PROPERTY(bool optimizeColorForSharing READ optimizeColorForSharing WRITE
            setOptimizeColorForSharing NOTIFY changed)
    Q_PROPERTY(bool removeColorManagement READ removeColorManagement WRITE setRemoveColorManagement
            NOTIFY changed)
    Q_PROPERTY(bool removeMetadata READ removeMetadata WRITE setRemoveMetadata NOTIFY changed)
    Q_PROPERTY(int destinationMode READ destinationMode WRITE setDestinationMode NOTIFY changed)
    Q_PROPERTY(QString filenamePrefix READ filenamePrefix WRITE setFilenamePrefix NOTIFY changed)
    Q_PROPERTY(QString filenameSuffix READ filenameSuffix WRITE setFilenameSuffix NOTIFY changed)
    Q_PROPERTY(bool moveOriginalToTrash READ moveOriginalToTrash WRITE setMoveOriginalToTrash NOTIFY
            changed)
    Q_PROPERTY(bool preserveModificationTime READ preserveModificationTime WRITE
            setPreserveModificationTime NOTIFY changed)
    Q_PROPERTY(bool warnBeforeOverwrite READ warnBeforeOverwrite WRITE setWarnBeforeOverwrite NOTIFY
            changed)
    Q_PROPERTY(bool exitWhenComplete READ exitWhenComplete WRITE setExitWhenComplete NOTIFY changed)

    Q_PROPERTY(QStringList resizeModeTitles READ resizeModeTitles CONSTANT)
    Q_PROPERTY(QStringList outputFormatTitles READ outputFormatTitles CONSTANT)
    Q_PROPERTY(QStringList destinationModeTitles READ destinationModeTitles CONSTANT)
    Q_PROPERTY(QVariantList pixelPresets READ pixelPresets CONSTANT)
    Q_PROPERTY(QVariantList qualityPresets READ qualityPresets CONSTANT)

    Q_PROPERTY(QString formatText READ formatText NOTIFY changed)
    Q_PROPERTY(QString formatSymbol READ formatSymbol CONSTANT)
    Q_PROPERTY(QString resizeText READ resizeText NOTIFY changed)
    Q_PROPERTY(QString resizeSymbol READ resizeSymbol NOTIFY changed)
    Q_PROPERTY(QString qualityText READ qualityText NOTIFY changed)
    Q_PROPERTY(QString qualitySymbol READ qualitySymbol NOTIFY changed)
    Q_PROPERTY(QString destinationText READ destinationText NOTIFY changed)
    Q_PROPERTY(QString destinationSymbol READ destinationSymbol CONSTANT)
    Q_PROPERTY(QString metadataText READ metadataText NOTIFY changed)
    Q_PROPERTY(QString metadataSymbol READ metadataSymbol NOTIFY changed)
    Q_PROPERTY(QString colorText READ colorText NOTIFY changed)
    Q_PROPERTY(QString colorSymbol READ colorSymbol CONSTANT)

    Q_PROPERTY(bool isResizing READ isResizing NOTIFY changed)
    Q_PROPERTY(bool usesQuality READ usesQuality NOTIFY changed)
    Q_PROPERTY(bool canStepUp READ canStepUp NOTIFY changed)
    Q_PROPERTY(bool canStepDown READ canStepDown NOTIFY changed)
    Q_PROPERTY(QString maximumPixelsText READ maximumPixelsText NOTIFY changed)
    Q_PROPERTY(QString qualityNumberText READ qualityNumberText NOTIFY changed)
    Q_PROPERTY(
        QString destinationFolderButtonTitle READ destinationFolderButtonTitle NOTIFY changed)
    Q_PROPERTY(
        QString destinationFolderDescription READ destinationFolderDescription NOTIFY changed)
    Q_PROPERTY(QString appVersionText READ appVersionText CONSTANT)

public:
    static constexpr qint64 minimumOfStepper = 64;
    static constexpr qint64 maximumOfStepper = 12000;
    static constexpr qint64 stepOfStepper = 64;

    /// The settings and the bookmarks have to outlive the presenter. An answer of the panel that
    /// comes after its end is ignored.
    SettingsPresenter(VellumineSettings& settings, platform::FolderBookmarks& bookmarks,
        ShowFolderPanel showFolderPanel, QObject* parent = nullptr);

    // Writing a number that names no case of a choice changes nothing.
    [[nodiscard]] int resizeMode() const;
    void setResizeMode(int mode);
    [[nodiscard]] qint64 maximumPixels() const;
    void setMaximumPixels(qint64 pixels);
    [[nodiscard]] int outputFormat() const;
    void setOutputFormat(int format);
    [[nodiscard]] double quality() const;
    void setQuality(double percent);
    [[nodiscard]] bool optimizeColorForSharing() const;
    void setOptimizeColorForSharing(bool on);
    [[nodiscard]] bool removeColorManagement() const;
    void setRemoveColorManagement(bool on);
    [[nodiscard]] bool removeMetadata() const;
    void setRemoveMetadata(bool on);
    [[nodiscard]] int destinationMode() const;
    void setDestinationMode(int mode);
    [[nodiscard]] QString filenamePrefix() const;
    void setFilenamePrefix(const QString& prefix);
    [[nodiscard]] QString filenameSuffix() const;
    void setFilenameSuffix(const QString& suffix);
    [[nodiscard]] bool moveOriginalToTrash() const;
    void setMoveOriginalToTrash(bool on);
    [[nodiscard]] bool preserveModificationTime() const;
    void setPreserveModificationTime(bool on);
    [[nodiscard]] bool warnBeforeOverwrite() const;
    void setWarnBeforeOverwrite(bool on);
    [[nodiscard]] bool exitWhenComplete() const;
    void setExitWhenComplete(bool on);

    // What the pickers list, in their order.
    [[nodiscard]] static QStringList resizeModeTitles();
    [[nodiscard]] static QStringList outputFormatTitles();
    [[nodiscard]] static QStringList destinationModeTitles();
    /// The presets of the resize chip; each names itself with presetTitle().
    [[nodiscard]] static QVariantList pixelPresets();
    [[nodiscard]] static QVariantList qualityPresets();
    [[nodiscard]] Q_INVOKABLE static QString pixelPresetTitle(qint64 pixels);
    [[nodiscard]] Q_INVOKABLE static QString qualityPresetTitle(int percent);

    // What the chips show.
    [[nodiscard]] QString formatText() const;
    [[nodiscard]] static QString formatSymbol();
    [[nodiscard]] QString resizeText() const;
    [[nodiscard]] QString resizeSymbol() const;
    [[nodiscard]] QString qualityText() const;
    [[nodiscard]] QString qualitySymbol() const;
    [[nodiscard]] QString destinationText() const;
    [[nodiscard]] static QString destinationSymbol();
    [[nodiscard]] QString metadataText() const;
    [[nodiscard]] QString metadataSymbol() const;
    [[nodiscard]] QString colorText() const;
    [[nodiscard]] static QString colorSymbol();

    /// The pixel limit counts.
    [[nodiscard]] bool isResizing() const;
    /// The quality counts: the format is not lossless only.
    [[nodiscard]] bool usesQuality() const;
    [[nodiscard]] bool canStepUp() const;
    [[nodiscard]] bool canStepDown() const;
    /// The pixel limit as the user's locale writes it.
    [[nodiscard]] QString maximumPixelsText() const;
    /// The integer part of the quality.
    [[nodiscard]] QString qualityNumberText() const;
    [[nodiscard]] QString destinationFolderButtonTitle() const;
    [[nodiscard]] QString destinationFolderDescription() const;
    [[nodiscard]] static QString appVersionText();

    /// Sets the pixel limit, and turns resizing on if it is off.
    Q_INVOKABLE void choosePixelPreset(qint64 pixels);
    /// Moves the pixel limit by that many steps, within the stepper's bounds.
    Q_INVOKABLE void stepMaximumPixels(int steps);
    /// Takes what was typed: any whole number as the locale writes it, whatever its size. Anything
    /// else leaves the limit as it was; the field is told to show it again.
    Q_INVOKABLE void enterMaximumPixels(const QString& text);

    // A chooser that is open already does not open again.
    /// The chooser of the preferences: stores the folder that the user chooses.
    Q_INVOKABLE void chooseDestinationFolder();
    /// The chooser of the chip: stores the folder and sends outputs there.
    Q_INVOKABLE void chooseAndUseDestinationFolder();

    /// Looks again at what can change behind the store's back: whether the stored folder is there.
    Q_INVOKABLE void refresh();

Q_SIGNALS:
    /// A preference was written, the same value included.
    void changed();

private:
    enum class AfterChoosing : std::uint8_t { keepMode, useFolder };

    void runFolderChooser(AfterChoosing after);
    void takeFolder(const QUrl& folder, AfterChoosing after);
    [[nodiscard]] std::optional<QUrl> storedFolder() const;

    VellumineSettings& m_settings;
    platform::FolderBookmarks& m_bookmarks;
    ShowFolderPanel m_showFolderPanel;
    std::set<AfterChoosing> m_openChoosers;
};

} // namespace vellumine
