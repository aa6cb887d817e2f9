#pragma once

#include "core/OptimizerSettings.h"
#include "core/ProcessingResult.h"
#include "imaging/Image.h"
#include "imaging/ImageProperties.h"
#include "imaging/ImageSource.h"
#include "imaging/UniformType.h"
#include "pipeline/ConversionEnvironment.h"
#include "platform/PendingFile.h"

#include <QString>
#include <QUrl>

#include <filesystem>
#include <optional>

namespace vellumine {

enum class CompressionQuality { include, leaveOut };

/// The conversion of one file and its steps. Nothing here keeps a state: all of it may run on
/// several threads at once.
class ImageOptimizer {
public:
    ImageOptimizer() = delete;

    /// The whole conversion of one file: reads, turns upright, resizes, converts the colours,
    /// writes, and takes care of the original. Blocks while it works. On failure whatever stood at
    /// the output's place still stands there, and no part of a file is left behind.
    [[nodiscard]] static Outcome<ProcessingResult> optimize(const QUrl& url,
        const OptimizerSettings& settings, const ConversionEnvironment& environment);

    /// Fails with the system's text for a canceled operation once the conversion is to give up.
    [[nodiscard]] static Outcome<void> checkInterruption(const ConversionEnvironment& environment);

    // ImageTransform.cpp

    /// The first picture of the source in full size, turned upright; `fallback`, the picture as
    /// stored, when that cannot be made.
    [[nodiscard]] static imaging::Image oriented(
        imaging::ImageSource& source, const imaging::Image& fallback);

    /// The picture resized and in the colours that the settings ask for, drawn once into 8-bit RGBA
    /// with premultiplied alpha. The very same picture when there is nothing to do, or when its
    /// colours cannot be drawn that way.
    [[nodiscard]] static imaging::Image transformed(
        const imaging::Image& image, const OptimizerSettings& settings);

    /// The colours in which transformed() draws.
    [[nodiscard]] static imaging::BitmapColors bitmapColors(const OptimizerSettings& settings);

    /// The size that transformed() gives a picture. The sides' ratio is kept, fractions of a pixel
    /// are cut off, no side falls below 1, and nothing is enlarged.
    [[nodiscard]] static imaging::Size transformedSize(
        imaging::Size size, const OptimizerSettings& settings);

    // OutputEncoding.cpp

    /// The type to encode. Fails with UnsupportedFormat for a type that the image service cannot
    /// write; a source without a type counts as PNG.
    [[nodiscard]] static Outcome<imaging::UniformType> outputUTI(
        std::optional<imaging::UniformType> sourceType, const OptimizerSettings& settings);

    /// What is written with the picture: none of the source's properties, or all but those that
    /// are no longer true.
    [[nodiscard]] static imaging::ImageProperties destinationProperties(
        const OptimizerSettings& settings, const imaging::ImageProperties& sourceProperties,
        CompressionQuality compression);

    /// "JPEG" for example: the type's extension, else that of the name, else "Image".
    [[nodiscard]] static QString inputFormatTitle(
        const QUrl& url, std::optional<imaging::UniformType> sourceType);
    [[nodiscard]] static QString outputFormatTitle(const QUrl& url,
        std::optional<imaging::UniformType> sourceType, const OptimizerSettings& settings);

    /// Whether the output can carry alpha; for the original format that is the source's PNG or
    /// WebP type.
    [[nodiscard]] static bool outputSupportsAlpha(
        OutputFormat format, std::optional<imaging::UniformType> sourceType);

    // OutputPlacement.cpp

    /// Where the output goes. A place that is the source itself, by this or any other name, gets
    /// "-optimized" behind its name, and so does that of a file that is needed. Fails with
    /// MissingDestinationFolder.
    [[nodiscard]] static Outcome<QUrl> outputURL(const QUrl& url,
        std::optional<imaging::UniformType> sourceType, const OptimizerSettings& settings,
        const NeededFiles* needed = nullptr);

    /// Folder and name of the output, as far as they are known before the source is read. A prefix
    /// or suffix with slashes in it is a way to another folder. Null where the settings want a
    /// folder and have none.
    [[nodiscard]] static std::optional<std::filesystem::path> outputPathWithoutExtension(
        const QUrl& url, const OptimizerSettings& settings);

    /// Without the dot.
    [[nodiscard]] static QString outputExtension(const QUrl& url,
        std::optional<imaging::UniformType> sourceType, const OptimizerSettings& settings);

    /// Decides about what stands at the output's place: asks where the settings want that. Fails
    /// with OverwriteDeclined, and with the system's text when it cannot be replaced (a folder, a
    /// place that cannot be written to).
    [[nodiscard]] static Outcome<platform::ExistingItem> confirmOverwrite(const QUrl& outputURL,
        const OptimizerSettings& settings, const ConversionEnvironment& environment);

    /// Gives the output the source's modification date, as far as that is possible.
    static void preserveModificationDate(const QUrl& source, const QUrl& output);

    /// Size in bytes, 0 when unknown.
    [[nodiscard]] static qint64 fileSize(const QUrl& url);

    // ComparisonSampler.cpp

    /// The file's picture, none when it cannot be read.
    [[nodiscard]] static std::optional<imaging::Image> decoded(
        const QUrl& url, const ConversionEnvironment& environment);

    /// Writes a PNG file with a name of its own into the folder; none when that fails.
    [[nodiscard]] static std::optional<QUrl> writePreviewSample(
        const imaging::Image& image, const std::filesystem::path& folder);

    // CWebPEncoder.cpp

    /// The WebP encoder: what VELLUMINE_CWEBP_PATH names, else "cwebp" in the folder, as far as
    /// they can be executed.
    [[nodiscard]] static std::optional<QUrl> bundledCWebPExecutableURL(
        const std::filesystem::path& executableFolder);

    /// Has the encoder write the picture. The properties are of no use to it: what metadata stays
    /// is said by its arguments. Takes the picture over, to give its memory back early.
    [[nodiscard]] static Outcome<void> encodeWebPWithCWebP(imaging::Image&& image,
        const QUrl& outputURL, platform::ExistingItem existing, const OptimizerSettings& settings,
        const imaging::ImageProperties& sourceProperties, const ConversionEnvironment& environment);

    // PamWriter.cpp

    /// Writes the picture as a PAM file with straight alpha, in sRGB numbers. Fails with
    /// CannotCreateDestination when there is no bitmap to draw it into, with UnreadableImage when
    /// its pixels are lost meanwhile, and with CannotFinalize when the file cannot be written.
    [[nodiscard]] static Outcome<void> writePAM(const imaging::Image& image, const QUrl& url);
};

} // namespace vellumine
