#include "imaging/codecs/png/PngTrials.h"

#include "imaging/codecs/png/PngCompression.h"
#include "imaging/codecs/png/PngFilters.h"
#include "support/NamedRows.h"
#include "support/TestImages.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace vellumine::imaging::png {
namespace {

constexpr PixelLayout rgb8 { ColorModel::rgb, 8, AlphaInfo::none };

/// One of a few small pictures at each place, which looks different in every second row of them.
double tiles(int x, int y, int channel)
{
    const int tile = (x / 24) * 7 % 5 + y / 24 % 2;
    return ((x % 24) * (y % 24) * (tile + 2) + 40 * channel) % 256 / 255.0;
}

double almostNothing(int x, int y, int channel)
{
    return x == 300 && y % 50 == 7 ? 0.2 * channel : 1.0;
}

/// What the chunks of the form take with the stream.
std::size_t sizeWith(const PackedPicture& form, const ByteBuffer& stream)
{
    const auto chunk = [](const ByteBuffer& data) {
        return data.empty() ? std::size_t { 0 } : 12 + data.size();
    };
    return stream.size() + chunk(form.palette) + chunk(form.transparency);
}

struct PictureRow {
    const char* name;
    Image (*make)();
};

class Trials : public testing::TestWithParam<PictureRow> { };

TEST_P(Trials, areNoLargerThanWhatZlibMakesOfTheUsualFilters)
{
    const auto forms = reduced(GetParam().make(), {}).value();
    std::size_t byZlib = ~std::size_t { 0 };
    for (const PackedPicture& form : forms) {
        for (const FilterStrategy strategy :
            { FilterStrategy::none, FilterStrategy::smallestSum }) {
            ByteBuffer bytes;
            appendFiltered(bytes, form, { 0, form.size.height }, strategy);
            byZlib = std::min(byZlib, sizeWith(form, deflatedByZlib(bytes)));
        }
    }
    const Compressed found = smallest(forms);
    const PackedPicture& form = forms.at(found.form);
    EXPECT_LE(sizeWith(form, found.stream), byZlib);

    const std::size_t length = (form.rowBytes + 1) * static_cast<std::size_t>(form.size.height);
    const auto content = inflated(found.stream, length);
    ASSERT_TRUE(content);
    EXPECT_EQ(content->size(), length);
}

INSTANTIATE_TEST_SUITE_P(Of, Trials,
    testing::Values(PictureRow { "aTinyPicture",
                        [] {
                            return test::gradient({ 9, 7 }, rgb8);
                        } },
        PictureRow { "aSmallPicture",
            [] {
                return test::syntheticPhoto({ 160, 120 });
            } },
        PictureRow { "aPhotograph",
            [] {
                return test::syntheticPhoto({ 500, 400 });
            } },
        PictureRow { "repetition",
            [] {
                return test::makeImage({ 480, 480 }, rgb8, tiles);
            } },
        PictureRow { "rowsLongerThanASample",
            [] {
                return test::makeImage({ 180'000, 5 }, rgb8, tiles);
            } },
        PictureRow { "aSingleLongRow",
            [] {
                return test::makeImage({ 180'000, 1 }, rgb8, tiles);
            } },
        PictureRow { "almostNothing",
            [] {
                return test::makeImage({ 600, 500 }, rgb8, almostNothing);
            } }),
    test::RowName());

} // namespace
} // namespace vellumine::imaging::png
