#include "imaging/codecs/BmpFiles.h"
#include "imaging/codecs/bmp/BmpCodec.h"
#include "imaging/colour/ColorTransform.h"

#include <gtest/gtest.h>

#include <cmath>

namespace vellumine::imaging {

namespace {

using test::BmpFile;
using test::LittleEndianBytes;

constexpr Primaries displayP3 { { 0.3127, 0.3290 }, { 0.680, 0.320 }, { 0.265, 0.690 },
    { 0.150, 0.060 } };

BmpFile plainFile(std::uint32_t infoBytes)
{
    BmpFile file { .infoBytes = infoBytes };
    file.pixels.resize(4);
    return file;
}

ColorSpace spaceOf(const BmpFile& file)
{
    return bmp::decode(file.bytes(), {}).value().image.colorSpace();
}

std::uint32_t fixed(double value, int fractionBits)
{
    return static_cast<std::uint32_t>(std::lround(std::ldexp(value, fractionBits)));
}

struct Xyz {
    double x = 0;
    double y = 0;
    double z = 0;
};

ByteBuffer calibratedFields(const std::array<Xyz, 3>& endpoints, double gamma)
{
    LittleEndianBytes fields;
    for (const Xyz& point : endpoints) {
        fields.add32(fixed(point.x, 30)).add32(fixed(point.y, 30)).add32(fixed(point.z, 30));
    }
    for (int i = 0; i < 3; ++i) {
        fields.add32(fixed(gamma, 16));
    }
    return fields.bytes();
}

Xyz chromaticity(const Chromaticity& point)
{
    return { point.x, point.y, 1 - point.x - point.y };
}

/// What colours of the space are in sRGB.
std::array<std::uint8_t, 16> inSRgb(const ColorSpace& space)
{
    const std::array<std::uint8_t, 12> samples { 200, 60, 40, 40, 180, 90, 50, 70, 190, 128, 128,
        128 };
    std::array<std::uint8_t, 16> converted {};
    ColorTransform::create(space, 8, ColorSpace::sRgb())
        .value()
        .apply(samples.data(), converted.data(), 4);
    return converted;
}

/// To within a step: the file's fixed-point numbers are rounded.
void expectSameColours(const ColorSpace& actual, const ColorSpace& expected)
{
    EXPECT_FALSE(actual.isSRgbEquivalent());
    const auto a = inSRgb(actual);
    const auto b = inSRgb(expected);
    for (std::size_t i = 0; i < a.size(); ++i) {
        EXPECT_NEAR(a.at(i), b.at(i), 1) << i;
    }
}

TEST(BmpColorSpace, WithoutAStatementIsSRgb)
{
    for (const std::uint32_t infoBytes : { 12U, 40U, 56U, 108U, 124U }) {
        EXPECT_EQ(spaceOf(plainFile(infoBytes)), ColorSpace::sRgb()) << infoBytes;
    }
}

TEST(BmpColorSpace, TakesTheEmbeddedProfile)
{
    const ColorSpace expected
        = ColorSpace::fromPrimaries(displayP3, { TransferCurve::Kind::sRgb }).value();
    BmpFile file = plainFile(124);
    file.colorSpaceKind = 0x4D424544; // 'MBED'
    file.profile.assign(expected.iccProfile().begin(), expected.iccProfile().end());
    EXPECT_EQ(spaceOf(file), ColorSpace::fromIcc(expected.iccProfile(), ColorModel::rgb).value());
    EXPECT_NE(spaceOf(file), ColorSpace::sRgb());
}

TEST(BmpColorSpace, TakesNoDamagedProfile)
{
    BmpFile file = plainFile(124);
    file.colorSpaceKind = 0x4D424544;
    file.profile = ByteBuffer(500, std::byte { 7 });
    EXPECT_EQ(spaceOf(file), ColorSpace::sRgb());
}

TEST(BmpColorSpace, TakesNoProfileBeyondTheFile)
{
    BmpFile file = plainFile(124);
    file.colorSpaceKind = 0x4D424544;
    file.profile.resize(500);
    ByteBuffer bytes = file.bytes();
    bytes.resize(bytes.size() - 1);
    const auto decoded = bmp::decode(bytes, {});
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->image.colorSpace(), ColorSpace::sRgb());
}

TEST(BmpColorSpace, LooksForNoProfileInOtherFiles)
{
    BmpFile file = plainFile(124);
    file.colorSpaceKind = 0x4C494E4B; // 'LINK'
    file.profile.resize(20, std::byte { 'a' });
    EXPECT_EQ(spaceOf(file), ColorSpace::sRgb());
}

TEST(BmpColorSpace, TakesChromaticitiesAsTheyAre)
{
    BmpFile file = plainFile(108);
    file.colorSpaceKind = 0;
    file.colorSpaceFields
        = calibratedFields({ chromaticity(displayP3.red), chromaticity(displayP3.green),
                               chromaticity(displayP3.blue) },
            2.2);
    expectSameColours(spaceOf(file),
        ColorSpace::fromPrimaries(displayP3, { TransferCurve::Kind::gamma, 2.2 }).value());
}

TEST(BmpColorSpace, TakesXyzWhoseSumIsTheWhitePoint)
{
    BmpFile file = plainFile(108);
    file.colorSpaceKind = 0;
    // Display P3's primaries at the luminances that add up to D65
    file.colorSpaceFields
        = calibratedFields({ Xyz { 0.4866, 0.2290, 0.0 }, Xyz { 0.2657, 0.6917, 0.0451 },
                               Xyz { 0.1982, 0.0793, 1.0439 } },
            2.2);
    expectSameColours(spaceOf(file),
        ColorSpace::fromPrimaries(displayP3, { TransferCurve::Kind::gamma, 2.2 }).value());
}

TEST(BmpColorSpace, TakesNoDegenerateNumbers)
{
    BmpFile file = plainFile(108);
    file.colorSpaceKind = 0;
    file.colorSpaceFields = calibratedFields({}, 0);
    EXPECT_EQ(spaceOf(file), ColorSpace::sRgb());
    file.colorSpaceFields = calibratedFields(
        { Xyz { 0.3, 0.3, 0.4 }, Xyz { 0.3, 0.3, 0.4 }, Xyz { 0.3, 0.3, 0.4 } }, 2.2);
    EXPECT_EQ(spaceOf(file), ColorSpace::sRgb());
}

} // namespace

} // namespace vellumine::imaging
