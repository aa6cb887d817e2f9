#pragma once

#include "imaging/colour/ColorSpace.h"

#include <optional>

/// Colours by the code points of ITU-T H.273, which HEIC's descriptions ("nclx") and PNG's ("cICP")
/// hold.
namespace vellumine::imaging::colour {

/// Those of sRGB as well; code 1.
inline constexpr Primaries bt709Primaries { { 0.3127, 0.3290 }, { 0.640, 0.330 }, { 0.300, 0.600 },
    { 0.150, 0.060 } };

/// Table 2, "ColourPrimaries". None for "unspecified", for CIE XYZ and for codes without a meaning.
[[nodiscard]] std::optional<Primaries> primariesOfCode(int code);

/// Table 3, "TransferCharacteristics". None for "unspecified", for codes without a meaning and for
/// curves that no picture uses.
[[nodiscard]] std::optional<TransferCurve> curveOfCode(int code);

} // namespace vellumine::imaging::colour
