#pragma once

#include "imaging/DeferredPixels.h"
#include "imaging/Image.h"
#include "imaging/PictureWish.h"
#include "imaging/colour/ColorTransform.h"
#include "imaging/resample/UprightRows.h"
#include "imaging/ycc/YccPlanes.h"
#include "imaging/ycc/YccRowWriter.h"
#include "imaging/ycc/YccScaler.h"

#include <memory>
#include <optional>

namespace vellumine::imaging::ycc {

/// Draws a photograph while its rows are decoded, and keeps its middle as it is: the whole of it is
/// never in memory.
class PlannedDrawing {
public:
    /// Whether a drawing can be made row by row: smaller, and with the filter of high quality.
    [[nodiscard]] static bool isFor(const Drawing& drawing, Size stored);

    /// `middle` as in DrawingPlan. Fails with OutOfMemory, and with Unsupported for colours that
    /// cannot be converted.
    static Result<std::unique_ptr<PlannedDrawing>> create(Size stored, Subsampling subsampling,
        const ColorSpace& colorSpace, const Drawing& drawing, Size middle);

    PlannedDrawing(const PlannedDrawing&) = delete;
    PlannedDrawing& operator=(const PlannedDrawing&) = delete;
    ~PlannedDrawing() = default;

    /// Takes the rows that follow those before: YccBand::rows of them, at the top of planes as wide
    /// as the picture.
    void take(const YccPlanes& rows);

    /// What the picture's RGB numbers mean.
    [[nodiscard]] const ColorSpace& colorSpace() const { return m_colorSpace; }

    /// To be called after the last rows. Gives rows of the middle, and the drawing as it was
    /// planned; anything else fails with Unsupported.
    [[nodiscard]] std::shared_ptr<const DeferredPixels> finish() &&;

private:
    PlannedDrawing(Size stored, ColorSpace colorSpace, Drawing drawing, ColorTransform&& transform,
        PixelBuffer&& target, YccPlanes&& kept, Rect keptPart);
    [[nodiscard]] Result<void> begin(Subsampling subsampling);
    void keep(const YccPlanes& rows);

    Size m_stored;
    ColorSpace m_colorSpace;
    Drawing m_drawing;
    ColorTransform m_transform;
    PixelBuffer m_target;
    std::optional<UprightRows> m_rows;
    std::optional<YccRowWriter> m_writer;
    std::optional<YccScaler> m_scaler;
    YccPlanes m_kept;
    Rect m_keptPart; ///< of the stored picture
    int m_rowsTaken = 0;
};

} // namespace vellumine::imaging::ycc
