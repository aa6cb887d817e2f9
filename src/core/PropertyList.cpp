#include "core/PropertyList.h"

#include "core/PlistMemory.h"

#include <plist/plist.h>

// The library writes; it does not read, since it follows nested arrays without a bound (900 KB of
// them overflow the stack) and copies a value for each time that the list names it (40 KB become
// 400 MB). A flat list needs neither.

namespace vellumine {
namespace {

constexpr QByteArrayView magic { "bplist00" };
constexpr quint64 trailerSize = 32;

/// High half of the byte that an object begins with.
enum class ObjectType : quint8 { integer = 1, data = 4, array = 10 };

/// The objects of a binary property list, which an array refers to by number.
class BinaryPropertyList {
public:
    /// Checks the frame only: the magic number and the trailer.
    static std::optional<BinaryPropertyList> open(QByteArrayView bytes)
    {
        if (!bytes.startsWith(magic)
            || bytes.size() < magic.size() + static_cast<qsizetype>(trailerSize)) {
            return std::nullopt;
        }
        BinaryPropertyList list;
        list.m_bytes = bytes;
        const quint64 trailer = list.size() - trailerSize;
        list.m_offsetSize = list.byteAt(trailer + 6);
        list.m_referenceSize = list.byteAt(trailer + 7);
        list.m_objectCount = list.integerAt(trailer + 8, 8);
        list.m_root = list.integerAt(trailer + 16, 8);
        list.m_offsetTable = list.integerAt(trailer + 24, 8);
        const bool isSound = isIntegerSize(list.m_offsetSize) && isIntegerSize(list.m_referenceSize)
            && list.m_offsetTable < trailer
            && list.m_objectCount <= (trailer - list.m_offsetTable) / list.m_offsetSize;
        if (!isSound) {
            return std::nullopt;
        }
        return list;
    }

    [[nodiscard]] std::optional<QList<QByteArray>> rootArray() const
    {
        const std::optional<Object> array = object(m_root, ObjectType::array);
        if (!array || array->count > (m_offsetTable - array->content) / m_referenceSize) {
            return std::nullopt;
        }
        // Repeated references share their value, so that no list grows beyond its file.
        QList<std::optional<QByteArray>> values(static_cast<qsizetype>(m_objectCount));
        QList<QByteArray> result;
        result.reserve(static_cast<qsizetype>(array->count));
        for (quint64 i = 0; i < array->count; ++i) {
            const quint64 reference
                = integerAt(array->content + i * m_referenceSize, m_referenceSize);
            if (reference >= m_objectCount) {
                return std::nullopt;
            }
            std::optional<QByteArray>& value = values[static_cast<qsizetype>(reference)];
            if (!value) {
                value = data(reference);
            }
            if (!value) {
                return std::nullopt;
            }
            result.append(*value);
        }
        return result;
    }

private:
    struct Object {
        quint64 count; ///< of elements or of bytes
        quint64 content; ///< offset of the first
    };

    static bool isIntegerSize(quint64 size) { return size >= 1 && size <= 8; }

    [[nodiscard]] quint64 size() const { return static_cast<quint64>(m_bytes.size()); }

    [[nodiscard]] quint64 byteAt(quint64 offset) const
    {
        return static_cast<quint8>(m_bytes.at(static_cast<qsizetype>(offset)));
    }

    /// Big-endian; the caller has checked that the bytes are there.
    [[nodiscard]] quint64 integerAt(quint64 offset, quint64 byteCount) const
    {
        quint64 value = 0;
        for (quint64 i = 0; i < byteCount; ++i) {
            value = value << 8U | byteAt(offset + i);
        }
        return value;
    }

    [[nodiscard]] std::optional<Object> object(quint64 number, ObjectType type) const
    {
        if (number >= m_objectCount) {
            return std::nullopt;
        }
        const quint64 offset = integerAt(m_offsetTable + number * m_offsetSize, m_offsetSize);
        if (offset < static_cast<quint64>(magic.size()) || offset >= m_offsetTable) {
            return std::nullopt;
        }
        const quint64 marker = byteAt(offset);
        if (marker >> 4U != static_cast<quint64>(type)) {
            return std::nullopt;
        }
        const quint64 count = marker & 0xFU;
        return count == 0xFU ? countedObject(offset + 1) : Object { count, offset + 1 };
    }

    /// An object whose count stands before its content as an integer object.
    [[nodiscard]] std::optional<Object> countedObject(quint64 offset) const
    {
        if (offset >= m_offsetTable) {
            return std::nullopt;
        }
        const quint64 marker = byteAt(offset);
        const quint64 exponent = marker & 0xFU;
        if (marker >> 4U != static_cast<quint64>(ObjectType::integer) || exponent > 3) {
            return std::nullopt;
        }
        const quint64 byteCount = quint64 { 1 } << exponent;
        if (byteCount >= m_offsetTable - offset) {
            return std::nullopt;
        }
        return Object { integerAt(offset + 1, byteCount), offset + 1 + byteCount };
    }

    [[nodiscard]] std::optional<QByteArray> data(quint64 number) const
    {
        const std::optional<Object> data = object(number, ObjectType::data);
        if (!data || data->count > m_offsetTable - data->content) {
            return std::nullopt;
        }
        return m_bytes
            .sliced(static_cast<qsizetype>(data->content), static_cast<qsizetype>(data->count))
            .toByteArray();
    }

    QByteArrayView m_bytes;
    quint64 m_offsetSize = 0;
    quint64 m_referenceSize = 0;
    quint64 m_objectCount = 0;
    quint64 m_root = 0;
    quint64 m_offsetTable = 0; ///< objects end where it begins
};

} // namespace

std::optional<QByteArray> encodePropertyList(const QList<QByteArray>& values)
{
    const PlistNode list(plist_new_array());
    for (const QByteArray& value : values) {
        plist_array_append_item(
            list.get(), plist_new_data(value.constData(), static_cast<quint64>(value.size())));
    }
    char* bytes = nullptr;
    std::uint32_t size = 0;
    plist_to_bin(list.get(), &bytes, &size);
    const PlistBytes owner(bytes);
    if (bytes == nullptr) {
        return std::nullopt;
    }
    return QByteArray(bytes, static_cast<qsizetype>(size));
}

std::optional<QList<QByteArray>> decodePropertyList(const QByteArray& bytes)
{
    const std::optional<BinaryPropertyList> list = BinaryPropertyList::open(bytes);
    return list ? list->rootArray() : std::nullopt;
}

} // namespace vellumine
