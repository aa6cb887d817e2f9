#pragma once

#include <cstdint>
#include <optional>

namespace vellumine::imaging {

/// For formats that count the pixels a centimetre.
inline constexpr std::uint32_t centimetresInAMetre = 100;

/// How densely the pixels of a picture are meant to stand, across and down: numbers above 0 and up
/// to `largest`. What a picture is resized to does not change them.
class Resolution {
public:
    enum class Unit : std::uint8_t {
        none, ///< the numbers only say how long a pixel's sides are, seen from each other
        inch, ///< pixels an inch
        metre, ///< pixels a metre
    };

    /// The largest number that any format can say.
    static constexpr std::uint32_t largest = 0x7FFF'FFFF;

    /// None for numbers that are out of range.
    [[nodiscard]] static std::optional<Resolution> create(double x, double y, Unit unit);

    [[nodiscard]] double x() const { return m_x; }
    [[nodiscard]] double y() const { return m_y; }
    [[nodiscard]] Unit unit() const { return m_unit; }

    /// That of the picture with its sides exchanged.
    [[nodiscard]] Resolution withSidesSwapped() const { return { m_y, m_x, m_unit }; }

    /// The same in another unit; none between a ratio and anything else, and where the numbers
    /// leave the range. Whole pixels a metre are often rounded from whole pixels an inch (11,811
    /// from 300), and become these again.
    [[nodiscard]] std::optional<Resolution> in(Unit unit) const;

    struct WholeNumbers {
        std::uint32_t x = 0;
        std::uint32_t y = 0;
    };
    /// The numbers in the unit, rounded; none where one of them is not within 1 to `maximum` then.
    /// A ratio is never rounded: it would be another one.
    [[nodiscard]] std::optional<WholeNumbers> rounded(Unit unit, std::uint32_t maximum) const;

    friend bool operator==(const Resolution&, const Resolution&) = default;

private:
    Resolution(double x, double y, Unit unit)
        : m_x(x)
        , m_y(y)
        , m_unit(unit)
    {
    }

    double m_x;
    double m_y;
    Unit m_unit;
};

} // namespace vellumine::imaging
