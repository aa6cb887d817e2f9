#include "imaging/colour/ColorSpace.h"

#include "imaging/colour/ColorSpaceData.h"
#include "imaging/colour/Profile.h"
#include "imaging/colour/RecentlyUsed.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace vellumine::imaging {

namespace {

using Kind = ColorSpace::Data::Kind;

std::string description(cmsHPROFILE profile)
{
    const cmsUInt32Number size
        = cmsGetProfileInfoASCII(profile, cmsInfoDescription, "en", "US", nullptr, 0);
    if (size == 0) {
        return {};
    }
    std::string text(size, '\0');
    cmsGetProfileInfoASCII(profile, cmsInfoDescription, "en", "US", text.data(), size);
    text.resize(std::char_traits<char>::length(text.c_str()));
    return text;
}

/// Whether the profile takes a grid of colours to within one 8-bit step of where sRGB has them: the
/// profiles in circulation that mean sRGB differ by up to three quarters of one, by the rounding of
/// their primaries. Fails with Unsupported when the profile cannot be a source of colours at all.
Result<bool> matchesSRgb(cmsContext context, cmsHPROFILE profile, ColorModel model)
{
    const colour::Profile srgb = colour::makeSRgbProfile(context);
    const cmsUInt32Number format = model == ColorModel::grey ? TYPE_GRAY_FLT
        : model == ColorModel::rgb                           ? TYPE_RGB_FLT
                                                             : TYPE_CMYK_FLT;
    const colour::Transform transform(cmsCreateTransformTHR(context, profile, format, srgb.get(),
        TYPE_RGB_FLT, colour::renderingIntent(profile), cmsFLAGS_NOOPTIMIZE | cmsFLAGS_NOCACHE));
    if (!transform) {
        return failure(Error::Kind::unsupported, "the profile cannot be a source of colours");
    }
    if (model != ColorModel::rgb) {
        return false;
    }
    constexpr std::size_t steps = 9;
    std::vector<float> grid;
    grid.reserve(steps * steps * steps * 3);
    for (std::size_t r = 0; r < steps; ++r) {
        for (std::size_t g = 0; g < steps; ++g) {
            for (std::size_t b = 0; b < steps; ++b) {
                for (const std::size_t value : { r, g, b }) {
                    grid.push_back(static_cast<float>(value) / (steps - 1));
                }
            }
        }
    }
    std::vector<float> converted(grid.size());
    cmsDoTransform(transform.get(), grid.data(), converted.data(),
        static_cast<cmsUInt32Number>(grid.size() / 3));
    return std::equal(grid.begin(), grid.end(), converted.begin(),
        [](float a, float b) { return std::abs(a - b) <= 1.0F / 255.0F; });
}

/// Larger profiles are not remembered; those of printing have half a megabyte to two.
constexpr std::size_t rememberedProfile = std::size_t { 2 } << 20U;

using KnownProfile = std::shared_ptr<const ColorSpace::Data>;

/// What the latest profiles were found to be. Most files of a batch have the same one.
colour::RecentlyUsed<KnownProfile>& knownProfiles()
{
    static colour::RecentlyUsed<KnownProfile> known(4);
    return known;
}

Result<KnownProfile> lookedAt(ByteSpan profile, ColorModel model)
{
    const colour::Context context = colour::makeContext();
    const colour::Profile opened = colour::openProfile(context.get(), profile);
    if (!opened) {
        return failure(Error::Kind::malformed, "the bytes are no ICC profile");
    }
    if (colour::modelOf(opened.get()) != model) {
        return failure(Error::Kind::unsupported, "the profile is for another kind of picture");
    }
    const cmsProfileClassSignature deviceClass = cmsGetDeviceClass(opened.get());
    if (deviceClass == cmsSigLinkClass || deviceClass == cmsSigNamedColorClass
        || deviceClass == cmsSigAbstractClass) {
        return failure(Error::Kind::unsupported, "the profile describes no device");
    }
    return matchesSRgb(context.get(), opened.get(), model).map([&](bool likeSRgb) {
        return std::make_shared<const ColorSpace::Data>(ColorSpace::Data { Kind::icc, model,
            ByteBuffer(profile.begin(), profile.end()), description(opened.get()), likeSRgb });
    });
}

} // namespace

