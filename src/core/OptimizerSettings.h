#pragma once

#include "core/DestinationMode.h"
#include "core/OutputFormat.h"
#include "core/ResizeMode.h"

#include <QString>
#include <QUrl>

#include <optional>

namespace vellumine {

/// Every option of a conversion: taken once per batch, shared by all its conversions, never
/// changed. The initial values are those of a fresh installation.
struct OptimizerSettings {
    ResizeMode resizeMode = ResizeMode::maxWidth;
    qint64 maximumPixels = 2560;
    OutputFormat outputFormat = OutputFormat::webp;
    double quality = 82.0; ///< percent; for lossy encodings only
    bool optimizeColorForSharing = true; ///< convert the colours to sRGB
    bool removeColorManagement = true; ///< write no colour profile
    bool removeMetadata = true;
    DestinationMode destinationMode = DestinationMode::originalLocation;
    /// The folder of the preferences, whatever the mode; none when none is chosen or it is gone.
    std::optional<QUrl> destinationFolderURL;
    QString filenamePrefix;
    QString filenameSuffix; ///< before the extension
    bool moveOriginalToTrash = false;
    bool preserveModificationTime = true;
    bool warnBeforeOverwrite = false;

    /// Whether the quality is passed on. The original format counts as lossy: the encoder of the
    /// source's format decides what to do with the value.
    [[nodiscard]] bool usesLossyCompression() const { return !isLosslessOnly(outputFormat); }

    friend bool operator==(const OptimizerSettings&, const OptimizerSettings&) = default;
};

} // namespace vellumine
