#include "stats/LifetimeStats.h"
#include "support/NamedRows.h"

#include <QTimeZone>
#include <gtest/gtest.h>

#include <limits>

namespace vellumine {
namespace {

constexpr qint64 beyondDouble = (qint64 { 1 } << 53U) + 1;
constexpr qint64 largest = std::numeric_limits<qint64>::max();
constexpr qint64 smallest = std::numeric_limits<qint64>::min();

QDateTime someDate()
{
    return { QDate(2026, 3, 1), QTime(14, 5, 9), QTimeZone::utc() };
}

LifetimeStats someStats()
{
    return { .filesProcessed = 7,
        .filesSucceeded = 6,
        .originalBytes = 5000,
        .outputBytes = 4000,
        .grossBytesSaved = 1200,
        .netBytesSaved = -200,
        .largestSingleSaveBytes = 800,
        .lastProcessedAt = someDate() };
}

TEST(LifetimeStatsJson, isPrettyPrintedWithSortedKeys)
{
    EXPECT_EQ(toJson(someStats()).toStdString(),
        R"({
    "filesProcessed": 7,
    "filesSucceeded": 6,
    "grossBytesSaved": 1200,
    "largestSingleSaveBytes": 800,
    "lastProcessedAt": "2026-03-01T14:05:09Z",
    "netBytesSaved": -200,
    "originalBytes": 5000,
    "outputBytes": 4000
}
)");
}

TEST(LifetimeStatsJson, absentDateIsNoMember)
{
    LifetimeStats stats = someStats();
    stats.lastProcessedAt.reset();
    EXPECT_EQ(toJson(stats).toStdString(),
        R"({
    "filesProcessed": 7,
    "filesSucceeded": 6,
    "grossBytesSaved": 1200,
    "largestSingleSaveBytes": 800,
    "netBytesSaved": -200,
    "originalBytes": 5000,
    "outputBytes": 4000
}
)");
    EXPECT_EQ(lifetimeStatsFromJson(toJson(stats)), stats);
}

TEST(LifetimeStatsJson, dateIsWrittenInUtcWithWholeSeconds)
{
    LifetimeStats stats;
    stats.lastProcessedAt = QDateTime(QDate(2026, 3, 1), QTime(14, 5, 9, 999), QTimeZone(7200));
    EXPECT_TRUE(toJson(stats).contains("\"2026-03-01T12:05:09Z\"")) << toJson(stats).toStdString();
}

TEST(LifetimeStatsJson, dateIsReadBackInUtc)
{
    const auto read = lifetimeStatsFromJson(toJson(someStats()));
    ASSERT_TRUE(read && read->lastProcessedAt);
    EXPECT_EQ(read->lastProcessedAt->timeSpec(), Qt::UTC);
    EXPECT_EQ(*read, someStats());
}

class ExactInteger : public testing::TestWithParam<qint64> { };

TEST_P(ExactInteger, survives)
{
    const qint64 number = GetParam();
    const LifetimeStats stats { number, number, number, number, number, number, number, {} };
    EXPECT_TRUE(toJson(stats).contains(": " + QByteArray::number(number) + "\n"));
    EXPECT_EQ(lifetimeStatsFromJson(toJson(stats)), stats);
}

INSTANTIATE_TEST_SUITE_P(Extremes, ExactInteger,
    testing::Values(
        0, 1, -1, beyondDouble, -beyondDouble, largest - 1, largest, smallest + 1, smallest));

/// The file of someStats() with one part replaced.
struct Replacement {
    const char* name;
    const char* part;
    const char* with;
};

QByteArray replaced(const Replacement& row)
{
    const QByteArray json = toJson(someStats());
    EXPECT_TRUE(json.contains(row.part)) << row.part;
    return QByteArray(json).replace(row.part, row.with);
}

class Malformed : public testing::TestWithParam<Replacement> { };

