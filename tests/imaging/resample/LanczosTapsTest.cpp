#include "imaging/resample/LanczosTaps.h"
#include "support/NamedRows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

namespace vellumine::imaging {
namespace {

struct Line {
    const char* name;
    int source;
    double extent;
    int target;
};

class Taps : public testing::TestWithParam<Line> {
protected:
    LanczosTaps m_taps { GetParam().source, GetParam().extent, GetParam().target };
};

double sinc(double t)
{
    return t == 0 ? 1 : std::sin(std::numbers::pi * t) / (std::numbers::pi * t);
}

/// How much of each sample of the source one of the target is made of: the formula, over a source
/// that is mirrored at both ends.
std::vector<double> reference(const Line& line, int sample)
{
    const double scale = line.extent / line.target;
    const double widening = std::max(scale, 1.0);
    const double centre = (sample + 0.5) * scale;
    std::vector<double> weights(static_cast<std::size_t>(line.source));
    double sum = 0;
    for (int i = -60; i < line.source + 60; ++i) {
        const double t = (i + 0.5 - centre) / widening;
        const double weight = std::abs(t) < 3 ? sinc(t) * sinc(t / 3) : 0;
        int at = i < 0 ? -1 - i : i;
        at = at >= line.source ? 2 * line.source - 1 - at : at;
        weights[static_cast<std::size_t>(std::clamp(at, 0, line.source - 1))] += weight;
        sum += weight;
    }
    for (double& weight : weights) {
        weight /= sum;
    }
    return weights;
}

TEST_P(Taps, areThoseOfTheFormula)
{
    for (int sample = 0; sample < GetParam().target; ++sample) {
        const auto expected = reference(GetParam(), sample);
        ASSERT_GE(m_taps.first(sample), 0);
        ASSERT_LE(m_taps.end(sample), GetParam().source);
        for (int i = 0; i < GetParam().source; ++i) {
            const bool isTap = i >= m_taps.first(sample) && i < m_taps.end(sample);
            const double weight = isTap ? m_taps.weights(sample)[i - m_taps.first(sample)] : 0;
            ASSERT_NEAR(weight, expected[static_cast<std::size_t>(i)], 1e-6)
                << sample << " of " << i;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Lines, Taps,
    testing::Values(Line { "itself", 20, 20, 20 }, Line { "half", 40, 40, 20 },
        Line { "odd", 47, 47, 33 }, Line { "slightly", 200, 200, 199 },
        Line { "tenth", 200, 200, 20 }, Line { "toOne", 17, 17, 1 }, Line { "fromOne", 1, 1, 5 },
        Line { "larger", 12, 12, 31 }, Line { "halfASampleLess", 24, 23.5, 31 },
        Line { "halfASampleLessAndSmaller", 24, 23.5, 9 }, Line { "fewerThanTheFilter", 4, 4, 3 }),
    test::RowName());

} // namespace
} // namespace vellumine::imaging
