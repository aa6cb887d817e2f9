#include "imaging/ycc/BlockBands.h"
#include "support/NamedRows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <utility>

namespace vellumine::imaging::ycc {
namespace {

/// No multiple of a block, and more than two bands.
constexpr Size pictureSize { 37, 45 };

/// Samples without any order, the same ones always.
YccPlanes samplePlanes(Subsampling subsampling)
{
    YccPlanes planes = YccPlanes::create(pictureSize, subsampling, pictureSize).value();
    std::uint32_t state = 1;
    for (int plane = 0; plane < 3; ++plane) {
        const Size size = planes.planeSize(plane);
        for (int y = 0; y < size.height; ++y) {
            for (int x = 0; x < size.width; ++x) {
                state = state * 1'664'525U + 1'013'904'223U;
                planes.row(plane, y)[x] = static_cast<std::uint8_t>(state >> 24U);
            }
        }
    }
    return planes;
}

/// The sample of colour that a pixel of the part has; behind its end that of its last pixel.
int colorAt(const YccPlanes& planes, int plane, Rect part, int x, int y)
{
    const Subsampling shared = planes.subsampling();
    const int column = (part.x + std::min(x, part.width - 1)) / shared.x;
    const int row = (part.y + std::min(y, part.height - 1)) / shared.y;
    return planes.row(plane, row)[column];
}

/// The mean of the colours of two by two pixels.
double meanColorAt(const YccPlanes& planes, int plane, Rect part, int x, int y)
{
    return (colorAt(planes, plane, part, 2 * x, 2 * y)
               + colorAt(planes, plane, part, 2 * x + 1, 2 * y)
               + colorAt(planes, plane, part, 2 * x, 2 * y + 1)
               + colorAt(planes, plane, part, 2 * x + 1, 2 * y + 1))
        / 4.0;
}

struct SharingRow {
    const char* name;
    Subsampling subsampling;
};

class BlockBandsOf : public testing::TestWithParam<SharingRow> { };

TEST_P(BlockBandsOf, holdThePartAndRepeatItsEdges)
{
    const YccPlanes planes = samplePlanes(GetParam().subsampling);
    for (const Rect part : { Rect { 0, 0, 37, 45 }, Rect { 16, 32, 21, 13 }, Rect { 2, 4, 30, 33 },
             Rect { 36, 44, 1, 1 }, Rect { 0, 0, 16, 16 }, Rect { 4, 6, 1, 17 } }) {
        BlockBands bands = BlockBands::create(planesHere(planes), part).value();
        EXPECT_EQ(bands.size(), part.size());
        const int width = (part.width + 15) / 16 * 16;
        for (int top = 0; top < part.height; top += BlockBands::rows) {
            const YccPlanes& band = *bands.at(top).value();
            for (int y = 0; y < BlockBands::rows; ++y) {
                for (int x = 0; x < width; ++x) {
                    ASSERT_EQ(band.row(0, y)[x],
                        planes.row(0,
                            part.y
                                + std::min(top + y,
                                    part.height - 1))[part.x + std::min(x, part.width - 1)])
                        << x << ' ' << top + y;
                }
            }
            for (const int plane : { 1, 2 }) {
                for (int y = 0; y < BlockBands::rows / 2; ++y) {
                    for (int x = 0; x < width / 2; ++x) {
                        // A whole number beside the mean, or the mean.
                        ASSERT_LE(std::abs(band.row(plane, y)[x]
                                      - meanColorAt(planes, plane, part, x, top / 2 + y)),
                            0.5)
                            << plane << ": " << x << ' ' << top / 2 + y;
                    }
                }
            }
        }
    }
}

TEST_P(BlockBandsOf, areNeitherBrighterNorDarker)
{
    const YccPlanes planes = samplePlanes(GetParam().subsampling);
    const Rect part { 0, 0, 36, 44 };
    BlockBands bands = BlockBands::create(planesHere(planes), part).value();
    double difference = 0;
    int count = 0;
    for (int top = 0; top < part.height; top += BlockBands::rows) {
        const YccPlanes& band = *bands.at(top).value();
        for (int y = 0; y < std::min(BlockBands::rows, part.height - top) / 2; ++y) {
            for (int x = 0; x < part.width / 2; ++x, ++count) {
                difference += band.row(1, y)[x] - meanColorAt(planes, 1, part, x, top / 2 + y);
            }
        }
    }
    EXPECT_EQ(count, 18 * 22);
    EXPECT_LT(std::abs(difference / count), 0.05);
}

INSTANTIATE_TEST_SUITE_P(Pictures, BlockBandsOf,
    testing::Values(SharingRow { "full", { 1, 1 } }, SharingRow { "halfAcross", { 2, 1 } },
        SharingRow { "halfDown", { 1, 2 } }, SharingRow { "halfBothWays", { 2, 2 } }),
    test::RowName());

/// Has a plane no longer.
class PlaneIsGone final : public PlaneSource {
public:
    explicit PlaneIsGone(int plane)
        : m_plane(plane)
    {
    }
    [[nodiscard]] Size size() const override { return pictureSize; }
    [[nodiscard]] Subsampling subsampling() const override { return { 2, 1 }; }
    [[nodiscard]] Result<void> copy(
        int plane, Rect /*part*/, std::uint8_t* /*to*/, std::size_t /*rowBytes*/) const override
    {
        return plane == m_plane ? failure(Error::Kind::io, "the plane is gone") : Result<void>();
    }

private:
    int m_plane;
};

TEST(BlockBands, failWithWhatTheSourceSays)
{
    for (const int plane : { 0, 1, 2 }) {
        BlockBands bands
            = BlockBands::create(std::make_shared<PlaneIsGone>(plane), { 0, 0, 37, 45 }).value();
        const auto band = bands.at(16);
        ASSERT_FALSE(band.has_value());
        EXPECT_EQ(band.error(), (Error { Error::Kind::io, "the plane is gone" }));
    }
}

} // namespace
} // namespace vellumine::imaging::ycc
