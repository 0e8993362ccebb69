// AGA Report No. 10 (2003).
//
// The report integrates cv, h and s over density numerically; math/common/helmholtz.h has the closed forms of the
// integrals.

#include "math/gas/aga10.h"

#include <algorithm>
#include <cmath>
#include <cstring>

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

constexpr std::size_t group = 4;  // of vibrations that are calculated together

}  // namespace

// ---- The ideal gas -----------------------------------------------------------------------------------------------

void IdealMixture::set(const AGA8::Composition& x) noexcept {
  gas_count_ = vibration_count_ = 0;
  for (std::size_t i = 0; i < AGA8::component_count; ++i) {
    if (!(x[i] > 0.0)) continue;
    const IdealGas& gas = ideal_gases[i];
    // Two terms in sinh (C, D and G, H) and two in cosh (E, F and I, J). F is negative for two gases; cosh and the
    // product with tanh are even. A cosh term enters the enthalpy and entropy with the opposite sign.
    const double weight[4] = {gas.C, gas.E, gas.G, gas.I};
    const double theta[4] = {gas.D, std::fabs(gas.F), gas.H, gas.J};
    const std::size_t first = vibration_count_;
    for (std::size_t m = 0; m < 4; ++m) {
      if (weight[m] == 0.0) continue;
      weight_[vibration_count_] = weight[m];
      theta_[vibration_count_] = theta[m];
      sign_[vibration_count_] = m % 2 == 0 ? 1.0 : -1.0;
      ++vibration_count_;
    }
    gases_[gas_count_++] = {i, x[i], vibration_count_ - first};
  }
  // Filled up to whole groups, whose extra places are calculated and not used.
  for (std::size_t k = vibration_count_; k % group != 0; ++k) {
    weight_[k] = 0.0;
    theta_[k] = sign_[k] = 1.0;
  }
}

helmholtz::IdealGas IdealMixture::at(double T, Entropy entropy) const noexcept {
  const double inverse_T = 1.0 / T;
  const bool with_entropy = entropy == Entropy::include;
  const double log_T = with_entropy ? elementary::log(T) : 0.0;
  // What each vibration adds.
  double cp_part[most_vibrations], h_part[most_vibrations], s_part[most_vibrations];
  for (std::size_t first = 0; first < vibration_count_; first += group) {
    std::array<double, group> y, argument;
    for (std::size_t m = 0; m < group; ++m) {
      y[m] = theta_[first + m] * inverse_T;
      argument[m] = -2.0 * y[m];
    }
    // With e = exp(-2y): coth y = (1+e)/(1-e), 1/sinh^2 y = 4e/(1-e)^2, ln sinh y = y - ln 2 + ln(1-e); for
    // cosh the signs before e change.
    const std::array<double, group> e = elementary::exp4(argument);
    for (std::size_t m = 0; m < group; ++m) {
      const std::size_t k = first + m;
      const double inverse = 1.0 / (1.0 - sign_[k] * e[m]);
      const double cotangent = (1.0 + sign_[k] * e[m]) * inverse;
      cp_part[k] = weight_[k] * y[m] * y[m] * 4.0 * e[m] * inverse * inverse;
      h_part[k] = sign_[k] * weight_[k] * T * y[m] * cotangent;
      s_part[k] = y[m] * cotangent;
    }
    if (!with_entropy) continue;
    for (std::size_t m = 0; m < group; ++m) {
      const std::size_t k = first + m;
      s_part[k] = sign_[k] * weight_[k] * (s_part[k] - (y[m] - ln2 + elementary::log(1.0 - sign_[k] * e[m])));
    }
  }
  helmholtz::IdealGas sum;
  std::size_t k = 0;
  for (std::size_t g = 0; g < gas_count_; ++g) {
    const IdealGas& gas = ideal_gases[gases_[g].component];
    double cp = gas.B;
    double h = gas.A + gas.B * T;
    double s = gas.K + gas.B * log_T;
    for (const std::size_t end = k + gases_[g].vibrations; k < end; ++k) {
      cp += cp_part[k];
      h += h_part[k];
      if (with_entropy) s += s_part[k];
    }
    sum.cp += gases_[g].fraction * cp;
    sum.h += gases_[g].fraction * h;
    sum.s += gases_[g].fraction * s;
  }
  return {sum.cp * calorie, sum.h * calorie, with_entropy ? sum.s * calorie : 0.0};
}

helmholtz::IdealGas ideal_mixture(const AGA8::Composition& x, double T, Entropy entropy) noexcept {
  IdealMixture mixture;
  mixture.set(x);
  return mixture.at(T, entropy);
}

// ---- Mixture, isotherm and state ---------------------------------------------------------------------------------

void Mixture::set(const AGA8::Composition& x) noexcept {
  detail.set(x);
  ideal.set(x);
  mixing = helmholtz::mixing(x);
}

void Isotherm::set(const Mixture& mixture, double T, Entropy with) noexcept {
  residual.set(mixture.detail, T);
  ideal = mixture.ideal.at(T, with);
  mixing = mixture.mixing;
  entropy = with;
}

MolarState Isotherm::at(double rho) const noexcept {
  const helmholtz::Residual r = residual.at(rho);
  MolarState now = helmholtz::state(R, residual.T, rho, r, ideal);
  if (entropy == Entropy::include)
    now.s = helmholtz::entropy(R, residual.T, rho, r, now.ideal.s, mixing, p_reference);
  return now;
}

