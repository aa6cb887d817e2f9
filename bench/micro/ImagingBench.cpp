// The image service's expensive steps, each alone, on a picture of a camera's size.

#include "imaging/BitmapContext.h"
#include "imaging/codecs/CodecTable.h"
#include "support/TestImages.h"

#include <benchmark/benchmark.h>

namespace {

using namespace vellumine;
using imaging::BitmapContext;
using imaging::ColorSpace;
using imaging::Image;
using imaging::Size;
using imaging::UniformType;

constexpr Size camera { 6000, 4000 };
constexpr Size screen { 2560, 1707 };

const Image& cameraPhoto()
{
    static const Image photo = test::syntheticPhoto(camera);
    return photo;
}

imaging::EncodeOptions atQuality(double quality)
{
    imaging::EncodeOptions options;
    options.quality = quality;
    return options;
}

void drawAt(benchmark::State& state, Size size)
{
    const Image& photo = cameraPhoto(); // made outside the measured time
    for ([[maybe_unused]] auto iteration : state) {
        BitmapContext context = BitmapContext::create(
            size, 8, ColorSpace::sRgb(), imaging::AlphaInfo::premultipliedLast)
                                    .value();
        const bool drawn = context.draw(photo).has_value();
        benchmark::DoNotOptimize(drawn);
    }
}

void shrinkToScreen(benchmark::State& state)
{
    drawAt(state, screen);
}
BENCHMARK(shrinkToScreen)->Unit(benchmark::kMillisecond);

void changeLayoutOnly(benchmark::State& state)
{
    drawAt(state, camera);
}
BENCHMARK(changeLayoutOnly)->Unit(benchmark::kMillisecond);

void decode(benchmark::State& state, UniformType type)
{
    const imaging::Codec& codec = imaging::codecForType(type);
    const imaging::ByteBuffer file = codec.encode(cameraPhoto(), atQuality(0.9)).value();
    for ([[maybe_unused]] auto iteration : state) {
        const auto decoded = codec.decode(file, { .limits = {}, .wish = {} });
        if (!decoded) {
            state.SkipWithError(decoded.error().detail.c_str());
            break;
        }
    }
}
BENCHMARK_CAPTURE(decode, jpeg, UniformType::jpeg)->Unit(benchmark::kMillisecond);

void encode(benchmark::State& state, UniformType type)
{
    const Image photo = test::syntheticPhoto(screen);
    const imaging::Codec& codec = imaging::codecForType(type);
    std::size_t bytes = 0;
    for ([[maybe_unused]] auto iteration : state) {
        bytes = codec.encode(photo, atQuality(0.82)).value().size();
    }
    state.counters["bytes"] = static_cast<double>(bytes);
}
BENCHMARK_CAPTURE(encode, jpeg, UniformType::jpeg)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(encode, png, UniformType::png)->Unit(benchmark::kMillisecond);

} // namespace
