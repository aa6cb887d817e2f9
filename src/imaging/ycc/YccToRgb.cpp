#include "imaging/ycc/YccToRgb.h"

#include "imaging/OpaquePixel.h"
#include "imaging/VectorClones.h"
#include "imaging/ycc/FixedPoint.h"

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <span>
#include <vector>

namespace vellumine::imaging::ycc {

namespace {

/// Bits behind the point of the factors.
constexpr int bits = 16;
constexpr int half = 1 << (bits - 1);

constexpr std::uint8_t clamped(int value)
{
    return static_cast<std::uint8_t>(std::clamp(value, 0, 255));
}

struct Rgb {
    std::uint8_t red;
    std::uint8_t green;
    std::uint8_t blue;

    constexpr Rgb(int y, int cb, int cr)
        : red(clamped(y + ((fixedPoint(1.402, bits) * cr + half) >> bits)))
        , green(clamped(y
              + ((-fixedPoint(0.34414, bits) * cb - fixedPoint(0.71414, bits) * cr + half)
                  >> bits)))
        , blue(clamped(y + ((fixedPoint(1.772, bits) * cb + half) >> bits)))
    {
    }
};

VELLUMINE_VECTOR_CLONES
void convertToRgb(const std::uint8_t* __restrict y, const std::uint8_t* __restrict cb,
    const std::uint8_t* __restrict cr, std::uint8_t* __restrict to, int count)
{
    for (std::ptrdiff_t x = 0; x < count; ++x) {
        const Rgb rgb(y[x], cb[x] - 128, cr[x] - 128);
        to[3 * x] = rgb.red;
        to[3 * x + 1] = rgb.green;
        to[3 * x + 2] = rgb.blue;
    }
}

VELLUMINE_VECTOR_CLONES
void convertToRgba(const std::uint8_t* __restrict y, const std::uint8_t* __restrict cb,
    const std::uint8_t* __restrict cr, std::uint8_t* __restrict to, int count)
{
    for (std::ptrdiff_t x = 0; x < count; ++x) {
        const Rgb rgb(y[x], cb[x] - 128, cr[x] - 128);
        storeOpaque(to + 4 * x, rgb.red, rgb.green, rgb.blue);
    }
}

/// Three parts of the near row and one of the far one, four times as large as a sample.
VELLUMINE_VECTOR_CLONES
void blend(const std::uint8_t* __restrict near, const std::uint8_t* __restrict far,
    std::uint16_t* __restrict sums, int count)
{
    for (std::ptrdiff_t x = 0; x < count; ++x) {
        sums[x] = static_cast<std::uint16_t>(3 * near[x] + far[x]);
    }
}

VELLUMINE_VECTOR_CLONES
void quarter(
    const std::uint16_t* __restrict sums, int bias, std::uint8_t* __restrict samples, int count)
{
    for (std::ptrdiff_t x = 0; x < count; ++x) {
        samples[x] = static_cast<std::uint8_t>((sums[x] + bias) >> 2);
    }
}

/// Two pixels from every sum, three parts of it and one of its neighbour on that side. The biases
/// take turns, so that rounding shifts nothing in the mean. `sums` must have a neighbour on either
/// side.
VELLUMINE_VECTOR_CLONES
void spread(const std::uint16_t* __restrict sums, int leftBias, int rightBias, int shift,
    std::uint8_t* __restrict samples, int count)
{
    for (std::ptrdiff_t x = 0; x < count; ++x) {
        const int three = 3 * sums[x];
        samples[2 * x] = static_cast<std::uint8_t>((three + sums[x - 1] + leftBias) >> shift);
        samples[2 * x + 1] = static_cast<std::uint8_t>((three + sums[x + 1] + rightBias) >> shift);
    }
}

/// Gives rows of one plane of colour a sample for every pixel.
class ColorRows {
public:
    ColorRows(const YccPlanes& planes, int plane, Rect part)
        : m_planes(planes)
        , m_plane(plane)
        , m_subsampling(planes.subsampling())
        , m_left(part.x / m_subsampling.x)
        , m_count((part.x + part.width - 1) / m_subsampling.x - m_left + 1)
        , m_offset(part.x - m_left * m_subsampling.x)
        , m_sums(static_cast<std::size_t>(m_count) + 2)
        , m_samples(static_cast<std::size_t>(m_count) * static_cast<std::size_t>(m_subsampling.x))
    {
    }

