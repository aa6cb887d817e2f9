#include "confined/client/PictureHandover.h"
#include "confined/protocol/Messages.h"

#include <gtest/gtest.h>

#include <optional>

namespace vellumine::confined {
namespace {

constexpr std::uint64_t mebibyte = std::uint64_t { 1 } << 20U;
constexpr std::uint64_t fileBytes = 3 * mebibyte;
constexpr imaging::PixelLayout layout { imaging::ColorModel::rgb, 8, imaging::AlphaInfo::none };

struct AnswerRow {
    const char* name;
    std::optional<imaging::Rect> region;
    imaging::Size size;
    bool isRegion;
    std::uint64_t attachmentsBytes;
    bool expected;
};

class AnswerToAQuestion : public testing::TestWithParam<AnswerRow> { };

TEST_P(AnswerToAQuestion, isBelievedOnlyWhereItCanBeTrue)
{
    const AnswerRow& row = GetParam();
    const PictureQuestion question { { { 300, 200 }, layout }, row.region,
        imaging::Limits { .maximumPixels = 60'000 }, fileBytes };
    const DecodedReply reply { .size = row.size,
        .layout = layout,
        .isRegion = row.isRegion,
        .attachmentsAddress = 8192,
        .attachmentsBytes = row.attachmentsBytes };
    EXPECT_EQ(isWhatWasAskedFor(reply, question), row.expected);
}

constexpr imaging::Rect part { 10, 20, 30, 40 };

INSTANTIATE_TEST_SUITE_P(Of, AnswerToAQuestion,
    testing::Values( //
        AnswerRow { "theWhole", std::nullopt, { 300, 200 }, false, 100, true },
        AnswerRow { "thePart", part, { 30, 40 }, true, 100, true },
        AnswerRow { "theWholeInsteadOfThePart", part, { 300, 200 }, false, 100, true },
        AnswerRow { "anotherSize", std::nullopt, { 200, 300 }, false, 100, false },
        AnswerRow { "anotherPart", part, { 40, 30 }, true, 100, false },
        AnswerRow { "aPartThatNobodyWants", std::nullopt, { 30, 40 }, true, 100, false },
        AnswerRow { "thePartCalledTheWhole", part, { 30, 40 }, false, 100, false },
        AnswerRow { "asMuchAsAFileOfTheKindMayHold", std::nullopt, { 300, 200 }, false,
            32 * mebibyte + fileBytes, true },
        AnswerRow {
            "moreThanTheFileCanHold", std::nullopt, { 300, 200 }, false, 128 * mebibyte, false }),
    [](const auto& instance) { return instance.param.name; });

TEST(Answer, beyondTheLimitsIsNotBelieved)
{
    const DecodedReply reply { .size = { 300, 200 }, .layout = layout };
    PictureQuestion question { { { 300, 200 }, layout }, std::nullopt,
        imaging::Limits { .maximumPixels = 60'000 }, fileBytes };
    EXPECT_TRUE(isWhatWasAskedFor(reply, question));
    question.limits.maximumPixels = 59'999;
    EXPECT_FALSE(isWhatWasAskedFor(reply, question));
}

} // namespace
} // namespace vellumine::confined
