#include "platform/ByteCount.h"
#include "support/QtPrinters.h"

#include <gtest/gtest.h>

#include <limits>

namespace vellumine::platform {
namespace {

struct Row {
    const char* name;
    qint64 bytes;
    const char* text;
};

class ByteCountText : public testing::TestWithParam<Row> { };

TEST_P(ByteCountText, isAsFileManagersShowIt)
{
    EXPECT_EQ(byteCountText(GetParam().bytes, QLocale::c()), QString::fromUtf8(GetParam().text));
}

INSTANTIATE_TEST_SUITE_P(Platform, ByteCountText,
    testing::Values(Row { "zero", 0, "Zero KB" }, Row { "one", 1, "1 byte" },
        Row { "two", 2, "2 bytes" }, Row { "mostBytes", 999, "999 bytes" },
        Row { "kilo", 1'000, "1 KB" }, Row { "kiloHalfDownToEven", 2'500, "2 KB" },
        Row { "kiloHalfUpToEven", 3'500, "4 KB" }, Row { "kiloOverHalf", 2'501, "3 KB" },
        Row { "mostKilo", 999'499, "999 KB" }, Row { "kiloRoundsToMega", 999'500, "1 MB" },
        Row { "almostMega", 999'999, "1 MB" }, Row { "mega", 1'000'000, "1 MB" },
        Row { "megaOneDecimal", 1'234'567, "1.2 MB" },
        Row { "megaHalfDownToEven", 1'250'000, "1.2 MB" },
        Row { "megaHalfUpToEven", 1'350'000, "1.4 MB" },
        Row { "megaZeroDropped", 5'040'000, "5 MB" }, Row { "mostMega", 999'949'999, "999.9 MB" },
        Row { "megaRoundsToGiga", 999'950'000, "1 GB" },
        Row { "gigaTwoDecimals", 1'234'567'890, "1.23 GB" },
        Row { "gigaHalfDownToEven", 1'125'000'000, "1.12 GB" },
        Row { "gigaHalfUpToEven", 1'135'000'000, "1.14 GB" },
        Row { "gigaOneZeroDropped", 1'500'000'000, "1.5 GB" },
        Row { "gigaZeroInside", 1'050'000'000, "1.05 GB" },
        Row { "gigaRoundsToTera", 999'995'000'000, "1 TB" },
        Row { "tera", 12'340'000'000'000, "12.34 TB" },
        Row { "peta", 7'000'000'000'000'000, "7 PB" },
        Row { "largest", std::numeric_limits<qint64>::max(), "9.22 EB" },
        Row { "smallest", std::numeric_limits<qint64>::min(), "-9.22 EB" },
        Row { "minusOne", -1, "-1 byte" }, Row { "minusKilo", -1'500, "-2 KB" },
        Row { "minusMega", -1'250'000, "-1.2 MB" }),
    [](const auto& instance) { return std::string(instance.param.name); });

TEST(ByteCountLocale, givesTheDecimalSign)
{
    EXPECT_EQ(byteCountText(1'234'567, QLocale(QLocale::German)), QStringLiteral("1,2 MB"));
}

TEST(ByteCountLocale, givesTheDigitsOfTheWholeNumber)
{
    const QLocale egypt(QLocale::Arabic, QLocale::Egypt);
    EXPECT_EQ(byteCountText(1'050'000'000, egypt), QString::fromUtf8("١٫٠٥ GB"));
    EXPECT_EQ(byteCountText(1'500'000, egypt), QString::fromUtf8("١٫٥ MB"));
    EXPECT_EQ(byteCountText(120'000, egypt), QString::fromUtf8("١٢٠ KB"));
    EXPECT_EQ(byteCountText(7, egypt), QString::fromUtf8("٧ bytes"));
}

} // namespace
} // namespace vellumine::platform
