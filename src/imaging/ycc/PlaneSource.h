#pragma once

#include "imaging/Error.h"
#include "imaging/Geometry.h"
#include "imaging/ycc/YccPlanes.h"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace vellumine::imaging::ycc {

/// The planes of a picture wherever they are kept, of which parts are copied. Safe for several
/// threads.
class PlaneSource {
public:
    PlaneSource() = default;
    virtual ~PlaneSource() = default;
    PlaneSource(const PlaneSource&) = delete;
    PlaneSource& operator=(const PlaneSource&) = delete;

    /// Of the picture, in pixels.
    [[nodiscard]] virtual Size size() const = 0;
    [[nodiscard]] virtual Subsampling subsampling() const = 0;
    /// Copies a part of plane 0, 1 or 2 (Y, Cb, Cr), which lies inside it and is measured in its
    /// samples, to rows that begin so many bytes from each other.
    [[nodiscard]] virtual Result<void> copy(
        int plane, Rect part, std::uint8_t* to, std::size_t rowBytes) const = 0;
    /// The planes themselves where they are in this process, else null.
    [[nodiscard]] virtual const YccPlanes* here() const { return nullptr; }
};

/// A source of planes in this process; they stay shared.
[[nodiscard]] std::shared_ptr<const PlaneSource> planesHere(YccPlanes planes);

} // namespace vellumine::imaging::ycc
