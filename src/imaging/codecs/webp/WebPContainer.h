#pragma once

#include "imaging/Bytes.h"
#include "imaging/Error.h"
#include "imaging/Geometry.h"
#include "imaging/PixelLayout.h"
#include "imaging/colour/ColorSpace.h"
#include "imaging/metadata/MetadataBlocks.h"

#include <memory>

struct WebPDemuxer;

namespace vellumine::imaging::webp {

/// The first frame of a file, not decoded. A still picture has one that covers the canvas.
struct Frame {
    ByteSpan bitstream;
    Rect place; ///< on the canvas
    bool hasAlpha = false;
};

/// The chunks of a WebP file.
class Container {
public:
    /// Fails with Truncated when the file is shorter than it says, else with Malformed. What
    /// stands behind the file's end is ignored. `file` must outlive the container.
    [[nodiscard]] static Result<Container> open(ByteSpan file);

    [[nodiscard]] Size canvas() const { return m_canvas; }
    [[nodiscard]] const Frame& firstFrame() const { return m_frame; }
    [[nodiscard]] bool isAnimation() const { return m_isAnimation; }
    /// The layout of an animation's first frame on its canvas. A still picture's bitstream says
    /// more about its own.
    [[nodiscard]] PixelLayout animationLayout() const;

    /// The embedded profile, else what the EXIF block says, else sRGB.
    [[nodiscard]] ColorSpace colorSpace() const;
    [[nodiscard]] MetadataBlocks metadata() const;

private:
    struct Delete {
        void operator()(WebPDemuxer* demuxer) const;
    };

    [[nodiscard]] ByteSpan exif() const;
    [[nodiscard]] ByteSpan chunk(const char (&fourCharacters)[5]) const;

    std::unique_ptr<WebPDemuxer, Delete> m_demuxer;
    Size m_canvas;
    Frame m_frame;
    bool m_isAnimation = false;
    bool m_declaresAlpha = false;
};

} // namespace vellumine::imaging::webp
