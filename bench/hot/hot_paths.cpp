// Runs one hot path once, for its instructions to be counted; without a name, prints all names, and
// with --made-with what else the counts depend on. What a path works on is made before and counts
// for nothing.

#include "imaging/BitmapContext.h"
#include "imaging/ImageSource.h"
#include "imaging/Orientation.h"
#include "imaging/PixelConversion.h"
#include "imaging/codecs/CodecTable.h"
#include "pipeline/Unpremultiply.h"
#include "support/TestImages.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Instructions inside this function are counted, by its name.
extern "C" [[gnu::noinline]] void runHotPath(const std::function<bool()>& path, bool* done)
{
    *done = path();
}

namespace {

using namespace vellumine;
using imaging::BitmapContext;
using imaging::ByteBuffer;
using imaging::ColorSpace;
using imaging::Image;
using imaging::ImageSource;
using imaging::Size;
using imaging::UniformType;
using Path = std::function<bool()>;

constexpr Size camera { 1201, 799 };
constexpr Size screen { 512, 340 };

/// In Display P3, so that colours have to be converted.
Image photo(Size size = camera)
{
    const auto space = ColorSpace::fromPrimaries(
        { { 0.3127, 0.3290 }, { 0.68, 0.32 }, { 0.265, 0.69 }, { 0.15, 0.06 } }, {});
    return test::syntheticPhoto(size).withColorSpace(space.value());
}

/// With alpha that is neither nothing nor all.
Image drawing()
{
    return test::gradient(camera, imaging::rgba8Premultiplied);
}

ByteBuffer encoded(const Image& image, UniformType type, imaging::Effort effort)
{
    imaging::EncodeOptions options;
    options.quality = 0.9;
    options.effort = effort;
    return imaging::codecForType(type).encode(image, options).value();
}

Path decode(const Image& image, UniformType type)
{
    return [file = encoded(image, type, imaging::Effort::fastest)] {
        return ImageSource::create(file, {})->image().has_value();
    };
}

Path encode(const Image& image, imaging::Effort effort)
{
    return [image, effort] { return !encoded(image, UniformType::png, effort).empty(); };
}

Path draw(const Image& image, Size size)
{
    return [image, size] {
        auto context = BitmapContext::create(size, 8, ColorSpace::sRgb()).value();
        return context.draw(image).has_value();
    };
}

Path drawWhileDecoding()
{
    return [file = encoded(photo(), UniformType::jpeg, imaging::Effort::fastest)] {
        const imaging::DrawingPlan plan { .size = screen,
            .turnedSize = screen,
            .colors = imaging::BitmapColors::sRgb,
            .quality = imaging::InterpolationQuality::high,
            .middle = { 256, 170 } };
        return ImageSource::create(file, {})->image(imaging::ImageUse::toBeDrawn, plan).has_value();
    };
}

/// Its colour is halved: the file that it comes from has it at full size.
Path encodeFromPlanes()
{
    return [file = encoded(photo(), UniformType::jpeg, imaging::Effort::fastest)] {
        const auto image = ImageSource::create(file, {})->image(imaging::ImageUse::toBeDrawn);
        imaging::EncodeOptions options;
        options.quality = 0.82;
        return image
            && imaging::codecForType(UniformType::jpeg).encode(*image, options).has_value();
    };
}

Path turn()
{
    return
        [image = drawing()] { return upright(image, imaging::Orientation::rightTop).has_value(); };
}

Path divideAlphaOut()
{
    return [image = drawing()] {
        std::vector<std::uint8_t> straight(image.row(0).size());
        for (int y = 0; y < image.height(); ++y) {
            const std::span row(image.row8(y), straight.size());
            if (!imaging::isOpaque(row)) {
                unpremultiply(row, straight);
            }
        }
        return true;
    };
}

const std::map<std::string_view, Path (*)()> paths {
    { "a photograph drawn while it is decoded", drawWhileDecoding },
    { "a photograph encoded from its planes", encodeFromPlanes },
    { "a photograph in rows drawn small", [] { return draw(photo(), screen); } },
    { "a photograph in rows drawn in its own size", [] { return draw(photo(), camera); } },
    { "a drawing with alpha drawn small", [] { return draw(drawing(), screen); } },
    { "a picture turned upright", turn },
    { "alpha divided out of a picture", divideAlphaOut },
    { "PNG written quickly", [] { return encode(photo(), imaging::Effort::fastest); } },
    { "PNG written small",
        [] {
            return encode(photo({ 301, 199 }), imaging::Effort::smallest);
        } },
    { "BMP read", [] { return decode(photo(), UniformType::bmp); } },
    { "TIFF read", [] { return decode(photo(), UniformType::tiff); } },
    { "GIF read",
        [] {
            return decode(photo({ 301, 199 }), UniformType::gif);
        } },
};

/// What the counts depend on beside the code: the compiler, and the vectors that loops use here.
std::string madeWith()
{
#ifdef __x86_64__
    const char* const processor = __builtin_cpu_supports("avx2") ? "x86-64 with AVX2" : "x86-64";
#else
    const char* const processor = "another processor";
#endif
    return std::string(__VERSION__) + ", " + processor;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2) {
        for (const auto& [name, make] : paths) {
            std::puts(std::string(name).c_str());
        }
        return EXIT_SUCCESS;
    }
    if (std::string_view(argv[1]) == "--made-with") {
        std::puts(madeWith().c_str());
        return EXIT_SUCCESS;
    }
    const auto found = paths.find(argv[1]);
    if (found == paths.end()) {
        return EXIT_FAILURE;
    }
    const Path path = found->second();
    bool done = false;
    runHotPath(path, &done);
    return done ? EXIT_SUCCESS : EXIT_FAILURE;
}
