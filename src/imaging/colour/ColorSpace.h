#pragma once

#include "imaging/Bytes.h"
#include "imaging/Error.h"
#include "imaging/PixelLayout.h"

#include <array>
#include <memory>
#include <string>

namespace vellumine::imaging {

/// CIE xy coordinates.
struct Chromaticity {
    double x = 0;
    double y = 0;
};

/// White point and primaries of an RGB space.
struct Primaries {
    Chromaticity white;
    Chromaticity red;
    Chromaticity green;
    Chromaticity blue;
};

/// The curve that turns a sample of 0 to 1 into linear light.
struct TransferCurve {
    enum class Kind { sRgb, rec709, gamma, pq, hlg };
    Kind kind = Kind::sRgb;
    double gamma = 1.0; ///< exponent of the power law, for Gamma only
};

/// What the numbers of a picture mean. A small value; copies share the profile.
class ColorSpace {
public:
    /// sRGB, IEC 61966-2-1. Its profile is written into files.
    static ColorSpace sRgb();
    /// Adobe RGB (1998), which cameras write without a profile. Its profile is written into files.
    static ColorSpace adobeRgb();
    /// RGB without a statement: read and drawn as sRGB numbers, no profile is ever written.
    static ColorSpace deviceRgb();
    /// Grey with the sRGB curve, no profile.
    static ColorSpace grey();
    /// CMYK without a statement: an installed profile where there is one, else the plain formula.
    static ColorSpace deviceCmyk();
    /// A picture's own profile. Fails with Malformed when the bytes are no usable ICC profile, and
    /// with Unsupported when the profile is not for `model` or cannot be a source of colours.
    static Result<ColorSpace> fromIcc(ByteSpan profile, ColorModel model);
    /// RGB (or, with `model` Grey, the curve alone) described by numbers, as PNG and HEIC files
    /// do. Numbers that describe sRGB give `sRgb()`. Fails with Malformed for degenerate numbers.
    static Result<ColorSpace> fromPrimaries(
        const Primaries& primaries, TransferCurve curve, ColorModel model = ColorModel::rgb);

    [[nodiscard]] ColorModel model() const;
    /// The ICC profile to write into files; empty for the spaces without one.
    [[nodiscard]] ByteSpan iccProfile() const;
    /// The profile's description, "Display P3" for example; empty where there is no profile.
    [[nodiscard]] std::string profileName() const;
    /// Whether the numbers are sRGB numbers to within half an 8-bit step: sRGB itself, device RGB
    /// and the many profiles that only repackage it.
    [[nodiscard]] bool isSRgbEquivalent() const;

    /// The same space by construction, or the same profile bytes.
    friend bool operator==(const ColorSpace& a, const ColorSpace& b);

    struct Data;
    /// For the colour code of this folder, and for whoever takes a space to another process.
    [[nodiscard]] const Data& data() const { return *m_data; }
    /// The space of that data, which nobody has to look into. Kinds without a profile take nothing
    /// but their kind from it.
    static ColorSpace fromData(Data data);

private:
    explicit ColorSpace(std::shared_ptr<const Data> data);
    std::shared_ptr<const Data> m_data;
};

} // namespace vellumine::imaging
