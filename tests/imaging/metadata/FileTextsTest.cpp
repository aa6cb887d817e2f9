#include "imaging/metadata/FileTexts.h"

#include <gtest/gtest.h>

namespace vellumine::imaging {
namespace {

TEST(FileTexts, areNotTooMany)
{
    FileTexts texts;
    for (std::size_t i = 0; i < FileTexts::mostTexts; ++i) {
        EXPECT_FALSE(texts.isFull());
        ASSERT_TRUE(texts.add({ .keyword = "Title" }));
    }
    EXPECT_TRUE(texts.isFull());
    EXPECT_FALSE(texts.add({ .keyword = "Title" }));
    EXPECT_EQ(texts.list().size(), FileTexts::mostTexts);
}

TEST(FileTexts, areNotTooLongTogether)
{
    FileTexts texts;
    EXPECT_FALSE(texts.add({ .content = ByteBuffer(FileTexts::mostBytes + 1) }));
    EXPECT_TRUE(texts.empty());
    EXPECT_TRUE(texts.add({ .content = ByteBuffer(FileTexts::mostBytes - 10) }));
    EXPECT_FALSE(texts.add({ .keyword = "Author", .content = ByteBuffer(5) }));
    EXPECT_FALSE(
        texts.add({ .keyword = "A", .international = InternationalKeyword { "de", "Autor..." } }));
    EXPECT_TRUE(texts.add({ .keyword = "Author", .content = ByteBuffer(4) }));
    EXPECT_EQ(texts.list().size(), 2U);
}

} // namespace
} // namespace vellumine::imaging
