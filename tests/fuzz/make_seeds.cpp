// Writes a small sound file of every kind of picture in every format that can be written, for the
// fuzz targets to start from:
//     make_seeds FOLDER
// The files of a format land in a folder of its name: FOLDER/png/grey.png. The seeds of the other
// targets are messages, a page and pixels, each as its target takes its input apart.

#include "confined/protocol/Messages.h"
#include "confined/protocol/PictureAttachments.h"
#include "imaging/codecs/CodecTable.h"

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace {

using namespace vellumine::imaging;
namespace confined = vellumine::confined;

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

/// With its length in front.
void append(ByteBuffer& seed, const ByteBuffer& message)
{
    seed.push_back(static_cast<std::byte>(message.size()));
    seed.insert(seed.end(), message.begin(), message.end());
}

/// A conversation with a helper about a picture, which stands behind it.
ByteBuffer requestsSeed(const Codec& codec)
{
    using confined::Request;
    const DrawingPlan plan { .size = { 9, 7 }, .turnedSize = { 7, 9 }, .middle = { 8, 8 } };
    const std::array<Request, 11> requests { confined::OpenRequest {},
        confined::DecodeRequest { { Rect { 3, 2, 8, 8 } } },
        confined::DecodeRequest { { std::nullopt, ImageUse::toBeDrawn } },
        confined::PlanesRequest { confined::RowsRequest::Of::decoded },
        confined::DrawRequest { .size = { 19, 13 }, .mayBeDeferred = true },
        confined::PlanesRequest { confined::RowsRequest::Of::drawn },
        confined::DecodeRequest { { std::nullopt, ImageUse::toBeDrawn, plan } },
        confined::ShareRequest {}, confined::RowsRequest { { 3, 2, 8, 8 } },
        confined::DrawRequest {
            { 9, 7 }, BitmapColors::deviceRgb, InterpolationQuality::high, Orientation::rightTop },
        confined::ShareRequest {} };
    ByteBuffer seed { static_cast<std::byte>(requests.size()) };
    for (const Request& request : requests) {
        append(seed, confined::serialised(request));
    }
    const auto file = codec.encode(pattern(kinds.front().second), {});
    if (file) {
        seed.insert(seed.end(), file->begin(), file->end());
    }
    return seed;
}

/// A picture as a helper answers with it.
ByteBuffer repliesSeed(PixelLayout layout)
{
    ColorSpace space = colorSpaceOf(layout.model);
    if (layout.model == ColorModel::rgb) {
        space = ColorSpace::fromIcc(space.iccProfile(), layout.model).value_or(space);
    }
    confined::PictureAttachments attached { space, Orientation::rightTop, {} };
    attached.properties.set(PropertyKey::pixelWidth, std::int64_t { 19 });
    attached.properties.set(PropertyKey::profileName, std::string("a profile"));
    const ByteBuffer attachments = confined::serialised(attached);
    const confined::DecodedReply reply { .size = { 19, 13 },
        .layout = layout,
        .isRegion = false,
        .attachmentsAddress = 8192,
        .attachmentsBytes = attachments.size() };
    ByteBuffer seed;
    append(seed, confined::serialised(confined::Reply(reply)));
    seed.insert(seed.end(), attachments.begin(), attachments.end());
    return seed;
}

/// Where a helper says that the planes of a picture are.
ByteBuffer planesSeed()
{
    ByteBuffer seed;
    append(seed,
        confined::serialised(confined::Reply(confined::PlanesReply { .size = { 19, 13 },
            .subsampling = { 2, 2 },
            .planes = { { { 64, 4096 }, { 64, 8192 }, { 64, 12288 } } } })));
    return seed;
}

bool writeText(const std::filesystem::path& path, std::string_view text)
{
    return write(path, std::as_bytes(std::span(text)));
}

/// Each block as the target for metadata tells them apart, by a byte in front.
bool writeMetadataSeeds(const std::filesystem::path& folder)
{
    using namespace std::string_view_literals;
    constexpr std::string_view exif = "II*\0\b\0\0\0\2\0"
                                      "\x12\1\3\0\1\0\0\0\6\0\0\0" // orientation
                                      "\x69\x87\4\0\1\0\0\0\x26\0\0\0" // the Exif directory
                                      "\0\0\0\0"
                                      "\1\0\0\x90\7\0\4\0\0\0000232" // its version
                                      "\0\0\0\0"sv;
    constexpr std::string_view xmp
        = "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\"><rdf:RDF"
          " xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\"><rdf:Description"
          " xmlns:tiff=\"http://ns.adobe.com/tiff/1.0/\" tiff:Orientation=\"6\"/>"
          "</rdf:RDF></x:xmpmeta>"sv;
    constexpr std::string_view iptc = "\x1C\2\x50\0\4Name\x1C\2\5\0\5Title"sv;
    const std::array<std::pair<const char*, std::string_view>, 3> blocks { {
        { "exif", exif },
        { "xmp", xmp },
        { "iptc", iptc },
    } };
    bool complete = true;
    char kind = 0;
    for (const auto& [name, block] : blocks) {
        complete = writeText(folder / name, std::string(1, kind++).append(block)) && complete;
    }
    const auto tiff = codecForType(UniformType::tiff).encode(pattern(kinds.front().second), {});
    ByteBuffer file { std::byte { 3 } };
    if (tiff) {
        file.insert(file.end(), tiff->begin(), tiff->end());
    }
    return write(folder / "tiff", file) && complete;
}

bool writeOtherSeeds(const std::filesystem::path& folder)
{
    using namespace std::string_view_literals;
    constexpr std::string_view plist = "bplist00"
                                       "\xA2\1\2" // an array of two
                                       "\x43"
                                       "abc"
                                       "\x42"
                                       "de"
                                       "\x08\x0B\x0F" // where they stand
                                       "\0\0\0\0\0\0\1\1" // how wide numbers are
                                       "\0\0\0\0\0\0\0\3\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x12"sv;
    bool complete = true;
    for (const Codec& codec : codecTable()) {
        if (codec.encode != nullptr) {
            complete = write(folder / "helper_requests" / preferredExtension(codec.type),
                           requestsSeed(codec))
                && complete;
        }
    }
    complete = write(folder / "helper_replies" / "planes", planesSeed()) && complete;
    for (const auto& [name, layout] : kinds) {
        complete = write(folder / "helper_replies" / name, repliesSeed(layout)) && complete;
        const auto byte = [](auto value) { return static_cast<std::byte>(value); };
        const ByteBuffer head { byte(layout.model), byte(layout.bitsPerComponent == 16),
            byte(layout.alpha), byte(18), byte(12), byte(1), byte(254) };
        complete = write(folder / "pam" / name, head) && complete;
    }
    return writeMetadataSeeds(folder / "metadata")
        && writeText(folder / "page/data.html",
            "<html><script type=\"application/ld+json\">{\"softwareVersion\": \"1.4.2\"}"
            "</script></html>")
        && writeText(folder / "plist/values", plist)
        && writeText(folder / "page/text.html", "<p>Version 1.5 \xC2\xB7 Linux</p>")
        && writeText(folder / "page/none.html", "<p>Soon</p>") && complete;
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
    complete = writeOtherSeeds(arguments[1]) && complete;
    return complete ? EXIT_SUCCESS : EXIT_FAILURE;
}
