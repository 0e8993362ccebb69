// What the four compressibility functions of API MPMS 11.2 have in common: arguments, result, and the way from the
// compressibility to CPL.
#pragma once

#include "math/liquid/liquid.h"

namespace norvane::liquid {

struct Compression {
  double density = 0.0;               // at base conditions: kg/m3, chapter 11.2.2 relative density
  double temperature = 0.0;           // degF or degC
  double pressure = 0.0;              // psi gauge or bar gauge
  double equilibrium_pressure = 0.0;  // psi gauge or bar gauge
  bool rounding = false;              // of the printed chapter; refused
};

struct Compressed {
  double cpl = 0.0;
  double f = 0.0;  // 1/psi or 1/kPa
  bool out_of_range = false;
};

inline constexpr const char16_t* no_chapter_rounding =
    u"must be 0, disabled: the rounding of the printed chapter is not part of this build";

inline Outcome check(const Compression& in) {
  if (!positive(in.density)) return blame(in.density, argument_error, not_a_density);
  if (!std::isfinite(in.temperature)) return blame(in.temperature, argument_error, not_finite);
  if (!std::isfinite(in.pressure)) return blame(in.pressure, argument_error, not_finite);
  if (!std::isfinite(in.equilibrium_pressure)) return blame(in.equilibrium_pressure, argument_error, not_finite);
  if (in.rounding) return blame(in.rounding, argument_error, no_chapter_rounding);
  return {};
}

inline constexpr const char16_t* no_f = u"the liquid and the temperature give no positive F";

// f and d in units that cancel.
inline Outcome finish(double f, double d, double& cpl_out) {
  if (!positive(f)) return failure(calculation_error, no_f);
  cpl_out = cpl(f, d);
  if (!positive(cpl_out)) return failure(calculation_error, no_cpl);
  return {};
}

}  // namespace norvane::liquid