MolarState state(const AGA8::Mixture& mixture, const AGA8::Composition& x, double T, double rho,
                 Entropy entropy) noexcept {
  Isotherm isotherm;
  isotherm.residual.set(mixture, T);
  isotherm.ideal = ideal_mixture(x, T, entropy);
  isotherm.mixing = entropy == Entropy::include ? helmholtz::mixing(x) : 0.0;
  isotherm.entropy = entropy;
  return isotherm.at(rho);
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
bool throat(const Mixture& mixture, const MolarState& stagnation, double kappa, MolarState& found) noexcept {
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
  Isotherm here, there;
  double stable_T = stagnation.T, stable_rho = stagnation.rho;  // the last state with a speed of sound
  for (int i = 0; i < max_steps; ++i) {
    here.set(mixture, T, Entropy::include);
    there.set(mixture, T * (1.0 + difference), Entropy::leave_out);
    found = here.at(rho);
    const MolarState warmer = there.at(rho);
    const MolarState denser = here.at(rho * (1.0 + difference));
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
      here.set(mixture, T, Entropy::leave_out);  // no more than a rounding from the last one, which had an entropy
      found = here.at(rho);
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

// Equal bits: a NaN equals itself, and 0 and -0 differ.
template <class Value>
bool same(const Value& a, const Value& b) noexcept {
  return std::memcmp(&a, &b, sizeof a) == 0;
}

}  // namespace

// ---- The calculation with its memory -----------------------------------------------------------------------------

bool CDetail::find(Density& density, const Conditions& at) noexcept {
  if (density.known && same(density.at, at)) return density.found;
  density.known = true;
  density.at = at;
  if (!has_detail_isotherm_ || !same(detail_isotherm_.T, at.T)) {
    detail_isotherm_.set(mixture_.detail, at.T);
    has_detail_isotherm_ = true;
  }
  density.found = detail_isotherm_.density(at.p, density.rho);
  if (density.found) {
    density.z = at.p / (density.rho * detail_isotherm_.RT);
    density.found = std::isfinite(density.z) && std::isfinite(density.rho);
  }
  return density.found;
}

const MolarState& CDetail::flowing_state(Entropy entropy) noexcept {
  const double T = flowing_.at.T;
  if (!has_isotherm_ || !same(isotherm_.residual.T, T) || isotherm_.entropy < entropy) {
    isotherm_.set(mixture_, T, entropy);
    has_isotherm_ = true;
    has_state_ = false;
  }
  if (!has_state_) {
    state_ = isotherm_.at(flowing_.rho);
    has_state_ = true;
    has_throat_ = false;
  }
  return state_;
}

Result CDetail::calculate(const AGA8::Composition& x, const Conditions& flowing, const Conditions& base_state,
                          std::span<const Property> requested, Properties& values) noexcept {
  unsigned need = 0;
  for (Property property : requested) need |= needs(property);

  if (!has_composition_ || !same(x, x_)) {
    x_ = x;
    mixture_.set(x_);
    has_composition_ = true;
    has_detail_isotherm_ = has_isotherm_ = has_state_ = flowing_.known = base_.known = false;
  }
  const double M = mixture_.detail.molar_mass;
  // The base state first, so that the isotherm of the flowing one stays; a failure of the flowing one counts more.
  const bool has_base = (need & base) == 0 || find(base_, base_state);
  if ((need & flow) != 0) {
    if (!flowing_.known || !same(flowing_.at, flowing)) has_state_ = false;
    if (!find(flowing_, flowing)) return flowing_density_failed;
  }
  if (!has_base) return base_density_failed;
  const Density &b = base_, &f = flowing_;
  MolarState s{};
  double kappa = 0.0;
  if ((need & caloric) != 0) {
    s = flowing_state((need & with_entropy) != 0 ? Entropy::include : Entropy::leave_out);
    if ((need & with_entropy) == 0) s.s = 0.0;  // whatever was asked for before
    if (!stable(s)) return unstable;
    kappa = helmholtz::kappa(R, s);
  }
  double critical_flow = 0.0;
  if ((need & nozzle) != 0) {
    if (!has_throat_) {
      throat_found_ = throat(mixture_, s, kappa, throat_);
      has_throat_ = true;
    }
    if (!throat_found_) return throat_not_found;
    // rho w sqrt(R_s T0) / p0, with M under the roots of w and R_s cancelling that of the mass density
    critical_flow = throat_.rho * std::sqrt(throat_.M_w2 * R * s.T) / (flowing.p * 1e3);
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

Result calculate(const AGA8::Composition& x, const Conditions& flowing, const Conditions& base_state,
                 std::span<const Property> requested, Properties& values) noexcept {
  CDetail fresh;
  return fresh.calculate(x, flowing, base_state, requested, values);
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

Outcome answer_of(const Gas& gas, std::span<const Property> properties, Answer& answer, CDetail& memory) noexcept {
  AGA8::Composition x;
  const Outcome prepared = composition::prepare(gas.composition, gas.neo_pentane, AGA8::composition_error, x);
  if (!prepared.good()) return prepared;
  answer.range = std::max(AGA8::composition_range_1994(x), AGA8::state_limits_1994(gas.temperature, gas.pressure));
  switch (memory.calculate(x, {gas.pressure, gas.temperature + 273.15}, base_conditions, properties, answer.values)) {
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

Outcome speed_of_sound(const Gas& gas, Answer& answer, CDetail& memory) noexcept {
  constexpr Property wanted[] = {Property::speed_of_sound};
  return answer_of(gas, wanted, answer, memory);
}

Outcome all_properties(const Gas& gas, Answer& answer, CDetail& memory) noexcept {
  return gas.critical_flow == 2 ? answer_of(gas, requested<true>, answer, memory)
                                : answer_of(gas, requested<false>, answer, memory);
}

}  // namespace norvane::AGA10
