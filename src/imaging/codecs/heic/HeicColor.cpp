#include "imaging/codecs/heic/HeicColor.h"

#include "imaging/codecs/UntaggedColor.h"
#include "imaging/colour/CodePoints.h"

#include <optional>

namespace vellumine::imaging::heic {

namespace {

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
    const auto primaries = colour::primariesOfCode(description->color_primaries);
    const auto curve = colour::curveOfCode(description->transfer_characteristics);
    if (!primaries && !curve) {
        return std::nullopt;
    }
    // One of the two alone is completed as sRGB.
    auto space = ColorSpace::fromPrimaries(
        primaries.value_or(colour::bt709Primaries), curve.value_or(TransferCurve {}));
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