ColorSpace::ColorSpace(std::shared_ptr<const Data> data)
    : m_data(std::move(data))
{
}

ColorSpace ColorSpace::sRgb()
{
    static const auto data = [] {
        const colour::Context context = colour::makeContext();
        const colour::Profile profile = colour::makeSRgbProfile(context.get());
        return std::make_shared<const Data>(Data { Kind::sRgb, ColorModel::rgb,
            colour::serialised(profile.get()), description(profile.get()), true });
    }();
    return ColorSpace(data);
}

ColorSpace ColorSpace::adobeRgb()
{
    static const auto data = [] {
        const colour::Context context = colour::makeContext();
        const colour::Profile profile = colour::makeAdobeRgbProfile(context.get());
        return std::make_shared<const Data>(Data { Kind::icc, ColorModel::rgb,
            colour::serialised(profile.get()), description(profile.get()), false });
    }();
    return ColorSpace(data);
}

ColorSpace ColorSpace::deviceRgb()
{
    static const auto data
        = std::make_shared<const Data>(Data { Kind::deviceRgb, ColorModel::rgb, {}, {}, true });
    return ColorSpace(data);
}

ColorSpace ColorSpace::grey()
{
    static const auto data
        = std::make_shared<const Data>(Data { Kind::grey, ColorModel::grey, {}, {}, false });
    return ColorSpace(data);
}

ColorSpace ColorSpace::deviceCmyk()
{
    static const auto data
        = std::make_shared<const Data>(Data { Kind::deviceCmyk, ColorModel::cmyk, {}, {}, false });
    return ColorSpace(data);
}

ColorSpace ColorSpace::fromData(Data data)
{
    switch (data.kind) {
    case Kind::sRgb:
        return sRgb();
    case Kind::deviceRgb:
        return deviceRgb();
    case Kind::grey:
        return grey();
    case Kind::deviceCmyk:
        return deviceCmyk();
    case Kind::icc:
        break;
    }
    return ColorSpace(std::make_shared<const Data>(std::move(data)));
}

Result<ColorSpace> ColorSpace::fromIcc(ByteSpan profile, ColorModel model)
{
    const auto known = knownProfiles().take([profile, model](const KnownProfile& each) {
        return each->model == model && std::ranges::equal(each->icc, profile);
    });
    return (known ? Result<KnownProfile>(*known) : lookedAt(profile, model))
        .map([](const KnownProfile& data) {
            if (data->icc.size() <= rememberedProfile) {
                knownProfiles().keep(data);
            }
            return ColorSpace(data);
        });
}

Result<ColorSpace> ColorSpace::fromPrimaries(
    const Primaries& primaries, TransferCurve curve, ColorModel model)
{
    const colour::Context context = colour::makeContext();
    const colour::Profile profile = colour::makeProfile(context.get(), primaries, curve, model);
    if (!profile) {
        return failure(Error::Kind::malformed, "the numbers describe no colours");
    }
    if (model == ColorModel::grey && curve.kind == TransferCurve::Kind::sRgb) {
        return grey();
    }
    auto space = fromIcc(colour::serialised(profile.get()), model);
    if (space && space->isSRgbEquivalent()) {
        return sRgb();
    }
    return space;
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
    return m_data->name;
}

bool ColorSpace::isSRgbEquivalent() const
{
    return m_data->isSRgbEquivalent;
}

bool operator==(const ColorSpace& a, const ColorSpace& b)
{
    return a.m_data == b.m_data
        || (a.m_data->kind == b.m_data->kind && a.m_data->model == b.m_data->model
            && a.m_data->icc == b.m_data->icc);
}

} // namespace vellumine::imaging
