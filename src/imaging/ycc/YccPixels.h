#pragma once

#include "imaging/DeferredPixels.h"
#include "imaging/colour/ColorSpace.h"
#include "imaging/ycc/PlaneSource.h"
#include "imaging/ycc/YccPlanes.h"

#include <memory>

namespace vellumine::imaging::ycc {

/// A photograph in planes: drawn small, it is resampled there, with its colour at the resolution
/// that the file has, and becomes RGB when it is small.
class YccPixels final : public DeferredPixels {
public:
    /// `colorSpace` is what the RGB numbers mean.
    YccPixels(YccPlanes planes, ColorSpace colorSpace);

    [[nodiscard]] Result<Image> rows(Rect part) const override;
    [[nodiscard]] Result<Image> drawn(const Drawing& drawing) const override;
    [[nodiscard]] std::shared_ptr<const PlaneSource> planes() const override;

private:
    YccPlanes m_planes;
    ColorSpace m_colorSpace;
};

} // namespace vellumine::imaging::ycc