    /// The colour of the part's pixels in row y of the picture. Valid until the next call.
    [[nodiscard]] const std::uint8_t* row(int y)
    {
        const int at = y / m_subsampling.y;
        if (m_subsampling == Subsampling { 1, 1 }) {
            return m_planes.row(m_plane, y) + m_left;
        }
        if (m_subsampling.y == 1) {
            gather(at, at);
            spread(inner(), 4, 8, 4, m_samples.data(), m_count);
        } else {
            const bool upper = y % 2 == 0;
            gather(at, upper ? at - 1 : at + 1);
            if (m_subsampling.x == 1) {
                quarter(inner(), upper ? 1 : 2, m_samples.data(), m_count);
            } else {
                spread(inner(), 8, 7, 4, m_samples.data(), m_count);
            }
        }
        return m_samples.data() + m_offset;
    }

private:
    [[nodiscard]] const std::uint16_t* inner() const { return m_sums.data() + 1; }

    /// Blends two rows with a neighbour on either side. Beyond the picture's edge its last samples
    /// go on.
    void gather(int nearRow, int farRow)
    {
        const Size size = m_planes.planeSize(m_plane);
        const std::uint8_t* const near = m_planes.row(m_plane, nearRow);
        const std::uint8_t* const far
            = m_planes.row(m_plane, std::clamp(farRow, 0, size.height - 1));
        blend(near + m_left, far + m_left, m_sums.data() + 1, m_count);
        const auto single
            = [near, far](int x) { return static_cast<std::uint16_t>(3 * near[x] + far[x]); };
        m_sums.front() = single(std::max(m_left - 1, 0));
        m_sums.back() = single(std::min(m_left + m_count, size.width - 1));
    }

    const YccPlanes& m_planes;
    int m_plane;
    Subsampling m_subsampling;
    int m_left; ///< the first sample that is needed
    int m_count;
    int m_offset; ///< of the part's first pixel in the first sample
    std::vector<std::uint16_t> m_sums;
    std::vector<std::uint8_t> m_samples;
};

/// Gives the columns of a part as opaque RGBA in other colours, row by row.
class RgbaRows {
public:
    RgbaRows(const YccPlanes& planes, const ColorTransform& transform, Rect part)
        : m_planes(planes)
        , m_transform(transform)
        , m_left(part.x)
        , m_width(part.width)
        , m_blueness(planes, 1, part)
        , m_redness(planes, 2, part)
        , m_rgb(transform.isIdentity() ? 0 : 3 * static_cast<std::size_t>(part.width))
    {
    }

    void write(int y, std::uint8_t* to)
    {
        const std::uint8_t* const brightness = m_planes.row(0, y) + m_left;
        const std::uint8_t* const blueness = m_blueness.row(y);
        const std::uint8_t* const redness = m_redness.row(y);
        convertToRgba(brightness, blueness, redness, to, m_width);
        if (!m_transform.isIdentity()) {
            convertToRgb(brightness, blueness, redness, m_rgb.data(), m_width);
            m_transform.apply(m_rgb.data(), to, m_width); // leaves alpha as it is
        }
    }

private:
    const YccPlanes& m_planes;
    const ColorTransform& m_transform;
    int m_left;
    int m_width;
    ColorRows m_blueness;
    ColorRows m_redness;
    std::vector<std::uint8_t> m_rgb; ///< one row, where colours are converted
};

} // namespace

Result<PixelBuffer> toRgb(const YccPlanes& planes, Rect part)
{
    assert(contains(planes.size(), part));
    auto rgb = PixelBuffer::create(part.size(), { ColorModel::rgb, 8, AlphaInfo::none });
    if (!rgb) {
        return rgb;
    }
    ColorRows blueness(planes, 1, part);
    ColorRows redness(planes, 2, part);
    for (int y = 0; y < part.height; ++y) {
        convertToRgb(planes.row(0, part.y + y) + part.x, blueness.row(part.y + y),
            redness.row(part.y + y), rgb->row8(y), part.width);
    }
    return rgb;
}

Result<PixelBuffer> toRgba(const YccPlanes& planes, const ColorTransform& transform, Rect part)
{
    assert(contains(planes.size(), part));
    auto rgba = PixelBuffer::create(part.size(), rgba8Premultiplied);
    if (!rgba) {
        return rgba;
    }
    RgbaRows rows(planes, transform, part);
    for (int y = 0; y < part.height; ++y) {
        rows.write(part.y + y, rgba->row8(y));
    }
    return rgba;
}

void toRgba(const YccPlanes& planes, const ColorTransform& transform, UprightRows& target)
{
    const auto [width, height] = planes.size();
    assert(target.storedSize() == planes.size());
    RgbaRows rows(planes, transform, { 0, 0, width, height });
    for (int y = 0; y < height; ++y) {
        const PlanarRow row { y, 0, width, {} };
        rows.write(y, target.begin(row));
        target.end(row);
    }
}

} // namespace vellumine::imaging::ycc
