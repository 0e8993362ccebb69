// GOST 8.586-2005, Measurement of liquid and gas flow rate and quantity by means of orifice instruments: the tables
// of parts 1 and 2.
#pragma once

#include <iterator>

#include "core/coefficients.h"

namespace norvane::GOST_8_586_2005 {

// clang-format off

// Steels, GOST 8.586.1, table G.1: mean coefficient of linear expansion from 20 degC to t,
//   alpha = 1e-6 (a0 + a1 (t/1000) + a2 (t/1000)^2) [1/degC], t in degC.
enum class Printing : int {
  known,
  conflicting,  // two prints of the table differ in a1
  attributed,   // the polynomial is this grade's by its place in the table
  missing       // the grade has no polynomial in this build
};
struct Steel { const char16_t* grade; double a0, a1, a2; Printing printing; };
inline constexpr Steel steels[] = {
    {u"Steel 10",                                     10.8,    9.0,    -4.2, Printing::known},  // 1 steel 10
    {u"Steel 15",                                     11.1,    7.9,    -3.9, Printing::known},  // 2 steel 15
    {u"Steel 20",                                     11.1,    7.7,    -3.4, Printing::known},  // 3 steel 20
    {u"06\u0425\u041D28\u041C\u0414\u0422",          9.153, 30.944, -26.478, Printing::known},  // 4 06KhN28MDT
    {u"08\u042513",                                  9.971,  9.095,  -4.115, Printing::known},  // 5 08Kh13
    {u"08\u042518\u041D10",                         15.325,  11.25,       0, Printing::known},  // 6 08Kh18N10
    {u"08\u042518\u041D10\u0422",                    15.47,   10.5,       0, Printing::known},  // 7 08Kh18N10T
    {u"08\u042522\u041D6\u0422",                       6.4,   60.0,       0, Printing::known},  // 8 08Kh22N6T
    {u"09\u04132\u0421",                             10.66,   12.0,       0, Printing::known},  // 9 09G2S
    {u"10\u04132",                                    9.94, 22.667,       0, Printing::known},  // 10 10G2
    {u"10\u042514\u041314\u041D4\u0422",             15.22,   13.0,       0, Printing::known},  // 11 10Kh14G14N4T
    {u"12\u042513",                                  9.557, 11.067,    -5.0, Printing::known},  // 12 12Kh13
    {u"12\u042517",                                      0,      0,       0, Printing::missing},  // 13 12Kh17
    {u"12\u042518\u041D10\u0422",                   16.206,  6.571,       0, Printing::known},  // 14 12Kh18N10T
    {u"12\u042518\u041D12\u0422",                   16.206,  6.571,       0, Printing::known},  // 15 12Kh18N12T
    {u"12\u042518\u041D9\u0422",                      15.6,    8.3,    -6.5, Printing::known},  // 16 12Kh18N9T
    {u"12\u042518\u041D9\u0422\u041B",              16.466,   5.36,     3.0, Printing::known},  // 17 12Kh18N9TL
    {u"12\u04251\u041C\u0424",                        10.0,    9.6,    -6.0, Printing::known},  // 18 12Kh1MF
    {u"15\u041A",                                     10.8,   10.0,       0, Printing::known},  // 19 15K
    {u"20\u041A",                                     10.8,   10.0,       0, Printing::known},  // 20 20K
    {u"15\u04255\u041C",                              10.1,    2.7,       0, Printing::known},  // 21 15Kh5M
    {u"15\u0425\u041C",                             11.448, 12.638,  -7.137, Printing::known},  // 22 15KhM
    {u"16\u0413\u0421",                              9.903, 20.561, -15.675, Printing::known},  // 23 16GS
    {u"18\u04252\u041D4\u041C\u0410",               11.065, 11.224,  -5.381, Printing::known},  // 24 18Kh2N4MA
    {u"20\u041B",                                    11.66,    9.0,       0, Printing::known},  // 25 20L
    {u"20\u042513",                                   9.52, 11.333,       0, Printing::known},  // 26 20Kh13
    {u"20\u0425\u041C\u041B",                         9.83, 18.812, -14.191, Printing::known},  // 27 20KhML
    {u"22\u041A",                                    9.142,  34.34, -43.526, Printing::known},  // 28 22K
    {u"25\u041B",                                    10.75,   12.5,       0, Printing::known},  // 29 25L
    {u"25\u04251\u041C\u0424",                      10.235,  18.64,   -13.0, Printing::conflicting},  // 30 25Kh1MF
    {u"25\u04252\u041C1\u0424",                      12.02,    8.0,       0, Printing::known},  // 31 25Kh2M1F
    {u"Steel 30",                                     10.2,   10.4,    -5.6, Printing::known},  // 32 steel 30
    {u"Steel 35",                                     10.2,   10.4,    -5.6, Printing::known},  // 33 steel 35
    {u"30\u042513",                                  9.642,    9.6,  -4.472, Printing::known},  // 34 30Kh13
    {u"30\u0425\u041C",                              10.72, 14.667,       0, Printing::known},  // 35 30KhM
    {u"30\u0425\u041C\u0410",                        10.72, 14.667,       0, Printing::known},  // 36 30KhMA
    {u"31\u042519\u041D9\u041C\u0412\u0411\u0422",  16.216,    6.4,       0, Printing::known},  // 37 31Kh19N9MVBT
    {u"35\u041B",                                    10.26,   14.0,       0, Printing::attributed},  // 38 35L
    {u"37\u042512\u041D8\u04138\u041C\u0424\u0411",   15.8,      0,       0, Printing::known},  // 39 37Kh12N8G8MFB
    {u"38\u0425\u0410",                             12.345,  5.433,    5.36, Printing::known},  // 40 38KhA
    {u"38\u0425\u041D3\u041C\u0424\u0410",          11.446,  9.574,  -4.945, Printing::known},  // 41 38KhN3MFA
    {u"Steel 40",                                   10.821, 17.872, -10.986, Printing::known},  // 42 steel 40
    {u"Steel 45",                                   10.821, 17.872, -10.986, Printing::known},  // 43 steel 45
    {u"40\u0425",                                   10.819, 15.487,   -9.28, Printing::known},  // 44 40Kh
    {u"45\u041B",                                     11.6,      0,       0, Printing::known},  // 45 45L
};
static_assert(std::size(steels) == 45);

// Pipes, GOST 8.586.1, table D.1: equivalent roughness R_sh and arithmetic mean deviation of the profile Ra, about
// R_sh/pi [mm].
struct PipeWall { const char16_t* wall; double R_sh, Ra; };  // 0 where this build has no figures
inline constexpr PipeWall pipe_walls[] = {
    {u"Drawn brass, copper, aluminium, plastic, technically smooth", 0.03,   0.01},  // 1
    {u"Glass tube, clean",                                           0.01,  0.003},  // 2
    {u"Stainless steel tube, new",                                   0.03,   0.01},  // 3
    {u"Seamless steel, cold drawn, new",                             0.03,   0.01},  // 4
    {u"Seamless steel, hot drawn, new",                               0.1,   0.03},  // 5
    {u"Seamless steel, rolled, new",                                  0.1,   0.03},  // 6
    {u"Welded steel, longitudinal seam, new",                         0.1,   0.03},  // 7
    {u"Welded steel, spiral seam, new",                               0.1,   0.03},  // 8
    {u"Steel, slight rust",                                          0.15,  0.045},  // 9
    {u"Steel, rusty",                                                0.25,   0.08},  // 10
    {u"Steel, encrusted",                                            1.25,  0.375},  // 11
    {u"Steel, heavily encrusted",                                     2.0,    0.6},  // 12
    {u"Steel, bituminised, new",                                     0.04, 0.0125},  // 13
    {u"Steel, bituminised, used",                                    0.15,  0.045},  // 14
    {u"Steel, galvanised",                                           0.13,   0.04},  // 15
    {u"Cast iron, new, not used",                                    0.25,   0.08},  // 16
    {u"Cast iron, rusty",                                            1.25,    0.4},  // 17
    {u"Cast iron, encrusted",                                         1.5,    0.5},  // 18
    {u"Cast iron, bituminised, new",                                 0.04, 0.0125},  // 19
    {u"Asbestos cement, coated or uncoated, new",                    0.03,   0.01},  // 20
    {u"Asbestos cement, uncoated, used",                                0,      0},  // 21
};
static_assert(std::size(pipe_walls) == 21);

// Greatest roughness without correction, GOST 8.586.2: 10^4 Ra_max/D = A0 beta^A1 + A2 with
// A_i = B_i0 + B_i1 lg Re + B_i2 (lg Re)^2 + B_i3 (lg Re)^3 up to a Reynolds number.
struct RoughnessBand { double Re; double B[3][4]; };
inline constexpr RoughnessBand roughness_bands[] = {
    {1e5, {{    8.87,  -3.7114,  0.41841,         0},
           {  6.7307,  -5.5844, 0.732485,         0},
           { -10.244,   5.7094, -0.76477,         0}}},
    {3e6, {{   27.23,  -11.458,   1.6117,  -0.07567},
           { -25.928,   12.426, -2.09397,  0.106143},
           {  1.7622,  -3.8765,  1.05567, -0.076764}}},
    {1e8, {{ 16.5416, -6.60709,  0.88147, -0.039226},
           { 322.594,   -132.2,   17.795, -0.799765},
           { -92.029,   37.935,  -5.1885,   0.23583}}},
};

// clang-format on

inline constexpr CoefficientTable coefficient_tables[] = {
    rows_behind("steels", steels, &Steel::grade),
    rows_behind("pipe_walls", pipe_walls, &PipeWall::wall),
    rows("roughness_bands", roughness_bands),
};
inline constinit const CoefficientSet coefficient_set{
    "GOST 8.586-2005", "GOST 8.586.1-2005, tables G.1 and D.1; GOST 8.586.2-2005, limits of roughness",
    coefficient_tables};

}  // namespace norvane::GOST_8_586_2005
