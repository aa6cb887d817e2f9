#include "imaging/codecs/MetadataCarriers.h"

#include "imaging/codecs/BigEndian.h"

#include <algorithm>

namespace vellumine::imaging {

namespace {

constexpr std::string_view resourceSignature = "8BIM";
constexpr std::uint16_t iptcResource = 0x0404;
constexpr std::byte iptcTagMarker { 0x1C };

std::size_t roundedUpToEven(std::size_t length)
{
    return length + length % 2;
}

/// Walks the resources: signature, number, Pascal string padded to even, length, data padded to
/// even.
ByteSpan findIptcResource(ByteSpan resources)
{
    constexpr std::size_t fixedPart = 6;
    while (resources.size() > fixedPart && startsWith(resources, resourceSignature)) {
        const std::uint16_t number = bigEndian16(resources, 4);
        const auto nameLength = std::to_integer<std::size_t>(resources[fixedPart]);
        const std::size_t lengthAt = fixedPart + roundedUpToEven(1 + nameLength);
        if (resources.size() < lengthAt + 4) {
            return {};
        }
        const std::size_t length = bigEndian32(resources, lengthAt);
        const ByteSpan rest = resources.subspan(lengthAt + 4);
        if (number == iptcResource) {
            return length <= rest.size() ? rest.first(length) : ByteSpan {};
        }
        resources = rest.subspan(std::min(rest.size(), roundedUpToEven(length)));
    }
    return {};
}

} // namespace

bool startsWith(ByteSpan bytes, std::string_view prefix)
{
    return bytes.size() >= prefix.size()
        && std::ranges::equal(bytes.first(prefix.size()), std::as_bytes(std::span(prefix)));
}

void append(ByteBuffer& bytes, std::string_view text)
{
    append(bytes, std::as_bytes(std::span(text)));
}

void append(ByteBuffer& bytes, ByteSpan more)
{
    // Not insert(): GCC 12 warns about its copying when it is inlined for a new buffer.
    const std::size_t start = bytes.size();
    bytes.resize(start + more.size());
    std::ranges::copy(more, bytes.begin() + static_cast<std::ptrdiff_t>(start));
}

ByteSpan exifBlock(ByteSpan bytes)
{
    if (startsWith(bytes, exifSignature.substr(0, 5)) && bytes.size() > exifSignature.size()) {
        bytes = bytes.subspan(exifSignature.size());
    }
    using namespace std::string_view_literals;
    return startsWith(bytes, "II*\0"sv) || startsWith(bytes, "MM\0*"sv) ? bytes : ByteSpan {};
}

ByteSpan iptcBlock(ByteSpan bytes)
{
    if (startsWith(bytes, photoshopSignature)) {
        bytes = bytes.subspan(photoshopSignature.size());
    }
    if (startsWith(bytes, resourceSignature)) {
        bytes = findIptcResource(bytes);
    }
    return !bytes.empty() && bytes.front() == iptcTagMarker ? bytes : ByteSpan {};
}

ByteBuffer photoshopResources(ByteSpan iptc)
{
    ByteBuffer resources;
    append(resources, resourceSignature);
    appendBigEndian16(resources, iptcResource);
    appendBigEndian16(resources, 0); // an empty name
    appendBigEndian32(resources, static_cast<std::uint32_t>(iptc.size()));
    append(resources, iptc);
    if (iptc.size() % 2 != 0) {
        resources.push_back(std::byte { 0 });
    }
    return resources;
}

} // namespace vellumine::imaging
