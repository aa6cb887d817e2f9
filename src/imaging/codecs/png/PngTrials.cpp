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
constexpr std::size_t sampleBytes = std::size_t { 1 } << 19U;
/// Bands of rows that the sample is taken from, spread evenly.
constexpr int sampleBands = 12;

/// Up to here the search for the cheapest code is worth its time, a tenth of a second a megabyte
/// for a photograph.
constexpr std::size_t searchBytes = std::size_t { 32 } << 20U;
/// Up to here every way is tried.
constexpr std::size_t smallBytes = std::size_t { 128 } << 10U;
constexpr std::size_t tinyBytes = std::size_t { 8 } << 10U;

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

/// The smallest outcome of one form and filter after the other.
class Contest {
public:
    explicit Contest(std::span<const PackedPicture> forms)
        : m_forms(forms)
    {
    }

    void enter(const Candidate& candidate)
    {
        m_form = candidate.form;
        m_bytes = filtered(m_forms[m_form], candidate.strategy);
    }

    /// The length of the stream that the level gives.
    std::size_t compress(CompressionLevel level) { return consider(deflated(m_bytes, level)); }
    std::size_t compressByZlib() { return consider(deflatedByZlib(m_bytes)); }

    [[nodiscard]] Compressed winner() && { return std::move(*m_best); }

private:
    std::size_t consider(ByteBuffer stream)
    {
        const std::size_t length = stream.size();
        const std::size_t size = length + overhead(m_forms[m_form]);
        if (!m_best || size < m_bestSize) {
            m_best = Compressed { m_form, std::move(stream) };
            m_bestSize = size;
        }
        return length;
    }

    std::span<const PackedPicture> m_forms;
    std::size_t m_form = 0;
    ByteBuffer m_bytes; ///< what is compressed
    std::optional<Compressed> m_best;
    std::size_t m_bestSize = 0;
};

/// Every way, for each of the first ones.
void tryAll(Contest& contest, std::span<const Candidate> trials)
{
    for (const Candidate& trial : trials) {
        contest.enter(trial);
        contest.compress(CompressionLevel::deep);
        contest.compress(CompressionLevel::optimal);
        contest.compressByZlib();
    }
}

/// The search for the cheapest code, piece by piece, is what makes most pictures smallest. Where
/// there is much repetition it has to go on for long, and now and then the plain longest match
/// comes out ahead; that shows at a lower level.
void tryWhatPays(Contest& contest, std::span<const Candidate> trials, std::size_t rawBytes)
{
    contest.enter(trials[0]);
    const std::size_t searched = contest.compress(CompressionLevel::search);
    const bool repeatsItself = 4 * searched < rawBytes;
    const bool hardlySaysAnything = 30 * searched < rawBytes;
    if (hardlySaysAnything) {
        tryAll(contest, trials.first(2));
    } else if (repeatsItself && contest.compress(CompressionLevel::deep) < searched) {
        contest.compress(CompressionLevel::optimal);
        contest.compressByZlib();
    }
}

} // namespace

Compressed smallest(std::span<const PackedPicture> forms)
{
    const auto trials = candidates(forms);
    const std::size_t rawBytes = forms[trials.front().form].rows.size();
    Contest contest(forms);
    if (rawBytes > searchBytes) {
        contest.enter(trials.front());
        contest.compress(CompressionLevel::thorough);
    } else if (rawBytes > smallBytes) {
        tryWhatPays(contest, trials, rawBytes);
    } else {
        tryAll(contest, std::span(trials).first(rawBytes > tinyBytes ? 2 : 3));
    }
    return std::move(contest).winner();
}

ByteBuffer fastest(const PackedPicture& form)
{
    return quicklyDeflated(filtered(form, FilterStrategy::sub));
}

} // namespace vellumine::imaging::png
