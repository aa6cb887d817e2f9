#include "imaging/BitmapContext.h"
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

std::string header(imaging::Size size)
{
    return "P7\nWIDTH " + std::to_string(size.width) + "\nHEIGHT " + std::to_string(size.height)
        + "\nDEPTH 4\nMAXVAL 255\nTUPLTYPE RGB_ALPHA\nENDHDR\n";
}

/// Rows to write at once: as many as stay in the cache from the look at their alpha to the copy
/// that the system makes.
int rowsPerPiece(std::size_t rowBytes)
{
    constexpr std::size_t piece = std::size_t { 1 } << 18U;
    return static_cast<int>(std::max<std::size_t>(1, piece / rowBytes));
}

std::span<const std::uint8_t> samples(std::span<const std::byte> row)
{
    return { reinterpret_cast<const std::uint8_t*>(row.data()), row.size() };
}

/// Rows without gaps between them; none where there are some.
std::optional<std::span<const std::uint8_t>> joinedRows(const Image& image, int top, int count)
{
    const auto first = samples(image.row(top));
    if (first.size() != image.rowBytes()) {
        return std::nullopt;
    }
    return std::span(first.data(), first.size() * static_cast<std::size_t>(count));
}

/// The pixels with straight alpha, piece by piece: those of opaque pictures, which nearly all are,
/// go from where they stand.
class StraightPixels {
public:
    explicit StraightPixels(const Image& image)
        : m_image(image)
    {
    }

    /// Valid until the next call.
    [[nodiscard]] std::span<const std::uint8_t> rows(int top, int count)
    {
        const auto joined = joinedRows(m_image, top, count);
        if (joined && isOpaque(*joined)) {
            return *joined;
        }
        const std::size_t rowBytes = static_cast<std::size_t>(m_image.width()) * bytesPerPixel;
        m_piece.resize(rowBytes * static_cast<std::size_t>(count));
        std::span<std::uint8_t> left(m_piece);
        for (int y = top; y < top + count; ++y) {
            unpremultiply(samples(m_image.row(y)), left.first(rowBytes));
            left = left.subspan(rowBytes);
        }
        return m_piece;
    }

private:
    const Image& m_image;
    std::vector<std::uint8_t> m_piece;
};

platform::Result<void> writeFile(const Image& image, const std::filesystem::path& path)
{
    const auto file = FileDescriptor::createPrivateFile(path);
    if (!file) {
        return tl::unexpected(file.error());
    }
    const std::string head = header(image.size());
    if (auto written = file->writeAll(std::as_bytes(std::span(head))); !written) {
        return written;
    }
    StraightPixels pixels(image);
    const int rows = rowsPerPiece(static_cast<std::size_t>(image.width()) * bytesPerPixel);
    for (int top = 0; top < image.height(); top += rows) {
        const auto piece = pixels.rows(top, std::min(rows, image.height() - top));
        if (auto written = file->writeAll(std::as_bytes(piece)); !written) {
            return written;
        }
    }
    return {};
}

} // namespace

Outcome<void> ImageOptimizer::writePAM(const Image& image, const QUrl& url)
{
    const auto drawn = deviceRgbImage(image);
    if (!drawn) {
        return failed(CannotCreateDestination { url });
    }
    // Written in pieces, so that a large picture is not in memory twice. Nobody else knows the
    // name yet: the file is seen only when it is complete.
    const auto written = writeFile(*drawn, platform::toPath(url));
    if (!written) {
        return failed(CannotFinalize { url, written.error().text });
    }
    return {};
}

} // namespace vellumine
