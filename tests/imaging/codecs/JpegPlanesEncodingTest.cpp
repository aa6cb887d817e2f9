#include "imaging/BitmapContext.h"
#include "imaging/DeferredPixels.h"
#include "imaging/Orientation.h"
#include "imaging/codecs/JpegFiles.h"
#include "imaging/codecs/jpeg/JpegCodec.h"
#include "imaging/ycc/PlaneSource.h"
#include "support/NamedRows.h"
#include "support/TestImages.h"

#include <gtest/gtest.h>

#include <memory>
#include <utility>

namespace vellumine::imaging {
namespace {

using test::jpegFile;
using test::JpegRecipe;
using test::maximumDifference;
using test::psnr;
using test::syntheticPhoto;

constexpr PixelLayout rgb8 { ColorModel::rgb, 8, AlphaInfo::none };
constexpr Size photoSize { 211, 173 };
EncodeOptions withQuality(double quality)
{
    return { .quality = quality,
        .profile = ProfilePolicy::omit,
        .effort = Effort::smallest,
        .metadata = {} };
}

/// From 0.9 on files have their colour at full size.
const EncodeOptions normal = withQuality(0.82);

Image decoded(ByteSpan file, ImageUse use = ImageUse::asRows)
{
    return jpeg::decode(file, { .limits = {}, .wish = { .use = use } }).value().image;
}

/// Without a list of all their bytes when they are not.
testing::AssertionResult areEqual(const ByteBuffer& a, const ByteBuffer& b)
{
    return a == b
        ? testing::AssertionSuccess()
        : testing::AssertionFailure() << "files of " << a.size() << " and " << b.size() << " bytes";
}

ByteBuffer encoded(const Image& image, const EncodeOptions& options = normal)
{
    return jpeg::encode(image, options).value();
}

Image drawn(const Image& image, const ColorSpace& space)
{
    BitmapContext context = BitmapContext::create(image.size(), 8, space).value();
    context.setInterpolationQuality(InterpolationQuality::high);
    EXPECT_TRUE(context.draw(image));
    return std::move(context).makeImageWhereItIs().value();
}

struct Sampling {
    const char* name;
    JpegRecipe recipe;
};

/// The same photograph in planes and, as the oracle, in rows.
class EncodedFromPlanes : public testing::TestWithParam<Sampling> {
protected:
    [[nodiscard]] ByteBuffer fileOf(const Image& picture) const
    {
        return jpegFile(picture, GetParam().recipe);
    }

