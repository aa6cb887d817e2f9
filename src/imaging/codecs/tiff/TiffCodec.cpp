#include "imaging/codecs/tiff/TiffCodec.h"

#include "imaging/codecs/tiff/TiffDecoder.h"
#include "imaging/codecs/tiff/TiffDirectory.h"
#include "imaging/codecs/tiff/TiffEncoder.h"
#include "imaging/codecs/tiff/TiffLibraryDecoder.h"
#include "imaging/codecs/tiff/TiffStream.h"

#include <algorithm>
#include <array>
#include <new>
#include <string_view>

namespace vellumine::imaging::tiff {

namespace {

using namespace std::string_view_literals;

/// Byte order and version: 42 is TIFF, 43 BigTIFF.
constexpr std::array signatures { "II*\0"sv, "MM\0*"sv, "II+\0"sv, "MM\0+"sv };

Result<DecodedImage> decodePicture(ByteSpan file, const DecodeOptions& options)
{
    const auto reader = TiffReader::open(file, options.limits.maximumBytes);
    if (!reader) {
        return tl::unexpected(reader.error());
    }
    const auto directory = TiffDirectory::read(reader->get());
    if (!directory) {
        return tl::unexpected(directory.error());
    }
    if (auto ok = directory->check(options.limits); !ok) {
        return tl::unexpected(ok.error());
    }
    const Size size = directory->size();
    const bool isRegion = directory->colour != Colour::library && options.wish.region
        && contains(size, *options.wish.region);
    const Rect wanted = isRegion ? *options.wish.region : Rect { 0, 0, size.width, size.height };
    auto pixels = directory->colour == Colour::library ? decodeThroughLibrary(*reader, *directory)
                                                       : decodeBlocks(*reader, *directory, wanted);
    if (!pixels) {
        return tl::unexpected(pixels.error());
    }
    return DecodedImage { Image(*std::move(pixels), colorSpaceOf(reader->get(), file, *directory)),
        size, isRegion, {}, directory->orientation };
}

} // namespace

bool sniff(ByteSpan file)
{
    return std::ranges::any_of(signatures, [file](std::string_view signature) {
        const auto bytes = std::as_bytes(std::span(signature));
        return file.size() >= bytes.size() && std::ranges::equal(file.first(bytes.size()), bytes);
    });
}

Result<ImageHeader> readHeader(ByteSpan file)
{
    const Limits limits;
    const auto reader = TiffReader::open(file, limits.maximumBytes);
    if (!reader) {
        return tl::unexpected(reader.error());
    }
    const auto directory = TiffDirectory::read(reader->get());
    if (!directory) {
        return tl::unexpected(directory.error());
    }
    if (directory->width < 1 || directory->height < 1) {
        return failure(Error::Kind::malformed, "the picture has no pixels");
    }
    if (std::max(directory->width, directory->height) > INT32_MAX) {
        return failure(Error::Kind::limitExceeded, "a side is too long");
    }
    return ImageHeader { directory->size(), directory->layout };
}

Result<DecodedImage> decode(ByteSpan file, const DecodeOptions& options)
{
    try {
        return decodePicture(file, options);
    } catch (const std::bad_alloc&) {
        return failure(Error::Kind::outOfMemory, "no memory for the picture");
    }
}

Result<ByteBuffer> encode(const Image& image, const EncodeOptions& options)
{
    try {
        return encodePicture(image, options);
    } catch (const std::bad_alloc&) {
        return failure(Error::Kind::outOfMemory, "no memory for the file");
    }
}

} // namespace vellumine::imaging::tiff