TEST_P(Malformed, isRejectedWhole)
{
    EXPECT_EQ(lifetimeStatsFromJson(replaced(GetParam())), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(MissingKey, Malformed,
    testing::Values( //
        Replacement { "filesProcessed", "filesProcessed", "x" },
        Replacement { "filesSucceeded", "filesSucceeded", "x" },
        Replacement { "grossBytesSaved", "grossBytesSaved", "x" },
        Replacement { "largestSingleSaveBytes", "largestSingleSaveBytes", "x" },
        Replacement { "netBytesSavedWithADatePresent", "netBytesSaved", "x" },
        Replacement { "originalBytes", "originalBytes", "x" },
        Replacement { "outputBytes", "outputBytes", "x" },
        Replacement { "keyInAnotherCase", "filesProcessed", "FilesProcessed" }),
    test::RowName());

INSTANTIATE_TEST_SUITE_P(Number, Malformed,
    testing::Values( //
        Replacement { "fraction", "5000", "5000.5" }, //
        Replacement { "text", "5000", "\"5000\"" }, //
        Replacement { "truth", "5000", "true" }, //
        Replacement { "null", "5000", "null" }, //
        Replacement { "list", "5000", "[5000]" }, //
        Replacement { "object", "5000", "{}" }, //
        Replacement { "beyond64Bits", "5000", "9223372036854775808" },
        Replacement { "farBeyond64Bits", "5000", "1e300" },
        Replacement { "belowTheSmallest", "5000", "-9223372036854777856" }),
    test::RowName());

INSTANTIATE_TEST_SUITE_P(Date, Malformed,
    testing::Values( //
        Replacement { "number", "\"2026-03-01T14:05:09Z\"", "7" },
        Replacement { "truth", "\"2026-03-01T14:05:09Z\"", "false" },
        Replacement { "empty", "2026-03-01T14:05:09Z", "" },
        Replacement { "word", "2026-03-01T14:05:09Z", "yesterday" },
        Replacement { "dayOnly", "2026-03-01T14:05:09Z", "2026-03-01" },
        Replacement { "noZone", "09Z", "09" }, //
        Replacement { "offset", "09Z", "09+00:00" }, //
        Replacement { "fractionOfASecond", "09Z", "09.5Z" }, //
        Replacement { "noSeconds", ":09Z", "Z" }, //
        Replacement { "blankInsteadOfT", "01T14", "01 14" }, //
        Replacement { "basicFormat", "2026-03-01T14:05:09Z", "20260301T140509Z" },
        Replacement { "thirteenthMonth", "-03-", "-13-" }, //
        Replacement { "noSuchDay", "03-01", "02-30" }, //
        Replacement { "hour24", "T14:05:09", "T24:00:00" }, //
        Replacement { "blankAround", "09Z", "09Z " }),
    test::RowName());

INSTANTIATE_TEST_SUITE_P(Syntax, Malformed,
    testing::Values( //
        Replacement { "noEnd", "}", "" }, //
        Replacement { "anotherRoot", "{", "[{" }, //
        Replacement { "commaAtTheEnd", "4000", "4000," }, //
        Replacement { "notUtf8", "\"2026", "\"\xE9" }),
    test::RowName());

TEST(LifetimeStatsJson, whatIsNotJsonIsRejected)
{
    for (const QByteArray& bytes :
        { QByteArray(), QByteArray("x"), QByteArray("{}"), QByteArray("[]"), QByteArray("null"),
            QByteArray("7"), QByteArray(300, '\0'), QByteArray(100'000, '[') }) {
        EXPECT_EQ(lifetimeStatsFromJson(bytes), std::nullopt) << bytes.left(10).toStdString();
    }
}

TEST(LifetimeStatsJson, everyTruncationIsRejected)
{
    const QByteArray json = toJson(someStats()).trimmed();
    for (qsizetype length = 0; length < json.size(); ++length) {
        EXPECT_EQ(lifetimeStatsFromJson(json.first(length)), std::nullopt) << length;
    }
}

class OtherForms : public testing::TestWithParam<Replacement> { };

TEST_P(OtherForms, areReadTheSame)
{
    EXPECT_EQ(lifetimeStatsFromJson(replaced(GetParam())), someStats());
}

INSTANTIATE_TEST_SUITE_P(Accepted, OtherForms,
    testing::Values( //
        Replacement { "unknownMember", "{", "{\"future\": [1, {}]," }, //
        Replacement { "onOneLine", "\n", " " }, //
        Replacement { "wholeNumberWithAPoint", "5000", "5000.0" }),
    test::RowName());

TEST(LifetimeStatsJson, nullDateIsAbsent)
{
    LifetimeStats expected = someStats();
    expected.lastProcessedAt.reset();
    EXPECT_EQ(
        lifetimeStatsFromJson(replaced({ "", "\"2026-03-01T14:05:09Z\"", "null" })), expected);
}

} // namespace
} // namespace vellumine
