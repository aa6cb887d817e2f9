#include "imaging/PixelConversion.h"
#include "imaging/codecs/gif/GifCodec.h"
#include "imaging/codecs/gif/GifPalette.h"

#include <algorithm>
#include <array>
#include <gif_lib.h>
#include <memory>
#include <new>

namespace vellumine::imaging::gif {

namespace {

constexpr int maximumSide = 65'535;

int appendOutput(GifFileType* file, const GifByteType* bytes, int count)
{
    auto& output = *static_cast<ByteBuffer*>(file->UserData);
    const auto added = std::as_bytes(std::span(bytes, static_cast<std::size_t>(count)));
    try {
        output.insert(output.end(), added.begin(), added.end());
    } catch (const std::bad_alloc&) {
        return 0; // must not travel through the library
    }
    return count;
}

struct CloseFile {
    void operator()(GifFileType* file) const { EGifCloseFile(file, nullptr); }
};
using File = std::unique_ptr<GifFileType, CloseFile>;
using ColorMap = std::unique_ptr<ColorMapObject, decltype(&GifFreeMapObject)>;

// The format's palettes are 2, 4, 8 ... 256 colours long.
ColorMap colorMap(const std::vector<IndexedImage::Color>& palette)
{
    const int bits = std::max(1, GifBitSize(static_cast<int>(palette.size())));
    std::vector<GifColorType> colors(std::size_t { 1 } << static_cast<unsigned>(bits));
    std::ranges::transform(palette, colors.begin(), [](const IndexedImage::Color& color) {
        return GifColorType { color.red, color.green, color.blue };
    });
    return { GifMakeMapObject(static_cast<int>(colors.size()), colors.data()), GifFreeMapObject };
}

bool writeTransparency(GifFileType* file, std::uint8_t index)
{
    const GraphicsControlBlock control { DISPOSAL_UNSPECIFIED, false, 0, index };
    std::array<GifByteType, 4> block {};
    EGifGCBToExtension(&control, block.data());
    return EGifPutExtension(
               file, GRAPHICS_EXT_FUNC_CODE, static_cast<int>(block.size()), block.data())
        == GIF_OK;
}

/// In blocks as long as they can be. An empty one would be none.
bool writeComment(GifFileType* file, ByteSpan comment)
{
    constexpr std::size_t longestBlock = 255;
    if (comment.empty()) {
        return true;
    }
    if (EGifPutExtensionLeader(file, COMMENT_EXT_FUNC_CODE) == GIF_ERROR) {
        return false;
    }
    while (!comment.empty()) {
        const ByteSpan block = comment.first(std::min(comment.size(), longestBlock));
        if (EGifPutExtensionBlock(file, static_cast<int>(block.size()), block.data())
            == GIF_ERROR) {
            return false;
        }
        comment = comment.subspan(block.size());
    }
    return EGifPutExtensionTrailer(file) == GIF_OK;
}

bool writePicture(GifFileType* file, IndexedImage& image, const FileTexts& comments)
{
    const ColorMap map = colorMap(image.palette);
    if (!map) {
        return false;
    }
    const int width = image.size.width;
    const int height = image.size.height;
    EGifSetGifVersion(file, image.transparentIndex.has_value() || !comments.empty());
    if (EGifPutScreenDesc(file, width, height, 8, 0, map.get()) == GIF_ERROR) {
        return false;
    }
    for (const FileText& comment : comments.list()) {
        if (!writeComment(file, comment.content)) {
            return false;
        }
    }
    if (image.transparentIndex && !writeTransparency(file, *image.transparentIndex)) {
        return false;
    }
    if (EGifPutImageDesc(file, 0, 0, width, height, false, nullptr) == GIF_ERROR) {
        return false;
    }
    for (int y = 0; y < height; ++y) {
        std::uint8_t* const row = image.indexes.data() + static_cast<std::ptrdiff_t>(y) * width;
        if (EGifPutLine(file, row, width) == GIF_ERROR) {
            return false;
        }
    }
    return true;
}

} // namespace

Result<ByteBuffer> encode(const Image& image, const EncodeOptions& options)
{
    if (image.layout().model == ColorModel::cmyk) {
        return failure(Error::Kind::unsupported, "a GIF holds no CMYK");
    }
    if (image.width() > maximumSide || image.height() > maximumSide) {
        return failure(Error::Kind::encodingFailed, "a GIF's sides are 65,535 at most");
    }
    const auto rgba = relayout(image, { ColorModel::rgb, 8, AlphaInfo::last });
    if (!rgba) {
        return tl::unexpected(rgba.error());
    }
    auto picture = indexed(*rgba);
    if (!picture) {
        return tl::unexpected(picture.error());
    }

    ByteBuffer output;
    int error = E_GIF_SUCCEEDED;
    File file(EGifOpen(&output, appendOutput, &error));
    if (!file || !writePicture(file.get(), *picture, options.texts)
        || EGifCloseFile(file.release(), &error) == GIF_ERROR) {
        return failure(Error::Kind::encodingFailed, "the GIF could not be written");
    }
    return output;
}

} // namespace vellumine::imaging::gif
