#include "imaging/colour/CodePoints.h"

namespace vellumine::imaging::colour {

namespace {

constexpr Chromaticity whiteD65 { 0.3127, 0.3290 };
constexpr Chromaticity whiteC { 0.310, 0.316 };

} // namespace

std::optional<Primaries> primariesOfCode(int code)
{
    switch (code) {
    case 1: // BT.709, sRGB
        return bt709Primaries;
    case 4: // BT.470 System M
        return Primaries { whiteC, { 0.67, 0.33 }, { 0.21, 0.71 }, { 0.14, 0.08 } };
    case 5: // BT.470 System B and G, BT.601 with 625 lines
        return Primaries { whiteD65, { 0.64, 0.33 }, { 0.29, 0.60 }, { 0.15, 0.06 } };
    case 6: // BT.601 with 525 lines
    case 7: // SMPTE ST 240
        return Primaries { whiteD65, { 0.630, 0.340 }, { 0.310, 0.595 }, { 0.155, 0.070 } };
    case 8: // generic film
        return Primaries { whiteC, { 0.681, 0.319 }, { 0.243, 0.692 }, { 0.145, 0.049 } };
    case 9: // BT.2020
        return Primaries { whiteD65, { 0.708, 0.292 }, { 0.170, 0.797 }, { 0.131, 0.046 } };
    case 11: // DCI-P3
        return Primaries { { 0.314, 0.351 }, { 0.680, 0.320 }, { 0.265, 0.690 }, { 0.150, 0.060 } };
    case 12: // Display P3
        return Primaries { whiteD65, { 0.680, 0.320 }, { 0.265, 0.690 }, { 0.150, 0.060 } };
    case 22: // EBU Tech 3213
        return Primaries { whiteD65, { 0.630, 0.340 }, { 0.295, 0.605 }, { 0.155, 0.077 } };
    default:
        return std::nullopt;
    }
}

std::optional<TransferCurve> curveOfCode(int code)
{
    switch (code) {
    case 1: // BT.709
    case 6: // BT.601
    case 14: // BT.2020, 10 bits
    case 15: // BT.2020, 12 bits
        return TransferCurve { TransferCurve::Kind::rec709, 1.0 };
    case 4: // BT.470 System M
        return TransferCurve { TransferCurve::Kind::gamma, 2.2 };
    case 5: // BT.470 System B and G
        return TransferCurve { TransferCurve::Kind::gamma, 2.8 };
    case 8: // linear
        return TransferCurve { TransferCurve::Kind::gamma, 1.0 };
    case 13: // sRGB
        return TransferCurve { TransferCurve::Kind::sRgb, 1.0 };
    case 16: // BT.2100 PQ
        return TransferCurve { TransferCurve::Kind::pq, 1.0 };
    case 18: // BT.2100 HLG
        return TransferCurve { TransferCurve::Kind::hlg, 1.0 };
    default:
        return std::nullopt;
    }
}

} // namespace vellumine::imaging::colour
