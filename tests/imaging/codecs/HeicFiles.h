#pragma once

#include "imaging/Bytes.h"
#include "imaging/Image.h"

#include <libheif/heif.h>
#include <optional>

namespace vellumine::test {

/// A HEIC file of a kind that the product itself does not write.
struct HeicRecipe {
    int bits = 8; ///< 8, 10 or 12, taken from a 16-bit picture's highest bits
    heif_orientation orientation = heif_orientation_normal; ///< as boxes of the container
    std::optional<heif_color_profile_nclx> description {};
    imaging::ByteBuffer exif {};
    enum class Alpha { straight, premultiplied };
    Alpha alpha = Alpha::straight; ///< how alpha is declared, if there is any
    int quality = 95;
};

/// The file of an RGB picture, with alpha last or without. The samples go to the library as they
/// are.
[[nodiscard]] imaging::ByteBuffer heicFile(const imaging::Image& image, const HeicRecipe& recipe);

} // namespace vellumine::test
