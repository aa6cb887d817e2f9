#pragma once

#include "imaging/Image.h"

#include <string>
#include <string_view>
#include <vector>

namespace vellumine::test {

/// What cwebp makes of an 8-bit RGB or RGBA picture.
[[nodiscard]] imaging::ByteBuffer webPFile(const imaging::Image& image,
    const std::vector<std::string>& options = { "-lossless", "-exact" });

/// One chunk of a WebP file, its header and filler included.
[[nodiscard]] imaging::ByteBuffer webPChunk(
    std::string_view fourCharacters, imaging::ByteSpan content);

/// The chunks of a file behind its RIFF header.
[[nodiscard]] imaging::ByteSpan webPChunks(imaging::ByteSpan file);

/// A WebP file of the given chunks.
[[nodiscard]] imaging::ByteBuffer riffFile(const std::vector<imaging::ByteBuffer>& chunks);

/// The flags of a VP8X chunk.
enum WebPFlag : unsigned {
    webPAnimation = 0x02,
    webPXmp = 0x04,
    webPExif = 0x08,
    webPAlpha = 0x10,
    webPProfile = 0x20,
};

/// The VP8X chunk that extended files begin with.
[[nodiscard]] imaging::ByteBuffer extendedHeader(unsigned flags, imaging::Size canvas);

/// One frame of an animation, an ANMF chunk. `file` is a simple still file; the offset is even.
[[nodiscard]] imaging::ByteBuffer animationFrame(imaging::ByteSpan file, imaging::Rect place);

/// An animation of the given frames over a canvas.
[[nodiscard]] imaging::ByteBuffer animation(
    unsigned flags, imaging::Size canvas, const std::vector<imaging::ByteBuffer>& frames);

} // namespace vellumine::test
