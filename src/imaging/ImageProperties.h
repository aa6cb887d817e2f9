#pragma once

#include "imaging/Orientation.h"
#include "imaging/UniformType.h"
#include "imaging/metadata/FileTexts.h"
#include "imaging/metadata/MetadataBlocks.h"
#include "imaging/metadata/Resolution.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <variant>

namespace vellumine::imaging {

/// The top-level entries of a picture's properties. The first eight stand for whole dictionaries.
enum class PropertyKey : std::uint8_t {
    exif,
    gps,
    tiff,
    iptc,
    png,
    jfif,
    gif,
    xmp,
    orientation, ///< integer, 1 to 8
    colorModel, ///< text: "Gray", "RGB" or "CMYK"
    profileName, ///< text, the ICC profile's description
    lossyCompressionQuality, ///< number, 0 to 1
    pixelWidth, ///< integer, as stored, before orientation
    pixelHeight,
    resolution, ///< a resolution, of the stored picture, before orientation
};

/// The dictionary of what only files of the type say; none for other types.
[[nodiscard]] std::optional<PropertyKey> dictionaryOf(UniformType type);

/// Says that the picture has the dictionary; its content travels in the blocks, or it has none.
struct DictionaryPresent {
    friend bool operator==(DictionaryPresent, DictionaryPresent) = default;
};

/// The dictionaries that a format has for itself hold the texts of its file.
using PropertyValue
    = std::variant<DictionaryPresent, std::int64_t, double, std::string, Resolution, FileTexts>;

/// What is known about a picture besides its pixels. The dictionaries' content is kept as the
/// serialised blocks that it came in, shared between copies; taking a dictionary's key away keeps
/// its content out of what is written.
class ImageProperties {
public:
    [[nodiscard]] bool contains(PropertyKey key) const;
    /// The value of a key; none when it is absent or of another type.
    [[nodiscard]] std::optional<std::int64_t> integer(PropertyKey key) const;
    [[nodiscard]] std::optional<double> number(PropertyKey key) const;
    [[nodiscard]] std::optional<std::string> text(PropertyKey key) const;
    [[nodiscard]] std::optional<Resolution> resolution() const;
    /// The texts of a dictionary; empty when it is absent, or has none.
    [[nodiscard]] FileTexts texts(PropertyKey dictionary) const;
    [[nodiscard]] bool empty() const { return m_values.empty(); }

    /// All of them, for whoever takes them to another process.
    [[nodiscard]] const std::map<PropertyKey, PropertyValue>& values() const { return m_values; }

    void set(PropertyKey key, PropertyValue value);
    void remove(PropertyKey key);

    /// Empty blocks when there is no metadata.
    [[nodiscard]] const MetadataBlocks& blocks() const;
    /// Keeps the blocks of a picture that is stored in the given orientation, and sets the keys of
    /// the dictionaries that they hold (Exif, Gps, Tiff, Iptc, Xmp).
    void setBlocks(MetadataBlocks blocks, Orientation stored);
    /// The same with keys that say already what the blocks hold, so that nobody has to look into
    /// them.
    void setKnownBlocks(MetadataBlocks blocks, Orientation stored);
    /// The orientation that came with the blocks, whatever becomes of the key Orientation: it says
    /// whether what the blocks hold of the picture (a thumbnail) lies as the upright picture does.
    [[nodiscard]] Orientation storedOrientation() const { return m_storedOrientation; }

private:
    template <typename Value> [[nodiscard]] std::optional<Value> value(PropertyKey key) const;

    std::map<PropertyKey, PropertyValue> m_values;
    std::shared_ptr<const MetadataBlocks> m_blocks;
    Orientation m_storedOrientation = Orientation::topLeft;
};

} // namespace vellumine::imaging
