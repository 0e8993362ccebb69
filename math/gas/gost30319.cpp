// GOST 30319.1-96 and 30319.2-96.
//
//   p      absolute pressure [MPa]           rho_c  density at standard conditions [kg/m3]
//   T      temperature [K]                   x_a    mole fraction of nitrogen
//   z      compressibility factor            x_y    mole fraction of carbon dioxide
//   K      compressibility coefficient z/z_c  x_e   mole fraction of the hydrocarbons
//   kappa  isentropic exponent               H_s, H_i  superior, inferior calorific value [MJ/m3]
//   p_pc, T_pc  pseudocritical pressure [MPa] and temperature [K]
//
//   z_c   = 1 - (0.0741 rho_c - 0.006 - 0.063 x_a - 0.0575 x_y)^2
//   rho   = rho_c p T_c/(p_c T K)
//   kappa = 1.556 (1 + 0.074 x_a) - 3.9e-4 T (1 - 0.68 x_a) - 0.208 rho_c
//         + (p/T)^1.43 (384 (1 - x_a) (p/T)^0.8 + 26.4 x_a)
//   u     = 18.591 sqrt(T kappa K/rho_c)
//   mu    = 3.24 (T^0.5 + 1.37 - 9.09 rho_c^0.125)/(rho_c^0.5 + 2.08 - 1.5 (x_a + x_y)) C          [uPa s]
//   C     = 1 + p_r^2/(30 (T_r - 1)), p_r = p/p_pc, T_r = T/T_pc; below 1.001 up to 0.5 MPa
//   H_s   = 92.819 (0.51447 rho_c + 0.05603 - 0.65689 x_a - x_y)
//   H_i   = 85.453 (0.52190 rho_c + 0.04242 - 0.65197 x_a - x_y)
#include "math/gas/gost30319.h"

#include <cmath>

#include "core/elementary.h"
#include "math/common/virial_root.h"
#include "math/gas/nx19.h"
#include "math/gas/sgerg.h"

namespace norvane::GOST30319 {
namespace {

constexpr double p_c = 0.101325, T_c = 293.15;  // standard conditions [MPa], [K]
constexpr double molar_volume = 24.05525;       // R T_c/p_c [m3/kmol]

struct Gas {
  double p, T, rho_c, x_a, x_y;

