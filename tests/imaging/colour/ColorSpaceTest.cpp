#include "imaging/colour/ColorSpace.h"

#include "imaging/colour/ColorSpaceData.h"
#include "imaging/colour/Profile.h"
#include "support/NamedRows.h"

#include <gtest/gtest.h>

#include <span>

namespace vellumine::imaging {
namespace {

constexpr Primaries srgbPrimaries { { 0.3127, 0.3290 }, { 0.64, 0.33 }, { 0.30, 0.60 },
    { 0.15, 0.06 } };
constexpr Primaries p3Primaries { { 0.3127, 0.3290 }, { 0.680, 0.320 }, { 0.265, 0.690 },
    { 0.150, 0.060 } };

ByteBuffer copied(ByteSpan bytes)
{
    return { bytes.begin(), bytes.end() };
}

TEST(ColorSpace, sRgbHasAProfileToWriteAndDeviceRgbHasNone)
{
    EXPECT_GT(ColorSpace::sRgb().iccProfile().size(), 200U);
    EXPECT_EQ(ColorSpace::sRgb().profileName(), "sRGB");
    EXPECT_TRUE(ColorSpace::deviceRgb().iccProfile().empty());
    EXPECT_TRUE(ColorSpace::grey().iccProfile().empty());
    EXPECT_TRUE(ColorSpace::deviceCmyk().iccProfile().empty());
    EXPECT_NE(ColorSpace::sRgb(), ColorSpace::deviceRgb());
    EXPECT_TRUE(ColorSpace::deviceRgb().isSRgbEquivalent());
}

TEST(ColorSpace, theWrittenSRgbProfileIsReadBackAsSRgb)
{
    const auto space = ColorSpace::fromIcc(ColorSpace::sRgb().iccProfile(), ColorModel::rgb);
    ASSERT_TRUE(space);
    EXPECT_TRUE(space->isSRgbEquivalent());
    EXPECT_EQ(space->profileName(), "sRGB");
}

TEST(ColorSpace, adobeRgbHasAProfileToWriteWhichIsReadBackAsTheSame)
{
    const ColorSpace adobeRgb = ColorSpace::adobeRgb();
    EXPECT_FALSE(adobeRgb.isSRgbEquivalent());
    const auto space = ColorSpace::fromIcc(adobeRgb.iccProfile(), ColorModel::rgb);
    ASSERT_TRUE(space);
    EXPECT_EQ(*space, adobeRgb);
    EXPECT_EQ(space->profileName(), adobeRgb.profileName());
    EXPECT_EQ(ColorSpace::fromData(adobeRgb.data()), adobeRgb);
}

TEST(ColorSpace, profilesAreTheSameBytesEveryTime)
{
    const auto first = ColorSpace::fromPrimaries(p3Primaries, {});
    const auto second = ColorSpace::fromPrimaries(p3Primaries, {});
    ASSERT_TRUE(first && second);
    EXPECT_EQ(copied(first->iccProfile()), copied(second->iccProfile()));
    EXPECT_EQ(*first, *second);
}

TEST(ColorSpace, numbersThatDescribeSRgbGiveSRgb)
{
    EXPECT_EQ(ColorSpace::fromPrimaries(srgbPrimaries, {}).value(), ColorSpace::sRgb());
}

TEST(ColorSpace, displayP3IsNotSRgb)
{
    const auto space = ColorSpace::fromPrimaries(p3Primaries, {});
    ASSERT_TRUE(space);
    EXPECT_FALSE(space->isSRgbEquivalent());
    EXPECT_FALSE(space->iccProfile().empty());
}

TEST(ColorSpace, aPlainGammaIsNotTheSRgbCurve)
{
    const auto space
        = ColorSpace::fromPrimaries(srgbPrimaries, { TransferCurve::Kind::gamma, 1.8 });
    ASSERT_TRUE(space);
    EXPECT_FALSE(space->isSRgbEquivalent());
}

TEST(ColorSpace, greyFromNumbersIsGrey)
{
    const auto space = ColorSpace::fromPrimaries(
        srgbPrimaries, { TransferCurve::Kind::gamma, 1.0 }, ColorModel::grey);
    ASSERT_TRUE(space);
    EXPECT_EQ(space->model(), ColorModel::grey);
}

TEST(ColorSpace, aProfileOfAnotherModelIsUnsupported)
{
    const auto space = ColorSpace::fromIcc(ColorSpace::sRgb().iccProfile(), ColorModel::cmyk);
    ASSERT_FALSE(space);
    EXPECT_EQ(space.error().kind, Error::Kind::unsupported);
}

TEST(ColorSpace, aProfileThatWasJustLookedAtIsNotLookedAtAgain)
{
    const ByteBuffer profile = copied(ColorSpace::sRgb().iccProfile());
    const auto first = ColorSpace::fromIcc(profile, ColorModel::rgb);
    const auto second = ColorSpace::fromIcc(copied(profile), ColorModel::rgb);
    ASSERT_TRUE(first && second);
    EXPECT_EQ(&first->data(), &second->data());
    EXPECT_FALSE(ColorSpace::fromIcc(profile, ColorModel::grey));
}

TEST(ColorSpace, aProfileThatDiffersByOneByteIsAnother)
{
    ByteBuffer profile = copied(ColorSpace::fromPrimaries(p3Primaries, {})->iccProfile());
    const auto first = ColorSpace::fromIcc(profile, ColorModel::rgb);
    profile.at(35) ^= std::byte { 1 }; // a second of its date
    const auto second = ColorSpace::fromIcc(profile, ColorModel::rgb);
    ASSERT_TRUE(first && second);
    EXPECT_NE(*first, *second);
}

TEST(ColorSpace, everyCutOfAProfileIsRefusedOrStillAProfile)
{
    const ByteBuffer whole = copied(ColorSpace::sRgb().iccProfile());
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const auto space = ColorSpace::fromIcc(std::span(whole).first(length), ColorModel::rgb);
        if (length < 300) {
            EXPECT_FALSE(space) << length;
        }
    }
}

struct Degenerate {
    const char* name;
    Primaries primaries;
    TransferCurve curve;
};

class DegenerateNumbers : public testing::TestWithParam<Degenerate> { };

TEST_P(DegenerateNumbers, areMalformed)
{
    const auto space = ColorSpace::fromPrimaries(GetParam().primaries, GetParam().curve);
    ASSERT_FALSE(space);
    EXPECT_EQ(space.error().kind, Error::Kind::malformed);
}

INSTANTIATE_TEST_SUITE_P(Numbers, DegenerateNumbers,
    testing::Values(Degenerate { "allZero", {}, {} },
        Degenerate { "oneLine", { { 0.3, 0.3 }, { 0.1, 0.1 }, { 0.2, 0.2 }, { 0.3, 0.3 } }, {} },
        Degenerate { "gammaZero", srgbPrimaries, { TransferCurve::Kind::gamma, 0.0 } },
        Degenerate { "gammaHuge", srgbPrimaries, { TransferCurve::Kind::gamma, 1e9 } }),
    test::RowName {});

} // namespace
} // namespace vellumine::imaging
