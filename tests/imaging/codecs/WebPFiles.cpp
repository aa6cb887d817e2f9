#include "imaging/codecs/WebPFiles.h"

#include "imaging/codecs/BmpFiles.h"
#include "support/RunProgram.h"
#include "support/TestImages.h"

#include <algorithm>

namespace vellumine::test {

using imaging::ByteBuffer;
using imaging::ByteSpan;
using imaging::Image;
using imaging::Rect;
using imaging::Size;

namespace {

constexpr std::size_t riffHeaderBytes = 12;

ByteBuffer pamFile(const Image& image)
{
    const bool hasAlpha = image.hasAlpha();
    const std::string header = "P7\nWIDTH " + std::to_string(image.width()) + "\nHEIGHT "
        + std::to_string(image.height()) + "\nDEPTH " + (hasAlpha ? "4" : "3")
        + "\nMAXVAL 255\nTUPLTYPE " + (hasAlpha ? "RGB_ALPHA" : "RGB") + "\nENDHDR\n";
    LittleEndianBytes file;
    file.add(header);
    for (int y = 0; y < image.height(); ++y) {
        file.add(image.row(y));
    }
    return file.bytes();
}

LittleEndianBytes& add24(LittleEndianBytes& out, int value)
{
    const auto number = static_cast<std::uint32_t>(value);
    return out.add16(number).add8(number >> 16U);
}

} // namespace

ByteBuffer webPFile(const Image& image, const std::vector<std::string>& options)
{
    const TemporaryFolder folder;
    writeFile(folder / "in.pam", pamFile(image));
    std::vector<std::string> command { "cwebp", "-quiet" };
    command.insert(command.end(), options.begin(), options.end());
    command.insert(command.end(), { folder / "in.pam", "-o", folder / "out.webp" });
    runProgram(command);
    return readFile(folder / "out.webp");
}

ByteBuffer webPChunk(std::string_view fourCharacters, ByteSpan content)
{
    LittleEndianBytes chunk;
    chunk.add(fourCharacters).add32(static_cast<std::uint32_t>(content.size())).add(content);
    return chunk.addZeros(content.size() % 2).bytes();
}

ByteSpan webPChunks(ByteSpan file)
{
    return file.subspan(riffHeaderBytes);
}

ByteBuffer riffFile(const std::vector<ByteBuffer>& chunks)
{
    LittleEndianBytes content;
    content.add("WEBP");
    for (const ByteBuffer& chunk : chunks) {
        content.add(chunk);
    }
    return webPChunk("RIFF", content.bytes());
}

ByteBuffer extendedHeader(unsigned flags, Size canvas)
{
    LittleEndianBytes content;
    content.add32(flags);
    add24(content, canvas.width - 1);
    add24(content, canvas.height - 1);
    return webPChunk("VP8X", content.bytes());
}

ByteBuffer animationFrame(ByteSpan file, Rect place)
{
    LittleEndianBytes content;
    add24(content, place.x / 2);
    add24(content, place.y / 2);
    add24(content, place.width - 1);
    add24(content, place.height - 1);
    add24(content, 100); // milliseconds
    return webPChunk("ANMF", content.add8(0).add(webPChunks(file)).bytes());
}

ByteBuffer animation(unsigned flags, Size canvas, const std::vector<ByteBuffer>& frames)
{
    // An opaque red background, which readers may ignore, and do; endless
    const ByteBuffer parameters = bytesOf({ 0, 0, 255, 255, 0, 0 });
    std::vector<ByteBuffer> chunks { extendedHeader(flags | webPAnimation, canvas),
        webPChunk("ANIM", parameters) };
    chunks.insert(chunks.end(), frames.begin(), frames.end());
    return riffFile(chunks);
}

} // namespace vellumine::test
