// AGA Report No. 10 (2003): constants of the ideal-gas heat capacity, enthalpy and entropy correlations, as printed
// (heat capacities in thermochemical calories).
#pragma once

#include "core/coefficients.h"
#include "math/gas/aga8_table.h"

namespace norvane::AGA10 {

// clang-format off

// In the order of the AGA-8 components.
//   A [cal/mol]   B, C, E, G, I, K [cal/(mol K)]   D, F, H, J [K]
struct IdealGas { const char* name; double A, B, C, D, E, F, G, H, I, J, K; };
inline constexpr IdealGas ideal_gases[AGA8::component_count] = {
    {"methane"         , -29776.4, 7.95454,  43.9417, 1037.09,   1.56373,  813.205, -24.9027, 1019.98, -10.1601, 1070.14, -20.0615},
    {"nitrogen"        , -3495.34, 6.95587, 0.272892, 662.738, -0.291318, -680.562,   1.7898, 1740.06,        0,     100,  4.49823},
    {"carbon dioxide"  ,  20.7307, 6.96237,  2.68645, 500.371,  -2.56429, -530.443,  3.91921, 500.198,   2.1329, 2197.22,  5.81381},
    {"ethane"          , -37524.4, 7.98139,  24.3668,  752.32,    3.5399,  272.846,  8.44724, 1020.13, -13.2732,  869.51,  -22.401},
    {"propane"         , -56072.1, 8.14319,  37.0629, 735.402,   9.38159,   247.19,  13.4556, 1454.78, -11.7342, 984.518, -24.0426},
    {"water"           , -13773.1, 7.97183,  6.27078, 2572.63,    2.0501,  1156.72,        0,     100,        0,     100, -3.24989},
    {"hydrogen sulfide", -10085.4,  7.9468,  -0.0838, 433.801,   2.85539,  843.792,  6.31595, 1481.43, -2.88457, 1102.23, -0.51551},
    {"hydrogen"        ,  -5565.6, 6.66789,  2.33458, 2584.98,  0.749019,  559.656,        0,     100,        0,     100, -7.94821},
    {"carbon monoxide" , -2753.49, 6.95854,  2.02441, 1541.22,  0.096774,  3674.81,        0,     100,        0,     100,  6.23387},
    {"oxygen"          , -3497.45, 6.96302,  2.40013, 2522.05,   2.21752,  1154.15,        0,     100,        0,     100,  9.19749},
    {"i-butane"        ,   -72387, 17.8143,  58.2062, 1787.39,   40.7621,  808.645,        0,     100,        0,     100, -44.1341},
    {"n-butane"        , -72674.8, 18.6383,  57.4178, 1792.73,   38.6599,  814.151,        0,     100,        0,     100, -46.1938},
    {"i-pentane"       , -91505.5, 21.3861,   74.341, 1701.58,   47.0587,  775.899,        0,     100,        0,     100, -60.2474},
    {"n-pentane"       , -83845.2, 22.5012,  69.5789, 1719.58,   46.2164,  802.174,        0,     100,        0,     100, -62.2197},
    {"n-hexane"        , -94982.5, 26.6225,  80.3819, 1718.49,   55.6598,  802.069,        0,     100,        0,     100, -77.5366},
    {"n-heptane"       ,  -103353, 30.4029,  90.6941, 1669.32,   63.2028,  786.001,        0,     100,        0,     100, -92.0164},
    {"n-octane"        ,  -109674, 34.0847,  100.253, 1611.55,   69.7675,  768.847,        0,     100,        0,     100, -106.149},
    {"n-nonane"        ,  -122599, 38.5014,  111.446, 1646.48,   80.5015,  781.588,        0,     100,        0,     100, -122.444},
    {"n-decane"        ,  -133564, 42.7143,  122.173, 1654.85,   90.2255,  785.564,        0,     100,        0,     100, -138.006},
    {"helium"          ,        0,   4.968,        0,     100,         0,      100,        0,     100,        0,     100,   1.8198},
    {"argon"           ,        0,   4.968,        0,     100,         0,      100,        0,     100,        0,     100,   8.6776},
};

// clang-format on

inline constexpr CoefficientTable coefficient_tables[] = {
    rows_behind("ideal_gases", ideal_gases, &IdealGas::name),
};
inline constinit const CoefficientSet coefficient_set{
    "AGA-10", "AGA Report No. 10 (2003), constants of the ideal-gas heat capacity, enthalpy and entropy",
    coefficient_tables};

}  // namespace norvane::AGA10
