#include "imaging/colour/ColorTransform.h"

#include "imaging/BitmapContext.h"
#include "imaging/PixelConversion.h"
#include "imaging/colour/Profile.h"
#include "support/NamedRows.h"
#include "support/TestImages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <future>
#include <limits>
#include <numeric>
#include <type_traits>
#include <vector>

namespace vellumine::imaging {
namespace {

constexpr Primaries p3 { { 0.3127, 0.3290 }, { 0.680, 0.320 }, { 0.265, 0.690 }, { 0.150, 0.060 } };
constexpr Primaries adobeRgb { { 0.3127, 0.3290 }, { 0.64, 0.33 }, { 0.21, 0.71 }, { 0.15, 0.06 } };
constexpr Primaries rec2020 { { 0.3127, 0.3290 }, { 0.708, 0.292 }, { 0.170, 0.797 },
    { 0.131, 0.046 } };

/// A press profile in small: ink to Lab through a table, as real CMYK profiles have it.
ColorSpace tableCmyk()
{
    const colour::Context context = colour::makeContext();
    const colour::Profile profile(cmsCreateProfilePlaceholder(context.get()));
    cmsSetProfileVersion(profile.get(), 2.4);
    cmsSetDeviceClass(profile.get(), cmsSigOutputClass);
    cmsSetColorSpace(profile.get(), cmsSigCmykData);
    cmsSetPCS(profile.get(), cmsSigLabData);
    cmsPipeline* const pipeline = cmsPipelineAlloc(context.get(), 4, 3);
    cmsStage* const table = cmsStageAllocCLut16bit(context.get(), 9, 4, 3, nullptr);
    const auto sampler = [](const cmsUInt16Number in[], cmsUInt16Number out[], void* /*cargo*/) {
        const double c = in[0] / 65535.0;
        const double m = in[1] / 65535.0;
        const double y = in[2] / 65535.0;
        const double paper = 1.0 - in[3] / 65535.0;
        const cmsCIELab lab { 95.0 * (1 - 0.35 * c) * (1 - 0.45 * m) * (1 - 0.08 * y) * paper + 3.0,
            (70.0 * m - 35.0 * c) * paper, (85.0 * y - 45.0 * c - 10.0 * m) * paper };
        cmsFloat2LabEncodedV2(out, &lab);
        return 1;
    };
    cmsStageSampleCLut16bit(table, sampler, nullptr, 0);
    cmsPipelineInsertStage(pipeline, cmsAT_END, table);
    cmsWriteTag(profile.get(), cmsSigAToB0Tag, pipeline);
    cmsPipelineFree(pipeline);
    return ColorSpace::fromIcc(colour::serialised(profile.get()), ColorModel::cmyk).value();
}

/// The same conversion in floating point, unoptimised.
Image reference(const Image& image)
{
    const colour::Context context = colour::makeContext();
    const colour::Profile source
        = colour::openProfile(context.get(), image.colorSpace().iccProfile());
    const colour::Profile srgb = colour::makeSRgbProfile(context.get());
    const bool cmyk = image.layout().model == ColorModel::cmyk;
    // Floating-point CMYK is counted in percent of ink.
    const colour::Transform transform(cmsCreateTransformTHR(context.get(), source.get(),
        cmyk ? TYPE_CMYK_DBL : TYPE_RGB_DBL, srgb.get(), TYPE_RGB_DBL,
        colour::renderingIntent(source.get()), cmsFLAGS_NOOPTIMIZE | cmsFLAGS_NOCACHE));
    const int channels = image.layout().channels();
    return test::makeImage(
        image.size(), { ColorModel::rgb, 16, AlphaInfo::none }, [&](int x, int y, int channel) {
            std::array<double, 4> in {};
            for (int c = 0; c < channels; ++c) {
                in.at(static_cast<std::size_t>(c))
                    = test::sampleAt(image, x, y, c) * (cmyk ? 100.0 : 1.0);
            }
            std::array<double, 3> out {};
            cmsDoTransform(transform.get(), in.data(), out.data(), 1);
            return out.at(static_cast<std::size_t>(channel));
        });
}

/// The 99th percentile of the samples' differences, in 8-bit steps.
double percentile99(const Image& a, const Image& b)
{
    std::vector<double> differences;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            for (int c = 0; c < 3; ++c) {
                differences.push_back(
                    std::abs(test::sampleAt(a, x, y, c) - test::sampleAt(b, x, y, c)) * 255.0);
            }
        }
    }
    const auto nth
        = differences.begin() + static_cast<std::ptrdiff_t>(differences.size() * 99 / 100);
    std::nth_element(differences.begin(), nth, differences.end());
    return *nth;
}

