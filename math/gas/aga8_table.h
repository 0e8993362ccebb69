// AGA Report No. 8 (1994 equation; unchanged in Part 1 of the 2017 edition and in ISO 12213-2): the coefficients of
// the detail characterisation equation, as printed.
#pragma once

#include <cstddef>

#include "core/coefficients.h"

namespace norvane::AGA8 {

// clang-format off

inline constexpr std::size_t component_count = 21;

// Component characterisation parameters.
//   M  molar mass [kg/kmol]   E  energy [K]             K  size [(m3/kmol)^(1/3)]   G  orientation [-]
//   Q  quadrupole [-]         F  high temperature [-]   S  dipole [-]               W  association [-]
struct Component { const char* name; double M, E, K, G, Q, F, S, W; };
inline constexpr Component components[component_count] = {
    {"methane"         ,  16.043,   151.3183, 0.4619255,        0,        0, 0,      0, 0},
    {"nitrogen"        , 28.0135,   99.73778, 0.4479153, 0.027815,        0, 0,      0, 0},
    {"carbon dioxide"  ,   44.01,   241.9606, 0.4557489, 0.189065,     0.69, 0,      0, 0},
    {"ethane"          ,   30.07,   244.1667, 0.5279209,   0.0793,        0, 0,      0, 0},
    {"propane"         ,  44.097,   298.1183,  0.583749, 0.141239,        0, 0,      0, 0},
    {"water"           , 18.0153,   514.0156, 0.3825868,   0.3325,  1.06775, 0, 1.5822, 1},
    {"hydrogen sulfide",  34.082,    296.355, 0.4618263,   0.0885, 0.633276, 0,   0.39, 0},
    {"hydrogen"        ,  2.0159,   26.95794, 0.3514916, 0.034369,        0, 1,      0, 0},
    {"carbon monoxide" ,   28.01,   105.5348, 0.4533894, 0.038953,        0, 0,      0, 0},
    {"oxygen"          , 31.9988,   122.7667, 0.4186954,    0.021,        0, 0,      0, 0},
    {"i-butane"        ,  58.123,   324.0689, 0.6406937, 0.256692,        0, 0,      0, 0},
    {"n-butane"        ,  58.123,   337.6389, 0.6341423, 0.281835,        0, 0,      0, 0},
    {"i-pentane"       ,   72.15,   365.5999, 0.6738577, 0.332267,        0, 0,      0, 0},
    {"n-pentane"       ,   72.15,   370.6823, 0.6798307, 0.366911,        0, 0,      0, 0},
    {"n-hexane"        ,  86.177, 402.636293, 0.7175118, 0.289731,        0, 0,      0, 0},
    {"n-heptane"       , 100.204,  427.72263, 0.7525189, 0.337542,        0, 0,      0, 0},
    {"n-octane"        , 114.231, 450.325022,  0.784955, 0.383381,        0, 0,      0, 0},
    {"n-nonane"        , 128.258, 470.840891, 0.8152731, 0.427354,        0, 0,      0, 0},
    {"n-decane"        , 142.285, 489.558373, 0.8437826, 0.469659,        0, 0,      0, 0},
    {"helium"          ,  4.0026,   2.610111, 0.3589888,        0,        0, 0,      0, 0},
    {"argon"           ,  39.948,   119.6299, 0.4216551,        0,        0, 0,      0, 0},
};

// Binary interaction parameters of energy E*, conformal energy U, size K and orientation G* that
// differ from 1; i and j count the components from 0.
struct Pair { std::size_t i, j; double E, U, K, G; };
inline constexpr Pair pairs[] = {
    {0,  1,  0.97164, 0.886106,  1.00363,        1},  // methane, nitrogen
    {0,  2, 0.960644, 0.963827, 0.995933, 0.807653},  // methane, carbon dioxide
    {0,  4, 0.994635, 0.990877, 1.007619,        1},  // methane, propane
    {0,  5, 0.708218,        1,        1,        1},  // methane, water
    {0,  6, 0.931484, 0.736833,  1.00008,        1},  // methane, hydrogen sulfide
    {0,  7,  1.17052,  1.15639,  1.02326,  1.95731},  // methane, hydrogen
    {0,  8, 0.990126,        1,        1,        1},  // methane, carbon monoxide
    {0, 10,  1.01953,        1,        1,        1},  // methane, i-butane
    {0, 11, 0.989844, 0.992291, 0.997596,        1},  // methane, n-butane
    {0, 12,  1.00235,        1,        1,        1},  // methane, i-pentane
    {0, 13, 0.999268,  1.00367, 1.002529,        1},  // methane, n-pentane
    {0, 14, 1.107274, 1.302576, 0.982962,        1},  // methane, n-hexane
    {0, 15,  0.88088, 1.191904, 0.983565,        1},  // methane, n-heptane
    {0, 16, 0.880973, 1.205769, 0.982707,        1},  // methane, n-octane
    {0, 17, 0.881067, 1.219634, 0.981849,        1},  // methane, n-nonane
    {0, 18, 0.881161, 1.233498, 0.980991,        1},  // methane, n-decane
    {1,  2,  1.02274, 0.835058, 0.982361, 0.982746},  // nitrogen, carbon dioxide
    {1,  3,  0.97012, 0.816431,  1.00796,        1},  // nitrogen, ethane
    {1,  4, 0.945939, 0.915502,        1,        1},  // nitrogen, propane
    {1,  5, 0.746954,        1,        1,        1},  // nitrogen, water
    {1,  6, 0.902271, 0.993476, 0.942596,        1},  // nitrogen, hydrogen sulfide
    {1,  7,  1.08632, 0.408838,  1.03227,        1},  // nitrogen, hydrogen
    {1,  8,  1.00571,        1,        1,        1},  // nitrogen, carbon monoxide
    {1,  9,    1.021,        1,        1,        1},  // nitrogen, oxygen
    {1, 10, 0.946914,        1,        1,        1},  // nitrogen, i-butane
    {1, 11, 0.973384, 0.993556,        1,        1},  // nitrogen, n-butane
    {1, 12,  0.95934,        1,        1,        1},  // nitrogen, i-pentane
    {1, 13,  0.94552,        1,        1,        1},  // nitrogen, n-pentane
    {2,  3, 0.925053,  0.96987,  1.00851, 0.370296},  // carbon dioxide, ethane
    {2,  4, 0.960237,        1,        1,        1},  // carbon dioxide, propane
    {2,  5, 0.849408,        1,        1,  1.67309},  // carbon dioxide, water
    {2,  6, 0.955052,  1.04529,  1.00779,        1},  // carbon dioxide, hydrogen sulfide
    {2,  7,  1.28179,        1,        1,        1},  // carbon dioxide, hydrogen
    {2,  8,      1.5,      0.9,        1,        1},  // carbon dioxide, carbon monoxide
    {2, 10, 0.906849,        1,        1,        1},  // carbon dioxide, i-butane
    {2, 11, 0.897362,        1,        1,        1},  // carbon dioxide, n-butane
    {2, 12, 0.726255,        1,        1,        1},  // carbon dioxide, i-pentane
    {2, 13, 0.859764,        1,        1,        1},  // carbon dioxide, n-pentane
    {2, 14, 0.855134, 1.066638, 0.910183,        1},  // carbon dioxide, n-hexane
    {2, 15, 0.831229, 1.077634, 0.895362,        1},  // carbon dioxide, n-heptane
    {2, 16,  0.80831, 1.088178, 0.881152,        1},  // carbon dioxide, n-octane
    {2, 17, 0.786323, 1.098291,  0.86752,        1},  // carbon dioxide, n-nonane
    {2, 18, 0.765171, 1.108021, 0.854406,        1},  // carbon dioxide, n-decane
    {3,  4,  1.02256, 1.065173, 0.986893,        1},  // ethane, propane
    {3,  5, 0.693168,        1,        1,        1},  // ethane, water
    {3,  6, 0.946871, 0.971926, 0.999969,        1},  // ethane, hydrogen sulfide
    {3,  7,  1.16446,  1.61666,  1.02034,        1},  // ethane, hydrogen
    {3, 10,        1,     1.25,        1,        1},  // ethane, i-butane
    {3, 11,  1.01306,     1.25,        1,        1},  // ethane, n-butane
    {3, 12,        1,     1.25,        1,        1},  // ethane, i-pentane
    {3, 13,  1.00532,     1.25,        1,        1},  // ethane, n-pentane
    {4,  7, 1.034787,        1,        1,        1},  // propane, hydrogen
    {4, 11,   1.0049,        1,        1,        1},  // propane, n-butane
    {6, 14, 1.008692, 1.028973,  0.96813,        1},  // hydrogen sulfide, n-hexane
    {6, 15, 1.010126, 1.033754,  0.96287,        1},  // hydrogen sulfide, n-heptane
    {6, 16, 1.011501, 1.038338, 0.957828,        1},  // hydrogen sulfide, n-octane
    {6, 17, 1.012821, 1.042735, 0.952441,        1},  // hydrogen sulfide, n-nonane
    {6, 18, 1.014089, 1.046966, 0.948338,        1},  // hydrogen sulfide, n-decane
    {7,  8,      1.1,        1,        1,        1},  // hydrogen, carbon monoxide
    {7, 10,      1.3,        1,        1,        1},  // hydrogen, i-butane
    {7, 11,      1.3,        1,        1,        1},  // hydrogen, n-butane
};

// Equation of state coefficients a and exponents: b of the reduced density, k of the reduced density in the
// exponential (0: no exponential), u of the temperature; flags g, q, f, s, w of the parameters that enter the term.
struct Term { int n; double a; int b, k; double u; int g, q, f, s, w; };
inline constexpr std::size_t term_count = 58;
inline constexpr Term terms[term_count] = {
    {1 ,    0.1538326, 1, 0,    0, 0, 0, 0, 0, 0},
    {2 ,     1.341953, 1, 0,  0.5, 0, 0, 0, 0, 0},
    {3 ,    -2.998583, 1, 0,    1, 0, 0, 0, 0, 0},
    {4 ,  -0.04831228, 1, 0,  3.5, 0, 0, 0, 0, 0},
    {5 ,    0.3757965, 1, 0, -0.5, 1, 0, 0, 0, 0},
    {6 ,    -1.589575, 1, 0,  4.5, 1, 0, 0, 0, 0},
    {7 ,  -0.05358847, 1, 0,  0.5, 0, 1, 0, 0, 0},
    {8 ,   0.88659463, 1, 0,  7.5, 0, 0, 0, 1, 0},
    {9 ,  -0.71023704, 1, 0,  9.5, 0, 0, 0, 1, 0},
    {10,    -1.471722, 1, 0,    6, 0, 0, 0, 0, 1},
    {11,   1.32185035, 1, 0,   12, 0, 0, 0, 0, 1},
    {12,  -0.78665925, 1, 0, 12.5, 0, 0, 0, 0, 1},
    {13,  2.29129e-09, 1, 3,   -6, 0, 0, 1, 0, 0},
    {14,    0.1576724, 1, 2,    2, 0, 0, 0, 0, 0},
    {15,   -0.4363864, 1, 2,    3, 0, 0, 0, 0, 0},
    {16,  -0.04408159, 1, 2,    2, 0, 1, 0, 0, 0},
    {17, -0.003433888, 1, 4,    2, 0, 0, 0, 0, 0},
    {18,   0.03205905, 1, 4,   11, 0, 0, 0, 0, 0},
    {19,   0.02487355, 2, 0, -0.5, 0, 0, 0, 0, 0},
    {20,   0.07332279, 2, 0,  0.5, 0, 0, 0, 0, 0},
    {21, -0.001600573, 2, 2,    0, 0, 0, 0, 0, 0},
    {22,    0.6424706, 2, 2,    4, 0, 0, 0, 0, 0},
    {23,   -0.4162601, 2, 2,    6, 0, 0, 0, 0, 0},
    {24,  -0.06689957, 2, 4,   21, 0, 0, 0, 0, 0},
    {25,    0.2791795, 2, 4,   23, 1, 0, 0, 0, 0},
    {26,   -0.6966051, 2, 4,   22, 0, 1, 0, 0, 0},
    {27, -0.002860589, 2, 4,   -1, 0, 0, 1, 0, 0},
    {28, -0.008098836, 3, 0, -0.5, 0, 1, 0, 0, 0},
    {29,     3.150547, 3, 1,    7, 1, 0, 0, 0, 0},
    {30,  0.007224479, 3, 1,   -1, 0, 0, 1, 0, 0},
    {31,   -0.7057529, 3, 2,    6, 0, 0, 0, 0, 0},
    {32,    0.5349792, 3, 2,    4, 1, 0, 0, 0, 0},
    {33,  -0.07931491, 3, 3,    1, 1, 0, 0, 0, 0},
    {34,    -1.418465, 3, 3,    9, 1, 0, 0, 0, 0},
    {35, -5.99905e-17, 3, 4,  -13, 0, 0, 1, 0, 0},
    {36,    0.1058402, 3, 4,   21, 0, 0, 0, 0, 0},
    {37,   0.03431729, 3, 4,    8, 0, 1, 0, 0, 0},
    {38, -0.007022847, 4, 0, -0.5, 0, 0, 0, 0, 0},
    {39,   0.02495587, 4, 0,    0, 0, 0, 0, 0, 0},
    {40,   0.04296818, 4, 2,    2, 0, 0, 0, 0, 0},
    {41,    0.7465453, 4, 2,    7, 0, 0, 0, 0, 0},
    {42,   -0.2919613, 4, 2,    9, 0, 1, 0, 0, 0},
    {43,     7.294616, 4, 4,   22, 0, 0, 0, 0, 0},
    {44,    -9.936757, 4, 4,   23, 0, 0, 0, 0, 0},
    {45, -0.005399808, 5, 0,    1, 0, 0, 0, 0, 0},
    {46,   -0.2432567, 5, 2,    9, 0, 0, 0, 0, 0},
    {47,   0.04987016, 5, 2,    3, 0, 1, 0, 0, 0},
    {48,  0.003733797, 5, 4,    8, 0, 0, 0, 0, 0},
    {49,     1.874951, 5, 4,   23, 0, 1, 0, 0, 0},
    {50,  0.002168144, 6, 0,  1.5, 0, 0, 0, 0, 0},
    {51,   -0.6587164, 6, 2,    5, 1, 0, 0, 0, 0},
    {52,  0.000205518, 7, 0, -0.5, 0, 1, 0, 0, 0},
    {53,  0.009776195, 7, 2,    4, 0, 0, 0, 0, 0},
    {54,  -0.02048708, 8, 1,    7, 1, 0, 0, 0, 0},
    {55,   0.01557322, 8, 2,    3, 0, 0, 0, 0, 0},
    {56,  0.006862415, 8, 2,    0, 1, 0, 0, 0, 0},
    {57, -0.001226752, 9, 2,    1, 0, 0, 0, 0, 0},
    {58,  0.002850908, 9, 2,    0, 0, 1, 0, 0, 0},
};

// clang-format on

static_assert(sizeof(pairs) / sizeof(pairs[0]) == 61);

inline constexpr CoefficientTable coefficient_tables[] = {
    rows_behind("components", components, &Component::name),
    rows("pairs", pairs),
    rows("terms", terms),
};
inline constinit const CoefficientSet coefficient_set{
    "AGA-8",
    "AGA Report No. 8 (1994), tables of the detail characterisation equation; the same in "
    "its Part 1 (2017) and in ISO 12213-2",
    coefficient_tables};

}  // namespace norvane::AGA8
