#include "imaging/metadata/Resolution.h"

#include <cmath>

namespace vellumine::imaging {

namespace {

constexpr double metresInAnInch = 0.0254;

bool isInRange(double number)
{
    return number > 0 && number <= Resolution::largest; // not a number is neither
}

/// The whole pixels an inch that the pixels a metre were rounded from, where there are such.
double perInch(double perMetre)
{
    const double exact = perMetre * metresInAnInch;
    const double whole = std::round(exact);
    return std::round(whole / metresInAnInch) == perMetre ? whole : exact;
}

bool isWhole(double number)
{
    return std::round(number) == number;
}

} // namespace

std::optional<Resolution> Resolution::create(double x, double y, Unit unit)
{
    return isInRange(x) && isInRange(y) ? std::optional(Resolution(x, y, unit)) : std::nullopt;
}

std::optional<Resolution> Resolution::in(Unit unit) const
{
    if (unit == m_unit) {
        return *this;
    }
    if (unit == Unit::none || m_unit == Unit::none) {
        return std::nullopt;
    }
    return unit == Unit::inch ? create(perInch(m_x), perInch(m_y), unit)
                              : create(m_x / metresInAnInch, m_y / metresInAnInch, unit);
}

std::optional<Resolution::WholeNumbers> Resolution::rounded(Unit unit, std::uint32_t maximum) const
{
    const auto same = in(unit);
    if (!same || (unit == Unit::none && !(isWhole(m_x) && isWhole(m_y)))) {
        return std::nullopt;
    }
    const double x = std::round(same->x());
    const double y = std::round(same->y());
    if (x < 1 || y < 1 || x > maximum || y > maximum) {
        return std::nullopt;
    }
    return WholeNumbers { static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y) };
}

} // namespace vellumine::imaging
