#pragma once

#include "core/DestinationMode.h"
#include "core/OutputFormat.h"
#include "core/ResizeMode.h"

#include <QByteArray>
#include <QObject>
#include <QSettings>
#include <QString>

#include <memory>

namespace vellumine {

/// The preferences of the user that the desktop keeps for this program.
[[nodiscard]] std::unique_ptr<QSettings> userPreferences();

/// The user's sixteen preferences. Each property stands in the store under its own name. Nothing is
/// cached: every read and every write goes to the store, so that all readers of it agree. What is
/// missing there, or has another type, or names no choice, reads as the default.
class VellumineSettings : public QObject {
    Q_OBJECT
    Q_PROPERTY(vellumine::ResizeMode resizeMode READ resizeMode WRITE setResizeMode NOTIFY
            resizeModeChanged)
    Q_PROPERTY(
        qint64 maximumPixels READ maximumPixels WRITE setMaximumPixels NOTIFY maximumPixelsChanged)
    Q_PROPERTY(vellumine::OutputFormat outputFormat READ outputFormat WRITE setOutputFormat NOTIFY
            outputFormatChanged)
    Q_PROPERTY(double quality READ quality WRITE setQuality NOTIFY qualityChanged)
    Q_PROPERTY(bool optimizeColorForSharing READ optimizeColorForSharing WRITE
            setOptimizeColorForSharing NOTIFY optimizeColorForSharingChanged)
    Q_PROPERTY(bool removeColorManagement READ removeColorManagement WRITE setRemoveColorManagement
            NOTIFY removeColorManagementChanged)
    Q_PROPERTY(bool removeMetadata READ removeMetadata WRITE setRemoveMetadata NOTIFY
            removeMetadataChanged)
    Q_PROPERTY(vellumine::DestinationMode destinationMode READ destinationMode WRITE
            setDestinationMode NOTIFY destinationModeChanged)
    Q_PROPERTY(QByteArray destinationFolderBookmark READ destinationFolderBookmark WRITE
            setDestinationFolderBookmark NOTIFY destinationFolderBookmarkChanged)
    Q_PROPERTY(QByteArray originalLocationFolderBookmarks READ originalLocationFolderBookmarks WRITE
            setOriginalLocationFolderBookmarks NOTIFY originalLocationFolderBookmarksChanged)
    Q_PROPERTY(QString filenamePrefix READ filenamePrefix WRITE setFilenamePrefix NOTIFY
            filenamePrefixChanged)
    Q_PROPERTY(QString filenameSuffix READ filenameSuffix WRITE setFilenameSuffix NOTIFY
            filenameSuffixChanged)
    Q_PROPERTY(bool moveOriginalToTrash READ moveOriginalToTrash WRITE setMoveOriginalToTrash NOTIFY
            moveOriginalToTrashChanged)
    Q_PROPERTY(bool preserveModificationTime READ preserveModificationTime WRITE
            setPreserveModificationTime NOTIFY preserveModificationTimeChanged)
    Q_PROPERTY(bool warnBeforeOverwrite READ warnBeforeOverwrite WRITE setWarnBeforeOverwrite NOTIFY
            warnBeforeOverwriteChanged)
    Q_PROPERTY(bool exitWhenComplete READ exitWhenComplete WRITE setExitWhenComplete NOTIFY
            exitWhenCompleteChanged)

public:
    explicit VellumineSettings(std::unique_ptr<QSettings> preferences, QObject* parent = nullptr);

    /// How the pixel limit is applied; by default to the width.
    [[nodiscard]] ResizeMode resizeMode() const;
    void setResizeMode(ResizeMode mode);

    /// 2560 by default.
    [[nodiscard]] qint64 maximumPixels() const;
    void setMaximumPixels(qint64 pixels);

    /// WebP by default.
    [[nodiscard]] OutputFormat outputFormat() const;
    void setOutputFormat(OutputFormat format);

    /// Percent, always finite; 82 by default.
    [[nodiscard]] double quality() const;
    void setQuality(double percent);

    /// Whether colours are converted to sRGB; true by default.
    [[nodiscard]] bool optimizeColorForSharing() const;
    void setOptimizeColorForSharing(bool on);

    /// Whether no colour profile is written; true by default.
    [[nodiscard]] bool removeColorManagement() const;
    void setRemoveColorManagement(bool on);

    /// True by default.
    [[nodiscard]] bool removeMetadata() const;
    void setRemoveMetadata(bool on);

    /// Beside each source by default.
    [[nodiscard]] DestinationMode destinationMode() const;
    void setDestinationMode(DestinationMode mode);

    /// The folder that the user chose; empty by default: none.
    [[nodiscard]] QByteArray destinationFolderBookmark() const;
    void setDestinationFolderBookmark(const QByteArray& bookmark);

    /// The folders that the user granted, as a property list; empty by default: none.
    [[nodiscard]] QByteArray originalLocationFolderBookmarks() const;
    void setOriginalLocationFolderBookmarks(const QByteArray& propertyList);

    /// Empty by default.
    [[nodiscard]] QString filenamePrefix() const;
    void setFilenamePrefix(const QString& prefix);

    /// Empty by default.
    [[nodiscard]] QString filenameSuffix() const;
    void setFilenameSuffix(const QString& suffix);

    /// False by default.
    [[nodiscard]] bool moveOriginalToTrash() const;
    void setMoveOriginalToTrash(bool on);

    /// True by default.
    [[nodiscard]] bool preserveModificationTime() const;
    void setPreserveModificationTime(bool on);

    /// False by default.
    [[nodiscard]] bool warnBeforeOverwrite() const;
    void setWarnBeforeOverwrite(bool on);

    /// Whether the program quits when a batch completes; false by default.
    [[nodiscard]] bool exitWhenComplete() const;
    void setExitWhenComplete(bool on);

Q_SIGNALS:
    /// Follows each of the signals below: one property was written, the same value included.
    void changed();

    void resizeModeChanged();
    void maximumPixelsChanged();
    void outputFormatChanged();
    void qualityChanged();
    void optimizeColorForSharingChanged();
    void removeColorManagementChanged();
    void removeMetadataChanged();
    void destinationModeChanged();
    void destinationFolderBookmarkChanged();
    void originalLocationFolderBookmarksChanged();
    void filenamePrefixChanged();
    void filenameSuffixChanged();
    void moveOriginalToTrashChanged();
    void preserveModificationTimeChanged();
    void warnBeforeOverwriteChanged();
    void exitWhenCompleteChanged();

private:
    using Notification = void (VellumineSettings::*)();

    void write(const QString& key, const QVariant& value, Notification notification);

    std::unique_ptr<QSettings> m_preferences;
};

} // namespace vellumine
