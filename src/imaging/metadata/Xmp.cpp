#include "imaging/metadata/Xmp.h"

#include <exiv2/error.hpp>
#include <exiv2/xmp_exiv2.hpp>

#include <algorithm>
#include <array>
#include <charconv>
#include <mutex>
#include <string>
#include <string_view>

namespace vellumine::imaging::metadata {

namespace {

// The XMP toolkit registers every namespace that it meets in tables of the whole process, and
// Exiv2 reads those without a lock of its own. One packet at a time, then: it takes about a
// millisecond. What the library thinks of a damaged file is nobody's business on standard error.
class ToolkitLock {
public:
    ToolkitLock()
        : m_lock(mutex())
    {
        static const bool isReady = [] {
            Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
            return Exiv2::XmpParser::initialize();
        }();
        static_cast<void>(isReady); // decode() and encode() say so themselves
        // A packet may bind a well-known prefix to a namespace of its own, and the next one would
        // be written with it.
        Exiv2::XmpProperties::unregisterNs();
    }

private:
    static std::mutex& mutex()
    {
        static std::mutex instance;
        return instance;
    }

    std::lock_guard<std::mutex> m_lock;
};

std::string_view textOf(ByteSpan packet)
{
    return { reinterpret_cast<const char*>(packet.data()), packet.size() };
}

// The toolkit recurses once for every level of nesting and would run out of stack. Packets of
// cameras and editors stay below twenty levels.
bool nestsTooDeeply(std::string_view packet)
{
    constexpr int maximumDepth = 100;
    const auto skip = [&packet](std::string_view end) {
        const std::size_t at = packet.find(end);
        packet.remove_prefix(at == std::string_view::npos ? packet.size() : at + end.size());
    };
    int depth = 0;
    for (std::size_t at = packet.find('<'); at != std::string_view::npos; at = packet.find('<')) {
        packet.remove_prefix(at);
        if (packet.starts_with("<!--")) {
            skip("-->");
        } else if (packet.starts_with("<![CDATA[")) {
            skip("]]>");
        } else if (packet.starts_with("<?")) {
            skip("?>");
        } else if (packet.starts_with("</")) {
            --depth;
            skip(">");
        } else {
            std::size_t end = 1;
            while (end < packet.size() && packet[end] != '>') {
                if (packet[end] == '"' || packet[end] == '\'') {
                    end = packet.find(packet[end], end + 1);
                    if (end == std::string_view::npos) {
                        return false; // never closed: no XML, so the parser refuses it
                    }
                }
                ++end;
            }
            if (packet[end - 1] != '/' && ++depth > maximumDepth) {
                return true;
            }
            packet.remove_prefix(std::min(end, packet.size()));
        }
    }
    return false;
}

constexpr std::string_view tiffNamespace = "http://ns.adobe.com/tiff/1.0/";
constexpr std::string_view exifNamespace = "http://ns.adobe.com/exif/1.0/";
constexpr std::string_view photoshopNamespace = "http://ns.adobe.com/photoshop/1.0/";
constexpr std::string_view xmpNamespace = "http://ns.adobe.com/xap/1.0/";
constexpr std::string_view cameraNamespace = "http://ns.google.com/photos/1.0/camera/";

// Whether the prefixes that keys are spelt with below mean what they should.
bool usualPrefixesHold()
{
    constexpr auto usual = std::to_array<std::pair<const char*, std::string_view>>(
        { { "tiff", tiffNamespace }, { "exif", exifNamespace } });
    return std::ranges::all_of(usual,
        [](const auto& prefix) { return Exiv2::XmpProperties::ns(prefix.first) == prefix.second; });
}

// Takes the toolkit's lock as a sign that the caller holds it.
std::optional<Exiv2::XmpData> decode(ByteSpan packet, const ToolkitLock& /*held*/)
{
    const std::string_view text = textOf(packet);
    // XMP needs no document type, and its entities are for bombs.
    if (text.empty() || text.find("<!DOCTYPE") != std::string_view::npos || nestsTooDeeply(text)) {
        return std::nullopt;
    }
    Exiv2::XmpData data;
    if (Exiv2::XmpParser::decode(data, std::string(text)) != 0 || !usualPrefixesHold()) {
        return std::nullopt;
    }
    data.usePacket(false);
    return data;
}

struct Property {
    std::string_view nameSpace;
    std::string_view name; // empty: every property of the namespace
};

// What describes the old file: how its pixels were stored, and what was appended to it (extended
// XMP, gain maps, videos).
constexpr std::array structureProperties {
    Property { tiffNamespace, "Orientation" },
    Property { tiffNamespace, "BitsPerSample" },
    Property { tiffNamespace, "Compression" },
    Property { tiffNamespace, "NativeDigest" },
    Property { tiffNamespace, "PhotometricInterpretation" },
    Property { tiffNamespace, "PlanarConfiguration" },
    Property { tiffNamespace, "PrimaryChromaticities" },
    Property { tiffNamespace, "ReferenceBlackWhite" },
    Property { tiffNamespace, "SamplesPerPixel" },
    Property { tiffNamespace, "TransferFunction" },
    Property { tiffNamespace, "WhitePoint" },
    Property { tiffNamespace, "YCbCrCoefficients" },
    Property { tiffNamespace, "YCbCrPositioning" },
    Property { tiffNamespace, "YCbCrSubSampling" },
    Property { exifNamespace, "CompressedBitsPerPixel" },
    Property { exifNamespace, "NativeDigest" },
    Property { photoshopNamespace, "ColorMode" },
    Property { photoshopNamespace, "ICCProfile" },
    Property { "http://purl.org/dc/elements/1.1/", "format" },
    Property { cameraNamespace, "MicroVideo" },
    Property { cameraNamespace, "MicroVideoOffset" },
    Property { cameraNamespace, "MicroVideoPresentationTimestampUs" },
    Property { cameraNamespace, "MicroVideoVersion" },
    Property { cameraNamespace, "MotionPhoto" },
    Property { cameraNamespace, "MotionPhotoPresentationTimestampUs" },
    Property { cameraNamespace, "MotionPhotoVersion" },
    Property { "http://ns.google.com/photos/1.0/container/", "" },
    Property { "http://ns.adobe.com/hdr-gain-map/1.0/", "" },
    Property { "http://ns.apple.com/HDRGainMap/1.0/", "" },
    Property { "http://ns.apple.com/pixeldatainfo/1.0/", "" },
    Property { "http://ns.adobe.com/xmp/note/", "" },
};

// Thumbnails lie on their side once the picture was turned.
constexpr std::array turnedProperties { Property { xmpNamespace, "Thumbnails" } };

// Places in the old picture, counted in its pixels.
constexpr std::array placeProperties {
    Property { exifNamespace, "SubjectArea" },
    Property { exifNamespace, "SubjectLocation" },
};

bool isAmong(std::span<const Property> properties, const Exiv2::Xmpdatum& datum)
{
    const std::string nameSpace = Exiv2::XmpProperties::ns(datum.groupName());
    std::string name = datum.tagName(); // with the path inside of the property, "History[1]/..."
    name.resize(std::min(name.size(), name.find_first_of("[/")));
    return std::ranges::any_of(properties, [&](Property property) {
        return property.nameSpace == nameSpace && (property.name.empty() || property.name == name);
    });
}

std::optional<std::string> textValue(const Exiv2::XmpData& data, const char* key)
{
    const auto found = data.findKey(Exiv2::XmpKey(key));
    return found == data.end() ? std::nullopt : std::optional(found->toString());
}

// The properties that stay, with numbers that are true for the new picture.
Exiv2::XmpData adjusted(const Exiv2::XmpData& data, const NewPicture& picture)
{
    const std::string width = std::to_string(picture.size.width);
    const std::string height = std::to_string(picture.size.height);
    const bool placesMoved = picture.wasTurned
        || textValue(data, "Xmp.exif.PixelXDimension") != width
        || textValue(data, "Xmp.exif.PixelYDimension") != height;
    Exiv2::XmpData result;
    for (const Exiv2::Xmpdatum& datum : data) {
        if (!isAmong(structureProperties, datum)
            && !(picture.wasTurned && isAmong(turnedProperties, datum))
            && !(placesMoved && isAmong(placeProperties, datum))) {
            result.add(datum);
        }
    }
    const std::array<std::pair<const char*, std::string>, 5> truths { {
        { "Xmp.tiff.ImageWidth", width },
        { "Xmp.tiff.ImageLength", height },
        { "Xmp.exif.PixelXDimension", width },
        { "Xmp.exif.PixelYDimension", height },
        { "Xmp.exif.ColorSpace", picture.isSRgb ? "1" : "65535" },
    } };
    for (const auto& [key, value] : truths) {
        const auto found = result.findKey(Exiv2::XmpKey(key));
        if (found != result.end() && found->toString() != value) {
            found->setValue(value);
        }
    }
    const auto x = result.findKey(Exiv2::XmpKey("Xmp.tiff.XResolution"));
    const auto y = result.findKey(Exiv2::XmpKey("Xmp.tiff.YResolution"));
    if (picture.hasSidesSwapped && x != result.end() && y != result.end()) {
        const std::string across = x->toString();
        x->setValue(y->toString());
        y->setValue(across);
    }
    return result;
}

bool isUnchanged(const Exiv2::XmpData& before, const Exiv2::XmpData& after)
{
    return std::ranges::equal(before, after, [](const auto& a, const auto& b) {
        return a.key() == b.key() && a.toString() == b.toString();
    });
}

// Editors leave some kilobytes of space for others to write into.
ByteBuffer withoutPadding(ByteSpan packet)
{
    constexpr std::string_view space(" \t\r\n\0", 5);
    const std::string_view text = textOf(packet);
    const std::size_t trailer = text.rfind("<?xpacket end");
    const std::string_view body = text.substr(0, trailer);
    const std::string_view rest
        = trailer == std::string_view::npos ? std::string_view {} : text.substr(trailer);
    const auto trimmed = [space](std::string_view part) {
        return part.substr(0, part.find_last_not_of(space) + 1);
    };
    std::string result(trimmed(body));
    if (!rest.empty()) {
        result += '\n';
        result += trimmed(rest);
    }
    const ByteSpan bytes = std::as_bytes(std::span(result));
    return { bytes.begin(), bytes.end() };
}

// Runs `work` on the decoded packet; its default result when the packet is damaged. The library's
// exceptions end here.
template <typename Value, typename Work> Value withDecoded(ByteSpan packet, Work&& work)
{
    try {
        const ToolkitLock lock;
        const auto data = decode(packet, lock);
        return data ? work(*data) : Value {};
    } catch (const std::exception&) {
        return Value {};
    }
}

} // namespace

bool isSoundXmp(ByteSpan packet)
{
    return withDecoded<bool>(packet, [](const Exiv2::XmpData& data) { return !data.empty(); });
}

std::optional<Orientation> xmpOrientation(ByteSpan packet)
{
    using Found = std::optional<Orientation>;
    return withDecoded<Found>(packet, [](const Exiv2::XmpData& data) -> Found {
        const auto text = textValue(data, "Xmp.tiff.Orientation");
        int value = 0;
        if (!text) {
            return std::nullopt;
        }
        const auto [end, error] = std::from_chars(text->data(), text->data() + text->size(), value);
        const bool isWhole = error == std::errc {} && end == text->data() + text->size();
        return isWhole ? orientationFromTag(value) : std::nullopt;
    });
}

ByteBuffer travellingXmp(ByteSpan packet, const NewPicture& picture)
{
    return withDecoded<ByteBuffer>(packet, [&](const Exiv2::XmpData& data) -> ByteBuffer {
        const Exiv2::XmpData result = adjusted(data, picture);
        if (result.empty()) {
            return {};
        }
        if (isUnchanged(data, result)) {
            return withoutPadding(packet);
        }
        std::string text;
        // A packet that says it is read-only comes without padding.
        constexpr auto format
            = Exiv2::XmpParser::readOnlyPacket | Exiv2::XmpParser::useCompactFormat;
        if (Exiv2::XmpParser::encode(text, result, static_cast<std::uint16_t>(format)) != 0) {
            return {};
        }
        const ByteSpan bytes = std::as_bytes(std::span(text));
        return { bytes.begin(), bytes.end() };
    });
}

} // namespace vellumine::imaging::metadata
