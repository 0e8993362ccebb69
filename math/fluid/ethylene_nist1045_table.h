// R. D. McCarty, R. T Jacobsen, An equation of state for fluid ethylene, NBS Technical Note 1045 (1981): the
// coefficients of the 32-term equation, as printed.
#pragma once

#include <iterator>

#include "core/coefficients.h"

namespace norvane::Ethylene_NIST1045 {

// clang-format off

// b1 to b32, for bar, K and mol/L.
inline constexpr double b[] = {
      -0.02146684366683,
         1.791433722534,
         -36.7531560393,
         3707.178934669,
        -319828.2566709,
     0.0005809379774732,
       -0.7895570824899,
         114.8620375835,
         271377.4629193,
    -8.647124319107e-05,
        0.1617727266385,
        -27.31527496271,
     -0.002672283641459,
       -0.0475238133199,
        -62.55637346217,
      0.004576234964434,
     -7.53483926932e-05,
        0.1638171982209,
      -0.00356309074074,
         -183300.078317,
        -18050742.09985,
        -4794.587918874,
         35319482.74957,
        -25.62571039155,
         1044.308253292,
       -0.1695303363659,
        -1710.334224958,
    -0.0002054114462372,
       0.06727558766661,
    -1.557168403328e-06,
    -0.0001229814736077,
     0.0004234325938573,
};
static_assert(std::size(b) == 32);

// Ideal-gas heat capacity over R: g1 T^-3 ... g7 T^3, and g8 u^2 e^u/(e^u - 1)^2 with u = g9/T.
inline constexpr double g[] = {560361.5762, -21410.69802, 253.2008897, 3.554495281, -0.009951927478,
                               5.10893107e-05, -1.928667482e-08, -20.61703241, 3000.0};
static_assert(std::size(g) == 9);

// clang-format on

inline constexpr CoefficientTable coefficient_tables[] = {
    rows("b", b),
    rows("g", g),
};
inline constinit const CoefficientSet coefficient_set{"Technical Note 1045, ethylene",
                                                      "R. D. McCarty, R. T Jacobsen, NBS Technical Note 1045 (1981)",
                                                      coefficient_tables};

}  // namespace norvane::Ethylene_NIST1045
