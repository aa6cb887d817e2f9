#include "imaging/codecs/png/PngTrials.h"

#include "imaging/codecs/png/PngCompression.h"
#include "imaging/codecs/png/PngFilters.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>

namespace vellumine::imaging::png {

namespace {

constexpr std::array allStrategies { FilterStrategy::none, FilterStrategy::sub, FilterStrategy::up,
    FilterStrategy::average, FilterStrategy::paeth, FilterStrategy::smallestSum,
    FilterStrategy::leastEntropy, FilterStrategy::fewestPairs };

/// Bytes of rows that are enough to leave half of the ways out.
constexpr std::size_t glanceBytes = std::size_t { 1 } << 17U;
/// Bytes of rows that are enough to choose by.
constexpr std::size_t sampleBytes = std::size_t { 1 } << 19U;
/// Bands of rows that a sample is taken from, spread evenly; fewer where it has fewer rows.
constexpr int sampleBands = 12;

/// Up to here the search for the cheapest code is worth its time, a tenth of a second a megabyte
/// for a photograph.
constexpr std::size_t searchBytes = std::size_t { 32 } << 20U;
/// Up to here the longest search is.
constexpr std::size_t smallBytes = std::size_t { 128 } << 10U;
constexpr std::size_t tinyBytes = std::size_t { 2 } << 10U;

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
    const int bands = std::clamp(rows, 2, sampleBands);
    const int bandRows = std::max(1, rows / bands);
    for (int band = 0; band < bands; ++band) {
        const int first
            = static_cast<int>(static_cast<std::int64_t>(height - bandRows) * band / (bands - 1));
        appendFiltered(bytes, form, { first, first + bandRows }, strategy);
    }
    return bytes;
}

/// How many rows are at most so many bytes in every form.
int rowsIn(std::size_t bytes, std::span<const PackedPicture> forms)
{
    const auto longest = std::ranges::max_element(forms, {}, &PackedPicture::rowBytes);
    return static_cast<int>(bytes / std::max<std::size_t>(longest->rowBytes, 1));
}

/// Sorts them by what so many rows compress to: the same ones of every form, so that what they give
/// can be compared.
void sortByEstimate(
    std::vector<Candidate>& candidates, std::span<const PackedPicture> forms, int rows)
{
    Deflater deflater(CompressionLevel::balanced);
    for (Candidate& candidate : candidates) {
        const PackedPicture& form = forms[candidate.form];
        const auto sample = filteredSample(form, candidate.strategy, rows);
        candidate.estimate = deflater.deflated(sample).size() + overhead(form);
    }
    std::ranges::stable_sort(candidates, {}, &Candidate::estimate);
}

/// What is promising, the best first: of each form at least four.
std::vector<Candidate> candidates(std::span<const PackedPicture> forms)
{
    const int glanceRows = rowsIn(glanceBytes, forms);
    const bool paysToGlance = 2 * glanceRows < forms.front().size.height;
    std::vector<Candidate> found;
    for (std::size_t form = 0; form < forms.size(); ++form) {
        std::vector<Candidate> ofForm;
        ofForm.reserve(allStrategies.size());
        for (const FilterStrategy strategy : allStrategies) {
            ofForm.push_back({ form, strategy, 0 });
        }
        if (paysToGlance) {
            sortByEstimate(ofForm, forms, glanceRows);
            ofForm.resize(ofForm.size() / 2);
        }
        found.insert(found.end(), ofForm.begin(), ofForm.end());
    }
    sortByEstimate(found, forms, rowsIn(sampleBytes, forms));
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
        m_candidate = candidate;
        m_bytes = filtered(m_forms[candidate.form], candidate.strategy);
    }

    /// The length of the stream that the level gives.
    std::size_t compress(CompressionLevel level)
    {
        return consider(m_deflaters.try_emplace(level, level).first->second.deflated(m_bytes));
    }
    std::size_t compressByZlib() { return consider(deflatedByZlib(m_bytes)); }

    /// What the smallest outcome so far is of.
    [[nodiscard]] const Candidate& leader() const { return m_leader; }
    [[nodiscard]] Compressed winner() && { return { m_leader.form, std::move(*m_best) }; }

private:
    std::size_t consider(ByteBuffer stream)
    {
        const std::size_t length = stream.size();
        const std::size_t size = length + overhead(m_forms[m_candidate.form]);
        if (!m_best || size < m_bestSize) {
            m_best = std::move(stream);
            m_leader = m_candidate;
            m_bestSize = size;
        }
        return length;
    }

    std::span<const PackedPicture> m_forms;
    Candidate m_candidate {};
    ByteBuffer m_bytes; ///< what is compressed
    std::map<CompressionLevel, Deflater> m_deflaters; ///< those that were needed
    Candidate m_leader {};
    std::optional<ByteBuffer> m_best;
    std::size_t m_bestSize = 0; ///< with what else the form needs
};

/// Both ways that take the longest match that they find.
void tryLongestMatches(Contest& contest)
{
    contest.compress(CompressionLevel::deep);
    contest.compressByZlib();
}

/// The best candidate of another form than the very best one, where there is one; else the second.
const Candidate& alternative(std::span<const Candidate> trials)
{
    const auto found = std::ranges::find_if(
        trials, [&](const Candidate& trial) { return trial.form != trials[0].form; });
    return found != trials.end() ? *found : trials[1];
}

/// The longest matches of two, and the longest search for the one that comes out ahead.
void trySmall(Contest& contest, std::span<const Candidate> trials)
{
    contest.enter(trials[0]);
    tryLongestMatches(contest);
    contest.enter(alternative(trials));
    tryLongestMatches(contest);
    contest.enter(contest.leader());
    contest.compress(CompressionLevel::optimal);
}

/// Every way for each of the first ones.
void tryTiny(Contest& contest, std::span<const Candidate> trials)
{
    for (const Candidate& trial : trials.first(3)) {
        contest.enter(trial);
        tryLongestMatches(contest);
        contest.compress(CompressionLevel::optimal);
    }
}

/// The search for the cheapest code, piece by piece, is what makes most pictures smallest. Where
/// there is much repetition it would have to go on for long, and now and then the plain longest
/// match comes out ahead.
void tryWhatPays(Contest& contest, std::span<const Candidate> trials, std::size_t rawBytes)
{
    contest.enter(trials[0]);
    const std::size_t searched = contest.compress(CompressionLevel::search);
    const bool repeatsItself = 4 * searched < rawBytes;
    const bool hardlySaysAnything = 30 * searched < rawBytes;
    if (hardlySaysAnything) {
        tryLongestMatches(contest);
        contest.enter(alternative(trials));
        tryLongestMatches(contest);
    } else if (repeatsItself && contest.compress(CompressionLevel::deep) < searched) {
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
    } else if (rawBytes > tinyBytes) {
        trySmall(contest, trials);
    } else {
        tryTiny(contest, trials);
    }
    return std::move(contest).winner();
}

ByteBuffer fastest(const PackedPicture& form)
{
    return quicklyDeflated(filtered(form, FilterStrategy::sub));
}

} // namespace vellumine::imaging::png
