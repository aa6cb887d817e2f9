#include "imaging/codecs/gif/GifComments.h"
#include "imaging/codecs/BmpFiles.h"
#include "imaging/codecs/GifFiles.h"
#include "imaging/codecs/gif/GifCodec.h"
#include "support/TestImages.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace vellumine::imaging {
namespace {

using test::GifFile;
using test::GifPicture;

const test::GifColors fourColors { { 0, 100, 200 }, { 10, 101, 201 }, { 20, 102, 202 },
    { 30, 103, 203 } };

ByteBuffer bytesOf(std::string_view text)
{
    const auto bytes = std::as_bytes(std::span(text));
    return { bytes.begin(), bytes.end() };
}

/// An extension of that label whose content stands in blocks of so many bytes.
ByteBuffer extension(std::uint32_t label, std::string_view content, std::size_t blockBytes = 255)
{
    test::LittleEndianBytes bytes;
    bytes.add8(0x21).add8(label);
    while (!content.empty()) {
        const auto block = content.substr(0, blockBytes);
        bytes.add8(static_cast<std::uint32_t>(block.size())).add(block);
        content.remove_prefix(block.size());
    }
    return bytes.add8(0).bytes();
}

ByteBuffer comment(std::string_view content, std::size_t blockBytes = 255)
{
    return extension(0xFE, content, blockBytes);
}

GifPicture picture(test::GifColors palette = {})
{
    return { .place = { 0, 0, 3, 2 },
        .indexes = std::vector<std::uint8_t>(6, 1),
        .palette = std::move(palette) };
}

ByteBuffer fileWith(const ByteBuffer& before)
{
    return GifFile {
        .screen = { 3, 2 }, .palette = fourColors, .extension = before, .pictures = { picture() }
    }.bytes();
}

std::vector<std::string> commentsIn(ByteSpan file)
{
    std::vector<std::string> comments;
    const FileTexts texts = gif::commentsOf(file);
    for (const FileText& text : texts.list()) {
        EXPECT_TRUE(text.keyword.empty());
        comments.emplace_back(
            reinterpret_cast<const char*>(text.content.data()), text.content.size());
    }
    return comments;
}

using Comments = std::vector<std::string>;

TEST(GifComments, areReadInBlocksOfAnySize)
{
    const std::string longText(1000, 'x');
    EXPECT_EQ(commentsIn(fileWith(comment("a comment"))), Comments { "a comment" });
    EXPECT_EQ(commentsIn(fileWith(comment("a comment", 1))), Comments { "a comment" });
    EXPECT_EQ(commentsIn(fileWith(comment(longText))), Comments { longText });
    EXPECT_EQ(commentsIn(fileWith({})), Comments {});
    EXPECT_EQ(commentsIn(fileWith(comment(""))), Comments {});
}

TEST(GifComments, areFoundWhereverTheyStand)
{
    test::LittleEndianBytes before;
    before.add(extension(0xFF, "NETSCAPE2.0")).add(comment("first")).add(extension(0x01, "text"));
    ByteBuffer file = GifFile {
        .screen = { 3, 2 },
        .extension = before.bytes(),
        .pictures = { picture(fourColors), picture(fourColors) }
    }.bytes();
    const ByteBuffer last = comment("last");
    file.insert(file.end() - 1, last.begin(), last.end()); // before the end marker
    EXPECT_EQ(commentsIn(file), (Comments { "first", "last" }));
    const auto decoded = gif::decode(file, {});
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->texts, gif::commentsOf(file));
}

TEST(GifComments, endWhereTheFileDoes)
{
    test::LittleEndianBytes both;
    both.add(comment("first")).add(comment("second"));
    const ByteBuffer whole = fileWith(both.bytes());
    const auto all = commentsIn(whole);
    ASSERT_EQ(all.size(), 2U);
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const auto found = commentsIn(ByteSpan(whole).first(length));
        ASSERT_LE(found.size(), all.size());
        EXPECT_TRUE(std::ranges::equal(found, std::span(all).first(found.size()))) << length;
    }
}

TEST(GifComments, areBounded)
{
    test::LittleEndianBytes many;
    for (std::size_t i = 0; i < FileTexts::mostTexts + 10; ++i) {
        many.add(comment("one"));
    }
    EXPECT_EQ(commentsIn(fileWith(many.bytes())).size(), FileTexts::mostTexts);
    const std::string tooLong(FileTexts::mostBytes + 1, 'x');
    test::LittleEndianBytes large;
    large.add(comment(tooLong)).add(comment("small"));
    EXPECT_EQ(commentsIn(fileWith(large.bytes())), Comments { "small" });
}

TEST(GifComments, surviveARoundTrip)
{
    FileTexts comments;
    comments.add({ .content = bytesOf("a comment") });
    comments.add({ .content = bytesOf(std::string(1000, 'x')) });
    comments.add({ .content = bytesOf(std::string_view("zero\0inside", 11)) });
    for (const AlphaInfo alpha : { AlphaInfo::none, AlphaInfo::last }) {
        const Image image = test::gradient(test::oddSize, { ColorModel::rgb, 8, alpha });
        const auto file = gif::encode(image, { .metadata = {}, .texts = comments });
        ASSERT_TRUE(file);
        EXPECT_EQ(file->at(4), std::byte { '9' }); // the version that knows of comments
        EXPECT_EQ(gif::decode(*file, {})->texts, comments);
        const auto without = gif::encode(image, {});
        EXPECT_TRUE(gif::decode(*without, {})->texts.empty());
    }
}

TEST(GifComments, thatAreEmptyAreNotWritten)
{
    FileTexts comments;
    comments.add({});
    const Image image = test::gradient(test::oddSize, { ColorModel::rgb, 8, AlphaInfo::none });
    const auto file = gif::encode(image, { .metadata = {}, .texts = comments });
    ASSERT_TRUE(file);
    EXPECT_TRUE(gif::decode(*file, {})->texts.empty());
}

} // namespace
} // namespace vellumine::imaging
