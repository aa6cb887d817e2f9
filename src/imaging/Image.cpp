#include "imaging/Image.h"

#include "imaging/DeferredPixels.h"
#include "imaging/Orientation.h"
#include "imaging/PixelMemory.h"

#include <cassert>
#include <cstring>

namespace vellumine::imaging {

namespace {

std::size_t tightRowBytes(Size size, PixelLayout layout)
{
    return static_cast<std::size_t>(size.width) * static_cast<std::size_t>(layout.bytesPerPixel());
}

} // namespace

PixelBuffer::PixelBuffer(Size size, PixelLayout layout, std::shared_ptr<std::byte[]> bytes)
    : m_size(size)
    , m_layout(layout)
    , m_rowBytes(tightRowBytes(size, layout))
    , m_bytes(std::move(bytes))
{
}

Result<PixelBuffer> PixelBuffer::create(Size size, PixelLayout layout)
{
    if (size.width < 1 || size.height < 1) {
        return failure(Error::Kind::malformed, "the picture has no pixels");
    }
    const std::size_t total = tightRowBytes(size, layout) * static_cast<std::size_t>(size.height);
    std::shared_ptr<std::byte[]> bytes = allocatePixels(total);
    if (!bytes) {
        return failure(Error::Kind::outOfMemory, "no memory for the pixels");
    }
    return PixelBuffer(size, layout, std::move(bytes));
}

Result<PixelBuffer> PixelBuffer::createZeroed(Size size, PixelLayout layout)
{
    auto buffer = create(size, layout);
    if (buffer) {
        const auto bytes = buffer->bytes();
        std::memset(bytes.data(), 0, bytes.size());
    }
    return buffer;
}

std::span<std::byte> PixelBuffer::row(int y)
{
    assert(y >= 0 && y < m_size.height);
    return { m_bytes.get() + static_cast<std::size_t>(y) * m_rowBytes, m_rowBytes };
}

std::span<std::byte> PixelBuffer::bytes()
{
    return { m_bytes.get(), m_rowBytes * static_cast<std::size_t>(m_size.height) };
}

std::uint8_t* PixelBuffer::row8(int y)
{
    assert(m_layout.bitsPerComponent == 8);
    return reinterpret_cast<std::uint8_t*>(row(y).data());
}

std::uint16_t* PixelBuffer::row16(int y)
{
    assert(m_layout.bitsPerComponent == 16);
    return reinterpret_cast<std::uint16_t*>(row(y).data());
}

Image::Image(PixelBuffer&& pixels, ColorSpace colorSpace)
    : m_size(pixels.m_size)
    , m_layout(pixels.m_layout)
    , m_rowBytes(pixels.m_rowBytes)
    , m_colorSpace(std::move(colorSpace))
    , m_pixels(std::move(pixels.m_bytes))
{
    assert(m_colorSpace.model() == m_layout.model);
}

Image::Image(Size size, PixelLayout layout, std::size_t rowBytes, ColorSpace colorSpace,
    std::shared_ptr<const std::byte[]> pixels)
    : m_size(size)
    , m_layout(layout)
    , m_rowBytes(rowBytes)
    , m_colorSpace(std::move(colorSpace))
    , m_pixels(std::move(pixels))
{
    assert(size.width > 0 && size.height > 0);
    assert(rowBytes >= tightRowBytes(size, layout));
    assert(m_colorSpace.model() == m_layout.model);
}

Image::Image(Size storedSize, PixelLayout layout, ColorSpace colorSpace,
    std::shared_ptr<const DeferredPixels> pixels, Orientation orientation)
    : m_size(uprightSize(storedSize, orientation))
    , m_layout(layout)
    , m_colorSpace(std::move(colorSpace))
    , m_deferred(std::move(pixels))
    , m_orientation(orientation)
{
    assert(m_deferred);
}

std::span<const std::byte> Image::row(int y) const
{
    assert(hasRows());
    assert(y >= 0 && y < m_size.height);
    return { m_pixels.get() + static_cast<std::size_t>(y) * m_rowBytes,
        tightRowBytes(m_size, m_layout) };
}

const std::uint8_t* Image::row8(int y) const
{
    assert(m_layout.bitsPerComponent == 8);
    return reinterpret_cast<const std::uint8_t*>(row(y).data());
}

const std::uint16_t* Image::row16(int y) const
{
    assert(m_layout.bitsPerComponent == 16);
    return reinterpret_cast<const std::uint16_t*>(row(y).data());
}

Image Image::cropped(Rect rect) const
{
    assert(hasRows() && contains(m_size, rect));
    const std::size_t offset = static_cast<std::size_t>(rect.y) * m_rowBytes
        + static_cast<std::size_t>(rect.x) * static_cast<std::size_t>(m_layout.bytesPerPixel());
    return { rect.size(), m_layout, m_rowBytes, m_colorSpace,
        std::shared_ptr<const std::byte[]>(m_pixels, m_pixels.get() + offset) };
}

Image Image::withColorSpace(ColorSpace colorSpace) const
{
    assert(hasRows() && colorSpace.model() == m_layout.model);
    Image image = *this;
    image.m_colorSpace = std::move(colorSpace);
    return image;
}

Result<Image> Image::rows(Rect rect) const
{
    assert(contains(m_size, rect));
    if (hasRows()) {
        return cropped(rect);
    }
    return m_deferred->rows(storedRect(rect, m_size, m_orientation))
        .and_then([this](const Image& stored) { return upright(stored, m_orientation); });
}

Result<Image> Image::withRows() const
{
    return hasRows() ? *this : rows({ 0, 0, m_size.width, m_size.height });
}

bool Image::isSameAs(const Image& other) const
{
    return m_pixels == other.m_pixels && m_deferred == other.m_deferred
        && m_orientation == other.m_orientation && m_size == other.m_size
        && m_layout == other.m_layout && m_rowBytes == other.m_rowBytes
        && m_colorSpace == other.m_colorSpace;
}

} // namespace vellumine::imaging
