#include "imaging/codecs/UntaggedColor.h"

#include "imaging/metadata/Metadata.h"

namespace vellumine::imaging {

ColorSpace untaggedColorSpace(ColorModel model, ByteSpan exif)
{
    switch (model) {
    case ColorModel::grey:
        return ColorSpace::grey();
    case ColorModel::rgb:
        return metadata::saysAdobeRgb(exif) ? ColorSpace::adobeRgb() : ColorSpace::sRgb();
    case ColorModel::cmyk:
        break;
    }
    return ColorSpace::deviceCmyk();
}

} // namespace vellumine::imaging
