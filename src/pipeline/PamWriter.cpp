#include "imaging/BitmapContext.h"
#include "pipeline/ImageOptimizer.h"
#include "pipeline/Unpremultiply.h"
#include "platform/FileOperations.h"
#include "platform/FilePath.h"

#include <QtGlobal>

#include <cerrno>
#include <cstring>
#include <memory>
#include <new>
#include <string>

namespace vellumine {

using imaging::BitmapContext;
using imaging::ColorSpace;
using imaging::Image;

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

std::size_t bodyBytes(imaging::Size size)
{
    std::size_t bytes = 0;
    if (__builtin_mul_overflow(static_cast<std::size_t>(size.width) * bytesPerPixel,
            static_cast<std::size_t>(size.height), &bytes)) {
        qFatal("the picture's bytes cannot be counted");
    }
    return bytes;
}

std::span<const std::uint8_t> samples(std::span<const std::byte> row)
{
    return { reinterpret_cast<const std::uint8_t*>(row.data()), row.size() };
}

} // namespace

Outcome<void> ImageOptimizer::writePAM(const Image& image, const QUrl& url)
{
    const auto drawn = deviceRgbImage(image);
    if (!drawn) {
        return failed(CannotCreateDestination { url });
    }
    const std::string head = header(drawn->size());
    const std::size_t total = head.size() + bodyBytes(drawn->size());
    // One block and one write. Left uninitialised: every byte of it is written below.
    const std::unique_ptr<std::byte[]> file(new (std::nothrow) std::byte[total]);
    if (!file) {
        return failed(CannotFinalize { url, platform::FileError::fromErrno(ENOMEM).text });
    }
    std::memcpy(file.get(), head.data(), head.size());
    auto* body = reinterpret_cast<std::uint8_t*>(file.get() + head.size());
    const std::size_t rowBytes = static_cast<std::size_t>(drawn->width()) * bytesPerPixel;
    for (int y = 0; y < drawn->height(); ++y) {
        unpremultiply(samples(drawn->row(y)), { body, rowBytes });
        body += rowBytes;
    }
    // Nobody else knows the name, so that nobody can see the file before it is complete.
    const auto written = platform::writePrivateFile(platform::toPath(url), { file.get(), total });
    if (!written) {
        return failed(CannotFinalize { url, written.error().text });
    }
    return {};
}

} // namespace vellumine
