#pragma once

#include "imaging/Bytes.h"
#include "imaging/Error.h"
#include "imaging/Geometry.h"
#include "imaging/PixelLayout.h"
#include "imaging/colour/ColorSpace.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace vellumine::imaging {

class DeferredPixels;
enum class Orientation : std::uint8_t;

/// Pixels that are still being written, owned by one writer. Rows follow each other without gaps
/// unless a row length is given; the memory starts out uninitialised.
class PixelBuffer {
public:
    /// Fails with OutOfMemory, and with Malformed when a side is below 1.
    static Result<PixelBuffer> create(Size size, PixelLayout layout);
    /// The same with every byte zero.
    static Result<PixelBuffer> createZeroed(Size size, PixelLayout layout);

    [[nodiscard]] Size size() const { return m_size; }
    [[nodiscard]] int width() const { return m_size.width; }
    [[nodiscard]] int height() const { return m_size.height; }
    [[nodiscard]] PixelLayout layout() const { return m_layout; }
    /// Bytes from the start of one row to the start of the next.
    [[nodiscard]] std::size_t rowBytes() const { return m_rowBytes; }

    [[nodiscard]] std::span<std::byte> row(int y);
    [[nodiscard]] std::span<std::byte> bytes();
    /// Row y as 8-bit samples, `width() * layout().channels()` of them.
    [[nodiscard]] std::uint8_t* row8(int y);
    /// Row y as 16-bit samples.
    [[nodiscard]] std::uint16_t* row16(int y);

private:
    friend class Image;
    PixelBuffer(Size size, PixelLayout layout, std::shared_ptr<std::byte[]> bytes);

    Size m_size;
    PixelLayout m_layout;
    std::size_t m_rowBytes = 0;
    std::shared_ptr<std::byte[]> m_bytes;
};

/// An immutable picture. Copies share the pixels; a crop is a view of the same pixels.
///
/// Its pixels are in memory row by row, or they are deferred: decoded, and laid out in rows where
/// somebody needs that. What takes a picture takes either, unless it says otherwise.
class Image {
public:
    /// Takes the buffer's pixels over. The colour space must be of the layout's model.
    Image(PixelBuffer&& pixels, ColorSpace colorSpace);
    /// A picture over pixels that somebody else owns, shared memory for example.
    Image(Size size, PixelLayout layout, std::size_t rowBytes, ColorSpace colorSpace,
        std::shared_ptr<const std::byte[]> pixels);
    /// A picture with deferred pixels, turned upright from the orientation in which they are
    /// stored. `storedSize` and `layout` are theirs.
    Image(Size storedSize, PixelLayout layout, ColorSpace colorSpace,
        std::shared_ptr<const DeferredPixels> pixels, Orientation orientation);

    [[nodiscard]] Size size() const { return m_size; }
    [[nodiscard]] int width() const { return m_size.width; }
    [[nodiscard]] int height() const { return m_size.height; }
    [[nodiscard]] PixelLayout layout() const { return m_layout; }
    [[nodiscard]] const ColorSpace& colorSpace() const { return m_colorSpace; }
    [[nodiscard]] bool hasAlpha() const { return imaging::hasAlpha(m_layout.alpha); }

    /// Whether the pixels are in memory row by row. The next six functions are for such pictures.
    [[nodiscard]] bool hasRows() const { return m_pixels != nullptr; }
    [[nodiscard]] std::size_t rowBytes() const { return m_rowBytes; }
    [[nodiscard]] std::span<const std::byte> row(int y) const;
    [[nodiscard]] const std::uint8_t* row8(int y) const;
    [[nodiscard]] const std::uint16_t* row16(int y) const;
    /// The part inside `rect`, sharing these pixels. `rect` must lie inside the picture.
    [[nodiscard]] Image cropped(Rect rect) const;
    /// The same pixels, read as numbers of another colour space of the same model.
    [[nodiscard]] Image withColorSpace(ColorSpace colorSpace) const;

    /// For the others: what they come from, and how that is turned to give this picture.
    [[nodiscard]] const std::shared_ptr<const DeferredPixels>& deferred() const
    {
        return m_deferred;
    }
    [[nodiscard]] Orientation orientation() const { return m_orientation; }

    /// The part inside `rect`, which must lie inside the picture, with rows. Fails with OutOfMemory
    /// and with what deferred pixels say.
    [[nodiscard]] Result<Image> rows(Rect rect) const;
    /// The same of the whole picture; the very same picture when it has rows.
    [[nodiscard]] Result<Image> withRows() const;

    /// Whether the two share their first pixel and their shape: the very same picture.
    [[nodiscard]] bool isSameAs(const Image& other) const;

private:
    Size m_size;
    PixelLayout m_layout;
    std::size_t m_rowBytes = 0;
    ColorSpace m_colorSpace;
    std::shared_ptr<const std::byte[]> m_pixels; ///< null when they are deferred
    std::shared_ptr<const DeferredPixels> m_deferred;
    Orientation m_orientation {}; ///< of the deferred pixels
};

} // namespace vellumine::imaging
