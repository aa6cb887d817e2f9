#pragma once

#include "imaging/colour/ColorSpace.h"

#include <string>

namespace vellumine::imaging {

struct ColorSpace::Data {
    enum class Kind { SRgb, DeviceRgb, Grey, DeviceCmyk, Icc };

    Kind kind = Kind::SRgb;
    ColorModel model = ColorModel::Rgb;
    ByteBuffer icc; ///< what is written into files
    std::string name;
    bool isSRgbEquivalent = false;
};

} // namespace vellumine::imaging
