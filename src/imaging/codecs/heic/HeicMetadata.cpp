#include "imaging/codecs/heic/HeicMetadata.h"

#include <algorithm>
#include <array>
#include <limits>
#include <string_view>
#include <vector>

namespace vellumine::imaging::heic {

namespace {

using namespace std::string_view_literals;

bool startsWith(ByteSpan bytes, std::string_view prefix)
{
    const auto expected = std::as_bytes(std::span(prefix));
    return bytes.size() >= expected.size()
        && std::ranges::equal(bytes.first(expected.size()), expected);
}

/// The TIFF structure inside an Exif item: four bytes say how many bytes to skip, and what is
/// skipped may or may not be the header that JPEG files need.
ByteBuffer exifFromItem(ByteSpan item)
{
    constexpr std::size_t offsetBytes = 4;
    constexpr auto jpegHeader = "Exif\0\0"sv;
    if (item.size() < offsetBytes) {
        return {};
    }
    std::size_t offset = 0;
    for (const std::byte byte : item.first(offsetBytes)) {
        offset = offset << 8U | std::to_integer<std::size_t>(byte);
    }
    ByteSpan block = item.subspan(offsetBytes);
    block = block.subspan(std::min(offset, block.size()));
    if (startsWith(block, jpegHeader)) {
        block = block.subspan(jpegHeader.size());
    }
    const bool isTiff = startsWith(block, "II*\0"sv) || startsWith(block, "MM\0*"sv);
    return isTiff ? ByteBuffer(block.begin(), block.end()) : ByteBuffer {};
}

std::vector<heif_item_id> metadataItems(const heif_image_handle* picture)
{
    const int count = heif_image_handle_get_number_of_metadata_blocks(picture, nullptr);
    std::vector<heif_item_id> items(static_cast<std::size_t>(std::max(count, 0)));
    const int written = heif_image_handle_get_list_of_metadata_block_IDs(
        picture, nullptr, items.data(), static_cast<int>(items.size()));
    items.resize(static_cast<std::size_t>(std::max(written, 0)));
    return items;
}

std::string_view text(const char* characters)
{
    return characters != nullptr ? std::string_view(characters) : std::string_view();
}

ByteBuffer itemBytes(const heif_image_handle* picture, heif_item_id item)
{
    ByteBuffer bytes(heif_image_handle_get_metadata_size(picture, item));
    if (bytes.empty() || !isOk(heif_image_handle_get_metadata(picture, item, bytes.data()))) {
        return {};
    }
    return bytes;
}

bool isWritable(const ByteBuffer& block)
{
    return !block.empty() && block.size() <= std::numeric_limits<int>::max();
}

} // namespace

MetadataBlocks readMetadata(const heif_image_handle* picture)
{
    MetadataBlocks blocks;
    for (const heif_item_id item : metadataItems(picture)) {
        const auto type = text(heif_image_handle_get_metadata_type(picture, item));
        const auto content = text(heif_image_handle_get_metadata_content_type(picture, item));
        if (type == "Exif" && blocks.exif.empty()) {
            blocks.exif = exifFromItem(itemBytes(picture, item));
        } else if (type == "mime" && content == "application/rdf+xml" && blocks.xmp.empty()) {
            blocks.xmp = itemBytes(picture, item);
        }
    }
    return blocks;
}

Result<void> addMetadata(
    heif_context* context, const heif_image_handle* picture, const MetadataBlocks& blocks)
{
    if (isWritable(blocks.exif)) {
        const heif_error error = heif_context_add_exif_metadata(
            context, picture, blocks.exif.data(), static_cast<int>(blocks.exif.size()));
        if (!isOk(error)) {
            return writeFailure(error);
        }
    }
    if (isWritable(blocks.xmp)) {
        const heif_error error = heif_context_add_XMP_metadata(
            context, picture, blocks.xmp.data(), static_cast<int>(blocks.xmp.size()));
        if (!isOk(error)) {
            return writeFailure(error);
        }
    }
    return {};
}

} // namespace vellumine::imaging::heic
