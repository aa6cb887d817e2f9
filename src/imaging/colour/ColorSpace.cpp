#include "imaging/colour/ColorSpace.h"

namespace vellumine::imaging {

struct ColorSpace::Data {
    ColorModel model = ColorModel::Rgb;
    int kind = 0;
    ByteBuffer icc;
};

ColorSpace::ColorSpace(std::shared_ptr<const Data> data)
    : m_data(std::move(data))
{
}
ColorSpace ColorSpace::sRgb()
{
    return ColorSpace(std::make_shared<Data>(Data { ColorModel::Rgb, 0, {} }));
}
ColorSpace ColorSpace::deviceRgb()
{
    return ColorSpace(std::make_shared<Data>(Data { ColorModel::Rgb, 1, {} }));
}
ColorSpace ColorSpace::grey()
{
    return ColorSpace(std::make_shared<Data>(Data { ColorModel::Grey, 2, {} }));
}
ColorSpace ColorSpace::deviceCmyk()
{
    return ColorSpace(std::make_shared<Data>(Data { ColorModel::Cmyk, 3, {} }));
}
Result<ColorSpace> ColorSpace::fromIcc(ByteSpan profile, ColorModel model)
{
    return ColorSpace(
        std::make_shared<Data>(Data { model, 4, ByteBuffer(profile.begin(), profile.end()) }));
}
Result<ColorSpace> ColorSpace::fromPrimaries(
    const Primaries& /*p*/, TransferCurve /*c*/, ColorModel model)
{
    return ColorSpace(std::make_shared<Data>(Data { model, 5, {} }));
}
ColorModel ColorSpace::model() const
{
    return m_data->model;
}
ByteSpan ColorSpace::iccProfile() const
{
    return m_data->icc;
}
std::string ColorSpace::profileName() const
{
    return {};
}
bool ColorSpace::isSRgbEquivalent() const
{
    return true;
}
bool operator==(const ColorSpace& a, const ColorSpace& b)
{
    return a.m_data->kind == b.m_data->kind && a.m_data->icc == b.m_data->icc;
}

} // namespace vellumine::imaging
