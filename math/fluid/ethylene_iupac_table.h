// M. Jahangiri, R. T Jacobsen, R. B. Stewart, R. D. McCarty, J. Phys. Chem. Ref. Data 15 (1986) 593-734: the
// coefficients of the equation of state for ethylene, as printed.
#pragma once

#include <iterator>

#include "core/coefficients.h"
#include "math/fluid/helmholtz_terms.h"

namespace norvane::Ethylene_IUPAC {

// clang-format off

// Residual part: {n, d, t, c}.
inline constexpr fluid::Term terms[] = {
    {     3.248937034, 1,  0.5, 0},
    {    -10.17278862, 1,    1, 0},
    {     7.386604053, 1, 1.25, 0},
    {    -1.568916359, 1, 1.75, 0},
    {  -0.08884514287, 1,    4, 0},
    {   0.06021068143, 2,    2, 0},
    {    0.1078324588, 2,    4, 0},
    {  -0.02004025211, 2,    5, 0},
    {  0.001950491412, 2,    6, 0},
    {   0.06718006403, 3, 0.25, 0},
    {  -0.04200451469, 3,    3, 0},
    { -0.001620507626, 4, 0.25, 0},
    { 0.0005555156795, 6,  0.5, 0},
    { 0.0007583671146, 6,  2.5, 0},
    {-0.0002878544021, 6,    3, 0},
    {   0.06258987063, 1,  0.5, 3},
    {   -0.0641843116, 1,    1, 3},
    {   -0.1368693752, 2,  0.5, 2},
    {     0.517920766, 2,    2, 2},
    {   -0.3026331319, 2,    4, 2},
    {    0.7757213872, 2,    3, 4},
    {    -2.639890864, 2,    4, 4},
    {     2.927563554, 2,    5, 4},
    {    -1.066267599, 2,    6, 4},
    {   -0.0538047154, 2,    2, 6},
    {     0.127792108, 2,    3, 6},
    {   -0.0745015231, 2,    4, 6},
    {  -0.01624304356, 3,  1.5, 3},
    {    0.1476032429, 4,  0.5, 2},
    {   -0.2003910489, 4,  1.5, 2},
    {    0.2926905618, 4,    4, 2},
    {   -0.1389040901, 4,    5, 2},
    {     5.913513541, 4,    1, 4},
    {     -38.0037013, 4,    2, 4},
    {      96.9194057, 4,    3, 4},
    {    -122.6256839, 4,    4, 4},
    {     77.02379476, 4,    5, 4},
    {    -19.22684672, 4,    6, 4},
    { -0.003800045701, 8,  0.5, 2},
    {   0.01118003813, 8,    1, 2},
    {  0.002945841426, 8,    5, 2},
};
static_assert(std::size(terms) == 41);

// Ideal-gas part: the vibrational temperatures [K].
inline constexpr double theta[] = {
       4353.907145,
      2335.2251475,
       1930.913215,
      1471.9256475,
      4464.6972475,
        1778.39697,
      1365.4520425,
      1356.8190475,
       4469.013745,
       1188.475645,
      4300.6703425,
        2077.67413,
};
static_assert(std::size(theta) == 12);

// clang-format on

inline constexpr CoefficientTable coefficient_tables[] = {
    rows("terms", terms),
    rows("theta", theta),
};
inline constinit const CoefficientSet coefficient_set{
    "IUPAC ethylene",
    "M. Jahangiri, R. T Jacobsen, R. B. Stewart, R. D. McCarty, J. Phys. Chem. Ref. Data 15 (1986) 593-734",
    coefficient_tables};

}  // namespace norvane::Ethylene_IUPAC
