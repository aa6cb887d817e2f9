#pragma once

#include "imaging/Error.h"
#include "imaging/Geometry.h"
#include "imaging/PixelMemory.h"
#include "imaging/resample/LanczosTaps.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace vellumine::imaging {

/// Resamples a plane of 8-bit samples, or two that are alike, while their rows come, from the top
/// down: only as many of them are held as a row of the result is made of. Rows are made narrow
/// first, sixteen at a time, each in one lane of a vector.
class PlaneScaler {
public:
    /// Rows that are taken at a time: of one plane, or half of them of each.
    static constexpr int bandRows = 16;
    /// Where the rows start. Those after the plane's last one count for nothing, but must be there;
    /// up to 15 samples behind the end of a row are read.
    using Band = std::array<const std::uint8_t*, bandRows>;

    struct Extent {
        double width;
        double height;
    };

    /// `extent` is how much of the plane the result covers, in samples.
    PlaneScaler(int planes, Size plane, Extent extent, Size target);

    [[nodiscard]] const LanczosTaps& verticalTaps() const { return m_vertical; }

    /// To be called before the first rows come: at least the `rows` latest ones will be held. Fails
    /// with OutOfMemory.
    Result<void> hold(int rows);

    /// The next rows of the one plane, or of the first and then of the second.
    void take(const Band& band);

    /// Makes a row whose taps are held. The samples are 256 times as large as the plane's; `to` has
    /// room for a multiple of 32.
    void make(int plane, int row, std::uint16_t* to);

private:
    [[nodiscard]] float* heldRow(int plane, int row) const;

    LanczosTaps m_horizontal;
    LanczosTaps m_vertical;
    int m_planes;
    int m_width; ///< of the result
    std::size_t m_rowFloats; ///< of a row that is held
    int m_heldRows = 0;
    int m_taken = 0; ///< rows of each plane
    PixelMemory m_held;
    std::vector<float> m_lanes; ///< some columns of a band, its rows side by side
    std::vector<const float*> m_tapRows;
    std::vector<float> m_tapWeights;
};

} // namespace vellumine::imaging