/// Every colour of a coarse cube, so that no corner of the space is left out.
Image cube(const ColorSpace& space, int bits)
{
    const PixelLayout layout { space.model(), bits, AlphaInfo::none };
    return test::makeImage({ 96, 96 }, layout, space, [](int x, int y, int channel) {
        const int index = y * 96 + x;
        constexpr std::array<int, 4> divisors { 1, 10, 100, 1000 };
        return (index / divisors.at(static_cast<std::size_t>(channel)) % 10) / 9.0;
    });
}

struct Source {
    const char* name;
    ColorSpace space;
    int bits;
};

class ConvertingToSRgb : public testing::TestWithParam<Source> { };

TEST_P(ConvertingToSRgb, isWithinTwoStepsOfTheFloatingPointReference)
{
    const Image image = cube(GetParam().space, GetParam().bits);
    BitmapContext context = BitmapContext::create(image.size(), 8, ColorSpace::sRgb()).value();
    ASSERT_TRUE(context.draw(image));
    const Image rgba = std::move(context).makeImage().value();
    const Image rgb = relayout(rgba, { ColorModel::rgb, 8, AlphaInfo::none }).value();
    EXPECT_LE(percentile99(rgb, reference(image)), 2.0);
}

TEST_P(ConvertingToSRgb, changesTheNumbers)
{
    EXPECT_FALSE(GetParam().space.isSRgbEquivalent());
}

INSTANTIATE_TEST_SUITE_P(Spaces, ConvertingToSRgb,
    testing::Values(Source { "displayP3", ColorSpace::fromPrimaries(p3, {}).value(), 8 },
        Source { "displayP3Deep", ColorSpace::fromPrimaries(p3, {}).value(), 16 },
        Source { "adobeRgb",
            ColorSpace::fromPrimaries(adobeRgb, { TransferCurve::Kind::gamma, 2.19921875 }).value(),
            8 },
        Source { "rec2020",
            ColorSpace::fromPrimaries(rec2020, { TransferCurve::Kind::rec709, 0 }).value(), 8 },
        Source { "cmyk", tableCmyk(), 8 }, Source { "cmykDeep", tableCmyk(), 16 }),
    test::RowName {});

TEST(ColorTransform, sRgbLookAlikesAreOnlyRearranged)
{
    const ColorSpace repackaged
        = ColorSpace::fromIcc(ColorSpace::sRgb().iccProfile(), ColorModel::rgb).value();
    EXPECT_TRUE(ColorTransform::create(repackaged, 8, ColorSpace::deviceRgb())->isIdentity());
    EXPECT_FALSE(ColorTransform::create(
        ColorSpace::fromPrimaries(p3, {}).value(), 8, ColorSpace::deviceRgb())
                     ->isIdentity());
}

TEST(ColorTransform, adobeRgbBecomesTheSRgbThatItsSpecificationGives)
{
    struct Row {
        std::array<std::uint8_t, 3> adobeRgb;
        std::array<double, 3> sRgb; // both spaces' matrices and curves, in floating point
    };
    const auto transform = ColorTransform::create(ColorSpace::adobeRgb(), 8, ColorSpace::sRgb());
    ASSERT_TRUE(transform);
    for (const Row& row : { Row { { 128, 128, 128 }, { 129.03, 129.03, 129.03 } },
             Row { { 180, 120, 90 }, { 199.47, 120.82, 87.91 } },
             Row { { 100, 140, 110 }, { 75.81, 141.27, 108.91 } },
             Row { { 60, 90, 160 }, { 36.07, 89.57, 163.72 } },
             Row { { 70, 110, 60 }, { 37.29, 110.48, 53.72 } } }) {
        std::array<std::uint8_t, 4> rgba {};
        transform->apply(row.adobeRgb.data(), rgba.data(), 1);
        for (std::size_t c = 0; c < 3; ++c) {
            EXPECT_NEAR(rgba.at(c), row.sRgb.at(c), 1.0) << int { row.adobeRgb[0] } << " " << c;
        }
    }
}

