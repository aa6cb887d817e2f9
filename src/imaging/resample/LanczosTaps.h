#pragma once

#include "imaging/Geometry.h"

#include <cstddef>
#include <vector>

namespace vellumine::imaging {

/// For each sample of a line that is resampled: which samples of the source it is made of, and
/// how much of each (Lanczos with three lobes; widened when the line shrinks, so that every sample
/// of the source counts). Beyond its ends the source is mirrored.
class LanczosTaps {
public:
    /// `extent` is how much of the source the target covers, in samples: it may end inside the last
    /// one.
    LanczosTaps(int source, double extent, int target);

    /// Samples of the source that each sample is made of.
    [[nodiscard]] int count() const { return m_count; }
    /// The first of them; they lie side by side, inside the source.
    [[nodiscard]] int first(int sample) const { return m_first[static_cast<std::size_t>(sample)]; }
    /// The one after the last.
    [[nodiscard]] int end(int sample) const { return first(sample) + m_count; }
    /// How much of each; the sum is 1.
    [[nodiscard]] const float* weights(int sample) const
    {
        return m_weights.data() + static_cast<std::ptrdiff_t>(sample) * m_count;
    }

private:
    int m_count;
    std::vector<int> m_first;
    std::vector<float> m_weights;
};

} // namespace vellumine::imaging
