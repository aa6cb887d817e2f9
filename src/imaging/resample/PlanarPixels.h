#pragma once

#include "imaging/Image.h"
#include "imaging/colour/ColorTransform.h"
#include "imaging/resample/Resampler.h"

#include <cstdint>
#include <vector>

namespace vellumine::imaging {

/// Takes rows of a picture apart into planes of 16-bit samples, colour first and alpha last, the
/// colour premultiplied.
class PlanarReader {
public:
    /// The picture must have colour; it is kept for as long as the reader.
    explicit PlanarReader(const Image& image);

    /// Colour channels, and one for alpha where the picture has it: 1 to 4. A CMYK picture's alpha
    /// is left out.
    [[nodiscard]] int planes() const { return m_colors + (m_alpha >= 0 ? 1 : 0); }
    [[nodiscard]] bool hasAlpha() const { return m_alpha >= 0; }

    void read(const PlanarRow& row) const;

private:
    template <typename Sample> void readSamples(const PlanarRow& row) const;

    const Image& m_image;
    int m_stride;
    int m_colors;
    int m_color = 0; ///< the first colour sample of a pixel
    int m_alpha = -1;
};

/// Puts rows of planes together again: undoes the premultiplication, converts the colour and
/// writes premultiplied RGBA.
class RgbaWriter {
public:
    /// `transform` takes interleaved samples of `colors` channels, `bitsPerComponent` deep.
    RgbaWriter(PixelBuffer& target, const ColorTransform& transform, int colors,
        int bitsPerComponent, bool hasAlpha);

    void write(const PlanarRow& row);

private:
    void writePremultiplied(const PlanarRow& row);
    template <typename Sample> void interleave(const PlanarRow& row, Sample* samples) const;

    PixelBuffer& m_target;
    const ColorTransform& m_transform;
    int m_colors;
    int m_bits;
    bool m_hasAlpha;
    std::vector<std::uint16_t> m_samples; ///< one row, as 8 or 16 bits
};

} // namespace vellumine::imaging
