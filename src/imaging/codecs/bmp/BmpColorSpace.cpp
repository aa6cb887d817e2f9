#include "imaging/codecs/bmp/BmpColorSpace.h"

#include "imaging/codecs/LittleEndian.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace vellumine::imaging::bmp {

namespace {

constexpr std::uint32_t calibratedRgb = 0;
constexpr std::uint32_t profileEmbedded = 0x4D424544; // 'MBED'

constexpr Chromaticity whiteD65 { 0.3127, 0.3290 };

struct Endpoint {
    double x = 0;
    double y = 0;
    double z = 0;

    [[nodiscard]] double sum() const { return x + y + z; }
    [[nodiscard]] Chromaticity chromaticity() const { return { x / sum(), y / sum() }; }
};

Endpoint readEndpoint(ByteSpan info, std::size_t at)
{
    // 2.30 fixed point
    const auto coordinate = [&](std::size_t offset) {
        return littleEndian32(info, at + offset) / static_cast<double>(1U << 30U);
    };
    return { coordinate(0), coordinate(4), coordinate(8) };
}

Result<ColorSpace> calibrated(ByteSpan info)
{
    const std::array endpoints { readEndpoint(info, 60), readEndpoint(info, 72),
        readEndpoint(info, 84) };
    if (std::ranges::any_of(endpoints, [](const Endpoint& e) { return e.sum() <= 0; })) {
        return failure(Error::Kind::malformed, "endpoints without light");
    }
    // The field is defined as the XYZ of full red, green and blue, whose sum is the white point.
    // Most writers put chromaticities there (x + y + z is 1), which leave the white point open.
    const bool areChromaticities = std::ranges::all_of(
        endpoints, [](const Endpoint& e) { return std::abs(e.sum() - 1.0) < 0.01; });
    const Endpoint white { endpoints[0].x + endpoints[1].x + endpoints[2].x,
        endpoints[0].y + endpoints[1].y + endpoints[2].y,
        endpoints[0].z + endpoints[1].z + endpoints[2].z };
    const Primaries primaries { areChromaticities ? whiteD65 : white.chromaticity(),
        endpoints[0].chromaticity(), endpoints[1].chromaticity(), endpoints[2].chromaticity() };
    // 16.16 fixed point, for red, green and blue; a file with three different ones was never seen.
    const double gamma = littleEndian32(info, 100) / 65536.0;
    return ColorSpace::fromPrimaries(primaries, { TransferCurve::Kind::gamma, gamma });
}

Result<ColorSpace> stated(ByteSpan info, const Header& header)
{
    if (header.infoBytes < v4Header) {
        return ColorSpace::sRgb();
    }
    const std::uint32_t kind = littleEndian32(info, 56);
    if (kind == calibratedRgb) {
        return calibrated(info);
    }
    if (kind == profileEmbedded && header.infoBytes >= v5Header) {
        const std::size_t offset = littleEndian32(info, 112);
        const std::size_t length = littleEndian32(info, 116);
        if (offset > info.size() || length > info.size() - offset) {
            return failure(Error::Kind::truncated, "the file ends inside its profile");
        }
        return ColorSpace::fromIcc(info.subspan(offset, length), ColorModel::rgb);
    }
    return ColorSpace::sRgb();
}

} // namespace

ColorSpace colorSpaceOf(ByteSpan file, const Header& header)
{
    return stated(file.subspan(header.infoOffset), header).value_or(ColorSpace::sRgb());
}

} // namespace vellumine::imaging::bmp
