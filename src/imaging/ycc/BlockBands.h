#pragma once

#include "imaging/Error.h"
#include "imaging/Geometry.h"
#include "imaging/ycc/PlaneSource.h"
#include "imaging/ycc/YccPlanes.h"

#include <cstddef>
#include <memory>
#include <optional>

namespace vellumine::imaging::ycc {

/// A part of a picture in planes as an encoder of blocks takes it, band by band: a sample of colour
/// for two by two pixels, and whole blocks of 8 by 8 samples, where the last column and row are
/// repeated. Colour that the picture has finer is averaged.
class BlockBands {
public:
    static constexpr int rows = 16;

    /// The part lies inside the picture and begins at even numbers. Fails with OutOfMemory.
    static Result<BlockBands> create(std::shared_ptr<const PlaneSource> source, Rect part);

    [[nodiscard]] Size size() const { return m_part.size(); }

    /// The band that begins at a row of the part, a multiple of 16; good until the next is asked
    /// for. Fails with what the source says.
    [[nodiscard]] Result<const YccPlanes*> at(int row);

private:
    BlockBands(std::shared_ptr<const PlaneSource> source, Rect part, YccPlanes&& band,
        std::optional<YccPlanes>&& fine);
    [[nodiscard]] Result<void> readBrightness(int row);
    [[nodiscard]] Result<void> readColor(int plane, int row);

    std::shared_ptr<const PlaneSource> m_source;
    Rect m_part;
    YccPlanes m_band;
    std::optional<YccPlanes> m_fine; ///< a band as the picture has it, where its colour is finer
};

} // namespace vellumine::imaging::ycc
