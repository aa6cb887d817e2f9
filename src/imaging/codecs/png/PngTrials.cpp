#include "imaging/codecs/png/PngTrials.h"

#include "imaging/codecs/png/PngCompression.h"
#include "imaging/codecs/png/PngFilters.h"

#include <algorithm>
#include <array>
#include <optional>

namespace vellumine::imaging::png {

namespace {

constexpr std::array allStrategies { FilterStrategy::none, FilterStrategy::sub, FilterStrategy::up,
    FilterStrategy::average, FilterStrategy::paeth, FilterStrategy::smallestSum,
    FilterStrategy::leastEntropy, FilterStrategy::fewestPairs };

/// Bytes of rows that are enough to choose by.
constexpr std::size_t sampleBytes = std::size_t { 1 } << 20U;
/// Bands of rows that the sample is taken from, spread evenly.
constexpr int sampleBands = 12;

/// Up to here the last percent is worth its time, half a second a megabyte for a photograph.
constexpr std::size_t optimalBytes = std::size_t { 32 } << 20U;
constexpr std::size_t fewTrialsBytes = std::size_t { 128 } << 10U;

/// What compresses to how much, as far as the sample tells.
struct Candidate {
    std::size_t form;
    FilterStrategy strategy;
    std::size_t estimate;
};

std::size_t overhead(const PackedPicture& form)
{
    constexpr std::size_t chunk = 12;
    return (form.palette.empty() ? 0 : chunk + form.palette.size())
        + (form.transparency.empty() ? 0 : chunk + form.transparency.size());
}

ByteBuffer filtered(const PackedPicture& form, FilterStrategy strategy)
{
    ByteBuffer bytes;
    appendFiltered(bytes, form, { 0, form.size.height }, strategy);
    return bytes;
}

/// The filtered rows of the whole picture, or of bands of it that make up `rows`.
ByteBuffer filteredSample(const PackedPicture& form, FilterStrategy strategy, int rows)
{
    const int height = form.size.height;
    if (rows >= height) {
        return filtered(form, strategy);
    }
    ByteBuffer bytes;
    const int bandRows = std::max(1, rows / sampleBands);
    for (int band = 0; band < sampleBands; ++band) {
        const int first = static_cast<int>(
            static_cast<std::int64_t>(height - bandRows) * band / (sampleBands - 1));
        appendFiltered(bytes, form, { first, first + bandRows }, strategy);
    }
    return bytes;
}

std::vector<Candidate> candidates(std::span<const PackedPicture> forms)
{
    // The same rows of every form, so that what they give can be compared.
    std::size_t longestRow = 1;
    for (const PackedPicture& form : forms) {
        longestRow = std::max(longestRow, form.rowBytes);
    }
    const int rows = static_cast<int>(sampleBytes / longestRow);

    std::vector<Candidate> found;
    for (std::size_t form = 0; form < forms.size(); ++form) {
        for (const FilterStrategy strategy : allStrategies) {
            const auto sample = filteredSample(forms[form], strategy, rows);
            const auto size = deflated(sample, CompressionLevel::balanced).size();
            found.push_back({ form, strategy, size + overhead(forms[form]) });
        }
    }
    std::ranges::stable_sort(found, {}, &Candidate::estimate);
    return found;
}

/// What is done at last, by the bytes of the picture's rows.
struct FinalEffort {
    std::size_t finalists;
    std::vector<CompressionLevel> levels;
    bool triesZlib = false;
};

FinalEffort finalEffort(std::size_t rawBytes)
{
    if (rawBytes > optimalBytes) {
        return { 1, { CompressionLevel::thorough } };
    }
    if (rawBytes > sampleBytes) {
        return { 1, { CompressionLevel::optimal } };
    }
    // The highest level looks for the cheapest code piece by piece; now and then, with much
    // repetition, the plain longest match comes out ahead.
    return { rawBytes > fewTrialsBytes ? std::size_t { 2 } : 4,
        { CompressionLevel::deep, CompressionLevel::optimal }, true };
}

} // namespace

Compressed smallest(std::span<const PackedPicture> forms)
{
    auto trials = candidates(forms);
    const std::size_t rawBytes = forms[trials.front().form].rows.size();
    const FinalEffort effort = finalEffort(rawBytes);
    trials.resize(std::min(trials.size(), effort.finalists));

    std::optional<Compressed> best;
    std::size_t bestSize = 0;
    const auto consider = [&](std::size_t form, ByteBuffer stream) {
        const std::size_t size = stream.size() + overhead(forms[form]);
        if (!best || size < bestSize) {
            best = Compressed { form, std::move(stream) };
            bestSize = size;
        }
    };
    for (const Candidate& trial : trials) {
        const ByteBuffer bytes = filtered(forms[trial.form], trial.strategy);
        for (const CompressionLevel level : effort.levels) {
            consider(trial.form, deflated(bytes, level));
        }
        if (effort.triesZlib) {
            consider(trial.form, deflatedByZlib(bytes));
        }
    }
    return std::move(*best);
}

ByteBuffer fastest(const PackedPicture& form)
{
    return quicklyDeflated(filtered(form, FilterStrategy::sub));
}

} // namespace vellumine::imaging::png
