#include "imaging/codecs/jpeg/JpegLeftovers.h"

#include "imaging/Bytes.h"
#include "imaging/codecs/jpeg/JpegSource.h"

#include <algorithm>
#include <cstddef>

namespace vellumine::imaging::jpeg {

namespace {

/// Webcams put up to 14 bytes before the restart markers of whole pictures, and cheap cameras up to
/// 11 before the end marker.
constexpr std::size_t harmlessBytes = 16;

/// More than data that happens to end in bytes like padding, and what the library reads ahead.
constexpr std::size_t paddingRead = 64;

constexpr int startOfScan = 0xDA;
constexpr int huffmanTables = 0xC4;

struct Leftovers {
    ByteSpan file;
    std::size_t begin = 0;
    std::size_t end = 0;
    int marker = 0; ///< the second byte of the marker, 0 at the end of the file
};

const Source& sourceOf(const jpeg_decompress_struct& library)
{
    return *static_cast<const Source*>(library.src);
}

bool isPadding(std::byte byte)
{
    return byte == std::byte { 0 } || byte == std::byte { 0xFF };
}

bool isRestart(int marker)
{
    return marker >= JPEG_RST0 && marker < JPEG_RST0 + 8;
}

bool endsScanData(int marker)
{
    return marker == JPEG_EOI || marker == startOfScan || marker == huffmanTables
        || isRestart(marker);
}

/// From a place on to the next marker or to the end of the file.
Leftovers leftoversFrom(ByteSpan file, std::size_t begin)
{
    for (std::size_t at = begin; at + 1 < file.size(); ++at) {
        if (file[at] == std::byte { 0xFF } && !isPadding(file[at + 1])) {
            return { file, begin, at, std::to_integer<int>(file[at + 1]) };
        }
    }
    return { file, begin, file.size(), 0 };
}

/// Padding is harmless at any length, unless the last blocks were already made of it. So is what
/// stands before a marker at which no scan's data ends: a trailer, in a file without an end marker.
bool areLostData(const Leftovers& leftovers)
{
    const auto [file, begin, end, marker] = leftovers;
    if (end - begin <= harmlessBytes) {
        return false;
    }
    const ByteSpan bytes = file.subspan(begin, end - begin);
    if (!std::ranges::all_of(bytes, isPadding)) {
        return endsScanData(marker);
    }
    const ByteSpan before = file.first(begin);
    const ByteSpan read = before.last(std::min(before.size(), paddingRead));
    return std::ranges::all_of(read, isPadding);
}

} // namespace

bool isDataLost(const jpeg_decompress_struct& library)
{
    const Source& source = sourceOf(library);
    // The count includes whole bytes that were read ahead, which lie before the others.
    const auto count = static_cast<std::size_t>(std::max(library.err->msg_parm.i[0], 0));
    const std::size_t end = source.position();
    return library.input_scan_number > 0
        && areLostData({ source.file(), end - std::min(end, count), end,
            source.ranOut() ? 0 : library.err->msg_parm.i[1] });
}

Result<void> checkBehindLastRow(const jpeg_decompress_struct& library)
{
    const bool isForUs = jpeg_has_multiple_scans(const_cast<j_decompress_ptr>(&library)) == FALSE
        && library.output_scanline >= library.output_height && library.unread_marker == 0;
    if (!isForUs) {
        return {};
    }
    const Source& source = sourceOf(library);
    const Leftovers leftovers = leftoversFrom(source.file(), source.position());
    // Some scanners write rows below the picture. A restart marker behind them says so: those up to
    // the last row had their numbers.
    if (isRestart(leftovers.marker) || !areLostData(leftovers)) {
        return {};
    }
    return failure(leftovers.marker == 0 ? Error::Kind::truncated : Error::Kind::malformed,
        "picture data is left over");
}

} // namespace vellumine::imaging::jpeg
