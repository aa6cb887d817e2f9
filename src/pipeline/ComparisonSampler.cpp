#include "pipeline/ComparisonSampler.h"

#include "imaging/ImageDestination.h"
#include "imaging/ImageSource.h"
#include "pipeline/ImageOptimizer.h"
#include "pipeline/TemporaryFile.h"
#include "platform/FilePath.h"
#include "platform/UniqueName.h"

#include <algorithm>
#include <cstring>
#include <system_error>

namespace vellumine {

using imaging::Image;
using imaging::PixelBuffer;
using imaging::Rect;
using imaging::Size;

namespace {

Size smaller(Size a, Size b)
{
    return { std::min(a.width, b.width), std::min(a.height, b.height) };
}

/// The part with pixels of its own: a view would keep the whole picture in memory.
std::optional<Image> copied(const Image& image, Rect rect)
{
    if (!image.hasRows()) {
        const auto laidOut = image.rows(rect);
        return laidOut ? std::optional(*laidOut) : std::nullopt;
    }
    const Image view = image.cropped(rect);
    auto buffer = PixelBuffer::create(view.size(), view.layout());
    if (!buffer) {
        return std::nullopt;
    }
    for (int y = 0; y < view.height(); ++y) {
        const auto row = view.row(y);
        std::memcpy(buffer->row(y).data(), row.data(), row.size());
    }
    return Image(std::move(*buffer), view.colorSpace());
}

QSizeF sizeF(Size size)
{
    return { static_cast<qreal>(size.width), static_cast<qreal>(size.height) };
}

} // namespace

std::optional<Image> ImageOptimizer::decoded(
    const QUrl& url, const ConversionEnvironment& environment)
{
    auto source = environment.openImage(platform::toPath(url), environment.limits, {});
    if (!source) {
        return std::nullopt;
    }
    auto image = source->image();
    return image ? std::optional(std::move(*image)) : std::nullopt;
}

std::optional<QUrl> ImageOptimizer::writePreviewSample(
    const Image& image, const std::filesystem::path& folder)
{
    const std::filesystem::path path = folder / platform::uniqueName(samplePrefix, sampleSuffix);
    auto destination = imaging::ImageDestination::create(path, imaging::UniformType::png);
    if (!destination) {
        return std::nullopt;
    }
    destination->setEffort(imaging::Effort::fastest); // looked at once, then thrown away
    destination->addImage(image, {});
    if (!destination->finalize()) {
        std::error_code ignored;
        std::filesystem::remove(path, ignored);
        return std::nullopt;
    }
    return platform::fileUrl(path);
}

/// What the written file turned out to be.
struct ComparisonSampler::OutputSample {
    Size size; ///< of the whole picture
    std::optional<Image> crop;
    bool isReadBack = false;

    static std::optional<OutputSample> read(const QUrl& url, ReadBack readBack, Size orientedSize,
        const ConversionEnvironment& environment);
};

std::optional<ComparisonSampler::OutputSample> ComparisonSampler::OutputSample::read(
    const QUrl& url, ReadBack readBack, Size orientedSize, const ConversionEnvironment& environment)
{
    const auto cropRect = [orientedSize](Size whole) {
        return centredRect(whole, smaller(smaller(orientedSize, whole), largest));
    };
    if (readBack == ReadBack::whole) {
        const auto image = ImageOptimizer::decoded(url, environment);
        if (!image) {
            return std::nullopt;
        }
        return OutputSample { image->size(), copied(*image, cropRect(image->size())), true };
    }
    auto source = environment.openImage(platform::toPath(url), environment.limits, {});
    if (!source) {
        return std::nullopt;
    }
    const Size size = source->storedSize();
    auto crop = source->imageRegion(cropRect(size));
    if (!crop) {
        return std::nullopt;
    }
    return OutputSample { size, std::move(*crop), false };
}

ComparisonSampler::ComparisonSampler(
    const Image& oriented, const Image& encoded, ComparisonSamples samples)
    : m_samples(samples)
    , m_orientedSize(oriented.size())
    , m_encodedSize(encoded.size())
{
    if (const auto sample = encodedPart()) {
        m_source = copied(oriented, centredRect(m_orientedSize, sample->size()));
        m_encoded = copied(encoded, *sample);
    }
}

std::optional<Rect> ComparisonSampler::encodedPart() const
{
    if (m_samples == ComparisonSamples::leaveOut) {
        return std::nullopt;
    }
    // The written picture has the encoded one's size; the sample is no larger than either.
    return centredRect(m_encodedSize, smaller(smaller(m_orientedSize, m_encodedSize), largest));
}

std::optional<ComparisonSampler::OutputSample> ComparisonSampler::outputSample(
    const QUrl& url, ReadBack readBack, const ConversionEnvironment& environment) const
{
    if (m_written && readBack == ReadBack::sampleOnly) {
        return OutputSample { m_encodedSize, m_written, false };
    }
    return OutputSample::read(url, readBack, m_orientedSize, environment);
}

std::optional<Image> ComparisonSampler::sourceCrop(Size sample) const
{
    if (!m_source) {
        return std::nullopt;
    }
    // In a file that came out smaller than the picture that was encoded the part is smaller, and
    // around the same middle.
    const Rect whole = centredRect(m_orientedSize, m_source->size());
    const Rect wanted = centredRect(m_orientedSize, sample);
    const Rect part { wanted.x - whole.x, wanted.y - whole.y, wanted.width, wanted.height };
    if (!contains(m_source->size(), part)) {
        return std::nullopt;
    }
    return m_source->cropped(part);
}

ComparisonSampler::Comparison ComparisonSampler::compare(const QUrl& sourceURL,
    const QUrl& outputURL, ReadBack readBack, const ConversionEnvironment& environment) const
{
    Comparison comparison;
    if (m_samples == ComparisonSamples::leaveOut && readBack == ReadBack::sampleOnly) {
        return comparison;
    }
    auto output = outputSample(outputURL, readBack, environment);
    comparison.isReadBack = output && output->isReadBack && output->size == m_encodedSize;
    if (m_samples == ComparisonSamples::leaveOut) {
        return comparison;
    }
    if (!output) {
        output = OutputSample { m_encodedSize, m_encoded, false };
    }
    if (!output->crop) {
        return comparison;
    }
    const auto source = sourceCrop(output->crop->size());
    if (!source) {
        return comparison;
    }
    const auto sourceSample
        = ImageOptimizer::writePreviewSample(*source, environment.temporaryFolder);
    if (!sourceSample) {
        return comparison;
    }
    const auto outputSample
        = ImageOptimizer::writePreviewSample(*output->crop, environment.temporaryFolder);
    if (!outputSample) {
        return comparison;
    }
    comparison.preview = ComparisonPreview {
        *sourceSample,
        *outputSample,
        platform::lastPathComponent(sourceURL),
        platform::lastPathComponent(outputURL),
        sizeF(m_orientedSize),
        sizeF(output->size),
        sizeF(output->crop->size()),
    };
    return comparison;
}

} // namespace vellumine
