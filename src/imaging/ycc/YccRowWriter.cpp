#include "imaging/ycc/YccRowWriter.h"

#include "imaging/OpaquePixel.h"
#include "imaging/VectorClones.h"
#include "imaging/ycc/FixedPoint.h"

#include <algorithm>
#include <cstddef>

namespace vellumine::imaging::ycc {

namespace {

/// Bits behind the point of the factors, and of what they give: samples have eight of their own.
constexpr int factorBits = 14;
constexpr int resultBits = factorBits + 8;
constexpr int half = 1 << (resultBits - 1);
constexpr int middle = 128 << 8;

constexpr std::uint8_t rounded(int value)
{
    return static_cast<std::uint8_t>(std::clamp((value + half) >> resultBits, 0, 255));
}

/// The formula of ITU-T T.871. The largest sum, of blue, is 65535 * 2^14 + 32767 * 1.772 * 2^14:
/// below 2^31.
struct Rgb {
    int red;
    int green;
    int blue;

    constexpr Rgb(int y, int cb, int cr)
        : red((y << factorBits) + fixedPoint(1.402, factorBits) * (cr - middle))
        , green((y << factorBits) - fixedPoint(0.344136, factorBits) * (cb - middle)
              - fixedPoint(0.714136, factorBits) * (cr - middle))
        , blue((y << factorBits) + fixedPoint(1.772, factorBits) * (cb - middle))
    {
    }
};

VELLUMINE_VECTOR_CLONES
void toRgb(const std::uint16_t* __restrict y, const std::uint16_t* __restrict cb,
    const std::uint16_t* __restrict cr, std::uint8_t* __restrict to, int count)
{
    for (std::ptrdiff_t x = 0; x < count; ++x) {
        const Rgb rgb(y[x], cb[x], cr[x]);
        to[3 * x] = rounded(rgb.red);
        to[3 * x + 1] = rounded(rgb.green);
        to[3 * x + 2] = rounded(rgb.blue);
    }
}

VELLUMINE_VECTOR_CLONES
void toRgba(const std::uint16_t* __restrict y, const std::uint16_t* __restrict cb,
    const std::uint16_t* __restrict cr, std::uint8_t* __restrict to, int count)
{
    for (std::ptrdiff_t x = 0; x < count; ++x) {
        const Rgb rgb(y[x], cb[x], cr[x]);
        storeOpaque(to + 4 * x, rounded(rgb.red), rounded(rgb.green), rounded(rgb.blue));
    }
}

} // namespace

YccRowWriter::YccRowWriter(UprightRows& target, const ColorTransform& transform)
    : m_target(target)
    , m_transform(transform)
    , m_rgb(transform.isIdentity() ? 0 : static_cast<std::size_t>(target.storedSize().width) * 3)
{
}

void YccRowWriter::write(const PlanarRow& row)
{
    const std::uint16_t* const y = row.planes[0] + row.left;
    const std::uint16_t* const cb = row.planes[1] + row.left;
    const std::uint16_t* const cr = row.planes[2] + row.left;
    const int count = row.right - row.left;
    std::uint8_t* const to = m_target.begin(row);
    if (m_transform.isIdentity()) {
        toRgba(y, cb, cr, to, count);
    } else {
        toRgb(y, cb, cr, m_rgb.data(), count);
        m_transform.apply(m_rgb.data(), to, count);
        for (std::ptrdiff_t x = 0; x < count; ++x) {
            to[4 * x + 3] = 255;
        }
    }
    m_target.end(row);
}

} // namespace vellumine::imaging::ycc
