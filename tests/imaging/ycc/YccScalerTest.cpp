#include "imaging/ycc/YccScaler.h"
#include "support/NamedRows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <string>
#include <vector>

namespace vellumine::imaging::ycc {
namespace {

struct Scaling {
    const char* name;
    Size source;
    Subsampling subsampling;
    Size target;
};

using Rows = std::array<std::vector<std::uint16_t>, 3>;

/// Something different everywhere, edges among it.
std::uint8_t sampleAt(int plane, int x, int y)
{
    const int wave = static_cast<int>(60 * std::sin(0.21 * x + plane) * std::cos(0.17 * y));
    return static_cast<std::uint8_t>(128 + wave + ((x / 7 + y / 5 + plane) % 2) * 40);
}

YccPlanes filled(Size size, Subsampling subsampling, std::uint8_t (*sample)(int, int, int))
{
    auto planes = YccPlanes::create(size, subsampling, size).value();
    for (int plane = 0; plane < 3; ++plane) {
        for (int y = 0; y < planes.planeSize(plane).height; ++y) {
            for (int x = 0; x < planes.planeSize(plane).width; ++x) {
                planes.row(plane, y)[x] = sample(plane, x, y);
            }
        }
    }
    return planes;
}

Rows scaled(const YccPlanes& planes, Size target)
{
    Rows rows;
    int next = 0;
    auto scaler
        = YccScaler::create(planes.size(), planes.subsampling(), target, [&](const PlanarRow& row) {
              EXPECT_EQ(row.y, next++);
              EXPECT_EQ(row.left, 0);
              EXPECT_EQ(row.right, target.width);
              for (std::size_t plane = 0; plane < 3; ++plane) {
                  rows.at(plane).insert(rows.at(plane).end(), row.planes.at(plane),
                      row.planes.at(plane) + target.width);
              }
          }).value();
    for (int y = 0; y < planes.size().height; y += YccBand::rows) {
        scaler.take(bandAt(planes, y));
    }
    EXPECT_EQ(next, target.height);
    return rows;
}

/// One plane, made narrow and low in double precision by the taps themselves, which have their own
/// tests.
std::vector<double> reference(const YccPlanes& planes, int plane, Size target)
{
    const Subsampling shared = plane == 0 ? Subsampling {} : planes.subsampling();
    const Size size = planes.planeSize(plane);
    const LanczosTaps across(
        size.width, static_cast<double>(planes.size().width) / shared.x, target.width);
    const LanczosTaps down(
        size.height, static_cast<double>(planes.size().height) / shared.y, target.height);
    std::vector<double> result;
    for (int y = 0; y < target.height; ++y) {
        for (int x = 0; x < target.width; ++x) {
            double sum = 0;
            for (int j = 0; j < down.count(); ++j) {
                for (int i = 0; i < across.count(); ++i) {
                    sum += static_cast<double>(down.weights(y)[j]) * across.weights(x)[i]
                        * planes.row(plane, down.first(y) + j)[across.first(x) + i];
                }
            }
            result.push_back(std::clamp(256 * sum, 0.0, 65535.0));
        }
    }
    return result;
}

class YccScaling : public testing::TestWithParam<Scaling> { };

TEST_P(YccScaling, isWithinRoundingOfTheSumOfAllTaps)
{
    const auto planes = filled(GetParam().source, GetParam().subsampling, sampleAt);
    const Rows rows = scaled(planes, GetParam().target);
    for (int plane = 0; plane < 3; ++plane) {
        const auto& made = rows.at(static_cast<std::size_t>(plane));
        const auto expected = reference(planes, plane, GetParam().target);
        ASSERT_EQ(made.size(), expected.size());
        for (std::size_t i = 0; i < made.size(); ++i) {
            ASSERT_NEAR(made[i], expected[i], 0.6) << plane << ": " << i;
        }
    }
}

TEST_P(YccScaling, keepsFlatPlanesFlat)
{
    const auto planes = filled(GetParam().source, GetParam().subsampling,
        [](int plane, int, int) { return static_cast<std::uint8_t>(255 - 127 * plane); });
    const Rows rows = scaled(planes, GetParam().target);
    for (int plane = 0; plane < 3; ++plane) {
        for (const std::uint16_t sample : rows.at(static_cast<std::size_t>(plane))) {
            ASSERT_EQ(sample, 256 * (255 - 127 * plane));
        }
    }
}

TEST_P(YccScaling, clampsWhatTheFilterOvershoots)
{
    const auto planes = filled(GetParam().source, GetParam().subsampling,
        [](int, int x, int y) { return static_cast<std::uint8_t>((x / 4 + y / 4) % 2 * 255); });
    const Rows rows = scaled(planes, GetParam().target);
    for (int plane = 0; plane < 3; ++plane) {
        const auto& made = rows.at(static_cast<std::size_t>(plane));
        const auto expected = reference(planes, plane, GetParam().target);
        for (std::size_t i = 0; i < made.size(); ++i) {
            ASSERT_NEAR(made[i], expected[i], 0.6) << plane << ": " << i;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Sizes, YccScaling,
    testing::Values(Scaling { "full", { 130, 97 }, { 1, 1 }, { 61, 45 } },
        Scaling { "halfAcross", { 130, 97 }, { 2, 1 }, { 61, 45 } },
        Scaling { "halfDown", { 130, 97 }, { 1, 2 }, { 61, 45 } },
        Scaling { "halfBothWays", { 131, 97 }, { 2, 2 }, { 61, 45 } },
        Scaling { "slightly", { 131, 97 }, { 2, 2 }, { 130, 96 } },
        Scaling { "tenth", { 331, 297 }, { 2, 2 }, { 33, 29 } },
        Scaling { "wideBlocks", { 600, 20 }, { 2, 2 }, { 257, 9 } },
        Scaling { "toOne", { 90, 70 }, { 2, 2 }, { 1, 1 } },
        Scaling { "fromOne", { 1, 1 }, { 2, 2 }, { 1, 1 } },
        Scaling { "low", { 300, 3 }, { 2, 2 }, { 140, 2 } },
        Scaling { "narrow", { 3, 300 }, { 2, 2 }, { 2, 140 } },
        Scaling { "larger", { 40, 30 }, { 2, 2 }, { 97, 71 } }),
    test::RowName());

} // namespace
} // namespace vellumine::imaging::ycc
