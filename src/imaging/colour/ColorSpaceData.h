#pragma once

#include "imaging/colour/ColorSpace.h"

#include <cstdint>
#include <string>

namespace vellumine::imaging {

struct ColorSpace::Data {
    enum class Kind : std::uint8_t { sRgb, deviceRgb, grey, deviceCmyk, icc };

    Kind kind = Kind::sRgb;
    ColorModel model = ColorModel::rgb;
    ByteBuffer icc; ///< what is written into files
    std::string name;
    bool isSRgbEquivalent = false;
};

} // namespace vellumine::imaging
