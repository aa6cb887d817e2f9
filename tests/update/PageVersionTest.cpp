#include "update/PageVersion.h"
#include "support/NamedRows.h"
#include "support/QtPrinters.h"

#include <gtest/gtest.h>

namespace vellumine {
namespace {

struct Page {
    const char* name;
    QByteArray content;
    const char* version; ///< null where there is none
};

class VersionOnPage : public testing::TestWithParam<Page> { };

TEST_P(VersionOnPage, isFound)
{
    const char* expected = GetParam().version;
    EXPECT_EQ(versionOnPage(GetParam().content),
        expected == nullptr ? std::nullopt : std::optional(QString::fromUtf8(expected)));
}

INSTANTIATE_TEST_SUITE_P(Pages, VersionOnPage,
    testing::Values( //
        Page { "structuredDataWins",
            "<p>Version 2.0.9 · Released</p>{\"softwareVersion\": \"2.1.0\"}", "2.1.0" },
        Page { "visibleTextAlone", "<p>Version 2.1.0 · Released</p>", "2.1.0" },
        Page { "twoBlanks", "<p>Version  2.1.0  · Released</p>", "2.1.0" },
        Page { "wordsInTheVersion", "<p>Version 2.1.0 beta ·</p>", "2.1.0 beta" },
        Page { "emptyStructuredValue", "{\"softwareVersion\":\"\"} Version 2.1.0 ·", "2.1.0" },
        Page { "blanksAroundTheColon", "\"softwareVersion\" \n:\t \"3\"", "3" },
        Page { "valueIsNotTrimmed", "\"softwareVersion\":\" 3.0 \"", " 3.0 " },
        Page { "valueOverSeveralLines", "\"softwareVersion\":\"3\n0\"", "3\n0" },
        Page { "firstStructuredValue", R"({"softwareVersion":"3","softwareVersion":"4"})", "3" },
        Page { "firstVisibleText", "Version 3 · Version 4 ·", "3" },
        Page { "keyInAnotherCase", R"("SoftwareVersion":"3")", nullptr },
        Page { "wordInAnotherCase", "version 3 ·", nullptr },
        Page { "noBlankAfterTheWord", "Version3 ·", nullptr },
        Page { "noBlankBeforeTheDot", "Version 3·", nullptr },
        Page { "anotherDot", "Version 3 \xE2\x80\xA2", nullptr },
        Page { "tagInBetween", "Version <b>3</b> ·", nullptr },
        Page { "laterTextAfterATag", "Version <b>x</b> Version 4 ·", "4" },
        Page { "acrossALineEnd", "Version\n3\n· now", "3" },
        Page { "noBreakSpace", "Version\u00A03\u00A0· now", "3" },
        Page { "thinSpaces", "Version\u20093\u202F· now", "3" },
        Page { "ideographicSpaceAroundTheColon", "\"softwareVersion\"\u3000:\u3000\"3\"", "3" },
        Page { "byteOrderMark", "\xEF\xBB\xBFVersion 3 ·", "3" },
        Page { "afterAZeroByte", QByteArray("\0Version 3 \xC2\xB7", 13), "3" },
        Page { "noVersion", "<p>Welcome</p>", nullptr }, //
        Page { "empty", "", nullptr }),
    test::RowName());

class VersionOnUndecodablePage : public testing::TestWithParam<Page> { };

TEST_P(VersionOnUndecodablePage, isNotFound)
{
    const QByteArray version = R"("softwareVersion":"3" )";
    ASSERT_EQ(versionOnPage(version), QStringLiteral("3"));
    EXPECT_EQ(versionOnPage(version + GetParam().content), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(Pages, VersionOnUndecodablePage,
    testing::Values( //
        Page { "latin1", "caf\xE9 au lait", nullptr },
        Page { "cutOffAtTheEnd", "caf\xC3", nullptr },
        Page { "threeOfFourBytesAtTheEnd", "\xF0\x9F\x98", nullptr },
        Page { "loneContinuation", "a\x80z", nullptr }, Page { "overlong", "\xC0\xAF", nullptr },
        Page { "surrogate", "\xED\xA0\x80", nullptr },
        Page { "beyondUnicode", "\xF4\x90\x80\x80", nullptr },
        Page { "utf16", QByteArray("\xFF\xFE\x31\x00", 4), nullptr }),
    test::RowName());

TEST(VersionOnHostilePage, runawayMatchesEndWithoutAnAnswer)
{
    // Each "Version" looks for a dot up to the end of the page.
    EXPECT_EQ(versionOnPage(QByteArray("Version ").repeated(1 << 20U)), std::nullopt);
    EXPECT_EQ(versionOnPage("Version" + QByteArray(8 << 20U, ' ')), std::nullopt);
}

} // namespace
} // namespace vellumine
