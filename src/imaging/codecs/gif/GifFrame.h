#pragma once

#include "imaging/Bytes.h"
#include "imaging/Error.h"
#include "imaging/Geometry.h"
#include "imaging/PixelLayout.h"
#include "imaging/codecs/gif/LzwDecoder.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>

struct GifFileType;

namespace vellumine::imaging::gif {

/// A GIF file that is read up to the pixels of its first picture, and no further.
class FrameReader {
public:
    FrameReader(FrameReader&& other) noexcept;
    FrameReader& operator=(FrameReader&& other) noexcept;
    FrameReader(const FrameReader& other) = delete;
    FrameReader& operator=(const FrameReader& other) = delete;
    ~FrameReader();

    /// Fails with Malformed, and with Truncated when the file ends before its first picture.
    /// `file` must outlive the reader.
    [[nodiscard]] static Result<FrameReader> open(ByteSpan file);

    /// The logical screen, grown where the frame lies outside it, as browsers show it.
    [[nodiscard]] Size screen() const { return m_screen; }
    /// Where the picture stands on the screen.
    [[nodiscard]] Rect frame() const { return m_frame; }
    /// RGB or RGBA, see the codec.
    [[nodiscard]] PixelLayout layout() const;
    [[nodiscard]] bool isInterlaced() const;
    /// The index that stands for no colour.
    [[nodiscard]] std::optional<std::uint8_t> transparentIndex() const { return m_transparent; }
    /// An XMP packet that stands before the picture.
    [[nodiscard]] const ByteBuffer& xmp() const { return m_xmp; }

    struct Color {
        std::uint8_t red = 0;
        std::uint8_t green = 0;
        std::uint8_t blue = 0;
    };
    /// The colour of an index; black for one that the palette does not hold.
    [[nodiscard]] Color color(std::uint8_t index) const;

    /// The next row of indexes in the file's order; `row` is as long as the frame is wide. Fails
    /// with Truncated when the data ends too soon, with Malformed when it is damaged.
    [[nodiscard]] Result<void> readRow(std::span<std::uint8_t> row);

private:
    struct Input;
    struct CloseFile {
        void operator()(GifFileType* file) const;
    };

    FrameReader();
    [[nodiscard]] Result<void> readUntilPicture();
    [[nodiscard]] Result<void> readExtension();
    [[nodiscard]] Result<void> readDescriptor();
    [[nodiscard]] tl::unexpected<Error> inputFailure(const char* detail) const;
    [[nodiscard]] Result<void> decodeMore();
    static int readInput(GifFileType* file, std::uint8_t* target, int count);

    std::unique_ptr<Input> m_input; // the library's callback keeps its address
    std::unique_ptr<GifFileType, CloseFile> m_file;
    Size m_screen;
    Rect m_frame;
    std::optional<std::uint8_t> m_transparent;
    ByteBuffer m_xmp;
    std::unique_ptr<LzwDecoder> m_decoder; // 20 KB
    std::span<const std::uint8_t> m_compressed; ///< of the block at hand, in the library's buffer
    std::span<const std::uint8_t> m_pixels; ///< decoded, but not yet handed out
};

} // namespace vellumine::imaging::gif
