#include "ui/theme/Palette.h"

#include "support/NamedRows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

// The contrast of what is read against what it stands on, by the Web Content Accessibility
// Guidelines 2.1: at least 4.5 to 1 for texts, all of which reach it, and 3 to 1 for symbols that
// say something, of which the palette keeps some below it.

namespace vellumine {
namespace {

using palette::Colour;

/// The upper colour as it looks on the lower one, which is opaque.
Colour over(Colour upper, Colour lower)
{
    const auto mix = [&](double above, double below) {
        return above * upper.opacity + below * (1 - upper.opacity);
    };
    return { mix(upper.red, lower.red), mix(upper.green, lower.green),
        mix(upper.blue, lower.blue) };
}

double luminance(Colour colour)
{
    const auto linear = [](double component) {
        return component <= 0.04045 ? component / 12.92
                                    : std::pow((component + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.red) + 0.7152 * linear(colour.green)
        + 0.0722 * linear(colour.blue);
}

double contrast(Colour text, Colour background)
{
    const auto [darker, lighter]
        = std::minmax({ luminance(over(text, background)), luminance(background) });
    return (lighter + 0.05) / (darker + 0.05);
}

/// Where the views put a colour: on layers, the lowest of which is opaque.
struct Pair {
    const char* name;
    Colour colour;
    std::vector<Colour> layers;
};

double contrast(const Pair& pair)
{
    Colour background = pair.layers.front();
    for (const Colour& layer : pair.layers) {
        background = over(layer, background);
    }
    return contrast(pair.colour, background);
}

constexpr Colour white { 1, 1, 1 };
constexpr Colour destructive { 0.639, 0.153, 0.114 };

// The window's gradient is lightest at its end: what stands on it is held against that.
constexpr Colour window = palette::bgWarm;
constexpr Colour zone = palette::leatherRaised.withOpacity(0.9);
constexpr Colour targetedZone = palette::copper.withOpacity(0.2);
constexpr Colour list = palette::leatherRaised.withOpacity(0.82);
constexpr Colour card = palette::lightCard;

class TextContrast : public testing::TestWithParam<Pair> { };

TEST_P(TextContrast, isEnoughToRead)
{
    EXPECT_GE(contrast(GetParam()), 4.5);
}

INSTANTIATE_TEST_SUITE_P(Windows, TextContrast,
    testing::Values(Pair { "titleOnTheWindow", palette::cream, { window } },
        Pair { "subtitleOnTheWindow", palette::creamMuted, { window } },
        Pair { "versionOnTheWindow", palette::creamSubtle, { window } },
        Pair { "chip", palette::creamMuted, { window, palette::copperBright.withOpacity(0.1) } },
        Pair { "chipUnderThePointer", palette::creamMuted,
            { window, palette::copperBright.withOpacity(0.2) } },
        Pair { "chipPressed", palette::creamMuted,
            { window, palette::copperBright.withOpacity(0.3) } },
        Pair { "statusInTheZone", palette::cream, { window, zone } },
        Pair { "hintInTheZone", palette::creamMuted, { window, zone } },
        Pair { "hintInTheTargetedZone", palette::creamMuted, { window, targetedZone } },
        Pair { "summaryTitle", palette::copperBright, { window } },
        Pair { "update", palette::copperBright, { window } },
        Pair { "summaryValue", palette::cream, { window } },
        Pair { "fileName", palette::cream, { window, list } },
        Pair { "message", palette::creamMuted, { window, list } },
        Pair { "sizes", palette::creamSubtle, { window, list } },
        Pair { "badge", palette::creamMuted, { window, list, palette::cream.withOpacity(0.07) } },
        Pair {
            "lifetimeTotals", palette::creamMuted, { window, palette::cream.withOpacity(0.08) } },
        Pair { "link", palette::creamMuted, { window } }),
    test::RowName());

INSTANTIATE_TEST_SUITE_P(Cards, TextContrast,
    testing::Values(Pair { "sectionTitle", palette::copperStrong, { card } },
        Pair { "label", palette::ink, { card } },
        Pair { "folderDescription", palette::mutedInk, { card } },
        Pair { "placeholder", palette::mutedInk, { palette::lightCardRaised } },
        Pair { "folderButton", palette::copperStrong,
            { card, palette::copperStrong.withOpacity(0.12) } },
        Pair { "resetButton", destructive, { card, destructive.withOpacity(0.04) } },
        Pair { "resetButtonUnderThePointer", destructive, { card, destructive.withOpacity(0.12) } },
        Pair { "selectedText", palette::cream, { palette::copper } }),
    test::RowName());

INSTANTIATE_TEST_SUITE_P(MenusAndDialogs, TextContrast,
    testing::Values(Pair { "menuItem", palette::cream, { palette::leatherDeep } },
        Pair { "menuTitle", palette::creamSubtle, { palette::leatherDeep } },
        Pair { "menuItemUnderThePointer", palette::cream, { palette::copper } },
        Pair { "help", palette::cream, { palette::leatherDeep } },
        Pair { "question", palette::cream, { palette::bgWarm } },
        Pair { "explanation", palette::creamMuted, { palette::bgWarm } },
        Pair { "proposedAnswer", palette::cream, { palette::copper } },
        Pair {
            "otherAnswer", palette::cream, { palette::bgWarm, palette::cream.withOpacity(0.14) } },
        Pair { "sideOfAComparisonOnAWhitePicture", palette::cream,
            { white, palette::leatherDeep.withOpacity(0.78) } }),
    test::RowName());

/// Symbols that the palette itself keeps below 3 to 1: both colours are given by name. Each stands
/// beside a text that says the same, or, for the failed check, is named where the pointer rests.
struct ForcedPair {
    const char* name;
    Pair pair;
    double given;
};

class ForcedContrast : public testing::TestWithParam<ForcedPair> { };

TEST_P(ForcedContrast, isWhatThePaletteGives)
{
    EXPECT_NEAR(contrast(GetParam().pair), GetParam().given, 0.01);
    EXPECT_LT(GetParam().given, 3) << "no longer forced: it belongs among the others";
}

INSTANTIATE_TEST_SUITE_P(Symbols, ForcedContrast,
    testing::Values(ForcedPair { "ofTheZone", { "", palette::copper, { window, zone } }, 1.61 },
        ForcedPair { "ofTheTargetedZone", { "", palette::copper, { window, targetedZone } }, 1.88 },
        ForcedPair { "ofAFailedCheck", { "", palette::copper, { window } }, 2.18 },
        ForcedPair { "ofASuccess", { "", palette::sage, { window, list } }, 2.11 },
        ForcedPair { "ofAFailure", { "", palette::copper, { window, list } }, 1.65 }),
    test::RowName());

} // namespace
} // namespace vellumine
