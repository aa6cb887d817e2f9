#include "core/PropertyList.h"
#include "core/PlistMemory.h"
#include "support/NamedRows.h"
#include "support/QtPrinters.h"

#include <gtest/gtest.h>
#include <plist/plist.h>

namespace vellumine {
namespace {

using List = QList<QByteArray>;

QByteArray binary(const PlistNode& root)
{
    char* bytes = nullptr;
    std::uint32_t size = 0;
    plist_to_bin(root.get(), &bytes, &size);
    const PlistBytes owner(bytes);
    return { bytes, static_cast<qsizetype>(size) };
}

/// What the library makes of the bytes.
List readByTheLibrary(const QByteArray& bytes)
{
    plist_t root = nullptr;
    plist_from_bin(bytes.constData(), static_cast<std::uint32_t>(bytes.size()), &root);
    const PlistNode owner(root);
    EXPECT_EQ(plist_get_node_type(root), PLIST_ARRAY);
    List values;
    for (std::uint32_t i = 0; i < plist_array_get_size(root); ++i) {
        auto* const item = plist_array_get_item(root, i);
        EXPECT_EQ(plist_get_node_type(item), PLIST_DATA);
        std::uint64_t length = 0;
        const char* data = plist_get_data_ptr(item, &length);
        values.append(QByteArray(data, static_cast<qsizetype>(length)));
    }
    return values;
}

QByteArray allBytes()
{
    QByteArray bytes;
    for (int i = 0; i < 256; ++i) {
        bytes.append(static_cast<char>(i));
    }
    return bytes;
}

List manyValues(int count)
{
    List values;
    for (int i = 0; i < count; ++i) {
        values.append(QByteArray::number(i));
    }
    return values;
}

struct Values {
    const char* name;
    List values;
};

class PropertyListOf : public testing::TestWithParam<Values> { };

TEST_P(PropertyListOf, isBinaryAndReadBack)
{
    const std::optional<QByteArray> bytes = encodePropertyList(GetParam().values);
    ASSERT_TRUE(bytes.has_value());
    EXPECT_TRUE(bytes->startsWith("bplist00"));
    EXPECT_EQ(decodePropertyList(*bytes), GetParam().values);
    EXPECT_EQ(readByTheLibrary(*bytes), GetParam().values);
}

INSTANTIATE_TEST_SUITE_P(Lists, PropertyListOf,
    testing::Values( //
        Values { "nothing", {} }, //
        Values { "one", { "file:///a" } }, //
        Values { "empty", { "" } }, //
        Values { "longestShortCount", { QByteArray(14, 'x') } },
        Values { "shortestLongCount", { QByteArray(15, 'x') } },
        Values { "twoByteCount", { QByteArray(300, 'x') } },
        Values { "fourByteCount", { QByteArray(70'000, 'x') } },
        Values { "allBytes", { allBytes() } }, //
        Values { "orderKept", { "b", "a", "c" } }, //
        Values { "repeated", { "a", "b", "a" } }, //
        Values { "fifteen", manyValues(15) }, //
        Values { "twoByteReferences", manyValues(300) }),
    test::RowName());

PlistNode arrayOf(std::initializer_list<plist_t> items)
{
    PlistNode array(plist_new_array());
    for (plist_t item : items) {
        plist_array_append_item(array.get(), item);
    }
    return array;
}

plist_t dataNode()
{
    return plist_new_data("a", 1);
}

QByteArray wrongRoot(plist_t root)
{
    return binary(PlistNode(root));
}

struct Bytes {
    const char* name;
    QByteArray bytes;
};

class PropertyListFrom : public testing::TestWithParam<Bytes> { };

TEST_P(PropertyListFrom, isRefused)
{
    EXPECT_EQ(decodePropertyList(GetParam().bytes), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(OtherBytes, PropertyListFrom,
    testing::Values( //
        Bytes { "nothing", {} }, //
        Bytes { "text", "not a property list" }, //
        Bytes { "magicAlone", "bplist00" }, //
        Bytes { "magicAndZeros", "bplist00" + QByteArray(40, '\0') },
        Bytes { "magicAndOnes", "bplist00" + QByteArray(40, '\xFF') },
        Bytes { "rootIsData", wrongRoot(dataNode()) },
        Bytes { "rootIsText", wrongRoot(plist_new_string("a")) },
        Bytes { "rootIsDictionary", wrongRoot(plist_new_dict()) },
        Bytes { "textInTheArray", binary(arrayOf({ dataNode(), plist_new_string("a") })) },
        Bytes { "numberInTheArray", binary(arrayOf({ plist_new_uint(1) })) },
        Bytes { "arrayInTheArray",
            binary(arrayOf({ arrayOf({ dataNode() }).release(), dataNode() })) }),
    test::RowName());

TEST(PropertyList, everyDamageIsRefusedOrReadWithoutHarm)
{
    const QByteArray whole = *encodePropertyList({ "file:///one", QByteArray(20, 'x'), "c" });
    for (qsizetype length = 0; length < whole.size(); ++length) {
        EXPECT_EQ(decodePropertyList(whole.first(length)), std::nullopt) << length;
    }
    for (qsizetype i = 0; i < whole.size(); ++i) {
        for (int value = 0; value < 256; ++value) {
            QByteArray damaged = whole;
            damaged[i] = static_cast<char>(value);
            if (const auto read = decodePropertyList(damaged)) {
                for (const QByteArray& item : *read) {
                    EXPECT_LE(item.size(), whole.size());
                }
            }
        }
    }
}

QByteArray bigEndian(quint64 value, int byteCount)
{
    QByteArray bytes;
    for (int shift = 8 * (byteCount - 1); shift >= 0; shift -= 8) {
        bytes.append(static_cast<char>(value >> static_cast<unsigned>(shift) & 0xFFU));
    }
    return bytes;
}

/// A binary property list of the given objects, the first of them the root.
QByteArray propertyList(const List& objects, int referenceSize)
{
    QByteArray bytes = "bplist00";
    QByteArray offsets;
    for (const QByteArray& object : objects) {
        offsets += bigEndian(static_cast<quint64>(bytes.size()), 4);
        bytes += object;
    }
    const auto table = static_cast<quint64>(bytes.size());
    const auto count = static_cast<quint64>(objects.size());
    return bytes + offsets + QByteArray(6, '\0') + bigEndian(4, 1)
        + bigEndian(static_cast<quint64>(referenceSize), 1) + bigEndian(count, 8) + bigEndian(0, 8)
        + bigEndian(table, 8);
}

TEST(PropertyList, aListWithinItselfIsRefused)
{
    EXPECT_EQ(decodePropertyList(propertyList({ QByteArray("\xA1\x00", 2) }, 1)), std::nullopt);
}

TEST(PropertyList, deepNestingIsRefused)
{
    constexpr int depth = 200'000;
    List objects;
    for (quint64 i = 1; i < depth; ++i) {
        objects.append("\xA1" + bigEndian(i, 4));
    }
    objects.append(QByteArray(1, 0x40));
    EXPECT_EQ(decodePropertyList(propertyList(objects, 4)), std::nullopt);
}

TEST(PropertyList, aValueThatIsRepeatedIsNotCopied)
{
    constexpr int size = 100'000; // copies would take 10 GB
    const QByteArray list = "\xAF\x12" + bigEndian(size, 4) + QByteArray(size, '\x01');
    const QByteArray data = "\x4F\x12" + bigEndian(size, 4) + QByteArray(size, 'x');
    const auto values = decodePropertyList(propertyList({ list, data }, 1));
    ASSERT_TRUE(values.has_value());
    ASSERT_EQ(values->size(), size);
    EXPECT_EQ(values->front().size(), size);
    EXPECT_EQ(values->front().constData(), values->back().constData());
}

TEST(PropertyList, countsBeyondTheFileAreRefused)
{
    for (const char* size : { "\x10", "\x11", "\x12", "\x13" }) {
        const int byteCount = 1 << (*size & 0xF);
        const QByteArray huge = QByteArray(size) + QByteArray(byteCount, '\xFF');
        EXPECT_EQ(decodePropertyList(propertyList({ "\xAF" + huge }, 1)), std::nullopt);
        EXPECT_EQ(decodePropertyList(propertyList({ QByteArray("\xA1\x01", 2), "\x4F" + huge }, 1)),
            std::nullopt);
    }
}

} // namespace
} // namespace vellumine
