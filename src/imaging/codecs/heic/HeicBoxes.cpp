#include "imaging/codecs/heic/HeicBoxes.h"

namespace vellumine::imaging::heic {

std::uint64_t bigEndian(ByteSpan bytes)
{
    std::uint64_t number = 0;
    for (const std::byte byte : bytes) {
        number = number << 8U | std::to_integer<std::uint64_t>(byte);
    }
    return number;
}

std::string_view asText(ByteSpan bytes)
{
    // Characters may look at any object's bytes.
    return { reinterpret_cast<const char*>(bytes.data()), bytes.size() };
}

std::optional<Box> BoxWalk::next()
{
    constexpr std::size_t numberBytes = 4;
    constexpr std::size_t shortHeader = 8;
    constexpr std::size_t longHeader = 16;
    if (m_rest.size() < shortHeader) {
        return std::nullopt;
    }
    std::uint64_t length = bigEndian(m_rest.first(numberBytes));
    std::size_t header = shortHeader;
    if (length == 0) { // up to the end
        length = m_rest.size();
    } else if (length == 1 && m_rest.size() >= longHeader) {
        length = bigEndian(m_rest.subspan(shortHeader, longHeader - shortHeader));
        header = longHeader;
    }
    if (length < header || length > m_rest.size()) {
        return std::nullopt;
    }
    const ByteSpan box = m_rest.first(static_cast<std::size_t>(length));
    m_rest = m_rest.subspan(box.size());
    return Box { asText(box.subspan(numberBytes, shortHeader - numberBytes)), box.subspan(header) };
}

} // namespace vellumine::imaging::heic
