#include "update/VersionText.h"
#include "core/Product.h"
#include "support/NamedRows.h"
#include "support/QtPrinters.h"

#include <QUrl>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace vellumine {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(VersionText, composesVersionAndBuild)
{
    EXPECT_EQ(versionText(QStringLiteral("1.4.2"), QStringLiteral("37")),
        QStringLiteral("1.4.2 build 37"));
}

TEST(VersionText, missingVersionIsZeroAndAnyPositiveNumberIsNewer)
{
    const QString nothing = versionText(std::nullopt, std::nullopt);
    EXPECT_EQ(nothing, QStringLiteral("0.0 build 0"));
    EXPECT_TRUE(isNewer(u"0.0.1", nothing));
    EXPECT_TRUE(isNewer(u"0.0.0.1", nothing));
    EXPECT_FALSE(isNewer(u"0.0.0", nothing));
}

TEST(VersionText, eachHalfHasItsOwnDefault)
{
    EXPECT_EQ(versionText(std::nullopt, QStringLiteral("37")), QStringLiteral("0.0 build 37"));
    EXPECT_EQ(versionText(QStringLiteral("1.4"), std::nullopt), QStringLiteral("1.4 build 0"));
}

TEST(VersionText, theRunningVersionIsThatOfTheBuild)
{
    EXPECT_EQ(currentVersionText(),
        QString(product::version) + QStringLiteral(" build ") + QString(product::buildNumber));
    EXPECT_THAT(versionComponents(currentVersionText()), ::testing::SizeIs(4));
}

TEST(Product, everyAddressIsAbsoluteAndHttps)
{
    for (const QLatin1StringView address :
        { product::homePageUrl, product::makerUrl, product::donationUrl, product::downloadUrl }) {
        const QUrl url { QString(address), QUrl::StrictMode };
        SCOPED_TRACE(address.data());
        EXPECT_EQ(url.scheme(), QStringLiteral("https"));
        EXPECT_FALSE(url.host().isEmpty());
    }
}

TEST(VersionComponents, areTheRunsOfDigits)
{
    EXPECT_THAT(versionComponents(u"1.4.2 build 37"), ElementsAre(1, 4, 2, 37));
    EXPECT_THAT(versionComponents(u"release 2.0-beta3"), ElementsAre(2, 0, 3));
    EXPECT_THAT(versionComponents(u"007"), ElementsAre(7));
    EXPECT_THAT(versionComponents(u"-5"), ElementsAre(5));
}

TEST(VersionComponents, aTextWithoutDigitsHasNone)
{
    EXPECT_THAT(versionComponents(u""), IsEmpty());
    EXPECT_THAT(versionComponents(u"build . ,"), IsEmpty());
}

TEST(VersionComponents, onlyAsciiDigitsCount)
{
    EXPECT_THAT(versionComponents(u"1\u0662\uFF133"), ElementsAre(1, 3));
}

TEST(VersionComponents, aRunBeyond64BitsIsSkipped)
{
    EXPECT_THAT(versionComponents(u"1.9223372036854775807.2"),
        ElementsAre(1, std::numeric_limits<qint64>::max(), 2));
    EXPECT_THAT(versionComponents(u"1.9223372036854775808.2"), ElementsAre(1, 2));
}

struct Comparison {
    const char* name;
    const char* candidate;
    const char* current;
    bool newer;
};

class IsNewer : public testing::TestWithParam<Comparison> { };

TEST_P(IsNewer, comparesComponents)
{
    EXPECT_EQ(
        isNewer(QString::fromLatin1(GetParam().candidate), QString::fromLatin1(GetParam().current)),
        GetParam().newer);
}

INSTANTIATE_TEST_SUITE_P(Versions, IsNewer,
    testing::Values( //
        Comparison { "sameVersionLosesAgainstTheBuild", "1.4.2", "1.4.2 build 37", false },
        Comparison { "nextPatch", "1.4.3", "1.4.2 build 37", true },
        Comparison { "nextMinor", "1.5", "1.4 build 9", true },
        Comparison { "patchMeetsTheBuildNumber", "1.4.1", "1.4 build 9", false },
        Comparison { "patchBeyondTheBuildNumber", "1.4.10", "1.4 build 9", true },
        Comparison { "numbersNotStrings", "1.10", "1.9 build 3", true },
        Comparison { "older", "1.3.9", "1.4.2 build 37", false },
        Comparison { "equalWithTrailingZeros", "1.4.0.0", "1.4", false },
        Comparison { "longerAndGreater", "1.4.0.1", "1.4", true },
        Comparison { "noDigits", "soon", "0.0 build 0", false },
        Comparison { "noDigitsAnywhere", "soon", "", false },
        Comparison { "noDigitsInTheCurrent", "0.1", "", true },
        Comparison { "buildNumberOnThePage", "1.4.2 build 38", "1.4.2 build 37", true }),
    test::RowName());

} // namespace
} // namespace vellumine
