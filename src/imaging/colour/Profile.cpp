#include "imaging/colour/Profile.h"

#include <array>
#include <cmath>
#include <cstring>

namespace vellumine::imaging::colour {

namespace {

struct CurveDeleter {
    void operator()(cmsToneCurve* curve) const { cmsFreeToneCurve(curve); }
};
using Curve = std::unique_ptr<cmsToneCurve, CurveDeleter>;

constexpr std::size_t tableLength = 4096;

/// Reference white of HDR material in cd/m2, ITU-R BT.2408: what becomes 1.0.
constexpr double referenceWhite = 203.0;

/// SMPTE ST 2084: a sample to linear light with reference white at 1.
double pqToLinear(double sample)
{
    constexpr double m1 = 2610.0 / 16384.0;
    constexpr double m2 = 2523.0 / 4096.0 * 128.0;
    constexpr double c1 = 3424.0 / 4096.0;
    constexpr double c2 = 2413.0 / 4096.0 * 32.0;
    constexpr double c3 = 2392.0 / 4096.0 * 32.0;
    const double power = std::pow(sample, 1.0 / m2);
    const double light = std::pow(std::max(power - c1, 0.0) / (c2 - c3 * power), 1.0 / m1);
    return light * 10000.0 / referenceWhite;
}

/// ARIB STD-B67 on a display of 1000 cd/m2 with the system gamma of 1.2, channel by channel.
double hlgToLinear(double sample)
{
    constexpr double a = 0.17883277;
    constexpr double b = 1.0 - 4.0 * a;
    const double c = 0.5 - a * std::log(4.0 * a);
    const double scene
        = sample <= 0.5 ? sample * sample / 3.0 : (std::exp((sample - c) / a) + b) / 12.0;
    return std::pow(scene, 1.2) * 1000.0 / referenceWhite;
}

template <typename Function> Curve tabulated(cmsContext context, Function toLinear)
{
    std::array<cmsUInt16Number, tableLength> table {};
    for (std::size_t i = 0; i < table.size(); ++i) {
        const double linear = toLinear(static_cast<double>(i) / (tableLength - 1));
        table.at(i) = static_cast<cmsUInt16Number>(std::lround(std::min(linear, 1.0) * 65535.0));
    }
    return Curve(cmsBuildTabulatedToneCurve16(context, tableLength, table.data()));
}

/// ICC parametric type 3 (lcms type 4): Y = (aX + b)^g for X >= d, else cX.
Curve parametric(cmsContext context, std::array<double, 5> parameters)
{
    return Curve(cmsBuildParametricToneCurve(context, 4, parameters.data()));
}

Curve makeCurve(cmsContext context, TransferCurve curve)
{
    switch (curve.kind) {
    case TransferCurve::Kind::sRgb: // IEC 61966-2-1
        return parametric(context, { 2.4, 1.0 / 1.055, 0.055 / 1.055, 1.0 / 12.92, 0.04045 });
    case TransferCurve::Kind::rec709: // ITU-R BT.709, the inverse of its camera curve
        return parametric(context, { 1.0 / 0.45, 1.0 / 1.099, 0.099 / 1.099, 1.0 / 4.5, 0.081 });
    case TransferCurve::Kind::gamma:
        if (!std::isfinite(curve.gamma) || curve.gamma < 0.1 || curve.gamma > 10.0) {
            return nullptr;
        }
        return Curve(cmsBuildGamma(context, curve.gamma));
    case TransferCurve::Kind::pq:
        return tabulated(context, pqToLinear);
    case TransferCurve::Kind::hlg:
        return tabulated(context, hlgToLinear);
    }
    return nullptr;
}

bool usable(const Chromaticity& c)
{
    return std::isfinite(c.x) && std::isfinite(c.y) && c.x >= 0.0 && c.y > 1e-4 && c.x <= 1.0
        && c.y <= 1.0;
}

/// Three primaries on one line span no colours.
bool spansColors(const Primaries& p)
{
    const double area = (p.green.x - p.red.x) * (p.blue.y - p.red.y)
        - (p.blue.x - p.red.x) * (p.green.y - p.red.y);
    return std::abs(area) > 1e-4;
}

void describe(cmsContext context, cmsHPROFILE profile, const char* text)
{
    cmsMLU* const name = cmsMLUalloc(context, 1);
    if (name != nullptr) {
        cmsMLUsetASCII(name, "en", "US", text);
        cmsWriteTag(profile, cmsSigProfileDescriptionTag, name);
        cmsMLUfree(name);
    }
}

} // namespace

Context makeContext()
{
    Context context(cmsCreateContext(nullptr, nullptr));
    cmsSetLogErrorHandlerTHR(context.get(),
        [](cmsContext /*context*/, cmsUInt32Number /*code*/, const char* /*text*/) {});
    return context;
}

Profile openProfile(cmsContext context, ByteSpan icc)
{
    if (icc.size() < 128 || icc.size() > (std::size_t { 64 } << 20U)) {
        return nullptr;
    }
    return Profile(
        cmsOpenProfileFromMemTHR(context, icc.data(), static_cast<cmsUInt32Number>(icc.size())));
}

Profile makeSRgbProfile(cmsContext context)
{
    constexpr Primaries srgb { { 0.3127, 0.3290 }, { 0.64, 0.33 }, { 0.30, 0.60 }, { 0.15, 0.06 } };
    Profile profile
        = makeProfile(context, srgb, { TransferCurve::Kind::sRgb, 0.0 }, ColorModel::rgb);
    if (profile) {
        describe(context, profile.get(), "sRGB");
    }
    return profile;
}

Profile makeAdobeRgbProfile(cmsContext context)
{
    constexpr Primaries adobe { { 0.3127, 0.3290 }, { 0.64, 0.33 }, { 0.21, 0.71 },
        { 0.15, 0.06 } };
    constexpr double gamma = 563.0 / 256.0;
    Profile profile
        = makeProfile(context, adobe, { TransferCurve::Kind::gamma, gamma }, ColorModel::rgb);
    if (profile) {
        describe(context, profile.get(), "Compatible with Adobe RGB (1998)");
    }
    return profile;
}

Profile makeGreyProfile(cmsContext context)
{
    const Curve curve = makeCurve(context, { TransferCurve::Kind::sRgb, 0.0 });
    return curve ? Profile(cmsCreateGrayProfileTHR(context, cmsD50_xyY(), curve.get())) : nullptr;
}

Profile makeProfile(
    cmsContext context, const Primaries& primaries, TransferCurve curve, ColorModel model)
{
    const Curve tone = makeCurve(context, curve);
    if (!tone || model == ColorModel::cmyk) {
        return nullptr;
    }
    if (model == ColorModel::grey) {
        return Profile(cmsCreateGrayProfileTHR(context, cmsD50_xyY(), tone.get()));
    }
    if (!usable(primaries.white) || !usable(primaries.red) || !usable(primaries.green)
        || !usable(primaries.blue) || !spansColors(primaries)) {
        return nullptr;
    }
    const cmsCIExyY white { primaries.white.x, primaries.white.y, 1.0 };
    const cmsCIExyYTRIPLE triple { { primaries.red.x, primaries.red.y, 1.0 },
        { primaries.green.x, primaries.green.y, 1.0 },
        { primaries.blue.x, primaries.blue.y, 1.0 } };
    const std::array<cmsToneCurve*, 3> curves { tone.get(), tone.get(), tone.get() };
    return Profile(cmsCreateRGBProfileTHR(context, &white, &triple, curves.data()));
}

ByteBuffer serialised(cmsHPROFILE profile)
{
    cmsUInt32Number size = 0;
    if (!cmsSaveProfileToMem(profile, nullptr, &size)) {
        return {};
    }
    ByteBuffer bytes(size);
    if (!cmsSaveProfileToMem(profile, bytes.data(), &size)) {
        return {};
    }
    // The library stamps the present moment into the header (bytes 24 to 35, six big-endian
    // numbers: year, month, day, hour, minute, second). A fixed one keeps outputs reproducible.
    constexpr std::array<unsigned char, 12> stamp { 0x07, 0xE8, 0, 1, 0, 1, 0, 0, 0, 0, 0, 0 };
    std::memcpy(bytes.data() + 24, stamp.data(), stamp.size());
    return bytes;
}

cmsUInt32Number renderingIntent(cmsHPROFILE profile)
{
    const bool hasCurves
        = cmsIsMatrixShaper(profile) != 0 || cmsIsTag(profile, cmsSigGrayTRCTag) != 0;
    return hasCurves ? INTENT_RELATIVE_COLORIMETRIC : INTENT_PERCEPTUAL;
}

std::optional<ColorModel> modelOf(cmsHPROFILE profile)
{
    switch (cmsGetColorSpace(profile)) {
    case cmsSigGrayData:
        return ColorModel::grey;
    case cmsSigRgbData:
        return ColorModel::rgb;
    case cmsSigCmykData:
        return ColorModel::cmyk;
    default:
        return std::nullopt;
    }
}

} // namespace vellumine::imaging::colour
