#include "imaging/codecs/png/PngTexts.h"

#include "imaging/codecs/MetadataCarriers.h"
#include "imaging/codecs/png/PngCompression.h"

#include <algorithm>
#include <string>
#include <utility>

namespace vellumine::imaging::png {

namespace {

constexpr std::size_t longestKeyword = 79;
/// From here on it may pay to compress a text.
constexpr std::size_t longText = 256;

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

/// Printable characters of Latin-1.
bool isKeyword(std::string_view keyword)
{
    return !keyword.empty() && keyword.size() <= longestKeyword
        && std::ranges::all_of(keyword, [](char character) {
               const auto code = static_cast<unsigned char>(character);
               return (code >= 0x20 && code <= 0x7E) || code >= 0xA1;
           });
}

/// Letters and digits in words with hyphens between them.
bool isLanguage(std::string_view language)
{
    return std::ranges::all_of(language, [](char character) {
        return (character >= '0' && character <= '9') || (character >= 'A' && character <= 'Z')
            || (character >= 'a' && character <= 'z') || character == '-';
    });
}

bool isText(const Chunk& chunk)
{
    return chunk.type == chunkType("tEXt") || chunk.type == chunkType("zTXt")
        || chunk.type == chunkType("iTXt");
}

bool isWritable(const FileText& text)
{
    return isKeyword(text.keyword) && !holdsBlock(text.keyword)
        && (!text.international
            || (isLanguage(text.international->language)
                && text.international->keyword.find('\0') == std::string::npos));
}

/// The shorter of the content and its stream, and whether it is the stream.
std::pair<ByteBuffer, bool> packed(ByteSpan content, Effort effort)
{
    if (content.size() >= longText) {
        ByteBuffer stream = effort == Effort::fastest ? quicklyDeflated(content)
                                                      : deflated(content, CompressionLevel::deep);
        if (stream.size() < content.size()) {
            return { std::move(stream), true };
        }
    }
    return { ByteBuffer(content.begin(), content.end()), false };
}

void appendText(ByteBuffer& file, const FileText& text, Effort effort)
{
    const auto [content, isCompressed] = packed(text.content, effort);
    ByteBuffer data;
    append(data, text.keyword);
    data.resize(data.size() + 1);
    if (text.international) {
        data.push_back(static_cast<std::byte>(isCompressed));
        data.resize(data.size() + 1); // the compression method
        append(data, text.international->language);
        data.resize(data.size() + 1);
        append(data, text.international->keyword);
        data.resize(data.size() + 1);
    } else if (isCompressed) {
        data.resize(data.size() + 1);
    }
    append(data, content);
    appendChunk(file, text.international ? "iTXt" : (isCompressed ? "zTXt" : "tEXt"), data);
}

} // namespace

bool holdsBlock(std::string_view keyword)
{
    return keyword == xmpKeyword || keyword.starts_with(rawProfileKeyword);
}

// tEXt: keyword, 0, text. zTXt: keyword, 0, method 0, stream. iTXt: keyword, 0, whether it is
// compressed, method 0, language, 0, translated keyword, 0, text or stream.
std::optional<StoredText> parseText(const Chunk& chunk)
{
    ByteSpan rest = chunk.data;
    const auto keyword = isText(chunk) ? takeString(rest) : std::nullopt;
    if (!keyword) {
        return std::nullopt;
    }
    StoredText text { .keyword = *keyword, .content = rest };
    if (chunk.type == chunkType("tEXt")) {
        return text;
    }
    const std::size_t flags = chunk.type == chunkType("zTXt") ? 1 : 2;
    if (rest.size() < flags || rest[flags - 1] != std::byte { 0 }) {
        return std::nullopt;
    }
    text.isCompressed = flags == 1 || rest[0] == std::byte { 1 };
    rest = rest.subspan(flags);
    if (flags == 2) {
        const auto language = takeString(rest);
        const auto translated = takeString(rest);
        if (!language || !translated) {
            return std::nullopt;
        }
        text.international = { std::string(*language), std::string(*translated) };
    }
    text.content = rest;
    return text;
}

std::optional<ByteBuffer> contentOf(const StoredText& text, std::size_t& remaining)
{
    if (!text.isCompressed) {
        if (text.content.size() > remaining) {
            return std::nullopt;
        }
        remaining -= text.content.size();
        return ByteBuffer(text.content.begin(), text.content.end());
    }
    auto content = inflated(text.content, remaining);
    // What a stream that is damaged or does not fit has cost: deflate's longest match, 258 bytes,
    // takes two bits at least.
    constexpr std::size_t mostFromAByte = 1032;
    const std::size_t cost = content ? content->size() : mostFromAByte * text.content.size();
    remaining -= std::min(remaining, cost);
    return content;
}

FileTexts textsOf(ByteSpan file)
{
    FileTexts texts;
    std::size_t remaining = FileTexts::mostBytes;
    ChunkWalk walk(file);
    while (const auto chunk = walk.next()) {
        if (chunk->type == chunkType("IEND") || texts.isFull()) {
            break;
        }
        const auto text = parseText(*chunk);
        if (!text || !isKeyword(text->keyword) || holdsBlock(text->keyword)
            || (text->international && !isLanguage(text->international->language))
            || !chunk->isIntact()) {
            continue;
        }
        if (auto content = contentOf(*text, remaining)) {
            texts.add({ std::string(text->keyword), std::move(*content), text->international });
        }
    }
    return texts;
}

void appendTexts(ByteBuffer& file, const FileTexts& texts, Effort effort)
{
    for (const FileText& text : texts.list()) {
        if (isWritable(text)) {
            appendText(file, text, effort);
        }
    }
}

} // namespace vellumine::imaging::png
