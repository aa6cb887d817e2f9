// Writes a small sound file of every kind of picture in every format that can be written, for the
// fuzz targets to start from:
//     make_seeds FOLDER
// The files of a format land in a folder of its name: FOLDER/png/grey.png.

#include "imaging/codecs/CodecTable.h"

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <span>
#include <string>
#include <utility>

namespace {

using namespace vellumine::imaging;

constexpr std::array<std::pair<const char*, PixelLayout>, 5> kinds { {
    { "rgb", { ColorModel::rgb, 8, AlphaInfo::none } },
    { "alpha", { ColorModel::rgb, 8, AlphaInfo::last } },
    { "grey", { ColorModel::grey, 8, AlphaInfo::none } },
    { "deep", { ColorModel::rgb, 16, AlphaInfo::none } },
    { "cmyk", { ColorModel::cmyk, 8, AlphaInfo::none } },
} };

ColorSpace colorSpaceOf(ColorModel model)
{
    switch (model) {
    case ColorModel::grey:
        return ColorSpace::grey();
    case ColorModel::rgb:
        return ColorSpace::sRgb();
    case ColorModel::cmyk:
        return ColorSpace::deviceCmyk();
    }
    std::abort();
}

Image pattern(PixelLayout layout)
{
    PixelBuffer pixels = PixelBuffer::create({ 19, 13 }, layout).value();
    for (int y = 0; y < pixels.height(); ++y) {
        unsigned value = static_cast<unsigned>(y) * 16U;
        for (std::byte& sample : pixels.row(y)) {
            sample = static_cast<std::byte>(value & 0xFFU);
            value += 5U;
        }
    }
    return { std::move(pixels), colorSpaceOf(layout.model) };
}

bool write(const std::filesystem::path& path, ByteSpan bytes)
{
    std::filesystem::create_directories(path.parent_path());
    std::ofstream file(path, std::ios::binary);
    for (const std::byte byte : bytes) {
        file.put(std::to_integer<char>(byte));
    }
    return file.good();
}

/// Whether every file of the format could be made.
bool writeSeeds(const Codec& codec, const std::filesystem::path& folder)
{
    const std::string format(preferredExtension(codec.type));
    for (const auto& [name, layout] : kinds) {
        const auto file = codec.encode(pattern(layout), {});
        const std::filesystem::path path = folder / format / (std::string(name) + "." + format);
        if (!file && file.error().kind == Error::Kind::unsupported) {
            continue; // a kind that the format cannot hold
        }
        if (!file || !write(path, *file)) {
            std::cerr << path << " could not be made\n";
            return false;
        }
    }
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    const std::span arguments(argv, static_cast<std::size_t>(argc));
    if (arguments.size() != 2) {
        std::cerr << "Usage: make_seeds FOLDER\n";
        return 2;
    }
    bool complete = true;
    for (const Codec& codec : codecTable()) {
        if (codec.encode != nullptr) {
            complete = writeSeeds(codec, arguments[1]) && complete;
        }
    }
    return complete ? EXIT_SUCCESS : EXIT_FAILURE;
}
