#include "ui/results/ResultTexts.h"

#include "support/NamedRows.h"
#include "support/QtPrinters.h"
#include "ui/results/AuditBadges.h"
#include "ui/results/Results.h"

#include <gtest/gtest.h>

#include <limits>
#include <ostream>

namespace vellumine {
namespace {

using test::someAudit;
using test::success;

struct MetricsRow {
    const char* name;
    qint64 originalBytes;
    qint64 outputBytes;
    const char* text;
    QLocale::Language language = QLocale::English;

    friend void PrintTo(const MetricsRow& row, std::ostream* stream) { *stream << row.name; }
};

class MetricsText : public testing::TestWithParam<MetricsRow> { };

TEST_P(MetricsText, saysWhatBecameOfTheSize)
{
    const MetricsRow& row = GetParam();
    EXPECT_EQ(results::metrics(success(row.originalBytes, row.outputBytes), QLocale(row.language)),
        QString::fromUtf8(row.text));
}

INSTANTIATE_TEST_SUITE_P(Sizes, MetricsText,
    testing::Values(
        MetricsRow { "saved", 2'000'000, 1'500'000, "2 MB -> 1.5 MB | saved 500 KB (25.0%)" },
        MetricsRow {
            "originalOfZeroBytesShowsTheTwoSizesAlone", 0, 1'500'000, "Zero KB -> 1.5 MB" },
        MetricsRow { "bothZero", 0, 0, "Zero KB -> Zero KB" },
        MetricsRow { "equalSizes", 70'000, 70'000, "70 KB -> 70 KB | no size change" },
        MetricsRow { "growthOfOneByteRoundsToZeroPercent", 70'000, 70'001,
            "70 KB -> 70 KB | larger by 1 byte (0.0%)" },
        MetricsRow { "growth", 1'000, 1'030, "1 KB -> 1 KB | larger by 30 bytes (3.0%)" },
        MetricsRow { "wholePercentKeepsItsDigit", 1'000, 880,
            "1 KB -> 880 bytes | saved 120 bytes (12.0%)" },
        MetricsRow { "german", 2'000'000, 1'760'000, "2 MB -> 1,8 MB | saved 240 KB (12,0%)",
            QLocale::German },
        MetricsRow { "everythingSaved", 1, 0, "1 byte -> Zero KB | saved 1 byte (100.0%)" },
        MetricsRow { "moreThan53Bits", 9'007'199'254'740'993, 9'007'199'254'740'992,
            "9.01 PB -> 9.01 PB | saved 1 byte (0.0%)" }),
    test::RowName());

TEST(MetricsTextDeathTest, aDifferenceThatDoesNotFitIsFatal)
{
    EXPECT_DEATH((void)results::metrics(success(std::numeric_limits<qint64>::max(), -1)),
        "does not fit 64 bits");
}

TEST(DimensionText, cutsFractionsOff)
{
    ConversionAudit audit = someAudit();
    EXPECT_EQ(results::dimensions(audit), QStringLiteral("4032x3024 -> 2048x1536"));
    audit.outputDimensions = { 2048.99, 0.5 };
    EXPECT_EQ(results::dimensions(audit), QStringLiteral("4032x3024 -> 2048x0"));
}

TEST(DimensionTextDeathTest, aSideThatIsNoNumberOrDoesNotFitIsFatal)
{
    EXPECT_DEATH((void)results::pixelSize({ std::numeric_limits<double>::quiet_NaN(), 1 }),
        "does not fit 64 bits");
    EXPECT_DEATH((void)results::pixelSize({ 1, std::numeric_limits<double>::infinity() }),
        "does not fit 64 bits");
    EXPECT_DEATH((void)results::pixelSize({ 9223372036854775808.0, 1 }), "does not fit 64 bits");
}

struct BadgeRow {
    const char* name;
    bool metadataRemoved, colorOptimized, colorManagementRemoved, sourceHasAlpha, outputHasAlpha;
    QList<AuditBadgeContent> badges; ///< after the first two

    friend void PrintTo(const BadgeRow& row, std::ostream* stream) { *stream << row.name; }
};

AuditBadgeContent badge(const char* systemName, const char* text)
{
    return { QString::fromLatin1(systemName), QString::fromLatin1(text) };
}

class AuditBadges : public testing::TestWithParam<BadgeRow> { };

TEST_P(AuditBadges, tellWhatWasDone)
{
    ConversionAudit audit = someAudit();
    audit.metadataRemoved = GetParam().metadataRemoved;
    audit.colorOptimized = GetParam().colorOptimized;
    audit.colorManagementRemoved = GetParam().colorManagementRemoved;
    audit.sourceHasAlpha = GetParam().sourceHasAlpha;
    audit.outputSupportsAlpha = GetParam().outputHasAlpha;
    const QList<AuditBadgeContent> first { badge("aspectratio", "4032x3024 -> 2048x1536"),
        badge("doc.on.doc", "JPEG -> WebP Lossy") };
    EXPECT_TRUE(auditBadges(audit) == first + GetParam().badges);
}

INSTANTIATE_TEST_SUITE_P(Audits, AuditBadges,
    testing::Values(BadgeRow { "sourceWithoutAlphaShowsFour", true, true, false, false, true,
                        { badge("trash", "Metadata removed"), badge("paintpalette", "sRGB") } },
        BadgeRow { "sourceWithAlphaShowsFive", true, true, false, true, true,
            { badge("trash", "Metadata removed"), badge("paintpalette", "sRGB"),
                badge("checkerboard.rectangle", "Transparency preserved") } },
        BadgeRow { "transparencyRemoved", false, false, false, true, false,
            { badge("doc.badge.gearshape", "Metadata kept"),
                badge("circle.hexagongrid", "Color kept"),
                badge("checkerboard.rectangle", "Transparency removed") } },
        BadgeRow { "profileRemoved", false, false, true, false, false,
            { badge("doc.badge.gearshape", "Metadata kept"),
                badge("circle.hexagongrid", "Profile removed") } },
        BadgeRow { "colourOptimisationWinsOverProfileRemoval", false, true, true, false, false,
            { badge("doc.badge.gearshape", "Metadata kept"), badge("paintpalette", "sRGB") } }),
    test::RowName());

} // namespace
} // namespace vellumine
