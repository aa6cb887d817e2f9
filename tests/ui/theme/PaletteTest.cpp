#include "ui/theme/KestrovaTheme.h"

#include "support/NamedRows.h"

#include <gtest/gtest.h>

namespace vellumine {
namespace {

struct Row {
    const char* name;
    double red, green, blue, opacity;
};

class PaletteTest : public testing::TestWithParam<Row> { };

// the nearest that a colour of 16 bits a channel can be
constexpr double step = 0.5 / 65535 + 1e-9;

TEST_P(PaletteTest, HasTheComponentsOfTheTable)
{
    const KestrovaTheme theme;
    const auto colour = theme.property(GetParam().name).value<QColor>();
    ASSERT_TRUE(colour.isValid());
    EXPECT_NEAR(colour.redF(), GetParam().red, step);
    EXPECT_NEAR(colour.greenF(), GetParam().green, step);
    EXPECT_NEAR(colour.blueF(), GetParam().blue, step);
    EXPECT_NEAR(colour.alphaF(), GetParam().opacity, step);
}

INSTANTIATE_TEST_SUITE_P(Colours, PaletteTest,
    testing::Values(Row { "bg", 0.184, 0.149, 0.129, 1 }, Row { "bgWarm", 0.231, 0.176, 0.137, 1 },
        Row { "leatherRaised", 0.337, 0.259, 0.204, 1 },
        Row { "leatherDeep", 0.125, 0.094, 0.075, 1 }, Row { "ink", 0.184, 0.149, 0.129, 1 },
        Row { "mutedInk", 0.396, 0.361, 0.337, 1 }, Row { "lightCard", 0.957, 0.918, 0.875, 1 },
        Row { "lightCardRaised", 1.000, 0.992, 0.976, 1 }, Row { "cream", 0.969, 0.937, 0.902, 1 },
        Row { "creamMuted", 0.969, 0.937, 0.902, 0.84 },
        Row { "creamSubtle", 0.969, 0.937, 0.902, 0.72 }, Row { "copper", 0.557, 0.325, 0.247, 1 },
        Row { "copperBright", 0.761, 0.549, 0.435, 1 },
        Row { "copperStrong", 0.455, 0.263, 0.204, 1 }, Row { "sage", 0.373, 0.478, 0.341, 1 },
        Row { "border", 0.455, 0.263, 0.204, 0.22 }),
    test::RowName());

TEST(PaletteTest, KeepsTheNumbersThatEightBitsCannotHold)
{
    EXPECT_NE(KestrovaTheme().property("bg").value<QColor>(), QColor(47, 38, 33));
}

TEST(PaletteTest, FadesAndMixes)
{
    EXPECT_NEAR(KestrovaTheme::faded(Qt::red, 0.25).alphaF(), 0.25, step);
    EXPECT_NEAR(KestrovaTheme::mixed(Qt::black, Qt::white, 0.25).greenF(), 0.25, 2 * step);
}

} // namespace
} // namespace vellumine
