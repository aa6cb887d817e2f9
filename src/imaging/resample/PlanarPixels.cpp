#include "imaging/resample/PlanarPixels.h"

#include "imaging/OpaquePixel.h"
#include "imaging/VectorClones.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cstddef>

namespace vellumine::imaging {

namespace {

constexpr std::uint32_t maximum = 65535;

constexpr std::uint16_t to16(std::uint8_t sample)
{
    return static_cast<std::uint16_t>(sample * 257U);
}

constexpr std::uint16_t to16(std::uint16_t sample)
{
    return sample;
}

/// To eight bits: sample / 257, rounded to nearest, without a division.
constexpr std::uint8_t to8(std::uint32_t sample)
{
    return static_cast<std::uint8_t>((sample * 255U + 32895U) >> 16U);
}

constexpr bool roundsEverySampleToNearest()
{
    for (std::uint32_t sample = 0; sample <= maximum; ++sample) {
        if (to8(sample) != (sample + 128U) / 257U) {
            return false;
        }
    }
    return true;
}
static_assert(roundsEverySampleToNearest());

template <typename Sample> constexpr Sample narrowed(std::uint32_t sample)
{
    if constexpr (sizeof(Sample) == 1) {
        return to8(sample);
    } else {
        return static_cast<Sample>(sample);
    }
}

/// sample * alpha / 65535, rounded to nearest, without a division.
constexpr std::uint32_t multiplied(std::uint32_t sample, std::uint32_t alpha)
{
    const std::uint32_t product = sample * alpha + 32768U;
    return (product + (product >> 16U)) >> 16U;
}

/// Colour above alpha is what a filter's overshoot leaves; there is none such.
constexpr std::uint32_t divided(std::uint32_t sample, std::uint32_t alpha)
{
    return alpha == 0 ? 0U : std::min(maximum, (sample * maximum + alpha / 2) / alpha);
}

/// The path of every photograph, plain enough for the vectoriser.
VELLUMINE_VECTOR_CLONES
void splitRgb(const std::uint8_t* __restrict from, std::uint16_t* __restrict red,
    std::uint16_t* __restrict green, std::uint16_t* __restrict blue, int count)
{
    for (std::ptrdiff_t x = 0; x < count; ++x) {
        red[x] = to16(from[3 * x]);
        green[x] = to16(from[3 * x + 1]);
        blue[x] = to16(from[3 * x + 2]);
    }
}

VELLUMINE_VECTOR_CLONES
void splitRgb(const std::uint16_t* __restrict from, std::uint16_t* __restrict red,
    std::uint16_t* __restrict green, std::uint16_t* __restrict blue, int count)
{
    for (std::ptrdiff_t x = 0; x < count; ++x) {
        red[x] = from[3 * x];
        green[x] = from[3 * x + 1];
        blue[x] = from[3 * x + 2];
    }
}

template <typename Sample>
[[gnu::always_inline]] inline void splitFour(const Sample* __restrict from,
    std::uint16_t* __restrict red, std::uint16_t* __restrict green, std::uint16_t* __restrict blue,
    std::uint16_t* __restrict alpha, int count)
{
    for (std::ptrdiff_t x = 0; x < count; ++x) {
        red[x] = to16(from[4 * x]);
        green[x] = to16(from[4 * x + 1]);
        blue[x] = to16(from[4 * x + 2]);
        alpha[x] = to16(from[4 * x + 3]);
    }
}

VELLUMINE_VECTOR_CLONES
void splitRgba(const std::uint8_t* from, const std::array<std::uint16_t*, 4>& to, int count)
{
    splitFour(from, to[0], to[1], to[2], to[3], count);
}

VELLUMINE_VECTOR_CLONES
void splitRgba(const std::uint16_t* from, const std::array<std::uint16_t*, 4>& to, int count)
{
    splitFour(from, to[0], to[1], to[2], to[3], count);
}

VELLUMINE_VECTOR_CLONES
void multiply(std::uint16_t* __restrict samples, const std::uint16_t* __restrict alpha, int count)
{
    for (std::ptrdiff_t x = 0; x < count; ++x) {
        samples[x] = static_cast<std::uint16_t>(multiplied(samples[x], alpha[x]));
    }
}

/// And back. Colour above alpha is what a filter's overshoot leaves.
VELLUMINE_VECTOR_CLONES
void joinRgba(const std::uint16_t* __restrict red, const std::uint16_t* __restrict green,
    const std::uint16_t* __restrict blue, const std::uint16_t* __restrict alpha,
    std::uint8_t* __restrict to, int count)
{
    for (std::ptrdiff_t x = 0; x < count; ++x) {
        const std::uint32_t most = alpha[x];
        to[4 * x] = to8(std::min<std::uint32_t>(red[x], most));
        to[4 * x + 1] = to8(std::min<std::uint32_t>(green[x], most));
        to[4 * x + 2] = to8(std::min<std::uint32_t>(blue[x], most));
        to[4 * x + 3] = to8(most);
    }
}

/// The same, opaque.
VELLUMINE_VECTOR_CLONES
void joinOpaque(const std::uint16_t* __restrict red, const std::uint16_t* __restrict green,
    const std::uint16_t* __restrict blue, std::uint8_t* __restrict to, int count)
{
    for (std::ptrdiff_t x = 0; x < count; ++x) {
        storeOpaque(to + 4 * x, to8(red[x]), to8(green[x]), to8(blue[x]));
    }
}

/// Back to three samples a pixel, for a colour transform.
VELLUMINE_VECTOR_CLONES
void joinRgb(const std::uint16_t* __restrict red, const std::uint16_t* __restrict green,
    const std::uint16_t* __restrict blue, std::uint8_t* __restrict to, int count)
{
    for (std::ptrdiff_t x = 0; x < count; ++x) {
        to[3 * x] = to8(red[x]);
        to[3 * x + 1] = to8(green[x]);
        to[3 * x + 2] = to8(blue[x]);
    }
}

} // namespace

PlanarReader::PlanarReader(const Image& image)
    : m_image(image)
    , m_stride(image.layout().channels())
    , m_colors(image.layout().colorChannels())
{
    const AlphaInfo alpha = image.layout().alpha;
    const bool first = alpha == AlphaInfo::first || alpha == AlphaInfo::premultipliedFirst
        || alpha == AlphaInfo::noneSkipFirst;
    m_color = first ? 1 : 0;
    if (imaging::hasAlpha(alpha) && image.layout().model != ColorModel::cmyk) {
        m_alpha = first ? 0 : m_colors;
    }
}

template <typename Sample> void PlanarReader::readSamples(const PlanarRow& row) const
{
    const int count = row.right - row.left;
    const auto* from = reinterpret_cast<const Sample*>(m_image.row(row.y).data())
        + static_cast<std::ptrdiff_t>(row.left) * m_stride;
    std::array<std::uint16_t*, 4> to {};
    for (int c = 0; c < planes(); ++c) {
        to.at(static_cast<std::size_t>(c)) = row.planes.at(static_cast<std::size_t>(c)) + row.left;
    }
    if (m_alpha < 0 && m_stride == 3) {
        splitRgb(from, to[0], to[1], to[2], count);
        return;
    }
    const bool premultiply = m_alpha >= 0 && !isPremultiplied(m_image.layout().alpha);
    if (m_alpha == 3) {
        splitRgba(from, to, count);
        for (std::size_t c = 0; premultiply && c < 3; ++c) {
            multiply(to.at(c), to[3], count);
        }
        return;
    }
    for (int x = 0; x < count; ++x, from += m_stride) {
        const std::uint32_t alpha = m_alpha >= 0 ? to16(from[m_alpha]) : maximum;
        for (int c = 0; c < m_colors; ++c) {
            const std::uint32_t value = to16(from[m_color + c]);
            to.at(static_cast<std::size_t>(c))[x]
                = static_cast<std::uint16_t>(premultiply ? multiplied(value, alpha) : value);
        }
        if (m_alpha >= 0) {
            to.at(static_cast<std::size_t>(m_colors))[x] = static_cast<std::uint16_t>(alpha);
        }
    }
}

void PlanarReader::read(const PlanarRow& row) const
{
    if (m_image.layout().bitsPerComponent == 16) {
        readSamples<std::uint16_t>(row);
    } else {
        readSamples<std::uint8_t>(row);
    }
}

RgbaWriter::RgbaWriter(PixelBuffer& target, const ColorTransform& transform, int colors,
    int bitsPerComponent, bool hasAlpha)
    : m_target(target)
    , m_transform(transform)
    , m_colors(colors)
    , m_bits(bitsPerComponent)
    , m_hasAlpha(hasAlpha)
    , m_samples(static_cast<std::size_t>(target.width()) * static_cast<std::size_t>(colors))
{
    assert(target.layout() == rgba8Premultiplied);
}

template <typename Sample> void RgbaWriter::interleave(const PlanarRow& row, Sample* samples) const
{
    if constexpr (sizeof(Sample) == 1) {
        if (!m_hasAlpha && m_colors == 3) {
            joinRgb(row.planes[0] + row.left, row.planes[1] + row.left, row.planes[2] + row.left,
                samples, row.right - row.left);
            return;
        }
    }
    const std::uint16_t* const alpha
        = row.planes.at(static_cast<std::size_t>(m_hasAlpha ? m_colors : 0));
    for (int c = 0; c < m_colors; ++c) {
        const std::uint16_t* const from = row.planes.at(static_cast<std::size_t>(c));
        Sample* to = samples + c;
        for (int x = row.left; x < row.right; ++x, to += m_colors) {
            *to = narrowed<Sample>(m_hasAlpha ? divided(from[x], alpha[x]) : from[x]);
        }
    }
}

void RgbaWriter::writePremultiplied(const PlanarRow& row)
{
    std::uint8_t* to = m_target.row8(row.y) + static_cast<std::ptrdiff_t>(row.left) * 4;
    if (!m_hasAlpha) {
        joinOpaque(row.planes[0] + row.left, row.planes[1] + row.left, row.planes[2] + row.left, to,
            row.right - row.left);
        return;
    }
    joinRgba(row.planes[0] + row.left, row.planes[1] + row.left, row.planes[2] + row.left,
        row.planes[3] + row.left, to, row.right - row.left);
}

void RgbaWriter::write(const PlanarRow& row)
{
    if (m_transform.isIdentity()) {
        writePremultiplied(row);
        return;
    }
    if (m_bits == 16) {
        interleave(row, m_samples.data());
    } else {
        interleave(row, reinterpret_cast<std::uint8_t*>(m_samples.data()));
    }
    std::uint8_t* to = m_target.row8(row.y) + static_cast<std::ptrdiff_t>(row.left) * 4;
    m_transform.apply(m_samples.data(), to, row.right - row.left);
    for (int x = row.left; x < row.right; ++x, to += 4) {
        const unsigned alpha = m_hasAlpha
            ? narrowed<std::uint8_t>(row.planes.at(static_cast<std::size_t>(m_colors))[x])
            : 255U;
        to[3] = static_cast<std::uint8_t>(alpha);
        if (alpha != 255U) {
            for (int c = 0; c < 3; ++c) {
                to[c] = static_cast<std::uint8_t>((to[c] * alpha + 127U) / 255U);
            }
        }
    }
}

} // namespace vellumine::imaging
