#include "imaging/codecs/heic/HeicTurning.h"

#include "imaging/codecs/heic/HeicBoxes.h"

#include <array>
#include <string_view>
#include <vector>

namespace vellumine::imaging::heic {

namespace {

constexpr std::size_t versionAndFlags = 4;

/// The first box of the type among those that stand in the bytes; empty where there is none.
ByteSpan contentOf(std::string_view type, ByteSpan bytes)
{
    BoxWalk walk(bytes);
    while (const auto box = walk.next()) {
        if (box->type == type) {
            return box->content;
        }
    }
    return {};
}

ByteSpan afterVersion(ByteSpan content)
{
    return content.size() < versionAndFlags ? ByteSpan {} : content.subspan(versionAndFlags);
}

/// Numbers one after the other; behind the end there are zeros.
class Numbers {
public:
    explicit Numbers(ByteSpan bytes)
        : m_rest(bytes)
    {
    }

    [[nodiscard]] bool hasMore() const { return !m_rest.empty(); }
    std::uint64_t next(std::size_t bytes)
    {
        if (bytes > m_rest.size()) {
            m_rest = {};
            return 0;
        }
        const std::uint64_t number = bigEndian(m_rest.first(bytes));
        m_rest = m_rest.subspan(bytes);
        return number;
    }

private:
    ByteSpan m_rest;
};

/// The numbers of the item's properties, in their order, from 1 on: the content of an `ipma` box.
std::vector<std::uint64_t> propertiesOf(std::uint32_t item, ByteSpan content)
{
    if (content.size() < versionAndFlags) {
        return {};
    }
    const std::size_t itemBytes = std::to_integer<int>(content[0]) == 0 ? 2 : 4;
    const bool isWide = (std::to_integer<unsigned>(content[versionAndFlags - 1]) & 1U) != 0;
    const std::uint64_t withoutEssential = isWide ? 0x7FFFU : 0x7FU;
    Numbers numbers(afterVersion(content));
    (void)numbers.next(4); // items
    while (numbers.hasMore()) {
        const bool isTheItem = numbers.next(itemBytes) == item;
        std::vector<std::uint64_t> properties(numbers.next(1));
        for (std::uint64_t& property : properties) {
            property = numbers.next(isWide ? 2 : 1) & withoutEssential;
        }
        if (isTheItem) {
            return properties;
        }
    }
    return {};
}

/// Mirrored left to right or not, and then turned clockwise.
struct Turning {
    bool isMirrored = false;
    unsigned quarters = 0;

    void follow(const Box& property)
    {
        if (property.content.empty()) {
            return;
        }
        const auto value = std::to_integer<unsigned>(property.content[0]);
        if (property.type == "irot") { // quarters, the other way round
            quarters = (quarters + 4 - (value & 3U)) % 4;
        } else if (property.type == "imir") { // 0 exchanges top and bottom, 1 left and right
            isMirrored = !isMirrored;
            quarters = (4 - quarters + ((value & 1U) == 0 ? 2 : 0)) % 4;
        }
    }

    [[nodiscard]] Orientation storedOrientation() const
    {
        constexpr std::array turned { Orientation::topLeft, Orientation::rightTop,
            Orientation::bottomRight, Orientation::leftBottom };
        constexpr std::array mirrored { Orientation::topRight, Orientation::rightBottom,
            Orientation::bottomLeft, Orientation::leftTop };
        return (isMirrored ? mirrored : turned).at(quarters);
    }
};

} // namespace

Orientation storedOrientation(ByteSpan file, std::uint32_t item)
{
    const ByteSpan properties = contentOf("iprp", afterVersion(contentOf("meta", file)));
    std::vector<Box> known;
    BoxWalk walk(contentOf("ipco", properties));
    while (const auto box = walk.next()) {
        known.push_back(*box);
    }
    Turning turning;
    for (const std::uint64_t number : propertiesOf(item, contentOf("ipma", properties))) {
        if (number >= 1 && number <= known.size()) {
            turning.follow(known[number - 1]);
        }
    }
    return turning.storedOrientation();
}

} // namespace vellumine::imaging::heic
