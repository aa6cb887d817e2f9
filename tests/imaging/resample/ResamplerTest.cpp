#include "imaging/resample/Resampler.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace vellumine::imaging {
namespace {

constexpr Size source { 61, 43 };
constexpr Size target { 40, 28 };

using Samples = std::vector<std::uint16_t>;

/// Something different for every sample of every plane.
std::uint16_t sampleAt(int plane, int x, int y)
{
    return static_cast<std::uint16_t>(x * 977 + y * 3571 + plane * 20'011);
}

RowHandler appendingTo(Samples& samples, int planes)
{
    return [&samples, planes](const PlanarRow& row) {
        for (int plane = 0; plane < planes; ++plane) {
            const auto* const first = row.planes.at(static_cast<std::size_t>(plane));
            samples.insert(samples.end(), first + row.left, first + row.right);
        }
    };
}

Samples resampled(int planes, ResampleFilter filter)
{
    Samples samples;
    const RowHandler read = [planes](const PlanarRow& row) {
        for (int plane = 0; plane < planes; ++plane) {
            for (int x = row.left; x < row.right; ++x) {
                row.planes.at(static_cast<std::size_t>(plane))[x] = sampleAt(plane, x, row.y);
            }
        }
    };
    EXPECT_TRUE(resample({ source, target, planes, filter, read, appendingTo(samples, planes) }));
    return samples;
}

struct Job {
    std::string name;
    std::function<Samples()> run;
};

/// Of one size, and each of another kind.
std::vector<Job> jobsOfOneSize()
{
    std::vector<Job> jobs;
    for (const auto filter : { ResampleFilter::point, ResampleFilter::bilinear,
             ResampleFilter::bicubic, ResampleFilter::lanczos3 }) {
        const std::string suffix = " with filter " + std::to_string(static_cast<int>(filter));
        for (int planes = 1; planes <= 4; ++planes) {
            jobs.push_back({ std::to_string(planes) + " planes" + suffix,
                [planes, filter] { return resampled(planes, filter); } });
        }
    }
    return jobs;
}

TEST(Resample, jobsOfAnotherKindGiveSomethingElse)
{
    const std::vector<Job> jobs = jobsOfOneSize();
    for (std::size_t i = 1; i < jobs.size(); ++i) {
        EXPECT_NE(jobs[i - 1].run(), jobs[i].run()) << jobs[i].name;
    }
}

} // namespace
} // namespace vellumine::imaging