    const ByteBuffer m_file = fileOf(syntheticPhoto(photoSize));
    const Image m_planes = decoded(m_file, ImageUse::toBeDrawn);
    const Image m_rows = decoded(m_file);
};

TEST_P(EncodedFromPlanes, comesNoLessNearThanFromRows)
{
    ASSERT_TRUE(m_planes.deferred()->planes());
    const ByteBuffer file = encoded(m_planes);
    const ByteBuffer fileOfRows = encoded(m_rows);
    EXPECT_GE(psnr(decoded(file), m_rows), psnr(decoded(fileOfRows), m_rows) - 0.02);
    EXPECT_LE(file.size(), fileOfRows.size() * 102 / 100);
    EXPECT_EQ(decoded(file).layout(), rgb8);
}

TEST_P(EncodedFromPlanes, isTheSameFileInTheColoursThatItHas)
{
    EXPECT_TRUE(areEqual(encoded(drawn(m_planes, ColorSpace::sRgb())), encoded(m_planes)));
    EXPECT_TRUE(areEqual(encoded(drawn(m_planes, ColorSpace::deviceRgb())), encoded(m_planes)));
}

TEST_P(EncodedFromPlanes, needsRowsWhereThatIsNotItsPicture)
{
    const ColorSpace wide = ColorSpace::fromPrimaries(
        { { 0.3127, 0.3290 }, { 0.68, 0.32 }, { 0.265, 0.69 }, { 0.15, 0.06 } }, {})
                                .value();
    EXPECT_TRUE(areEqual(encoded(drawn(m_planes, wide)), encoded(drawn(m_rows, wide))));
    const Image turned = upright(m_planes, Orientation::rightTop).value();
    ASSERT_FALSE(turned.hasRows());
    EXPECT_TRUE(areEqual(encoded(turned), encoded(upright(m_rows, Orientation::rightTop).value())));
    const EncodeOptions best = withQuality(0.9);
    EXPECT_TRUE(areEqual(encoded(m_planes, best), encoded(m_rows, best)));
}

TEST_P(EncodedFromPlanes, saysAsMuchAsFromRows)
{
    EncodeOptions options = normal;
    options.resolution = Resolution::create(300, 150, Resolution::Unit::inch);
    options.texts.add({ .content = ByteBuffer(9, std::byte { 'c' }) });
    for (const Image& image : { m_planes, m_rows }) {
        const auto read = jpeg::decode(encoded(image, options), {});
        EXPECT_EQ(read->resolution, options.resolution);
        EXPECT_EQ(read->texts, options.texts);
    }
    // What is read does not depend on how the picture is.
    const auto file = encoded(m_rows, options);
    for (const ImageUse use : { ImageUse::asRows, ImageUse::toBeDrawn }) {
        const auto read = jpeg::decode(file, { .limits = {}, .wish = { .use = use } });
        EXPECT_EQ(read->resolution, options.resolution);
        EXPECT_EQ(read->texts, options.texts);
    }
}

TEST_P(EncodedFromPlanes, isGreyWhereItHasNoColour)
{
    const Image grey = test::makeImage(photoSize, rgb8, ColorSpace::sRgb(),
        [](int x, int y, int /*channel*/) { return (x + y) / 400.0; });
    const ByteBuffer file = fileOf(grey);
    const ByteBuffer again = encoded(decoded(file, ImageUse::toBeDrawn));
    EXPECT_EQ(decoded(again).layout().model, ColorModel::grey);
    EXPECT_TRUE(areEqual(again, encoded(decoded(file))));
}

TEST_P(EncodedFromPlanes, roundTripIsWhatAReaderOfTheFileFinds)
{
    const ByteBuffer file = encoded(m_planes);
    const Image whole = decoded(file);
    for (const Rect& part : { Rect { 0, 0, 211, 173 }, Rect { 0, 0, 1, 1 }, Rect { 210, 172, 1, 1 },
             Rect { 31, 17, 33, 31 }, Rect { 16, 32, 48, 16 }, Rect { 147, 115, 64, 58 } }) {
        const Image found = jpeg::roundTrip(m_planes, normal, file, part).value();
        ASSERT_EQ(maximumDifference(found, whole.cropped(part)), 0.0) << part.x << ' ' << part.y;
    }
}

INSTANTIATE_TEST_SUITE_P(Photographs, EncodedFromPlanes,
    testing::Values(Sampling { "full", { .horizontalSampling = 1, .verticalSampling = 1 } },
        Sampling { "halfAcross", { .horizontalSampling = 2, .verticalSampling = 1 } },
        Sampling { "halfDown", { .horizontalSampling = 1, .verticalSampling = 2 } },
        Sampling { "halfBothWays", { .horizontalSampling = 2, .verticalSampling = 2 } }),
    test::RowName());

TEST(EncodingFromPlanes, losesNextToNothingTheSecondTime)
{
    const ByteBuffer first = encoded(syntheticPhoto(photoSize));
    const ByteBuffer fromPlanes = encoded(decoded(first, ImageUse::toBeDrawn));
    const ByteBuffer fromRows = encoded(decoded(first));
    EXPECT_GT(psnr(decoded(fromPlanes), decoded(first)), 60.0);
    EXPECT_LT(psnr(decoded(fromRows), decoded(first)), 50.0);
}

/// Rows, and planes that end in the middle.
class PlanesAreLost final : public DeferredPixels {
public:
    explicit PlanesAreLost(Image image)
        : m_image(std::move(image))
    {
    }
    [[nodiscard]] Result<Image> rows(Rect part) const override { return m_image.cropped(part); }
    [[nodiscard]] Result<Image> drawn(const Drawing& /*drawing*/) const override
    {
        return failure(Error::Kind::unsupported, "never drawn");
    }
    [[nodiscard]] std::shared_ptr<const ycc::PlaneSource> planes() const override
    {
        return std::make_shared<Source>(m_image.size());
    }

private:
    class Source final : public ycc::PlaneSource {
    public:
        explicit Source(Size size)
            : m_size(size)
        {
        }
        [[nodiscard]] Size size() const override { return m_size; }
        [[nodiscard]] ycc::Subsampling subsampling() const override { return { 2, 2 }; }
        [[nodiscard]] Result<void> copy(
            int /*plane*/, Rect part, std::uint8_t* to, std::size_t rowBytes) const override
        {
            if (part.y > m_size.height / 4) {
                return failure(Error::Kind::io, "the planes are gone");
            }
            for (int y = 0; y < part.height; ++y) {
                std::fill_n(to + static_cast<std::size_t>(y) * rowBytes, part.width,
                    static_cast<std::uint8_t>(y));
            }
            return {};
        }

    private:
        Size m_size;
    };

    Image m_image;
};

TEST(EncodingFromPlanes, beginsAgainWithRowsWhenThePlanesAreLost)
{
    const Image photo = syntheticPhoto(photoSize);
    const Image lost(photo.size(), photo.layout(), photo.colorSpace(),
        std::make_shared<PlanesAreLost>(photo), Orientation::topLeft);
    EXPECT_TRUE(areEqual(encoded(lost), encoded(photo)));
}

} // namespace
} // namespace vellumine::imaging
