// SGERG-88: virial coefficients and constants of ISO 12213-3, in SI-like units of the standard.
//
// Source: ISO 12213-3, Calculation using physical properties; the equation is that of GERG Technical Monograph TM5
// (Jaeschke and Humphreys, 1991).
#pragma once

#include "core/coefficients.h"

namespace norvane::SGERG {

// a0 + a1 T + a2 T^2, T in K.
struct Quadratic {
  double a0, a1, a2;
  constexpr double at(double T) const noexcept { return a0 + T * (a1 + a2 * T); }
};

// Indices: 1 the hydrocarbons as one gas CH, 2 nitrogen, 3 carbon dioxide, 5 hydrogen, 7 carbon monoxide.
struct Coefficients {
  // Second virial coefficients [m3/kmol]. B11 = B11[0] + B11[1] H + B11[2] H^2.
  Quadratic B11[3];
  Quadratic B22, B23, B33, B15, B17, B55, B77;
  double B25;
  // Third virial coefficients [m6/kmol2]. C111 as B11.
  Quadratic C111[3];
  Quadratic C222, C223, C233, C333, C555, C117;
};

// clang-format off
inline constexpr Coefficients coefficients = {
    .B11 = {{-0.425468    ,  0.2865e-2    , -0.462073e-5},
            { 0.877118e-3 , -0.556281e-5  ,  0.881510e-8},
            {-0.824747e-6 ,  0.431436e-8  , -0.608319e-11}},
    .B22 =  {-0.144600    ,  0.74091e-3   , -0.911950e-6},
    .B23 =  {-0.339693    ,  0.161176e-2  , -0.204429e-5},
    .B33 =  {-0.868340    ,  0.40376e-2   , -0.516570e-5},
    .B15 =  {-0.521280e-1 ,  0.27157e-3   , -0.25e-6},
    .B17 =  {-0.687290e-1 , -0.239381e-5  ,  0.518195e-6},
    .B55 =  {-0.110596e-2 ,  0.813385e-4  , -0.987220e-7},
    .B77 =  {-0.130820    ,  0.60254e-3   , -0.644300e-6},
    .B25 = 0.012,
    .C111 = {{-0.302488   ,  0.195861e-2  , -0.316302e-5},
             { 0.646422e-3, -0.422876e-5  ,  0.688157e-8},
             {-0.332805e-6,  0.223160e-8  , -0.367713e-11}},
    .C222 =  { 0.784980e-2, -0.398950e-4  ,  0.611870e-7},
    .C223 =  { 0.552066e-2, -0.168609e-4  ,  0.157169e-7},
    .C233 =  { 0.358783e-2,  0.806674e-5  , -0.325798e-7},
    .C333 =  { 0.205130e-2,  0.348880e-4  , -0.837030e-7},
    .C555 =  { 0.104711e-2, -0.364887e-5  ,  0.467095e-8},
    .C117 =  { 0.736748e-2, -0.276578e-4  ,  0.343051e-7},
};
// clang-format on

inline constexpr double R = 0.0831451;                // gas constant [bar m3/(kmol K)]
inline constexpr double ideal_volume = 22.414097;     // of a mole at 273.15 K and 1.01325 bar [m3/kmol]
inline constexpr double carbon_monoxide = 0.0964;     // of the hydrogen fraction
inline constexpr double H2_calorific = 285.83;        // molar, combustion at 298.15 K [MJ/kmol]
inline constexpr double CO_calorific = 282.98;        // likewise
inline constexpr double N2_molar_mass = 28.0135;      // [kg/kmol]
inline constexpr double CO2_molar_mass = 44.010;      // [kg/kmol]
inline constexpr double H2_molar_mass = 2.0159;       // [kg/kmol]
inline constexpr double CO_molar_mass = 28.010;       // [kg/kmol]
inline constexpr double CH_molar_mass = -2.709328;    // of CH: this plus the next times H [kg/kmol]
inline constexpr double CH_mass_per_H = 0.021062199;  // [kg/MJ]

inline constexpr CoefficientTable coefficient_tables[] = {
    whole("coefficients", coefficients),
};
inline constinit const CoefficientSet coefficient_set{
    "SGERG-88", "ISO 12213-3, after M. Jaeschke, A. E. Humphreys, GERG Technical Monograph TM5 (1991)",
    coefficient_tables};

}  // namespace norvane::SGERG
