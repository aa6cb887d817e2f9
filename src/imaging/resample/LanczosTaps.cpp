#include "imaging/resample/LanczosTaps.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <numbers>

namespace vellumine::imaging {

namespace {

constexpr double lobes = 3;

/// sinc(t) * sinc(t / 3) inside the three lobes. Its two sines are one: sin 3a = 3 sin a - 4 sin^3
/// a.
double lanczos(double t)
{
    if (std::abs(t) >= lobes) {
        return 0;
    }
    const double angle = std::numbers::pi * t / lobes;
    if (std::abs(angle) < 1e-6) {
        return 1;
    }
    const double sine = std::sin(angle);
    return (3 * sine - 4 * sine * sine * sine) * sine / (lobes * angle * angle);
}

int mirrored(int sample, int count)
{
    const int inside = sample < 0 ? -1 - sample : sample;
    return std::clamp(inside < count ? inside : 2 * count - 1 - inside, 0, count - 1);
}

} // namespace

LanczosTaps::LanczosTaps(int source, double extent, int target)
{
    assert(source > 0 && target > 0 && extent > 0);
    const double scale = extent / target;
    const double widening = std::max(scale, 1.0);
    const double reach = lobes * widening;
    const int reached = static_cast<int>(std::ceil(2 * reach));
    m_count = std::min(source, reached);
    m_first.reserve(static_cast<std::size_t>(target));
    m_weights.reserve(static_cast<std::size_t>(target) * static_cast<std::size_t>(m_count));
    std::vector<double> weights;
    for (int sample = 0; sample < target; ++sample) {
        const double centre = (sample + 0.5) * scale;
        const int begin = static_cast<int>(std::ceil(centre - reach - 0.5));
        const int first = std::clamp(begin, 0, source - m_count);
        weights.assign(static_cast<std::size_t>(m_count), 0);
        double sum = 0;
        for (int i = begin; i < begin + reached; ++i) {
            const double weight = lanczos((i + 0.5 - centre) / widening);
            const int at = std::clamp(mirrored(i, source) - first, 0, m_count - 1);
            weights[static_cast<std::size_t>(at)] += weight;
            sum += weight;
        }
        m_first.push_back(first);
        for (const double weight : weights) {
            m_weights.push_back(static_cast<float>(weight / sum));
        }
    }
}

} // namespace vellumine::imaging