TEST(ColorTransform, leavesTheFourthByteAlone)
{
    for (const ColorSpace& space :
        { ColorSpace::sRgb(), ColorSpace::fromPrimaries(p3, {}).value() }) {
        const auto transform = ColorTransform::create(space, 8, ColorSpace::sRgb());
        ASSERT_TRUE(transform);
        const std::array<std::uint8_t, 6> rgb { 10, 200, 30, 255, 255, 255 };
        std::array<std::uint8_t, 8> rgba {};
        rgba.fill(77);
        transform->apply(rgb.data(), rgba.data(), 2);
        EXPECT_EQ(rgba[3], 77);
        EXPECT_EQ(rgba[7], 77);
        EXPECT_EQ(rgba[4], 255);
    }
}

TEST(ColorTransform, greyWithTheSRgbCurveKeepsItsNumbers)
{
    const auto transform = ColorTransform::create(ColorSpace::grey(), 16, ColorSpace::deviceRgb());
    ASSERT_TRUE(transform);
    const std::array<std::uint16_t, 2> grey { 257 * 100, 65535 };
    std::array<std::uint8_t, 8> rgba {};
    transform->apply(grey.data(), rgba.data(), 2);
    EXPECT_EQ(rgba[0], 100);
    EXPECT_EQ(rgba[1], 100);
    EXPECT_EQ(rgba[2], 100);
    EXPECT_EQ(rgba[6], 255);
}

TEST(ColorTransform, linearGreyIsBrightened)
{
    const ColorSpace linear
        = ColorSpace::fromPrimaries({}, { TransferCurve::Kind::gamma, 1.0 }, ColorModel::grey)
              .value();
    const auto transform = ColorTransform::create(linear, 8, ColorSpace::sRgb());
    ASSERT_TRUE(transform);
    const std::array<std::uint8_t, 1> grey { 55 }; // 0.2157 in linear light is 128 in sRGB
    std::array<std::uint8_t, 4> rgba {};
    transform->apply(grey.data(), rgba.data(), 1);
    EXPECT_NEAR(rgba[1], 128, 1);
}

TEST(ColorTransform, everyLinearGreyIsWhatTheCurveOfSRgbSays)
{
    const ColorSpace linear
        = ColorSpace::fromPrimaries({}, { TransferCurve::Kind::gamma, 1.0 }, ColorModel::grey)
              .value();
    // IEC 61966-2-1, in 8-bit steps.
    const auto encoded = [](double light) {
        return 255.0
            * (light <= 0.0031308 ? 12.92 * light : 1.055 * std::pow(light, 1.0 / 2.4) - 0.055);
    };
    const auto expectNear = [&](const auto& greys) {
        using Sample = std::decay_t<decltype(greys[0])>;
        constexpr int bits = 8 * sizeof(Sample);
        const auto transform = ColorTransform::create(linear, bits, ColorSpace::sRgb());
        ASSERT_TRUE(transform);
        std::vector<std::uint8_t> rgba(greys.size() * 4);
        transform->apply(greys.data(), rgba.data(), static_cast<int>(greys.size()));
        for (std::size_t i = 0; i < greys.size(); ++i) {
            const double right = encoded(greys[i] / double { std::numeric_limits<Sample>::max() });
            for (std::size_t c = 0; c < 3; ++c) {
                // Half a step for rounding, and what the library's 16 bits leave uncertain.
                ASSERT_NEAR(rgba[4 * i + c], right, 0.6) << bits << " bits, " << i;
            }
            ASSERT_EQ(rgba[4 * i + 3], 0);
        }
    };
    std::vector<std::uint8_t> shallow(256);
    std::iota(shallow.begin(), shallow.end(), std::uint8_t { 0 });
    expectNear(shallow);
    std::vector<std::uint16_t> deep(65536);
    std::iota(deep.begin(), deep.end(), std::uint16_t { 0 });
    expectNear(deep);
}

