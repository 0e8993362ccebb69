// GPA TP-15: equilibrium (vapour) pressure of natural gas liquids from relative density and temperature. The variant
// that starts from a known vapour pressure at 100 degF is refused: its equation was not to be had.
#pragma once

#include <cstddef>
#include <span>

#include "math/common/dual.h"
#include "math/liquid/liquid.h"

namespace norvane::GPA_TP15 {

// ln p = a0 + a1 G + a2 G^2 + (b0 + b1 G + b2 G^2)/(t + 443); p in psi absolute, t in degF, by bands of G.
struct Band {
  double a0, a1, a2;
  double b0, b1, b2;
};
// clang-format off
inline constexpr double edges[] = {0.350, 0.450, 0.490, 0.510, 0.560, 0.585, 0.625, 0.676};
inline constexpr Band bands[] = {
    {17.5297, -24.604, 24.373, -6567.6,  19322.0, -24693.3},  // 0.350 to below 0.450
    { 7.9907,   7.562,  0.0,    1895.5, -10596.9,      0.0},  // 0.450
    {-6.4747,  37.083,  0.0,   12038.0, -31296.5,      0.0},  // 0.490
    {11.5454,   1.749,  0.0,    1378.8, -10396.1,      0.0},  // 0.510
    { 6.4827,  10.790,  0.0,    3721.5, -14579.5,      0.0},  // 0.560
    { 6.5412,  10.690,  0.0,    6514.5, -19353.9,      0.0},  // 0.585
    {20.8537, -12.210,  0.0,   -6765.6,   1894.3,      0.0},  // 0.625 to 0.676
};
// clang-format on
inline constexpr double coldest = -442.0;  // degF; the equation has a pole at -443

std::size_t band_of(double g) noexcept;

// psi absolute. Outside 0.350 to 0.676 the nearest band at that limit.
template <class Number>
Number equilibrium_pressure(std::size_t band, Number g, double degF) noexcept {
  const Band& k = bands[band];
  if (value_of(g) < edges[0]) g = Number{edges[0]};
  if (value_of(g) > edges[7]) g = Number{edges[7]};
  return exponential(k.a0 + (k.a1 + k.a2 * g) * g + (k.b0 + (k.b1 + k.b2 * g) * g) / (degF + 443.0));
}

// -50 to 140 degF; below G = 0.425 to 695.51 G - 155.51 degF.
bool out_of_range(double g, double degF) noexcept;

struct Arguments {
  double relative_density = 0.0;  // at 60 degF
  double temperature = 0.0;       // degF
  bool rounding = false;          // refused
  bool p100_known = false;        // refused
  double p100 = 0.0;              // vapour pressure at 100 degF, psi gauge; not read
};
struct Result {
  double equilibrium_pressure = 0.0;  // psi absolute
  bool out_of_range = false;
};
inline constexpr const char16_t* no_p100 =
    u"must be 0, off: the equation for a known vapour pressure at 100 degF is not part of this build";

// Errors: argument_error for what is not finite, a relative density that is not positive, a temperature at which the
// equation has no value, rounding or a known vapour pressure; calculation_error where the pressure has no end.
Outcome pressure(const Arguments& in, Result& out) noexcept;

}  // namespace norvane::GPA_TP15
