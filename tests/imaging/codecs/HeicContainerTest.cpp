#include "imaging/codecs/heic/HeicContainer.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace vellumine::imaging::heic {
namespace {

std::string number(std::size_t value, int bytes)
{
    std::string text;
    for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8) {
        text.push_back(static_cast<char>(value >> static_cast<unsigned>(shift) & 0xFFU));
    }
    return text;
}

std::string box(const std::string& type, const std::string& content)
{
    return number(content.size() + 8, 4) + type + content;
}

struct Reference {
    const char* type;
    std::size_t from;
    std::vector<std::size_t> to;
};

/// A `meta` box with these references, behind a box of another kind.
std::string fileWith(const std::vector<Reference>& references, int idBytes = 2)
{
    std::string content(idBytes == 2 ? "\0\0\0\0" : "\1\0\0\0", 4);
    for (const auto& [type, from, to] : references) {
        std::string reference = number(from, idBytes) + number(to.size(), 2);
        for (const std::size_t item : to) {
            reference += number(item, idBytes);
        }
        content += box(type, reference);
    }
    return box("free", "av1C")
        + box("meta", std::string(4, '\0') + box("hdlr", "") + box("iref", content));
}

std::optional<Error::Kind> problemWith(const std::string& file)
{
    const auto checked = checkContainer(std::as_bytes(std::span(file)));
    return checked ? std::nullopt : std::optional(checked.error().kind);
}

struct ReferenceRow {
    const char* name;
    std::vector<Reference> references;
    bool isSound;
};

class HeicReferences : public testing::TestWithParam<ReferenceRow> { };

TEST_P(HeicReferences, mustComeToAnEnd)
{
    for (const int idBytes : { 2, 4 }) {
        const auto problem = problemWith(fileWith(GetParam().references, idBytes));
        EXPECT_EQ(
            problem, GetParam().isSound ? std::nullopt : std::optional(Error::Kind::malformed));
    }
}

std::vector<Reference> chain(std::size_t length)
{
    std::vector<Reference> references;
    for (std::size_t item = 1; item <= length; ++item) {
        references.push_back({ "dimg", item, { item + 1 } });
    }
    return references;
}

/// Every item is made of ten of the next.
std::vector<Reference> multiplying(std::size_t levels)
{
    std::vector<Reference> references;
    for (std::size_t item = 1; item <= levels; ++item) {
        references.push_back({ "dimg", item, std::vector<std::size_t>(10, item + 1) });
    }
    return references;
}

INSTANTIATE_TEST_SUITE_P(Shapes, HeicReferences,
    testing::Values(ReferenceRow { "none", {}, true },
        ReferenceRow { "gridWithAlphaAndThumbnail",
            { { "dimg", 1, { 2, 3, 4 } }, { "auxl", 5, { 1 } }, { "dimg", 5, { 6, 7 } },
                { "thmb", 8, { 1 } }, { "cdsc", 9, { 1 } } },
            true },
        ReferenceRow { "itself", { { "dimg", 2, { 2 } } }, false },
        ReferenceRow { "eachOther", { { "dimg", 1, { 2 } }, { "dimg", 2, { 3, 1 } } }, false },
        ReferenceRow {
            "alphaMadeOfItsPicture", { { "auxl", 2, { 1 } }, { "dimg", 2, { 1 } } }, false },
        ReferenceRow { "thumbnailOfItself", { { "thmb", 1, { 1 } } }, true },
        ReferenceRow { "shortChain", chain(7), true },
        ReferenceRow { "longChain", chain(2000), false },
        ReferenceRow { "multiplying", multiplying(7), false },
        ReferenceRow { "largeGrid", { { "dimg", 1, std::vector<std::size_t>(65'000, 2) } }, true }),
    [](const auto& row) { return row.param.name; });

TEST(HeicContainer, av1IsRefusedWhereverMetaStands)
{
    const std::string meta = box("meta", std::string(4, '\0') + box("av1C", "x"));
    EXPECT_EQ(problemWith(box("ftyp", "mif1") + meta), Error::Kind::unsupported);
    const std::string toTheEnd = number(0, 4) + meta.substr(4);
    EXPECT_EQ(problemWith(toTheEnd), Error::Kind::unsupported);
    const std::string longHeader
        = number(1, 4) + "meta" + number(meta.size() + 8, 8) + meta.substr(8);
    EXPECT_EQ(problemWith(longHeader), Error::Kind::unsupported);
    EXPECT_EQ(problemWith(box("mdat", "av1C") + box("meta", std::string(4, '\0'))), std::nullopt);
}

TEST(HeicContainer, damagedReferencesAreRefused)
{
    const std::string sound = fileWith({ { "dimg", 1, { 2 } } });
    EXPECT_EQ(problemWith(sound), std::nullopt);
    // The count of references, two bytes before the only one at the end, says more.
    std::string greedy = sound;
    greedy[greedy.size() - 3] = 9;
    EXPECT_EQ(problemWith(greedy), Error::Kind::malformed);
    EXPECT_EQ(problemWith(box("meta", "")), Error::Kind::malformed);
    EXPECT_EQ(problemWith(box("meta", std::string(4, '\0') + number(99, 4) + "iref")),
        Error::Kind::malformed);
    EXPECT_EQ(
        problemWith(box("meta", std::string(4, '\0') + box("iref", "x"))), Error::Kind::malformed);
}

} // namespace
} // namespace vellumine::imaging::heic
