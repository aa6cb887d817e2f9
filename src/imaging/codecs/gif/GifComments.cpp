#include "imaging/codecs/gif/GifComments.h"

#include "imaging/codecs/LittleEndian.h"
#include "imaging/codecs/MetadataCarriers.h"

#include <optional>
#include <utility>

namespace vellumine::imaging::gif {

namespace {

constexpr std::uint8_t extensionIntroducer = 0x21;
constexpr std::uint8_t pictureSeparator = 0x2C;
constexpr std::uint8_t commentLabel = 0xFE;

/// Walks the parts of a file without looking at pixels.
class Walk {
public:
    explicit Walk(ByteSpan file)
        : m_rest(file)
    {
    }

    /// The next so many bytes; none where the file ends before.
    std::optional<ByteSpan> take(std::size_t count)
    {
        if (count > m_rest.size()) {
            return std::nullopt;
        }
        const ByteSpan bytes = m_rest.first(count);
        m_rest = m_rest.subspan(count);
        return bytes;
    }

    /// A descriptor of so many bytes whose flags, at that place of it, announce a palette behind
    /// it.
    bool skipWithPalette(std::size_t count, std::size_t flagsAt)
    {
        constexpr unsigned hasPalette = 0x80;
        constexpr unsigned sizeBits = 0x07;
        const auto descriptor = take(count);
        if (!descriptor) {
            return false;
        }
        const unsigned flags = byteAt(*descriptor, flagsAt);
        return (flags & hasPalette) == 0
            || take(std::size_t { 3 } << ((flags & sizeBits) + 1)).has_value();
    }

    /// A chain of blocks up to the empty one that ends it, each handed to `takeBlock`.
    template <typename TakeBlock> bool walkBlocks(const TakeBlock& takeBlock)
    {
        while (const auto length = take(1)) {
            if (byteAt(*length, 0) == 0) {
                return true;
            }
            const auto block = take(byteAt(*length, 0));
            if (!block) {
                return false;
            }
            takeBlock(*block);
        }
        return false;
    }
    bool skipBlocks()
    {
        return walkBlocks([](ByteSpan) {});
    }

private:
    ByteSpan m_rest;
};

/// False where the file does not go on.
bool readExtension(Walk& walk, FileTexts& comments)
{
    const auto label = walk.take(1);
    if (!label) {
        return false;
    }
    if (byteAt(*label, 0) != commentLabel) {
        return walk.skipBlocks();
    }
    FileText comment;
    const auto addBlock = [&comment](ByteSpan block) {
        if (comment.content.size() <= FileTexts::mostBytes) {
            append(comment.content, block);
        }
    };
    if (!walk.walkBlocks(addBlock)) {
        return false;
    }
    if (!comment.content.empty()) {
        comments.add(std::move(comment));
    }
    return true;
}

bool skipPicture(Walk& walk)
{
    constexpr std::size_t descriptorBytes = 9;
    // The size of the codes stands before their blocks.
    return walk.skipWithPalette(descriptorBytes, descriptorBytes - 1) && walk.take(1)
        && walk.skipBlocks();
}

} // namespace

FileTexts commentsOf(ByteSpan file)
{
    constexpr std::size_t signatureBytes = 6;
    constexpr std::size_t screenBytes = 7;
    FileTexts comments;
    Walk walk(file);
    bool goesOn = walk.skipWithPalette(signatureBytes + screenBytes, signatureBytes + 4);
    while (goesOn && !comments.isFull()) {
        const auto introducer = walk.take(1);
        if (!introducer) {
            break;
        }
        switch (byteAt(*introducer, 0)) {
        case extensionIntroducer:
            goesOn = readExtension(walk, comments);
            break;
        case pictureSeparator:
            goesOn = skipPicture(walk);
            break;
        default:
            goesOn = false;
        }
    }
    return comments;
}

} // namespace vellumine::imaging::gif
