#include "platform/UniqueName.h"

#include <gtest/gtest.h>

namespace vellumine::platform {
namespace {

TEST(UniqueName, isKnownAgainAndNeverTheSame)
{
    const std::string first = uniqueName("vellumine-", ".pam");
    const std::string second = uniqueName("vellumine-", ".pam");
    EXPECT_NE(first, second);
    EXPECT_EQ(first.size(), std::string_view("vellumine-").size() + 36 + 4);
    EXPECT_TRUE(isUniqueName(first, "vellumine-", ".pam"));
    EXPECT_FALSE(isUniqueName(first, "vellumine-", ".webp"));
    EXPECT_FALSE(isUniqueName(first, "vellumine-preview-", ".pam"));
}

TEST(UniqueName, isARandomUuidInCapitals)
{
    const auto isUnique = [](std::string_view uuid) {
        return isUniqueName("a-" + std::string(uuid) + ".b", "a-", ".b");
    };
    EXPECT_TRUE(isUnique("3F2504E0-4F89-41D3-9A0C-0305E82C3301"));
    EXPECT_FALSE(isUnique("3f2504e0-4f89-41d3-9a0c-0305e82c3301"));
    EXPECT_FALSE(isUnique("3F2504E0-4F89-51D3-9A0C-0305E82C3301")); // version 5, of a name
    EXPECT_FALSE(isUnique("3F2504E0-4F89-41D3-CA0C-0305E82C3301")); // another variant
    EXPECT_FALSE(isUnique("{3F2504E0-4F89-41D3-9A0C-0305E82C3301}"));
    EXPECT_FALSE(isUnique("3F2504E04F8941D39A0C0305E82C3301"));
    EXPECT_FALSE(isUnique("my_holiday_photo_from_the_beach_2026"));
    EXPECT_FALSE(isUnique("3F2504E0-4F89-41D3-9A0C-0305E82C33\xff\xff"));
    EXPECT_FALSE(isUnique(""));
}

TEST(UniqueName, needsMoreThanItsEnds)
{
    EXPECT_FALSE(isUniqueName("", "a-", ".b"));
    EXPECT_FALSE(isUniqueName("a-.b", "a-", ".b"));
    EXPECT_FALSE(isUniqueName("a-", "a-", "-"));
}

} // namespace
} // namespace vellumine::platform
