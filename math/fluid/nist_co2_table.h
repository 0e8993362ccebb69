// R. Span, W. Wagner, J. Phys. Chem. Ref. Data 25 (1996) 1509-1596: the coefficients of the equation of state for
// carbon dioxide, as printed.
#pragma once

#include <iterator>

#include "core/coefficients.h"
#include "math/fluid/helmholtz_terms.h"

namespace norvane::NIST_CO2 {

// clang-format off

// Table 31, residual part, terms 1 to 34: {n, d, t, c}.
inline constexpr fluid::Term terms[] = {
    {    0.38856823203161,  1,    0, 0},
    {      2.938547594274,  1, 0.75, 0},
    {    -5.5867188534934,  1,    1, 0},
    {   -0.76753199592477,  1,    2, 0},
    {    0.31729005580416,  2, 0.75, 0},
    {    0.54803315897767,  2,    2, 0},
    {    0.12279411220335,  3, 0.75, 0},
    {      2.165896154322,  1,  1.5, 1},
    {     1.5841735109724,  2,  1.5, 1},
    {   -0.23132705405503,  4,  2.5, 1},
    {   0.058116916431436,  5,    0, 1},
    {   -0.55369137205382,  5,  1.5, 1},
    {    0.48946615909422,  5,    2, 1},
    {  -0.024275739843501,  6,    0, 1},
    {   0.062494790501678,  6,    1, 1},
    {   -0.12175860225246,  6,    2, 1},
    {   -0.37055685270086,  1,    3, 2},
    {  -0.016775879700426,  1,    6, 2},
    {   -0.11960736637987,  4,    3, 2},
    {  -0.045619362508778,  4,    6, 2},
    {   0.035612789270346,  4,    8, 2},
    { -0.0074427727132052,  7,    6, 2},
    { -0.0017395704902432,  8,    0, 2},
    {  -0.021810121289527,  2,    7, 3},
    {   0.024332166559236,  3,   12, 3},
    {  -0.037440133423463,  3,   16, 3},
    {    0.14338715756878,  5,   22, 4},
    {   -0.13491969083286,  5,   24, 4},
    {   -0.02315122505348,  6,   16, 4},
    {   0.012363125492901,  7,   24, 4},
    {   0.002105832197294,  8,    8, 4},
    {-0.00033958519026368, 10,    2, 4},
    {  0.0055993651771592,  4,   28, 5},
    {-0.00030335118055646,  8,   14, 6},
};
static_assert(std::size(terms) == 34);

// Terms 35 to 39: n delta^d tau^t exp(-alpha (delta - 1)^2 - beta (tau - gamma)^2).
struct Gaussian { double n; int d, t; double alpha, beta, gamma; };
inline constexpr Gaussian gaussians[] = {
    { -213.6548868832, 2, 1, 25, 325, 1.16},
    { 26641.569149272, 2, 0, 25, 300, 1.19},
    {-24027.212204557, 2, 1, 25, 300, 1.19},
    {-283.41603423999, 3, 3, 15, 275, 1.25},
    { 212.47284400179, 3, 3, 20, 275, 1.22},
};
static_assert(std::size(gaussians) == 5);

// Terms 40 to 42: n Delta^b delta exp(-C (delta - 1)^2 - D (tau - 1)^2).
struct Critical { double n, a, b, beta, A, B, C, D; };
inline constexpr Critical criticals[] = {
    {-0.66642276540751, 3.5, 0.875, 0.3, 0.7, 0.3,   10, 275},
    { 0.72608632349897, 3.5, 0.925, 0.3, 0.7, 0.3,   10, 275},
    {0.055068668612842, 3.0, 0.875, 0.3, 0.7,   1, 12.5, 275},
};
static_assert(std::size(criticals) == 3);

// Table 27, ideal-gas part: a1 to a3, then {a, theta} of the terms 4 to 8.
inline constexpr double ideal[] = {8.37304456, -3.70454304, 2.5};
struct Oscillator { double a, theta; };
inline constexpr Oscillator oscillators[] = {
    {1.99427042,  3.15163},
    {0.62105248,   6.1119},
    {0.41195293,  6.77708},
    {1.04028922, 11.32384},
    {0.08327678, 27.08792},
};
static_assert(std::size(oscillators) == 5);

// Equation (3.13), vapour pressure: {a, t}.
struct Auxiliary { double a, t; };
inline constexpr Auxiliary vapour_pressure_terms[] = {
    {-7.0602087,   1},
    { 1.9391218, 1.5},
    {-1.6463597, 2.0},
    {-3.2995634, 4.0},
};

// clang-format on

inline constexpr CoefficientTable coefficient_tables[] = {
    rows("terms", terms), rows("gaussians", gaussians),     rows("criticals", criticals),
    rows("ideal", ideal), rows("oscillators", oscillators), rows("vapour_pressure_terms", vapour_pressure_terms),
};
inline constinit const CoefficientSet coefficient_set{
    "Span and Wagner, carbon dioxide",
    "R. Span, W. Wagner, J. Phys. Chem. Ref. Data 25 (1996) 1509-1596, tables 27 and 31 and the auxiliary equations",
    coefficient_tables};

}  // namespace norvane::NIST_CO2
