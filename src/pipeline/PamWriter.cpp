#include "imaging/BitmapContext.h"
#include "imaging/PixelConversion.h"
#include "pipeline/ImageOptimizer.h"
#include "pipeline/Unpremultiply.h"
#include "platform/FileDescriptor.h"
#include "platform/FilePath.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace vellumine {

using imaging::BitmapContext;
using imaging::ColorSpace;
using imaging::Image;
using platform::FileDescriptor;

namespace {

constexpr std::size_t bytesPerPixel = 4;

/// The picture as 8-bit RGBA with premultiplied alpha in sRGB numbers: itself when it is that
/// already, which every redrawn picture is.
imaging::Result<Image> deviceRgbImage(const Image& image)
{
    if (image.layout() == imaging::rgba8Premultiplied && image.colorSpace().isSRgbEquivalent()) {
        return image;
    }
    auto context = BitmapContext::create(image.size(), 8, ColorSpace::deviceRgb());
    if (!context) {
        return tl::unexpected(context.error());
    }
    if (auto drawn = context->draw(image); !drawn) {
        return tl::unexpected(drawn.error());
    }
    return std::move(*context).makeImage();
}

/// Whether it was the picture that could not be had, and not a bitmap to draw it into.
bool isLoss(const imaging::Error& error)
{
    return error.kind != imaging::Error::Kind::outOfMemory
        && error.kind != imaging::Error::Kind::unsupported;
}

std::string header(imaging::Size size)
{
    return "P7\nWIDTH " + std::to_string(size.width) + "\nHEIGHT " + std::to_string(size.height)
        + "\nDEPTH 4\nMAXVAL 255\nTUPLTYPE RGB_ALPHA\nENDHDR\n";
}

/// Rows to write at once: enough for the system to keep the file in large pieces, which costs it
/// less than small ones, though those would still be in the cache when they are written.
int rowsPerPiece(std::size_t rowBytes)
{
    constexpr std::size_t piece = std::size_t { 2 } << 20U;
    return static_cast<int>(std::max<std::size_t>(1, piece / rowBytes));
}

std::span<const std::uint8_t> samples(std::span<const std::byte> row)
{
    return { reinterpret_cast<const std::uint8_t*>(row.data()), row.size() };
}

/// All rows, if there are no gaps between them.
std::optional<std::span<const std::uint8_t>> joinedRows(const Image& image)
{
    const auto first = samples(image.row(0));
    if (first.size() != image.rowBytes()) {
        return std::nullopt;
    }
    return std::span(first.data(), first.size() * static_cast<std::size_t>(image.height()));
}

/// Pixels with straight alpha: those of opaque pictures, which nearly all are, as they stand.
/// `memory` is for the others.
std::span<const std::uint8_t> straightPixels(const Image& piece, std::vector<std::uint8_t>& memory)
{
    const auto joined = joinedRows(piece);
    if (joined && imaging::isOpaque(*joined)) {
        return *joined;
    }
    const std::size_t rowBytes = static_cast<std::size_t>(piece.width()) * bytesPerPixel;
    memory.resize(rowBytes * static_cast<std::size_t>(piece.height()));
    std::span<std::uint8_t> left(memory);
    for (int y = 0; y < piece.height(); ++y) {
        unpremultiply(samples(piece.row(y)), left.first(rowBytes));
        left = left.subspan(rowBytes);
    }
    return memory;
}

/// Piece by piece, so that a large picture is not in memory twice, or, drawn elsewhere, never here
/// as a whole.
Outcome<void> writeFile(const Image& image, const QUrl& url)
{
    const auto cannotWrite = [&url](const platform::FileError& error) {
        return failed(CannotFinalize { url, error.text });
    };
    const auto file = FileDescriptor::createPrivateFile(platform::toPath(url));
    if (!file) {
        return cannotWrite(file.error());
    }
    const std::string head = header(image.size());
    if (const auto written = file->writeAll(std::as_bytes(std::span(head))); !written) {
        return cannotWrite(written.error());
    }
    std::vector<std::uint8_t> memory;
    const int rows = rowsPerPiece(static_cast<std::size_t>(image.width()) * bytesPerPixel);
    for (int top = 0; top < image.height(); top += rows) {
        const auto piece
            = image.rows({ 0, top, image.width(), std::min(rows, image.height() - top) });
        if (!piece) {
            return failed(UnreadableImage {}); // whatever holds the pixels lost them
        }
        const auto pixels = straightPixels(*piece, memory);
        if (const auto written = file->writeAll(std::as_bytes(pixels)); !written) {
            return cannotWrite(written.error());
        }
    }
    return {};
}

} // namespace

Outcome<void> ImageOptimizer::writePAM(const Image& image, const QUrl& url)
{
    const auto drawn = deviceRgbImage(image);
    if (!drawn) {
        return failed(isLoss(drawn.error()) ? ImageOptimizerError(UnreadableImage {})
                                            : CannotCreateDestination { url });
    }
    // Nobody else knows the name yet: the file is seen only when it is complete.
    return writeFile(*drawn, url);
}

} // namespace vellumine
