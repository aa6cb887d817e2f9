#include "imaging/codecs/png/PngMetadata.h"

#include "imaging/codecs/MetadataCarriers.h"
#include "imaging/codecs/png/PngChunks.h"
#include "imaging/codecs/png/PngCompression.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string>

namespace vellumine::imaging::png {

namespace {

/// For all texts of a file together, so that a small file cannot inflate to much.
constexpr std::size_t maximumText = std::size_t { 16 } << 20U;

constexpr std::string_view xmpKeyword = "XML:com.adobe.xmp";
constexpr std::string_view rawProfileKeyword = "Raw profile type ";

ByteBuffer toBuffer(ByteSpan bytes)
{
    return { bytes.begin(), bytes.end() };
}

/// The bytes up to the next zero, which is taken away with them; none when there is no zero.
std::optional<std::string_view> takeString(ByteSpan& bytes)
{
    const auto end = std::ranges::find(bytes, std::byte { 0 });
    if (end == bytes.end()) {
        return std::nullopt;
    }
    const auto length = static_cast<std::size_t>(end - bytes.begin());
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), length);
    bytes = bytes.subspan(length + 1);
    return text;
}

/// A text that one of the blocks may be in.
struct Text {
    std::string_view keyword;
    ByteSpan content;
    bool isCompressed = false;
};

/// tEXt: keyword, 0, text. zTXt: keyword, 0, method 0, stream. iTXt: keyword, 0, whether it is
/// compressed, method 0, language, 0, translated keyword, 0, text or stream.
std::optional<Text> parseText(const Chunk& chunk)
{
    ByteSpan rest = chunk.data;
    const auto keyword = takeString(rest);
    if (!keyword || (*keyword != xmpKeyword && !keyword->starts_with(rawProfileKeyword))
        || !chunk.isIntact()) {
        return std::nullopt;
    }
    if (chunk.type == chunkType("tEXt")) {
        return Text { *keyword, rest, false };
    }
    const std::size_t flags = chunk.type == chunkType("zTXt") ? 1 : 2;
    if (rest.size() < flags || rest[flags - 1] != std::byte { 0 }) {
        return std::nullopt;
    }
    const bool isCompressed = flags == 1 || rest[0] == std::byte { 1 };
    rest = rest.subspan(flags);
    if (flags == 2 && (!takeString(rest) || !takeString(rest))) {
        return std::nullopt;
    }
    return Text { *keyword, rest, isCompressed };
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

/// The content of a text, within what is left of the bytes that a file's texts may take.
std::optional<ByteBuffer> contentOf(const Text& text, std::size_t& remaining)
{
    auto content = text.isCompressed ? inflated(text.content, remaining)
                                     : std::optional(toBuffer(text.content));
    // A stream that does not fit has cost the time that its content would have.
    remaining -= std::min(remaining, content ? content->size() : remaining);
    return content;
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
        if (chunk->type != chunkType("tEXt") && chunk->type != chunkType("zTXt")
            && chunk->type != chunkType("iTXt")) {
            continue;
        }
        const auto text = parseText(*chunk);
        if (!text) {
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
