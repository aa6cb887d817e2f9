#pragma once

#include "imaging/Error.h"
#include "imaging/Geometry.h"
#include "imaging/resample/PlaneScaler.h"
#include "imaging/resample/Resampler.h"
#include "imaging/ycc/YccBand.h"
#include "imaging/ycc/YccPlanes.h"

#include <array>
#include <cstdint>
#include <vector>

namespace vellumine::imaging::ycc {

/// Resamples a photograph in planes while its rows come (Lanczos with three lobes), each plane at
/// the resolution that it has.
class YccScaler {
public:
    /// `write` takes rows of Y, Cb and Cr from the top down, whose samples are 256 times as large
    /// as the source's. Fails with OutOfMemory.
    static Result<YccScaler> create(
        Size source, Subsampling subsampling, Size target, RowHandler write);

    /// Takes the next rows, and hands on what they complete. After the band with the last row the
    /// whole picture is handed on.
    void take(const YccBand& band);

private:
    YccScaler(Size source, Subsampling subsampling, Size target, RowHandler write);
    [[nodiscard]] Result<void> holdWhatIsNeeded();
    [[nodiscard]] int colorRowsInBand() const { return YccBand::rows / m_subsampling.y; }
    [[nodiscard]] int lastBandOf(int row) const;
    void make(int row);

    Subsampling m_subsampling;
    Size m_target;
    RowHandler m_write;
    PlaneScaler m_brightness;
    PlaneScaler m_colors;
    std::array<std::vector<std::uint16_t>, 3> m_row;
    int m_bandsTaken = 0;
    int m_rowsMade = 0;
};

} // namespace vellumine::imaging::ycc
