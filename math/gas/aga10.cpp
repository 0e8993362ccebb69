// AGA Report No. 10 (2003).
//
// The report integrates cv, h and s over density numerically; math/common/helmholtz.h has the closed forms of the
// integrals.

#include "math/gas/aga10.h"

#include <algorithm>
#include <cmath>

#include "core/elementary.h"
#include "math/gas/aga10_table.h"

namespace norvane::AGA10 {
namespace {

constexpr double R = 8.31451;            // [J/(mol K)]
constexpr double calorie = 4.184;        // [J], thermochemical
constexpr double p_reference = 101.325;  // [kPa], of the entropy
constexpr double ln2 = 0.69314718055994531;

// Dry air for the relative densities: molar mass [kg/kmol] and second virial coefficient [m3/kmol] at T [K].
constexpr double air_molar_mass = 28.9625;
constexpr double air_virial(double T) { return -0.12527 + 5.91e-4 * T - 6.62e-7 * T * T; }

}  // namespace

helmholtz::IdealGas ideal_mixture(const AGA8::Composition& x, double T, Entropy entropy) noexcept {
  helmholtz::IdealGas sum;
  const double inverse_T = 1.0 / T;
  const double log_T = entropy == Entropy::include ? elementary::log(T) : 0.0;
  for (std::size_t i = 0; i < AGA8::component_count; ++i) {
    if (!(x[i] > 0.0)) continue;
    const IdealGas& gas = ideal_gases[i];
    double cp = gas.B;
    double h = gas.A + gas.B * T;
    double s = gas.K + gas.B * log_T;
    // Vibration: two terms in sinh (C, D and G, H) and two in cosh (E, F and I, J). F is negative for two
    // gases; cosh and the product with tanh are even.
    const double weight[4] = {gas.C, gas.E, gas.G, gas.I};
    const double y[4] = {gas.D * inverse_T, std::fabs(gas.F) * inverse_T, gas.H * inverse_T, gas.J * inverse_T};
    const auto e = elementary::exp4({-2.0 * y[0], -2.0 * y[1], -2.0 * y[2], -2.0 * y[3]});
    for (std::size_t m = 0; m < 4; ++m) {
      if (weight[m] == 0.0) continue;
      // With e = exp(-2y): coth y = (1+e)/(1-e), 1/sinh^2 y = 4e/(1-e)^2, ln sinh y = y - ln 2 + ln(1-e); for
      // cosh the signs before e change. A cosh term enters the enthalpy and entropy with the opposite sign.
      const double sign = m % 2 == 0 ? 1.0 : -1.0;
      const double inverse = 1.0 / (1.0 - sign * e[m]);
      const double cotangent = (1.0 + sign * e[m]) * inverse;
      cp += weight[m] * y[m] * y[m] * 4.0 * e[m] * inverse * inverse;
      h += sign * weight[m] * T * y[m] * cotangent;
      if (entropy == Entropy::include)
        s += sign * weight[m] * (y[m] * cotangent - (y[m] - ln2 + elementary::log(1.0 - sign * e[m])));
    }
    sum.cp += x[i] * cp;
    sum.h += x[i] * h;
    sum.s += x[i] * s;
  }
  return {sum.cp * calorie, sum.h * calorie, entropy == Entropy::include ? sum.s * calorie : 0.0};
}

MolarState state(const AGA8::Mixture& mixture, const AGA8::Composition& x, double T, double rho,
                 Entropy entropy) noexcept {
  const helmholtz::Residual r = AGA8::residual(mixture, T, rho);
  MolarState now = helmholtz::state(R, T, rho, r, ideal_mixture(x, T, entropy));
  if (entropy == Entropy::include)
    now.s = helmholtz::entropy(R, T, rho, r, now.ideal.s, helmholtz::mixing(x), p_reference);
  return now;
}

namespace {

bool stable(const MolarState& s) noexcept {
  return s.dp_drho > 0.0 && s.cv > 0.0 && std::isfinite(s.M_w2) && std::isfinite(s.s);
}

// C* of a perfect gas: sqrt(k (2/(k+1))^((k+1)/(k-1))).
double perfect_gas_flow_factor(double k) noexcept {
  // 2/(k+1) = 1 + y and (k+1)/(k-1) = -1/y; the power tends to 1/e as k tends to 1.
  const double y = (1.0 - k) / (1.0 + k);
  const double power = std::fabs(y) < 1e-8 ? elementary::exp(0.5 * y - 1.0) : elementary::pow(1.0 + y, -1.0 / y);
  return std::sqrt(k * power);
}

// The throat of a critical nozzle: the state with the entropy of the stagnation state whose kinetic energy,
// half the square of the speed of sound, makes up for its lower enthalpy. Newton's method in temperature and density.
bool throat(const AGA8::Mixture& mixture, const AGA8::Composition& x, const MolarState& stagnation, double kappa,
            MolarState& found) noexcept {
  constexpr int max_steps = 60;
  constexpr double largest_T_step = 0.1, largest_rho_step = 0.3;  // relative
  constexpr double tolerance = 1e-9;                              // of the last step; the error left is its square
  constexpr double difference = 1e-6;                             // relative, for the slopes of the speed of sound
  // The throat of a perfect gas with this isentropic exponent, in density. The temperature follows with the
  // slope of the isentrope, d ln T / d ln rho = R dp_dT / cv: the ratio 2 / (kappa + 1) of a perfect gas is
  // far too cold for a dense one, whose isentropic exponent is large.
  const double expansion = elementary::pow(2.0 / (kappa + 1.0), 1.0 / (kappa - 1.0));
  double T = stagnation.T * elementary::pow(expansion, R * stagnation.dp_dT / stagnation.cv);
  double rho = stagnation.rho * expansion;
  if (!(T > 0.0 && rho > 0.0 && std::isfinite(T) && std::isfinite(rho))) return false;
  double stable_T = stagnation.T, stable_rho = stagnation.rho;  // the last state with a speed of sound
  for (int i = 0; i < max_steps; ++i) {
    found = state(mixture, x, T, rho, Entropy::include);
    const MolarState warmer = state(mixture, x, T * (1.0 + difference), rho, Entropy::leave_out);
    const MolarState denser = state(mixture, x, T, rho * (1.0 + difference), Entropy::leave_out);
    if (!stable(found) || !stable(warmer) || !stable(denser)) {  // a step too far: halfway back
      T = 0.5 * (T + stable_T);
      rho = 0.5 * (rho + stable_rho);
      continue;
    }
    stable_T = T;
    stable_rho = rho;
    // Residuals over R and R T; derivatives to ln T and ln rho.
    const double f = (found.s - stagnation.s) / R;
    const double f_T = found.cv / R;
    const double f_rho = -found.dp_dT;
    const double g = (found.h + 0.5 * found.M_w2 - stagnation.h) / (R * T);
    const double g_T = found.cv / R + found.dp_dT + 0.5 * (warmer.M_w2 - found.M_w2) / (difference * R * T);
    const double g_rho = found.dp_drho - found.dp_dT + 0.5 * (denser.M_w2 - found.M_w2) / (difference * R * T);
    const double determinant = f_T * g_rho - f_rho * g_T;
    const double T_step = (f_rho * g - g_rho * f) / determinant;
    const double rho_step = (g_T * f - f_T * g) / determinant;
    if (!std::isfinite(T_step) || !std::isfinite(rho_step)) return false;
    T *= 1.0 + std::fmax(-largest_T_step, std::fmin(largest_T_step, T_step));
    rho *= 1.0 + std::fmax(-largest_rho_step, std::fmin(largest_rho_step, rho_step));
    if (std::fabs(T_step) < tolerance && std::fabs(rho_step) < tolerance) {
      found = state(mixture, x, T, rho, Entropy::include);
      return stable(found);
    }
  }
  return false;
}

// What a property needs beyond the molar mass.
enum Need : unsigned { base = 1, flow = 2, caloric = 4, with_entropy = 8, nozzle = 16 };

constexpr unsigned needs(Property property) noexcept {
  switch (property) {
    case Property::molar_mass:
    case Property::ideal_relative_density:
    case Property::count: return 0;
    case Property::base_molar_density:
    case Property::base_density:
    case Property::real_relative_density:
    case Property::base_z: return base;
    case Property::flowing_molar_density:
    case Property::flowing_density:
    case Property::flowing_z: return flow;
    case Property::supercompressibility: return base | flow;
    case Property::entropy: return flow | caloric | with_entropy;
    case Property::critical_flow_factor: return flow | caloric | with_entropy | nozzle;
    default: return flow | caloric;
  }
}

struct BaseOrFlow {
  double rho = 0.0;  // [kmol/m3]
  double z = 0.0;
};

bool density(const AGA8::Mixture& mixture, const Conditions& at, BaseOrFlow& result) noexcept {
  AGA8::Isotherm isotherm;
  isotherm.set(mixture, at.T);
  if (!isotherm.density(at.p, result.rho)) return false;
  result.z = at.p / (result.rho * isotherm.RT);
  return std::isfinite(result.z) && std::isfinite(result.rho);
}

}  // namespace

Result calculate(const AGA8::Composition& x, const Conditions& flowing, const Conditions& base_state,
                 std::span<const Property> requested, Properties& values) noexcept {
  unsigned need = 0;
  for (Property property : requested) need |= needs(property);

  AGA8::Mixture mixture;
  mixture.set(x);
  const double M = mixture.molar_mass;
  BaseOrFlow b, f;
  if ((need & flow) != 0 && !density(mixture, flowing, f)) return flowing_density_failed;
  if ((need & base) != 0 && !density(mixture, base_state, b)) return base_density_failed;
  MolarState s{};
  double kappa = 0.0;
  if ((need & caloric) != 0) {
    s = state(mixture, x, flowing.T, f.rho, (need & with_entropy) != 0 ? Entropy::include : Entropy::leave_out);
    if (!stable(s)) return unstable;
    kappa = helmholtz::kappa(R, s);
  }
  double critical_flow = 0.0;
  if ((need & nozzle) != 0) {
    MolarState at_throat;
    if (!throat(mixture, x, s, kappa, at_throat)) return throat_not_found;
    // rho w sqrt(R_s T0) / p0, with M under the roots of w and R_s cancelling that of the mass density
    critical_flow = at_throat.rho * std::sqrt(at_throat.M_w2 * R * s.T) / (flowing.p * 1e3);
  }

  const double air_z = 1.0 + air_virial(base_state.T) * base_state.p / (AGA8::R * base_state.T);
  for (Property property : requested) {
    double& value = values[static_cast<std::size_t>(property)];
    switch (property) {
      case Property::molar_mass: value = M; break;
      case Property::base_molar_density: value = b.rho * 1000.0; break;
      case Property::flowing_molar_density: value = f.rho * 1000.0; break;
      case Property::base_density: value = b.rho * M; break;
      case Property::flowing_density: value = f.rho * M; break;
      case Property::ideal_relative_density: value = M / air_molar_mass; break;
      case Property::real_relative_density: value = M / air_molar_mass * air_z / b.z; break;
      case Property::speed_of_sound: value = std::sqrt(s.M_w2 * 1000.0 / M); break;
      case Property::base_z: value = b.z; break;
      case Property::flowing_z: value = f.z; break;
      case Property::supercompressibility: value = std::sqrt(b.z / f.z); break;
      case Property::ideal_enthalpy: value = s.ideal.h / M; break;
      case Property::enthalpy: value = s.h / M; break;
      case Property::entropy: value = s.s / M; break;
      case Property::ideal_cp: value = s.ideal.cp / M; break;
      case Property::cp: value = s.cp / M; break;
      case Property::cv: value = s.cv / M; break;
      case Property::ideal_molar_cp: value = s.ideal.cp; break;
      case Property::molar_cp: value = s.cp; break;
      case Property::molar_cv: value = s.cv; break;
      case Property::cp_over_cv: value = s.cp / s.cv; break;
      case Property::isentropic_exponent: value = kappa; break;
      case Property::critical_flow_factor: value = critical_flow; break;
      case Property::ideal_molar_enthalpy: value = s.ideal.h; break;
      case Property::molar_enthalpy: value = s.h; break;
      case Property::ideal_gas_flow_factor: value = perfect_gas_flow_factor(s.ideal.cp / (s.ideal.cp - R)); break;
      case Property::isentropic_flow_factor: value = perfect_gas_flow_factor(kappa) / std::sqrt(f.z); break;
      case Property::count: break;
    }
    if (!std::isfinite(value)) return unstable;
  }
  return success;
}

// ---- A gas as it is given ----------------------------------------------------------------------------------------

namespace {

constexpr std::size_t property_count = static_cast<std::size_t>(Property::count);

constexpr bool of_critical_flow(Property property) {
  return property == Property::critical_flow_factor || property == Property::ideal_gas_flow_factor ||
         property == Property::isentropic_flow_factor;
}

// All properties, with or without the critical flow factors.
template <bool critical_flow>
constexpr auto requested = [] {
  std::array<Property, property_count - (critical_flow ? 0 : 3)> list{};
  std::size_t n = 0;
  for (std::size_t i = 0; i < property_count; ++i) {
    const auto property = static_cast<Property>(i);
    if (critical_flow || !of_critical_flow(property)) list[n++] = property;
  }
  return list;
}();

Outcome answer_of(const Gas& gas, std::span<const Property> properties, Answer& answer) noexcept {
  AGA8::Composition x;
  const Outcome prepared = composition::prepare(gas.composition, gas.neo_pentane, AGA8::composition_error, x);
  if (!prepared.good()) return prepared;
  answer.range = std::max(AGA8::composition_range_1994(x), AGA8::state_limits_1994(gas.temperature, gas.pressure));
  switch (calculate(x, {gas.pressure, gas.temperature + 273.15}, base_conditions, properties, answer.values)) {
    case success: return {};
    case flowing_density_failed:
      return blame(gas.pressure, no_convergence, u"has no gas density at this temperature");
    case base_density_failed: return failure(no_convergence, u"there is no gas density at base conditions");
    case throat_not_found: return failure(calculation_error, u"no nozzle throat is found for this state");
    default:
      return failure(calculation_error,
                     u"the state has no speed of sound: it is unstable, as inside the two-phase region");
  }
}

}  // namespace

Outcome speed_of_sound(const Gas& gas, Answer& answer) noexcept {
  constexpr Property wanted[] = {Property::speed_of_sound};
  return answer_of(gas, wanted, answer);
}

Outcome all_properties(const Gas& gas, Answer& answer) noexcept {
  return gas.critical_flow == 2 ? answer_of(gas, requested<true>, answer) : answer_of(gas, requested<false>, answer);
}

}  // namespace norvane::AGA10
