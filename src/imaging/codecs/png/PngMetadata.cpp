#include "imaging/codecs/png/PngMetadata.h"

#include "imaging/codecs/BigEndian.h"
#include "imaging/codecs/MetadataCarriers.h"
#include "imaging/codecs/png/PngChunks.h"
#include "imaging/codecs/png/PngCompression.h"
#include "imaging/codecs/png/PngTexts.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string>

namespace vellumine::imaging::png {

namespace {

/// For all texts of a file that hold a block, so that a small file cannot inflate to much.
constexpr std::size_t maximumText = std::size_t { 16 } << 20U;

ByteBuffer toBuffer(ByteSpan bytes)
{
    return { bytes.begin(), bytes.end() };
}

int hexDigit(char character)
{
    constexpr std::string_view digits = "0123456789abcdef";
    const char lower = character >= 'A' && character <= 'F'
        ? static_cast<char>(character - 'A' + 'a')
        : character;
    const auto found = digits.find(lower);
    return found == std::string_view::npos ? -1 : static_cast<int>(found);
}

/// A raw profile: a line with its name, a line with its length, hexadecimal digits in lines.
ByteBuffer parseRawProfile(ByteSpan content)
{
    std::string_view text(reinterpret_cast<const char*>(content.data()), content.size());
    text.remove_prefix(std::min(text.find_first_not_of('\n'), text.size()));
    text.remove_prefix(std::min(text.find('\n'), text.size())); // the name
    text.remove_prefix(std::min(text.find_first_not_of(" \n"), text.size()));
    std::size_t length = 0;
    const auto number = std::from_chars(text.data(), text.data() + text.size(), length);
    text.remove_prefix(static_cast<std::size_t>(number.ptr - text.data()));
    if (number.ec != std::errc {} || length > text.size() / 2) {
        return {};
    }
    ByteBuffer profile;
    profile.reserve(length);
    int high = -1;
    for (const char character : text) {
        const int digit = hexDigit(character);
        if (digit < 0) {
            continue;
        }
        if (high < 0) {
            high = digit;
        } else if (profile.size() < length) {
            profile.push_back(static_cast<std::byte>(high * 16 + digit));
            high = -1;
        }
    }
    return profile.size() == length ? profile : ByteBuffer {};
}

void takeRawProfile(MetadataBlocks& blocks, std::string_view type, ByteSpan text)
{
    const ByteBuffer profile = parseRawProfile(text);
    if (type == "iptc") {
        if (blocks.iptc.empty()) {
            blocks.iptc = toBuffer(iptcBlock(profile));
        }
    } else if (type == "xmp" || (type == "APP1" && startsWith(profile, xmpSignature))) {
        if (blocks.xmp.empty()) {
            const bool hasSignature = startsWith(profile, xmpSignature);
            blocks.xmp
                = toBuffer(ByteSpan(profile).subspan(hasSignature ? xmpSignature.size() : 0));
        }
    } else if (type == "exif" || type == "APP1") {
        if (blocks.exif.empty()) {
            blocks.exif = toBuffer(exifBlock(profile));
        }
    }
}

std::string rawProfileText(std::string_view name, ByteSpan profile)
{
    constexpr std::string_view digits = "0123456789abcdef";
    constexpr std::size_t bytesInLine = 36;
    const std::string length = std::to_string(profile.size());
    std::string text = "\n";
    text.append(name).append("\n");
    text.append(8 - std::min<std::size_t>(8, length.size()), ' ').append(length);
    for (std::size_t i = 0; i < profile.size(); ++i) {
        if (i % bytesInLine == 0) {
            text += '\n';
        }
        const auto value = std::to_integer<std::size_t>(profile[i]);
        text += digits[value / 16];
        text += digits[value % 16];
    }
    text += '\n';
    return text;
}

} // namespace

MetadataBlocks metadataOf(ByteSpan file)
{
    MetadataBlocks blocks;
    MetadataBlocks rawBlocks;
    std::size_t remaining = maximumText;
    ChunkWalk walk(file);
    while (const auto chunk = walk.next()) {
        if (chunk->type == chunkType("IEND")) {
            break;
        }
        if (chunk->type == chunkType("eXIf")) {
            if (blocks.exif.empty() && chunk->isIntact()) {
                blocks.exif = toBuffer(exifBlock(chunk->data));
            }
            continue;
        }
        const auto text = parseText(*chunk);
        if (!text || !holdsBlock(text->keyword) || !chunk->isIntact()) {
            continue;
        }
        const auto content = contentOf(*text, remaining);
        if (!content) {
            continue;
        }
        if (text->keyword != xmpKeyword) {
            takeRawProfile(rawBlocks, text->keyword.substr(rawProfileKeyword.size()), *content);
        } else if (blocks.xmp.empty()) {
            blocks.xmp = *content;
        }
    }
    // The chunks that are made for a block go before the texts that were used in their place.
    for (auto member : { &MetadataBlocks::exif, &MetadataBlocks::xmp, &MetadataBlocks::iptc }) {
        if ((blocks.*member).empty()) {
            blocks.*member = std::move(rawBlocks.*member);
        }
    }
    return blocks;
}

// pHYs: pixels across and down, and whether they are those of a metre. It stands before the picture
// data.
std::optional<Resolution> resolutionOf(ByteSpan file)
{
    ChunkWalk walk(file);
    while (const auto chunk = walk.next()) {
        if (chunk->type == chunkType("IDAT")) {
            break;
        }
        if (chunk->type == chunkType("pHYs") && chunk->data.size() == 9 && chunk->isIntact()) {
            const auto unit = std::to_integer<unsigned>(chunk->data[8]);
            return unit > 1
                ? std::nullopt
                : Resolution::create(bigEndian32(chunk->data, 0), bigEndian32(chunk->data, 4),
                    unit == 1 ? Resolution::Unit::metre : Resolution::Unit::none);
        }
    }
    return std::nullopt;
}

void appendResolution(ByteBuffer& file, const Resolution& resolution)
{
    const bool isRatio = resolution.unit() == Resolution::Unit::none;
    const auto numbers = resolution.rounded(
        isRatio ? Resolution::Unit::none : Resolution::Unit::metre, Resolution::largest);
    if (!numbers) {
        return;
    }
    ByteBuffer data;
    appendBigEndian32(data, numbers->x);
    appendBigEndian32(data, numbers->y);
    data.push_back(static_cast<std::byte>(!isRatio));
    appendChunk(file, "pHYs", data);
}

void appendMetadata(ByteBuffer& file, const MetadataBlocks& blocks)
{
    if (!blocks.exif.empty()) {
        appendChunk(file, "eXIf", blocks.exif);
    }
    if (!blocks.xmp.empty()) {
        ByteBuffer data;
        append(data, xmpKeyword);
        data.resize(data.size() + 5); // not compressed, no language, no translated keyword
        append(data, blocks.xmp);
        appendChunk(file, "iTXt", data);
    }
    if (!blocks.iptc.empty()) {
        const std::string text = rawProfileText("iptc", photoshopResources(blocks.iptc));
        ByteBuffer data;
        append(data, rawProfileKeyword);
        append(data, "iptc");
        data.resize(data.size() + 2); // the end of the keyword, the compression method
        append(data, deflated(std::as_bytes(std::span(text)), CompressionLevel::optimal));
        appendChunk(file, "zTXt", data);
    }
}

} // namespace vellumine::imaging::png
