#include "imaging/metadata/Exiv2Reading.h"

#include <exiv2/exiv2.hpp>

namespace vellumine::test {

namespace {

template <typename Data> void addTo(std::map<std::string, std::string>& fields, const Data& data)
{
    for (const auto& datum : data) {
        fields[datum.key()] = datum.toString();
    }
}

const Exiv2::byte* bytesOf(imaging::ByteSpan bytes)
{
    return reinterpret_cast<const Exiv2::byte*>(bytes.data());
}

/// `open` counts bytes in a `long` or in a `std::size_t`, by the library's version.
template <typename Owner, typename Length>
Owner opened(Owner (*open)(const Exiv2::byte*, Length), imaging::ByteSpan file)
{
    return open(bytesOf(file), static_cast<Length>(file.size()));
}

} // namespace

std::map<std::string, std::string> exifFields(imaging::ByteSpan block)
{
    std::map<std::string, std::string> fields;
    Exiv2::ExifData data;
    if (!block.empty()) {
        Exiv2::ExifParser::decode(data, bytesOf(block), static_cast<std::uint32_t>(block.size()));
    }
    addTo(fields, data);
    return fields;
}

std::map<std::string, std::string> fileFields(imaging::ByteSpan file)
{
    const auto image = opened(Exiv2::ImageFactory::open, file);
    image->readMetadata();
    std::map<std::string, std::string> fields;
    addTo(fields, image->exifData());
    addTo(fields, image->iptcData());
    addTo(fields, image->xmpData());
    return fields;
}

std::optional<std::map<std::string, std::string>> xmpFields(imaging::ByteSpan packet)
{
    Exiv2::XmpData data;
    if (Exiv2::XmpParser::decode(
            data, { reinterpret_cast<const char*>(packet.data()), packet.size() })
        != 0) {
        return std::nullopt;
    }
    std::map<std::string, std::string> fields;
    addTo(fields, data);
    return fields;
}

} // namespace vellumine::test
