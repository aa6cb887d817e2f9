#include "imaging/ImageProperties.h"

#include "imaging/metadata/Metadata.h"

namespace vellumine::imaging {

std::optional<PropertyKey> dictionaryOf(UniformType type)
{
    switch (type) {
    case UniformType::png:
        return PropertyKey::png;
    case UniformType::jpeg:
        return PropertyKey::jfif;
    case UniformType::gif:
        return PropertyKey::gif;
    default:
        return std::nullopt;
    }
}

template <typename Value> std::optional<Value> ImageProperties::value(PropertyKey key) const
{
    const auto found = m_values.find(key);
    const Value* const held
        = found == m_values.end() ? nullptr : std::get_if<Value>(&found->second);
    return held == nullptr ? std::nullopt : std::optional(*held);
}

bool ImageProperties::contains(PropertyKey key) const
{
    return m_values.contains(key);
}

std::optional<std::int64_t> ImageProperties::integer(PropertyKey key) const
{
    return value<std::int64_t>(key);
}

std::optional<double> ImageProperties::number(PropertyKey key) const
{
    return value<double>(key);
}

std::optional<std::string> ImageProperties::text(PropertyKey key) const
{
    return value<std::string>(key);
}

std::optional<Resolution> ImageProperties::resolution() const
{
    return value<Resolution>(PropertyKey::resolution);
}

FileTexts ImageProperties::texts(PropertyKey dictionary) const
{
    return value<FileTexts>(dictionary).value_or(FileTexts {});
}

void ImageProperties::set(PropertyKey key, PropertyValue value)
{
    m_values.insert_or_assign(key, std::move(value));
}

void ImageProperties::remove(PropertyKey key)
{
    m_values.erase(key);
}

const MetadataBlocks& ImageProperties::blocks() const
{
    static const MetadataBlocks none;
    return m_blocks ? *m_blocks : none;
}

void ImageProperties::setBlocks(MetadataBlocks blocks, Orientation stored)
{
    const metadata::Groups groups = metadata::groups(blocks);
    const auto setIf = [this](bool isThere, PropertyKey key) {
        if (isThere) {
            set(key, DictionaryPresent {});
        } else {
            remove(key);
        }
    };
    setIf(groups.exif, PropertyKey::exif);
    setIf(groups.gps, PropertyKey::gps);
    setIf(groups.tiff, PropertyKey::tiff);
    setIf(groups.iptc, PropertyKey::iptc);
    setIf(groups.xmp, PropertyKey::xmp);
    setKnownBlocks(std::move(blocks), stored);
}

void ImageProperties::setKnownBlocks(MetadataBlocks blocks, Orientation stored)
{
    m_blocks = std::make_shared<const MetadataBlocks>(std::move(blocks));
    m_storedOrientation = stored;
}

} // namespace vellumine::imaging
