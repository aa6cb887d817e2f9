#include "imaging/PictureWish.h"

namespace vellumine::imaging {

ColorSpace colorSpaceOf(BitmapColors colors, const ColorSpace& own)
{
    switch (colors) {
    case BitmapColors::sRgb:
        return ColorSpace::sRgb();
    case BitmapColors::deviceRgb:
        return ColorSpace::deviceRgb();
    case BitmapColors::own:
        break;
    }
    return own;
}

Drawing DrawingPlan::drawing(Orientation orientation, const ColorSpace& own) const
{
    return { swapsSides(orientation) ? turnedSize : size, colorSpaceOf(colors, own), quality,
        orientation };
}

} // namespace vellumine::imaging
