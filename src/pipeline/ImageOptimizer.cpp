#include "pipeline/ImageOptimizer.h"

#include "imaging/ImageDestination.h"
#include "pipeline/ComparisonSampler.h"
#include "platform/FileOperations.h"
#include "platform/FilePath.h"

#include <algorithm>
#include <cerrno>
#include <utility>

namespace vellumine {

using imaging::Image;
using imaging::ImageDestination;
using imaging::ImageProperties;
using imaging::ImageSource;
using imaging::UniformType;
using platform::ExistingItem;
using platform::PendingFile;
using platform::ScopedAccess;
using platform::toPath;

namespace {

/// How the picture will be drawn; none when it will stay as it is. Which of its sides the limit is
/// for is known when it is upright; until then it may be either.
std::optional<imaging::DrawingPlan> planOf(imaging::Size stored, const OptimizerSettings& settings)
{
    const imaging::Size turned { stored.height, stored.width };
    const imaging::DrawingPlan plan { .size = ImageOptimizer::transformedSize(stored, settings),
        .turnedSize = ImageOptimizer::transformedSize(turned, settings),
        .colors = ImageOptimizer::bitmapColors(settings),
        .quality = imaging::InterpolationQuality::high,
        .middle = ComparisonSampler::largest };
    const bool isDrawn = plan.colors != imaging::BitmapColors::own || plan.size != stored
        || plan.turnedSize != turned;
    return isDrawn ? std::optional(plan) : std::nullopt;
}

/// All that is left of the source when it has been read: everything that writing needs.
struct Prepared {
    Image encoded; ///< as it goes to the encoder
    UniformType sourceType;
    ImageProperties sourceProperties;
    QUrl outputURL;
    ExistingItem existing;
    ConversionAudit audit;
    ComparisonSampler sampler;
};

std::uint64_t drawnBytes(imaging::Size size)
{
    return static_cast<std::uint64_t>(size.width) * static_cast<std::uint64_t>(size.height)
        * static_cast<std::uint64_t>(imaging::rgba8Premultiplied.bytesPerPixel());
}

/// What the WebP encoder has of a picture, in pictures: what it reads, its own copy, and planes.
constexpr std::uint64_t picturesInWebPEncoder = 3;

/// The most memory that the conversion has in use at one time: the decoded picture with its upright
/// copy or with the one drawn from it, or that one with the encoder's input; or the WebP encoder,
/// by when nothing else is left.
std::uint64_t peakBytes(
    const ImageSource& source, qint64 fileBytes, const OptimizerSettings& settings)
{
    const imaging::Size stored = source.storedSize();
    const imaging::Size turned { stored.height, stored.width };
    const std::uint64_t drawn
        = std::max(drawnBytes(ImageOptimizer::transformedSize(stored, settings)),
            drawnBytes(ImageOptimizer::transformedSize(turned, settings)));
    const std::uint64_t decoded = source.decodedBytes();
    const std::uint64_t inWebPEncoder
        = isWebP(settings.outputFormat) ? picturesInWebPEncoder * drawn : 0;
    return std::max(
        static_cast<std::uint64_t>(fileBytes) + 2 * std::max(decoded, drawn), inWebPEncoder);
}

QSizeF sizeF(imaging::Size size)
{
    return { static_cast<qreal>(size.width), static_cast<qreal>(size.height) };
}

ConversionAudit auditOf(const QUrl& url, UniformType sourceType, const Image& oriented,
    const Image& encoded, const OptimizerSettings& settings)
{
    return {
        .inputDimensions = sizeF(oriented.size()),
        .outputDimensions = sizeF(encoded.size()),
        .inputFormat = ImageOptimizer::inputFormatTitle(url, sourceType),
        .outputFormat = ImageOptimizer::outputFormatTitle(url, sourceType, settings),
        .metadataRemoved = settings.removeMetadata,
        .colorOptimized = settings.optimizeColorForSharing,
        .colorManagementRemoved = settings.removeColorManagement,
        .sourceHasAlpha = oriented.hasAlpha(),
        .outputSupportsAlpha
        = ImageOptimizer::outputSupportsAlpha(settings.outputFormat, sourceType),
    };
}

/// Whether the image service encodes the output, and piece by piece.
bool isEncodedInPieces(UniformType sourceType, const OptimizerSettings& settings)
{
    const auto type = ImageOptimizer::outputUTI(sourceType, settings);
    return !isWebP(settings.outputFormat) && type && ImageDestination::encodesInPieces(*type);
}

/// The picture stays where it was decoded or drawn for encoders that take it piece by piece; that
/// of WebP takes drawn ones so. Others want the whole picture.
imaging::Result<Image> broughtHere(
    const Image& image, UniformType sourceType, const OptimizerSettings& settings)
{
    const bool isTakenInPieces = isWebP(settings.outputFormat)
        ? image.layout() == imaging::rgba8Premultiplied
        : isEncodedInPieces(sourceType, settings);
    return isTakenInPieces ? image : image.withRows();
}

/// Everything up to writing. Takes the source over: with its end go the file's bytes and the
/// decoded picture, so that neither is in memory while an encoder runs.
Outcome<Prepared> prepare(ImageSource source, const QUrl& url, const OptimizerSettings& settings,
    const ConversionEnvironment& environment)
{
    const auto plan = planOf(source.storedSize(), settings);
    const auto decoded = source.image(plan || isEncodedInPieces(source.type(), settings)
            ? imaging::ImageUse::toBeDrawn
            : imaging::ImageUse::asRows,
        plan);
    if (!decoded) {
        return failed(UnreadableImage {});
    }
    ImageProperties properties = source.properties().value_or(ImageProperties());
    const Image oriented = ImageOptimizer::oriented(source, *decoded);

    auto outputURL
        = ImageOptimizer::outputURL(url, source.type(), settings, environment.neededFiles.get());
    if (!outputURL) {
        return tl::unexpected(outputURL.error());
    }
    const auto existing = ImageOptimizer::confirmOverwrite(*outputURL, settings, environment);
    if (!existing) {
        return tl::unexpected(existing.error());
    }

    auto encoded
        = broughtHere(ImageOptimizer::transformed(oriented, settings), source.type(), settings);
    if (!encoded) {
        return failed(UnreadableImage {}); // whatever holds the pixels lost them
    }
    ConversionAudit audit = auditOf(url, source.type(), oriented, *encoded, settings);
    ComparisonSampler sampler(oriented, *encoded, environment.comparisonSamples);
    return Prepared { std::move(*encoded), source.type(), std::move(properties),
        std::move(*outputURL), *existing, std::move(audit), std::move(sampler) };
}

/// Writes the picture with the image service.
Outcome<void> encode(Prepared& prepared, UniformType type, const OptimizerSettings& settings)
{
    const QUrl& outputURL = prepared.outputURL;
    auto pending = PendingFile::beside(toPath(outputURL));
    if (!pending) {
        return failed(CannotCreateDestination { outputURL });
    }
    {
        auto destination = imaging::FileDescriptor::duplicateOf(pending->file().get())
                               .and_then([type](imaging::FileDescriptor&& file) {
                                   return ImageDestination::create(std::move(file), type);
                               });
        if (!destination) {
            return failed(CannotCreateDestination { outputURL });
        }
        destination->setProfilePolicy(settings.removeColorManagement
                ? imaging::ProfilePolicy::omit
                : imaging::ProfilePolicy::embed);
        const auto part = prepared.sampler.encodedPart();
        if (part && !settings.moveOriginalToTrash) { // else the whole file is read as a proof
            destination->setPartOfInterest(*part);
        }
        destination->addImage(std::move(prepared.encoded),
            ImageOptimizer::destinationProperties(
                settings, prepared.sourceProperties, CompressionQuality::include));
        if (const auto done = destination->finalize(); !done) {
            const bool isLoss = done.error().kind == imaging::Error::Kind::truncated;
            return failed(isLoss ? ImageOptimizerError(UnreadableImage {})
                                 : CannotFinalize { outputURL, std::nullopt });
        }
        if (destination->writtenPart()) {
            prepared.sampler.setWrittenPart(*destination->writtenPart());
        }
    }
    if (const auto published = std::move(*pending).publish(prepared.existing); !published) {
        return failed(CannotFinalize { outputURL, published.error().text });
    }
    return {};
}

Outcome<void> write(
    Prepared& prepared, const OptimizerSettings& settings, const ConversionEnvironment& environment)
{
    if (isWebP(settings.outputFormat)) {
        return ImageOptimizer::encodeWebPWithCWebP(std::move(prepared.encoded), prepared.outputURL,
            prepared.existing, settings, prepared.sourceProperties, environment);
    }
    const auto type = ImageOptimizer::outputUTI(prepared.sourceType, settings);
    if (!type) {
        return tl::unexpected(type.error());
    }
    return encode(prepared, *type, settings);
}

/// Only an original whose output is known to be readable may go, and only as it was read: what was
/// written there since is in no output.
OriginalInTrash trashOriginal(const QUrl& url, const std::optional<platform::FileVersion>& asRead,
    const QUrl& outputURL, bool isReadBack, const ConversionEnvironment& environment)
{
    if (platform::standardized(url) == platform::standardized(outputURL)) {
        return OriginalInTrash::asWished;
    }
    const bool mayGo = isReadBack && asRead && platform::fileVersion(toPath(url)) == asRead;
    return mayGo && environment.moveToTrash(url) ? OriginalInTrash::asWished
                                                 : OriginalInTrash::couldNotBeMoved;
}

} // namespace

Outcome<void> ImageOptimizer::checkInterruption(const ConversionEnvironment& environment)
{
    if (environment.interruption.stop_requested()) {
        return tl::unexpected<OptimizeError>(platform::FileError::fromErrno(ECANCELED));
    }
    return {};
}

Outcome<ProcessingResult> ImageOptimizer::optimize(
    const QUrl& url, const OptimizerSettings& settings, const ConversionEnvironment& environment)
{
    const ScopedAccess sourceAccess(*environment.securityScope, url);
    const ScopedAccess folderAccess(*environment.securityScope,
        settings.destinationFolderURL.value_or(platform::parentFolder(url)));

    const auto version = platform::fileVersion(toPath(url));
    const qint64 originalBytes = fileSize(url);
    auto source = environment.openImage(toPath(url), environment.limits, environment.interruption);
    if (!source) {
        return failed(UnreadableImage {});
    }
    const auto lease
        = environment.memoryBudget->acquire(peakBytes(*source, originalBytes, settings));
    if (const auto goesOn = checkInterruption(environment); !goesOn) {
        return tl::unexpected(goesOn.error());
    }
    auto prepared = prepare(std::move(*source), url, settings, environment);
    if (!prepared) {
        return tl::unexpected(prepared.error());
    }
    if (const auto goesOn = checkInterruption(environment); !goesOn) {
        return tl::unexpected(goesOn.error());
    }
    if (const auto written = write(*prepared, settings, environment); !written) {
        return tl::unexpected(written.error());
    }

    const QUrl& outputURL = prepared->outputURL;
    if (settings.preserveModificationTime) {
        preserveModificationDate(url, outputURL);
    }
    auto comparison = prepared->sampler.compare(url, outputURL,
        settings.moveOriginalToTrash ? ComparisonSampler::ReadBack::whole
                                     : ComparisonSampler::ReadBack::sampleOnly,
        environment);
    OriginalInTrash original = OriginalInTrash::asWished;
    if (settings.moveOriginalToTrash) {
        original = trashOriginal(url, version, outputURL, comparison.isReadBack, environment);
    }
    const qint64 outputBytes = fileSize(outputURL);
    return ProcessingResult {
        .id = QUuid::createUuid(),
        .sourceURL = url,
        .outputURL = outputURL,
        .originalBytes = originalBytes,
        .outputBytes = outputBytes,
        .message = successMessage(originalBytes, outputBytes, original),
        .isSuccess = true,
        .audit = std::move(prepared->audit),
        .comparisonPreview = std::move(comparison.preview),
    };
}

} // namespace vellumine
