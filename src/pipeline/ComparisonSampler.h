#pragma once

#include "core/ProcessingResult.h"
#include "imaging/Image.h"
#include "pipeline/ConversionEnvironment.h"

#include <QUrl>

#include <optional>
#include <utility>

namespace vellumine {

/// Cuts the same part out of the middle of a source and of its output, for the two to be compared.
/// Keeps only what the samples need, so that the whole pictures can go.
class ComparisonSampler {
public:
    /// The largest sample.
    static constexpr imaging::Size largest { 720, 460 };

    enum class ReadBack {
        sampleOnly, ///< only the part that the sample shows, where the format allows
        whole, ///< all of it, as proof that the file can be read
    };

    struct Comparison {
        std::optional<ComparisonPreview> preview; ///< when both samples could be written
        /// Whether the whole file was read, and has the size that was encoded.
        bool isReadBack = false;
    };

    ComparisonSampler(
        const imaging::Image& oriented, const imaging::Image& encoded, ComparisonSamples samples);

    /// The part of the encoded picture that will be compared, if any.
    [[nodiscard]] std::optional<imaging::Rect> encodedPart() const;
    /// Tells what a reader of the file will find there, where the encoder knows that.
    void setWrittenPart(imaging::Image part) { m_written = std::move(part); }

    /// Reads the written file, unless the sample is known, and writes the samples, whether or not
    /// the conversion was to give up. What cannot be read is sampled from the picture that was
    /// encoded. The first sample stays where the second cannot be written. Without samples only a
    /// proof is read.
    [[nodiscard]] Comparison compare(const QUrl& sourceURL, const QUrl& outputURL,
        ReadBack readBack, const ConversionEnvironment& environment) const;

private:
    struct OutputSample;
    [[nodiscard]] std::optional<OutputSample> outputSample(
        const QUrl& url, ReadBack readBack, const ConversionEnvironment& environment) const;
    [[nodiscard]] std::optional<imaging::Image> sourceCrop(imaging::Size sample) const;

    ComparisonSamples m_samples;
    imaging::Size m_orientedSize;
    imaging::Size m_encodedSize;
    std::optional<imaging::Image> m_source; ///< the middle of the oriented picture
    std::optional<imaging::Image> m_encoded; ///< the middle of the encoded one
    std::optional<imaging::Image> m_written; ///< the same, after its encoding
};

} // namespace vellumine