  double z_c() const noexcept {
    const double root = 0.0741 * rho_c - 0.006 - 0.063 * x_a - 0.0575 * x_y;
    return 1.0 - root * root;
  }
  double p_pc() const noexcept { return 2.9585 * (1.608 - 0.05994 * rho_c + x_y - 0.392 * x_a); }
  double T_pc() const noexcept { return 88.25 * (0.9915 + 1.759 * rho_c - x_y - 1.681 * x_a); }
  double molar_mass() const noexcept { return molar_volume * z_c() * rho_c; }
};

// ---- 30319.2: compressibility factor -----------------------------------------------------------------------------

// NX19 mod.: the equation of NX-19 in the reduced variables of the standard, which has not its region 4.
Outcome nx19_mod(const Gas& gas, double& z) noexcept {
  constexpr double n4 = 0.305131 * 3.0 / 20.0;  // rounded in the standard
  const NX19::Reduced reduced = {0.6714 * gas.p / gas.p_pc() + 0.0147, 0.71892 * gas.T / gas.T_pc() + 0.0007};
  const int region = NX19::region(reduced);
  if (region == 0 || region == 4 || !NX19::compressibility(reduced, region, n4, z))
    return failure(calculation_error,
                   u"no region of NX19 mod. holds the reduced pressure % and temperature % (0 to 2, 0.84 or 0.88 to "
                   u"1.39)",
                   reduced.pressure, reduced.temperature);
  return {};
}

// GERG-91 mod.: the virial equation of SGERG-88 with the composition from the density. The standard prints one
// coefficient with a digit more, which moves K by some 1e-5.
constexpr SGERG::Coefficients gerg91_coefficients() {
  SGERG::Coefficients c = SGERG::coefficients;
  c.B11[1].a2 = 8.81514e-9;
  return c;
}
constexpr SGERG::Coefficients gerg91 = gerg91_coefficients();

Outcome gerg91_mod(const Gas& gas, double& z) noexcept {
  const double x_e = 1.0 - gas.x_a - gas.x_y;
  const double M_e = (gas.molar_mass() - 28.0135 * gas.x_a - 44.010 * gas.x_y) / x_e;
  const SGERG::Mixture x = {.CH = x_e, .N2 = gas.x_a, .CO2 = gas.x_y, .H = 128.64 + 47.479 * M_e};
  double B, C;
  if (!SGERG::SecondVirial(gerg91, gas.T).of(x, B) || !SGERG::third_virial(gerg91, gas.T, x, C))
    return failure(calculation_error, u"GERG-91 mod. has no virial coefficients at % K", gas.T);
  // The closed form of the standard, z = (1 + A2 + A1/A2)/3, is this root: b = 3 a, with R = 3 2.7715 kJ/(kmol K).
  const double a = 1000.0 * gas.p / (3.0 * 2.7715 * gas.T);
  double rho;
  if (!virial_root(a, B, C, rho))
    return failure(calculation_error, u"no gas density reaches % MPa at % K by GERG-91 mod.", gas.p, gas.T);
  z = 1.0 + rho * (B + C * rho);
  return {};
}

// ---- 30319.1: properties -----------------------------------------------------------------------------------------

double superior_calorific_value(const Gas& g) noexcept {
  return 92.819 * (0.51447 * g.rho_c + 0.05603 - 0.65689 * g.x_a - g.x_y);
}
double inferior_calorific_value(const Gas& g) noexcept {
  return 85.453 * (0.52190 * g.rho_c + 0.04242 - 0.65197 * g.x_a - g.x_y);
}
// The first of them, for the density.
double density_of(double H_s, double x_a, double x_y) noexcept {
  return (H_s / 92.819 + 0.65689 * x_a + x_y - 0.05603) / 0.51447;
}

double isentropic_exponent(const Gas& g) noexcept {
  const double ratio = g.p / g.T;
  return 1.556 * (1.0 + 0.074 * g.x_a) - 3.9e-4 * g.T * (1.0 - 0.68 * g.x_a) - 0.208 * g.rho_c +
         elementary::pow(ratio, 1.43) * (384.0 * (1.0 - g.x_a) * elementary::pow(ratio, 0.8) + 26.4 * g.x_a);
}

double viscosity(const Gas& g) noexcept {  // [uPa s]
  const double root = std::sqrt(g.rho_c), eighth = std::sqrt(std::sqrt(root));
  const double mu_t = 3.24 * (std::sqrt(g.T) + 1.37 - 9.09 * eighth) / (root + 2.08 - 1.5 * (g.x_a + g.x_y));
  const double p_r = g.p / g.p_pc(), T_r = g.T / g.T_pc();
  return mu_t * (1.0 + p_r * p_r / (30.0 * (T_r - 1.0)));
}

bool within(double x, double low, double high) noexcept { return x >= low && x <= high; }

bool in_range(const Gas& g, Method method, double H_s) noexcept {
  const bool nx19 = method == Method::nx19_mod;
  const double most = nx19 ? 0.15 : 0.20;  // of nitrogen, and of carbon dioxide
  return within(g.p, 0.1, 12.0) && within(g.T, 250.0, 340.0) && within(g.rho_c, 0.66, 1.05) && g.x_a <= most &&
         g.x_y <= most && (nx19 ? within(H_s, 32.0, 40.0) : within(H_s, 20.0, 48.0));
}

Outcome properties(const Gas& g, Method method, Result& out) noexcept {
  const Outcome bad = method == Method::nx19_mod ? nx19_mod(g, out.z) : gerg91_mod(g, out.z);
  if (!bad.good()) return bad;
  out.density = g.rho_c;
  out.zc = g.z_c();
  out.k = out.z / out.zc;
  out.mass_density = g.rho_c * g.p * T_c / (p_c * g.T * out.k);
  out.isentropic_exponent = isentropic_exponent(g);
  out.speed_of_sound = 18.591 * std::sqrt(g.T * out.isentropic_exponent * out.k / g.rho_c);
  out.viscosity = 1e-6 * viscosity(g);
  out.superior_calorific_value = superior_calorific_value(g);
  out.inferior_calorific_value = inferior_calorific_value(g);
  out.molar_mass = g.molar_mass();
  if (!(out.zc > 0.0) || !(out.z > 0.0) || !std::isfinite(out.mass_density))
    return failure(calculation_error, u"a compressibility factor is not positive: % and, at standard conditions, %",
                   out.z, out.zc);
  if (!(out.isentropic_exponent > 0.0) || !std::isfinite(out.speed_of_sound) || !(out.viscosity > 0.0) ||
      !std::isfinite(out.viscosity))
    return failure(calculation_error, u"the isentropic exponent % or the viscosity % Pa s is no positive number",
                   out.isentropic_exponent, out.viscosity);
  out.out_of_range = !in_range(g, method, out.superior_calorific_value);
  return {};
}

// ---- Arguments ---------------------------------------------------------------------------------------------------

// What all three have.
template <class In>
Outcome check_state(const In& in) noexcept {
  if (!(in.pressure >= 0.0) || !std::isfinite(in.pressure))
    return blame(in.pressure, argument_error, u"must not be below %", 0.0);
  if (!(in.temperature > 0.0) || !std::isfinite(in.temperature))
    return blame(in.temperature, argument_error, u"must be above %", 0.0);
  return {};
}

template <class In>
Outcome check_gas(const In& in) noexcept {
  if (const Outcome bad = check_state(in); !bad.good()) return bad;
  if (!within(in.nitrogen, 0.0, 1.0)) return blame(in.nitrogen, argument_error, u"must be from % to %", 0.0, 1.0);
  if (!within(in.carbon_dioxide, 0.0, 1.0))
    return blame(in.carbon_dioxide, argument_error, u"must be from % to %", 0.0, 1.0);
  const double sum = in.nitrogen + in.carbon_dioxide;
  if (sum >= 1.0) return failure(argument_error, u"nitrogen and carbon dioxide sum to %, not below %", sum, 1.0);
  return {};
}

bool is_density(double rho_c) noexcept { return rho_c > 0.0 && std::isfinite(rho_c); }

}  // namespace

Outcome calculate(const Arguments& in, Result& out) noexcept {
  if (in.method != Method::nx19_mod && in.method != Method::gerg91_mod)
    return blame(in.method, argument_error, u"is not a method (% or %)", 1, 2);
  if (const Outcome bad = check_gas(in); !bad.good()) return bad;
  if (!is_density(in.density)) return blame(in.density, argument_error, u"must be above %", 0.0);
  return properties({in.pressure, in.temperature, in.density, in.nitrogen, in.carbon_dioxide}, in.method, out);
}

Outcome calculate_gerg91(const Gerg91Arguments& in, Result& out) noexcept {
  if (in.known != Known::density && in.known != Known::calorific_value)
    return blame(in.known, argument_error, u"is not an input mode (% or %)", 1, 2);
  if (const Outcome bad = check_gas(in); !bad.good()) return bad;
  double rho_c = in.density;
  if (in.known == Known::calorific_value) {
    if (!(in.calorific_value > 0.0) || !std::isfinite(in.calorific_value))
      return blame(in.calorific_value, argument_error, u"must be above %", 0.0);
    rho_c = density_of(in.calorific_value, in.nitrogen, in.carbon_dioxide);
    if (!is_density(rho_c))
      return blame(in.calorific_value, calculation_error, u"comes to a standard density of % kg/m3", rho_c);
  } else if (!is_density(rho_c)) {
    return blame(in.density, argument_error, u"must be above %", 0.0);
  }
  return properties({in.pressure, in.temperature, rho_c, in.nitrogen, in.carbon_dioxide}, Method::gerg91_mod, out);
}

Outcome calculate_detail(const DetailArguments& in, DetailResult& out, DetailCache& cache) noexcept {
  if (const Outcome bad = check_state(in); !bad.good()) return bad;
  if (!(in.base_pressure > 0.0) || !std::isfinite(in.base_pressure))
    return blame(in.base_pressure, argument_error, u"must be above %", 0.0);
  if (!(in.base_temperature > 0.0) || !std::isfinite(in.base_temperature))
    return blame(in.base_temperature, argument_error, u"must be above %", 0.0);
  if (in.neo_pentane < composition::add_to_i_pentane || in.neo_pentane > composition::neglect)
    return blame(in.neo_pentane, argument_error, u"is not a neo-pentane mode (% to %)", 1, 3);
  AGA8::Composition x;
  if (const Outcome bad = composition::prepare(in.composition, in.neo_pentane, AGA8::composition_error, x);
      !bad.good())
    return bad;
  AGA8::State flowing{.z = 1.0}, base;  // gas without pressure is ideal
  if (in.pressure > 0.0 && cache.flowing.calculate(x, in.temperature, in.pressure, flowing) != AGA8::converged)
    return blame(in.pressure, calculation_error, u"is reached by no gas density at this temperature");
  if (cache.base.calculate(x, in.base_temperature, in.base_pressure, base) != AGA8::converged)
    return blame(in.base_pressure, calculation_error, u"is reached by no gas density at the base temperature");
  out = {.k = flowing.z / base.z, .z = flowing.z, .zc = base.z, .mass_density = flowing.mass_density};
  if (!std::isfinite(out.k))
    return failure(calculation_error, u"the compressibility factors % and % have no ratio", flowing.z, base.z);
  return {};
}

}  // namespace norvane::GOST30319
