#pragma once

#include "imaging/codecs/Codec.h"
#include "imaging/codecs/png/PngChunks.h"
#include "imaging/metadata/FileTexts.h"

namespace vellumine::imaging::png {

/// The keyword of the text that holds an XMP packet.
inline constexpr std::string_view xmpKeyword = "XML:com.adobe.xmp";
/// What the keywords of texts start with that hold other blocks in hexadecimal digits.
inline constexpr std::string_view rawProfileKeyword = "Raw profile type ";

/// Whether a text with the keyword holds such a block.
[[nodiscard]] bool holdsBlock(std::string_view keyword);

/// A text as its chunk holds it, in the file's bytes.
struct StoredText {
    std::string_view keyword;
    std::optional<InternationalKeyword> international {};
    ByteSpan content;
    bool isCompressed = false;
};

/// The text of a tEXt, zTXt or iTXt chunk; none for another chunk, and where its fields are
/// damaged. The checksum is the caller's.
[[nodiscard]] std::optional<StoredText> parseText(const Chunk& chunk);

/// The content of a text within `remaining` bytes, which becomes less by what reading it has cost.
[[nodiscard]] std::optional<ByteBuffer> contentOf(const StoredText& text, std::size_t& remaining);

/// The texts of the file's chunks, wherever they stand, but for those that hold a block of
/// metadata. What is damaged or has no valid keyword is left out.
[[nodiscard]] FileTexts textsOf(ByteSpan file);

/// Appends the chunks of the texts, long ones compressed where that makes them shorter. Throws
/// std::bad_alloc.
void appendTexts(ByteBuffer& file, const FileTexts& texts, Effort effort);

} // namespace vellumine::imaging::png
