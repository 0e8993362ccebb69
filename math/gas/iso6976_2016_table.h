// ISO 6976:2016, tables 1 to 3: the 60 components in the standard's order.
//
// The edition tabulates gross molar values only; net values follow from the hydrogen atoms and the enthalpy of
// vaporisation of water. The summation factors of hydrogen, helium and neon are negative and keep their sign.
#pragma once

#include <cstddef>
#include <iterator>
#include <string_view>

#include "core/coefficients.h"

namespace norvane::ISO6976::edition2016 {

inline constexpr std::size_t n_components = 60;

// clang-format off

// Table 1. Atoms of C, H, O, N, S; mass of a monatomic gas not made of these (kg/kmol); molar mass (kg/kmol).
struct Component { std::string_view name; int atoms[5]; double monatomic; double molar_mass; };

inline constexpr Component table1[] = {
    {"methane",             { 1,  4, 0, 0, 0},  0,         16.04246 },
    {"ethane",              { 2,  6, 0, 0, 0},  0,         30.06904 },
    {"propane",             { 3,  8, 0, 0, 0},  0,         44.09562 },
    {"n-butane",            { 4, 10, 0, 0, 0},  0,         58.1222  },
    {"2-methylpropane",     { 4, 10, 0, 0, 0},  0,         58.1222  },
    {"n-pentane",           { 5, 12, 0, 0, 0},  0,         72.14878 },
    {"2-methylbutane",      { 5, 12, 0, 0, 0},  0,         72.14878 },
    {"2,2-dimethylpropane", { 5, 12, 0, 0, 0},  0,         72.14878 },
    {"n-hexane",            { 6, 14, 0, 0, 0},  0,         86.17536 },
    {"2-methylpentane",     { 6, 14, 0, 0, 0},  0,         86.17536 },
    {"3-methylpentane",     { 6, 14, 0, 0, 0},  0,         86.17536 },
    {"2,2-dimethylbutane",  { 6, 14, 0, 0, 0},  0,         86.17536 },
    {"2,3-dimethylbutane",  { 6, 14, 0, 0, 0},  0,         86.17536 },
    {"n-heptane",           { 7, 16, 0, 0, 0},  0,        100.20194 },
    {"n-octane",            { 8, 18, 0, 0, 0},  0,        114.22852 },
    {"n-nonane",            { 9, 20, 0, 0, 0},  0,        128.2551  },
    {"n-decane",            {10, 22, 0, 0, 0},  0,        142.28168 },
    {"ethylene",            { 2,  4, 0, 0, 0},  0,         28.05316 },
    {"propylene",           { 3,  6, 0, 0, 0},  0,         42.07974 },
    {"1-butene",            { 4,  8, 0, 0, 0},  0,         56.10632 },
    {"cis-2-butene",        { 4,  8, 0, 0, 0},  0,         56.10632 },
    {"trans-2-butene",      { 4,  8, 0, 0, 0},  0,         56.10632 },
    {"2-methylpropene",     { 4,  8, 0, 0, 0},  0,         56.10632 },
    {"1-pentene",           { 5, 10, 0, 0, 0},  0,         70.1329  },
    {"propadiene",          { 3,  4, 0, 0, 0},  0,         40.06386 },
    {"1,2-butadiene",       { 4,  6, 0, 0, 0},  0,         54.09044 },
    {"1,3-butadiene",       { 4,  6, 0, 0, 0},  0,         54.09044 },
    {"acetylene",           { 2,  2, 0, 0, 0},  0,         26.03728 },
    {"cyclopentane",        { 5, 10, 0, 0, 0},  0,         70.1329  },
    {"methylcyclopentane",  { 6, 12, 0, 0, 0},  0,         84.15948 },
    {"ethylcyclopentane",   { 7, 14, 0, 0, 0},  0,         98.18606 },
    {"cyclohexane",         { 6, 12, 0, 0, 0},  0,         84.15948 },
    {"methylcyclohexane",   { 7, 14, 0, 0, 0},  0,         98.18606 },
    {"ethylcyclohexane",    { 8, 16, 0, 0, 0},  0,        112.21264 },
    {"benzene",             { 6,  6, 0, 0, 0},  0,         78.11184 },
    {"toluene",             { 7,  8, 0, 0, 0},  0,         92.13842 },
    {"ethylbenzene",        { 8, 10, 0, 0, 0},  0,        106.165   },
    {"o-xylene",            { 8, 10, 0, 0, 0},  0,        106.165   },
    {"methanol",            { 1,  4, 1, 0, 0},  0,         32.04186 },
    {"methanethiol",        { 1,  4, 0, 0, 1},  0,         48.10746 },
    {"hydrogen",            { 0,  2, 0, 0, 0},  0,          2.01588 },
    {"water",               { 0,  2, 1, 0, 0},  0,         18.01528 },
    {"hydrogen sulfide",    { 0,  2, 0, 0, 1},  0,         34.08088 },
    {"ammonia",             { 0,  3, 0, 1, 0},  0,         17.03052 },
    {"hydrogen cyanide",    { 1,  1, 0, 1, 0},  0,         27.02534 },
    {"carbon monoxide",     { 1,  0, 1, 0, 0},  0,         28.0101  },
    {"carbonyl sulfide",    { 1,  0, 1, 0, 1},  0,         60.0751  },
    {"carbon disulfide",    { 1,  0, 0, 0, 2},  0,         76.1407  },
    {"helium",              { 0,  0, 0, 0, 0},  4.002602,   4.002602},
    {"neon",                { 0,  0, 0, 0, 0}, 20.1797,    20.1797  },
    {"argon",               { 0,  0, 0, 0, 0}, 39.948,     39.948   },
    {"nitrogen",            { 0,  0, 0, 2, 0},  0,         28.0134  },
    {"oxygen",              { 0,  0, 2, 0, 0},  0,         31.9988  },
    {"carbon dioxide",      { 1,  0, 2, 0, 0},  0,         44.0095  },
    {"sulfur dioxide",      { 0,  0, 2, 0, 1},  0,         64.0638  },
    {"n-undecane",          {11, 24, 0, 0, 0},  0,        156.30826 },
    {"n-dodecane",          {12, 26, 0, 0, 0},  0,        170.33484 },
    {"n-tridecane",         {13, 28, 0, 0, 0},  0,        184.36142 },
    {"n-tetradecane",       {14, 30, 0, 0, 0},  0,        198.388   },
    {"n-pentadecane",       {15, 32, 0, 0, 0},  0,        212.41458 },
};

// Table 2. Summation factor s at 101.325 kPa and 0, 15, 15.55, 20 degC.
// Table 3. Gross calorific value on a molar basis (kJ/mol) at 0, 15, 15.55, 20, 25 degC.
struct SummationFactors { double s[4]; };
struct GrossValues { double gross[5]; };

inline constexpr SummationFactors table2[] = {
    {{ 0.04886,  0.04452,  0.04437,  0.04317}},  // methane
    {{ 0.0997,   0.0919,   0.0916,   0.0895 }},  // ethane
    {{ 0.1465,   0.1344,   0.1340,   0.1308 }},  // propane
    {{ 0.2022,   0.1840,   0.1834,   0.1785 }},  // n-butane
    {{ 0.1885,   0.1722,   0.1717,   0.1673 }},  // 2-methylpropane
    {{ 0.2586,   0.2361,   0.2354,   0.2295 }},  // n-pentane
    {{ 0.2458,   0.2251,   0.2244,   0.2189 }},  // 2-methylbutane
    {{ 0.2245,   0.2040,   0.2033,   0.1979 }},  // 2,2-dimethylpropane
    {{ 0.3319,   0.3001,   0.2990,   0.2907 }},  // n-hexane
    {{ 0.3114,   0.2826,   0.2816,   0.2740 }},  // 2-methylpentane
    {{ 0.2997,   0.2762,   0.2754,   0.2690 }},  // 3-methylpentane
    {{ 0.2530,   0.2350,   0.2344,   0.2295 }},  // 2,2-dimethylbutane
    {{ 0.2836,   0.2632,   0.2625,   0.2569 }},  // 2,3-dimethylbutane
    {{ 0.4076,   0.3668,   0.3654,   0.3547 }},  // n-heptane
    {{ 0.4845,   0.4346,   0.4329,   0.4198 }},  // n-octane
    {{ 0.5617,   0.5030,   0.5010,   0.4856 }},  // n-nonane
    {{ 0.6713,   0.5991,   0.5967,   0.5778 }},  // n-decane
    {{ 0.0868,   0.0799,   0.0797,   0.0778 }},  // ethylene
    {{ 0.1381,   0.1267,   0.1263,   0.1232 }},  // propylene
    {{ 0.1964,   0.1776,   0.1770,   0.1721 }},  // 1-butene
    {{ 0.2075,   0.1870,   0.1863,   0.1810 }},  // cis-2-butene
    {{ 0.2072,   0.1868,   0.1862,   0.1809 }},  // trans-2-butene
    {{ 0.1966,   0.1777,   0.1770,   0.1721 }},  // 2-methylpropene
    {{ 0.2622,   0.2297,   0.2287,   0.2208 }},  // 1-pentene
    {{ 0.1417,   0.1313,   0.1310,   0.1282 }},  // propadiene
    {{ 0.2063,   0.1862,   0.1855,   0.1803 }},  // 1,2-butadiene
    {{ 0.1993,   0.1739,   0.1731,   0.1673 }},  // 1,3-butadiene
    {{ 0.0936,   0.0836,   0.0833,   0.0808 }},  // acetylene
    {{ 0.2409,   0.2221,   0.2215,   0.2164 }},  // cyclopentane
    {{ 0.2817,   0.2612,   0.2605,   0.2548 }},  // methylcyclopentane
    {{ 0.4227,   0.3684,   0.3666,   0.3531 }},  // ethylcyclopentane
    {{ 0.2939,   0.2686,   0.2677,   0.2610 }},  // cyclohexane
    {{ 0.3667,   0.3317,   0.3305,   0.3213 }},  // methylcyclohexane
    {{ 0.5275,   0.4547,   0.4524,   0.4345 }},  // ethylcyclohexane
    {{ 0.2752,   0.2527,   0.2520,   0.2460 }},  // benzene
    {{ 0.3726,   0.3359,   0.3347,   0.3251 }},  // toluene
    {{ 0.4129,   0.3797,   0.3785,   0.3694 }},  // ethylbenzene
    {{ 0.4852,   0.4411,   0.4396,   0.4277 }},  // o-xylene
    {{ 0.5806,   0.4464,   0.4423,   0.4117 }},  // methanol
    {{ 0.1909,   0.1700,   0.1693,   0.1640 }},  // methanethiol
    {{-0.0100,  -0.0100,  -0.0100,  -0.0100 }},  // hydrogen
    {{ 0.3093,   0.2562,   0.2546,   0.2419 }},  // water
    {{ 0.1006,   0.0923,   0.0920,   0.0898 }},  // hydrogen sulfide
    {{ 0.1230,   0.1100,   0.1096,   0.1062 }},  // ammonia
    {{ 0.3175,   0.2765,   0.2751,   0.2644 }},  // hydrogen cyanide
    {{ 0.0258,   0.0217,   0.0215,   0.0203 }},  // carbon monoxide
    {{ 0.1211,   0.1114,   0.1110,   0.1084 }},  // carbonyl sulfide
    {{ 0.2182,   0.1958,   0.1951,   0.1894 }},  // carbon disulfide
    {{-0.0100,  -0.0100,  -0.0100,  -0.0100 }},  // helium
    {{-0.0100,  -0.0100,  -0.0100,  -0.0100 }},  // neon
    {{ 0.0307,   0.0273,   0.0272,   0.0262 }},  // argon
    {{ 0.0214,   0.0170,   0.0169,   0.0156 }},  // nitrogen
    {{ 0.0311,   0.0276,   0.0275,   0.0265 }},  // oxygen
    {{ 0.0821,   0.0752,   0.0749,   0.0730 }},  // carbon dioxide
    {{ 0.1579,   0.1406,   0.1400,   0.1356 }},  // sulfur dioxide
    {{ 0.7228,   0.6402,   0.6374,   0.6159 }},  // n-undecane
    {{ 0.8567,   0.7615,   0.7583,   0.7335 }},  // n-dodecane
    {{ 0.9129,   0.8061,   0.8026,   0.7748 }},  // n-tridecane
    {{ 1.0135,   0.8940,   0.8900,   0.8589 }},  // n-tetradecane
    {{ 1.1176,   0.9849,   0.9804,   0.9459 }},  // n-pentadecane
};

inline constexpr GrossValues table3[] = {
    {{  892.92,    891.51,    891.46,    891.05,    890.58 }},  // methane
    {{ 1564.35,   1562.14,   1562.06,   1561.42,   1560.69 }},  // ethane
    {{ 2224.03,   2221.10,   2220.99,   2220.13,   2219.17 }},  // propane
    {{ 2883.35,   2879.76,   2879.63,   2878.58,   2877.40 }},  // n-butane
    {{ 2874.21,   2870.58,   2870.45,   2869.39,   2868.20 }},  // 2-methylpropane
    {{ 3542.91,   3538.60,   3538.45,   3537.19,   3535.77 }},  // n-pentane
    {{ 3536.01,   3531.68,   3531.52,   3530.25,   3528.83 }},  // 2-methylbutane
    {{ 3521.75,   3517.44,   3517.28,   3516.02,   3514.61 }},  // 2,2-dimethylpropane
    {{ 4203.24,   4198.24,   4198.06,   4196.60,   4194.95 }},  // n-hexane
    {{ 4195.64,   4190.62,   4190.44,   4188.97,   4187.32 }},  // 2-methylpentane
    {{ 4198.27,   4193.22,   4193.04,   4191.56,   4189.90 }},  // 3-methylpentane
    {{ 4185.86,   4180.83,   4180.65,   4179.17,   4177.52 }},  // 2,2-dimethylbutane
    {{ 4193.68,   4188.61,   4188.43,   4186.94,   4185.28 }},  // 2,3-dimethylbutane
    {{ 4862.88,   4857.18,   4856.98,   4855.31,   4853.43 }},  // n-heptane
    {{ 5522.41,   5516.01,   5515.78,   5513.90,   5511.80 }},  // n-octane
    {{ 6182.92,   6175.82,   6175.56,   6173.48,   6171.15 }},  // n-nonane
    {{ 6842.69,   6834.90,   6834.62,   6832.33,   6829.77 }},  // n-decane
    {{ 1413.55,   1412.12,   1412.07,   1411.65,   1411.18 }},  // ethylene
    {{ 2061.57,   2059.43,   2059.35,   2058.73,   2058.02 }},  // propylene
    {{ 2721.57,   2718.71,   2718.60,   2717.76,   2716.82 }},  // 1-butene
    {{ 2714.88,   2711.94,   2711.83,   2710.97,   2710.00 }},  // cis-2-butene
    {{ 2711.09,   2708.26,   2708.16,   2707.33,   2706.40 }},  // trans-2-butene
    {{ 2704.88,   2702.06,   2701.96,   2701.13,   2700.20 }},  // 2-methylpropene
    {{ 3381.32,   3377.76,   3377.63,   3376.59,   3375.42 }},  // 1-pentene
    {{ 1945.26,   1943.97,   1943.92,   1943.54,   1943.11 }},  // propadiene
    {{ 2597.15,   2595.12,   2595.05,   2594.46,   2593.79 }},  // 1,2-butadiene
    {{ 2544.14,   2542.11,   2542.03,   2541.44,   2540.77 }},  // 1,3-butadiene
    {{ 1301.86,   1301.37,   1301.35,   1301.21,   1301.05 }},  // acetylene
    {{ 3326.14,   3322.19,   3322.05,   3320.89,   3319.59 }},  // cyclopentane
    {{ 3977.05,   3972.46,   3972.29,   3970.95,   3969.44 }},  // methylcyclopentane
    {{ 4637.20,   4631.93,   4631.74,   4630.20,   4628.47 }},  // ethylcyclopentane
    {{ 3960.68,   3956.02,   3955.85,   3954.49,   3952.96 }},  // cyclohexane
    {{ 4609.33,   4604.08,   4603.89,   4602.36,   4600.64 }},  // methylcyclohexane
    {{ 5272.76,   5266.90,   5266.69,   5264.97,   5263.05 }},  // ethylcyclohexane
    {{ 3305.12,   3302.90,   3302.81,   3302.16,   3301.43 }},  // benzene
    {{ 3952.77,   3949.83,   3949.72,   3948.86,   3947.89 }},  // toluene
    {{ 4613.16,   4609.54,   4609.40,   4608.34,   4607.15 }},  // ethylbenzene
    {{ 4602.18,   4598.64,   4598.52,   4597.48,   4596.31 }},  // o-xylene
    {{  766.60,    765.09,    765.03,    764.59,    764.09 }},  // methanol
    {{ 1241.64,   1240.28,   1240.23,   1239.84,   1239.39 }},  // methanethiol
    {{  286.64,    286.15,    286.13,    285.99,    285.83 }},  // hydrogen
    {{   45.064,    44.431,    44.408,    44.222,    44.013}},  // water
    {{  562.93,    562.38,    562.36,    562.19,    562.01 }},  // hydrogen sulfide
    {{  384.57,    383.51,    383.47,    383.16,    382.81 }},  // ammonia
    {{  671.92,    671.67,    671.66,    671.58,    671.50 }},  // hydrogen cyanide
    {{  282.80,    282.91,    282.91,    282.95,    282.98 }},  // carbon monoxide
    {{  548.01,    548.14,    548.15,    548.19,    548.23 }},  // carbonyl sulfide
    {{ 1104.05,   1104.32,   1104.33,   1104.40,   1104.49 }},  // carbon disulfide
    {{    0,         0,         0,         0,         0    }},  // helium
    {{    0,         0,         0,         0,         0    }},  // neon
    {{    0,         0,         0,         0,         0    }},  // argon
    {{    0,         0,         0,         0,         0    }},  // nitrogen
    {{    0,         0,         0,         0,         0    }},  // oxygen
    {{    0,         0,         0,         0,         0    }},  // carbon dioxide
    {{    0,         0,         0,         0,         0    }},  // sulfur dioxide
    {{ 7502.22,   7493.73,   7493.42,   7490.93,   7488.14 }},  // n-undecane
    {{ 8162.43,   8153.24,   8152.91,   8150.21,   8147.19 }},  // n-dodecane
    {{ 8821.88,   8811.99,   8811.63,   8808.73,   8805.48 }},  // n-tridecane
    {{ 9481.71,   9471.12,   9470.73,   9467.63,   9464.15 }},  // n-tetradecane
    {{10141.65,  10130.23,  10129.82,  10126.52,  10122.82 }},  // n-pentadecane
};

// clang-format on

static_assert(std::size(table1) == n_components);
static_assert(std::size(table2) == n_components);
static_assert(std::size(table3) == n_components);

inline constexpr CoefficientTable coefficient_tables[] = {
    rows_behind("table1", table1, &Component::name),
    rows("table2", table2),
    rows("table3", table3),
};
inline constinit const CoefficientSet coefficient_set{"ISO 6976:2016", "ISO 6976:2016, tables 1 to 3",
                                                      coefficient_tables};

}  // namespace norvane::ISO6976::edition2016
