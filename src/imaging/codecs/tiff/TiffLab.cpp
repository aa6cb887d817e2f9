#include "imaging/codecs/tiff/TiffLab.h"

#include <cassert>
#include <lcms2.h>
#include <memory>
#include <vector>

namespace vellumine::imaging::tiff {

namespace {

struct ProfileCloser {
    void operator()(void* profile) const { cmsCloseProfile(profile); }
};
struct TransformDeleter {
    void operator()(void* transform) const { cmsDeleteTransform(transform); }
};
using Profile = std::unique_ptr<void, ProfileCloser>;
using Transform = std::unique_ptr<void, TransformDeleter>;

/// Code times scale plus offset is the value.
struct Range {
    double scale;
    double offset;

    static Range between(double minimum, double maximum, double maximumCode)
    {
        return { (maximum - minimum) / maximumCode, minimum };
    }
};

struct Encoding {
    Range lightness;
    Range a;
    Range b;
    unsigned flip; ///< turns signed codes into codes counted from the minimum
};

Encoding encodingFor(Colour colour, int bits)
{
    const double largest = bits == 8 ? 255.0 : 65535.0;
    const double perUnit = bits == 8 ? 1.0 : 1.0 / 256.0; // of a* and b*
    switch (colour) {
    case Colour::cieLab:
        return { Range::between(0, 100, largest), { perUnit, -128 }, { perUnit, -128 },
            1U << static_cast<unsigned>(bits - 1) };
    case Colour::ituLab: // the fax standard's defaults, ITU-T T.42
        return { Range::between(0, 100, largest), Range::between(-85, 85, largest),
            Range::between(-75, 125, largest), 0 };
    default: // ICC: in 16 bits, lightness 100 is 0xFF00
        return { Range::between(0, 100, bits == 8 ? 255.0 : 65280.0), { perUnit, -128 },
            { perUnit, -128 }, 0 };
    }
}

template <typename Sample>
void convertRow(Sample* row, int width, int channels, const Encoding& encoding,
    cmsHTRANSFORM transform, std::vector<cmsCIELab>& lab, std::vector<Sample>& rgb)
{
    const auto value = [](Range range, unsigned code) { return range.scale * code + range.offset; };
    for (int x = 0; x < width; ++x) {
        const Sample* const at = row + static_cast<std::ptrdiff_t>(x) * channels;
        lab[static_cast<std::size_t>(x)] = { value(encoding.lightness, at[0]),
            value(encoding.a, at[1] ^ encoding.flip), value(encoding.b, at[2] ^ encoding.flip) };
    }
    cmsDoTransform(transform, lab.data(), rgb.data(), static_cast<cmsUInt32Number>(width));
    for (int x = 0; x < width; ++x) {
        Sample* const at = row + static_cast<std::ptrdiff_t>(x) * channels;
        const Sample* const from = rgb.data() + static_cast<std::ptrdiff_t>(x) * 3;
        at[0] = from[0];
        at[1] = from[1];
        at[2] = from[2];
    }
}

} // namespace

Result<void> convertLabToSRgb(PixelBuffer& pixels, Colour encoding)
{
    const PixelLayout layout = pixels.layout();
    assert(layout.model == ColorModel::rgb);
    const bool is8 = layout.bitsPerComponent == 8;
    const Profile lab(cmsCreateLab4Profile(nullptr));
    const Profile srgb(cmsCreate_sRGBProfile());
    const Transform transform(lab && srgb
            ? cmsCreateTransform(lab.get(), TYPE_Lab_DBL, srgb.get(),
                is8 ? TYPE_RGB_8 : TYPE_RGB_16, INTENT_RELATIVE_COLORIMETRIC, cmsFLAGS_NOCACHE)
            : nullptr);
    if (!transform) {
        return failure(Error::Kind::outOfMemory, "no memory for a colour transform");
    }
    const Encoding ranges = encodingFor(encoding, layout.bitsPerComponent);
    const int channels = layout.channels();
    const auto width = static_cast<std::size_t>(pixels.width());
    std::vector<cmsCIELab> labRow(width);
    std::vector<std::uint8_t> rgb8(is8 ? width * 3 : 0);
    std::vector<std::uint16_t> rgb16(is8 ? 0 : width * 3);
    for (int y = 0; y < pixels.height(); ++y) {
        if (is8) {
            convertRow(
                pixels.row8(y), pixels.width(), channels, ranges, transform.get(), labRow, rgb8);
        } else {
            convertRow(
                pixels.row16(y), pixels.width(), channels, ranges, transform.get(), labRow, rgb16);
        }
    }
    return {};
}

} // namespace vellumine::imaging::tiff
