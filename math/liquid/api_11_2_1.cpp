#include "math/liquid/api_11_2_1.h"

namespace norvane::API_11_2_1 {

using namespace liquid;

// The temperatures are those for which API MPMS 11.1:2004, which took the equation over, uses it.
bool out_of_range(double rho60, double degF) noexcept {
  return outside(water_1980.gravity_of_density(rho60), 0.0, 90.0) || outside(degF, -58.0, 302.0);
}
bool out_of_range_metric(double rho15, double degC) noexcept {
  return outside(rho15, 638.0, 1074.0) || outside(degC, -50.0, 150.0);
}

Outcome factor(const Compression& in, Compressed& out) noexcept {
  if (const Outcome outcome = check(in); !outcome.good()) return outcome;
  out.f = compressibility(customary, in.density, in.temperature);
  out.out_of_range = out_of_range(in.density, in.temperature);
  return finish(out.f, in.pressure - in.equilibrium_pressure, out.cpl);
}

Outcome factor_metric(const Compression& in, Compressed& out) noexcept {
  if (const Outcome outcome = check(in); !outcome.good()) return outcome;
  out.f = compressibility(metric, in.density, in.temperature);
  out.out_of_range = out_of_range_metric(in.density, in.temperature);
  return finish(out.f, kPa_of_bar(in.pressure - in.equilibrium_pressure), out.cpl);
}

}  // namespace norvane::API_11_2_1
