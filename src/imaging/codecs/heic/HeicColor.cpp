#include "imaging/codecs/heic/HeicColor.h"

#include "imaging/codecs/UntaggedColor.h"

#include <optional>

namespace vellumine::imaging::heic {

namespace {

constexpr Chromaticity whiteD65 { 0.3127, 0.3290 };
constexpr Chromaticity whiteC { 0.310, 0.316 };

/// ITU-T H.273, table 2. None for "unspecified" and for codes without a meaning.
std::optional<Primaries> primariesFor(heif_color_primaries code)
{
    switch (static_cast<int>(code)) {
    case 1: // BT.709, sRGB
        return Primaries { whiteD65, { 0.640, 0.330 }, { 0.300, 0.600 }, { 0.150, 0.060 } };
    case 4: // BT.470 System M
        return Primaries { whiteC, { 0.67, 0.33 }, { 0.21, 0.71 }, { 0.14, 0.08 } };
    case 5: // BT.470 System B and G, BT.601 with 625 lines
        return Primaries { whiteD65, { 0.64, 0.33 }, { 0.29, 0.60 }, { 0.15, 0.06 } };
    case 6: // BT.601 with 525 lines
    case 7: // SMPTE ST 240
        return Primaries { whiteD65, { 0.630, 0.340 }, { 0.310, 0.595 }, { 0.155, 0.070 } };
    case 8: // generic film
        return Primaries { whiteC, { 0.681, 0.319 }, { 0.243, 0.692 }, { 0.145, 0.049 } };
    case 9: // BT.2020
        return Primaries { whiteD65, { 0.708, 0.292 }, { 0.170, 0.797 }, { 0.131, 0.046 } };
    case 11: // DCI-P3
        return Primaries { { 0.314, 0.351 }, { 0.680, 0.320 }, { 0.265, 0.690 }, { 0.150, 0.060 } };
    case 12: // Display P3
        return Primaries { whiteD65, { 0.680, 0.320 }, { 0.265, 0.690 }, { 0.150, 0.060 } };
    case 22: // EBU Tech 3213
        return Primaries { whiteD65, { 0.630, 0.340 }, { 0.295, 0.605 }, { 0.155, 0.077 } };
    default:
        return std::nullopt;
    }
}

/// ITU-T H.273, table 3. sRGB for "unspecified" and for curves that no picture uses.
TransferCurve curveFor(heif_transfer_characteristics code)
{
    switch (static_cast<int>(code)) {
    case 1:
    case 6:
    case 14:
    case 15:
        return { TransferCurve::Kind::rec709, 1.0 };
    case 4:
        return { TransferCurve::Kind::gamma, 2.2 };
    case 5:
        return { TransferCurve::Kind::gamma, 2.8 };
    case 8:
        return { TransferCurve::Kind::gamma, 1.0 };
    case 16:
        return { TransferCurve::Kind::pq, 1.0 };
    case 18:
        return { TransferCurve::Kind::hlg, 1.0 };
    default:
        return { TransferCurve::Kind::sRgb, 1.0 };
    }
}

std::optional<ColorSpace> embeddedProfile(const heif_image_handle* picture)
{
    const std::size_t size = heif_image_handle_get_raw_color_profile_size(picture);
    if (size == 0) {
        return std::nullopt;
    }
    ByteBuffer profile(size);
    if (!isOk(heif_image_handle_get_raw_color_profile(picture, profile.data()))) {
        return std::nullopt;
    }
    auto space = ColorSpace::fromIcc(profile, ColorModel::rgb);
    return space ? std::optional(*std::move(space)) : std::nullopt;
}

std::optional<ColorSpace> codedDescription(const heif_image_handle* picture)
{
    heif_color_profile_nclx* found = nullptr;
    const heif_error error = heif_image_handle_get_nclx_color_profile(picture, &found);
    const HeifPointer<heif_color_profile_nclx> description(found);
    if (!isOk(error) || !description) {
        return std::nullopt;
    }
    const auto bt709 = primariesFor(heif_color_primaries_ITU_R_BT_709_5);
    const auto primaries = primariesFor(description->color_primaries);
    auto space = ColorSpace::fromPrimaries(
        primaries.value_or(*bt709), curveFor(description->transfer_characteristics));
    return space ? std::optional(*std::move(space)) : std::nullopt;
}

} // namespace

ColorSpace colorSpaceOf(const heif_image_handle* picture, ByteSpan exif)
{
    if (auto space = embeddedProfile(picture)) {
        return *std::move(space);
    }
    if (auto space = codedDescription(picture)) {
        return *std::move(space);
    }
    return untaggedColorSpace(ColorModel::rgb, exif);
}

HeifPointer<heif_color_profile_nclx> sRgbDescription()
{
    HeifPointer<heif_color_profile_nclx> description(heif_nclx_color_profile_alloc());
    if (description) {
        description->color_primaries = heif_color_primaries_ITU_R_BT_709_5;
        description->transfer_characteristics = heif_transfer_characteristic_IEC_61966_2_1;
        description->matrix_coefficients = heif_matrix_coefficients_ITU_R_BT_601_6;
        description->full_range_flag = 1;
    }
    return description;
}

} // namespace vellumine::imaging::heic
