#pragma once

namespace vellumine::imaging::ycc {

/// A factor of the colour formula with so many bits behind the point, rounded to nearest. Positive
/// factors only.
consteval int fixedPoint(double factor, int bits)
{
    const double scaled = factor * (1 << bits);
    const int whole = static_cast<int>(scaled);
    return scaled - whole < 0.5 ? whole : whole + 1;
}

} // namespace vellumine::imaging::ycc