TEST(ColorTransform, greyBecomesOtherSpacesThanSRgbToo)
{
    const ColorSpace linear
        = ColorSpace::fromPrimaries({}, { TransferCurve::Kind::gamma, 1.0 }, ColorModel::grey)
              .value();
    const auto transform = ColorTransform::create(linear, 8, ColorSpace::adobeRgb());
    ASSERT_TRUE(transform);
    for (int grey = 0; grey < 256; ++grey) {
        const auto sample = static_cast<std::uint8_t>(grey);
        std::array<std::uint8_t, 4> rgba {};
        transform->apply(&sample, rgba.data(), 1);
        const double right = 255.0 * std::pow(grey / 255.0, 256.0 / 563.0);
        for (std::size_t c = 0; c < 3; ++c) {
            EXPECT_NEAR(rgba.at(c), right, 1.0) << grey;
        }
    }
}

/// What the transform makes of every colour of a coarse cube.
std::vector<std::uint8_t> convertedCube(const ColorTransform& transform, const ColorSpace& space)
{
    const Image image = cube(space, 8);
    std::vector<std::uint8_t> rgba(static_cast<std::size_t>(image.width()) * 4 * 96);
    for (int y = 0; y < image.height(); ++y) {
        transform.apply(
            image.row8(y), &rgba[static_cast<std::size_t>(y * image.width() * 4)], image.width());
    }
    return rgba;
}

TEST(ColorTransform, whatAnotherOneUsedBeforeConvertsTheSame)
{
    const std::array spaces { ColorSpace::fromPrimaries(p3, {}).value(), tableCmyk(),
        ColorSpace::fromPrimaries(adobeRgb, { TransferCurve::Kind::gamma, 2.19921875 }).value(),
        ColorSpace::fromPrimaries(rec2020, { TransferCurve::Kind::rec709, 0 }).value(),
        ColorSpace::fromPrimaries(p3, { TransferCurve::Kind::gamma, 1.8 }).value() };
    std::vector<std::vector<std::uint8_t>> first;
    for (const ColorSpace& space : spaces) {
        first.push_back(
            convertedCube(ColorTransform::create(space, 8, ColorSpace::sRgb()).value(), space));
    }
    for (std::size_t i = spaces.size(); i-- > 0;) {
        const auto again = ColorTransform::create(spaces.at(i), 8, ColorSpace::sRgb());
        EXPECT_EQ(convertedCube(again.value(), spaces.at(i)), first.at(i)) << i;
        const auto deep = ColorTransform::create(spaces.at(i), 16, ColorSpace::sRgb());
        EXPECT_FALSE(deep->isIdentity());
    }
}

TEST(ColorTransform, twoOfTheSameSpacesAtOnceHaveNothingInCommon)
{
    const ColorSpace space = ColorSpace::fromPrimaries(p3, {}).value();
    auto first = ColorTransform::create(space, 8, ColorSpace::sRgb());
    const auto expected = convertedCube(first.value(), space);
    auto second = ColorTransform::create(space, 8, ColorSpace::sRgb());
    first = ColorTransform::create(ColorSpace::sRgb(), 8, ColorSpace::sRgb());
    const auto third = ColorTransform::create(space, 8, ColorSpace::sRgb());
    EXPECT_EQ(convertedCube(second.value(), space), expected);
    EXPECT_EQ(convertedCube(third.value(), space), expected);
}

TEST(ColorTransform, threadsConvertTheSameColoursBesideEachOther)
{
    const ColorSpace space = tableCmyk();
    const auto expected
        = convertedCube(ColorTransform::create(space, 8, ColorSpace::sRgb()).value(), space);
    std::vector<std::future<bool>> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.push_back(std::async(std::launch::async, [&] {
            bool same = true;
            for (int turn = 0; turn < 3; ++turn) {
                const auto transform = ColorTransform::create(space, 8, ColorSpace::sRgb());
                same = same && convertedCube(transform.value(), space) == expected;
            }
            return same;
        }));
    }
    EXPECT_TRUE(std::ranges::all_of(threads, &std::future<bool>::get));
}

} // namespace
} // namespace vellumine::imaging
