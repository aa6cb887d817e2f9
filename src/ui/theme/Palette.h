#pragma once

#include <QColor>

/// The colours of every window, by name. Components are sRGB, from 0 to 1.
namespace vellumine::palette {

struct Colour {
    double red;
    double green;
    double blue;
    double opacity = 1;

    [[nodiscard]] constexpr Colour withOpacity(double value) const
    {
        return { red, green, blue, value };
    }
    [[nodiscard]] QColor toQColor() const
    {
        return QColor::fromRgbF(static_cast<float>(red), static_cast<float>(green),
            static_cast<float>(blue), static_cast<float>(opacity));
    }
};

inline constexpr Colour bg { 0.184, 0.149, 0.129 }; ///< where the window's gradient starts
inline constexpr Colour bgWarm { 0.231, 0.176, 0.137 }; ///< and where it ends
inline constexpr Colour leatherRaised { 0.337, 0.259, 0.204 }; ///< raised panels
inline constexpr Colour leatherDeep { 0.125, 0.094, 0.075 }; ///< deep panels
inline constexpr Colour ink = bg; ///< text on light cards
inline constexpr Colour mutedInk { 0.396, 0.361, 0.337 }; ///< secondary text on light cards
inline constexpr Colour lightCard { 0.957, 0.918, 0.875 };
inline constexpr Colour lightCardRaised { 1.000, 0.992, 0.976 };
inline constexpr Colour cream { 0.969, 0.937, 0.902 }; ///< main text on dark
inline constexpr Colour creamMuted = cream.withOpacity(0.84); ///< secondary text
inline constexpr Colour creamSubtle = cream.withOpacity(0.72); ///< tertiary text
inline constexpr Colour copper { 0.557, 0.325, 0.247 }; ///< accent, tint, warning symbol
inline constexpr Colour copperBright { 0.761, 0.549, 0.435 }; ///< highlights, metric titles
inline constexpr Colour copperStrong { 0.455, 0.263, 0.204 }; ///< titles on light cards
inline constexpr Colour sage { 0.373, 0.478, 0.341 }; ///< success symbol
inline constexpr Colour border = copperStrong.withOpacity(0.22); ///< borders on light cards

} // namespace vellumine::palette
