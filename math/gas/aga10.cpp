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
#include "math/gas/aga8_kernel.h"

namespace norvane::AGA10 {
namespace {

constexpr double R = 8.31451;            // [J/(mol K)]
constexpr double calorie = 4.184;        // [J], thermochemical
constexpr double p_reference = 101.325;  // [kPa], of the entropy

// Dry air for the relative densities: molar mass [kg/kmol] and second virial coefficient [m3/kmol] at T [K].
constexpr double air_molar_mass = 28.9625;
constexpr double air_virial(double T) { return -0.12527 + 5.91e-4 * T - 6.62e-7 * T * T; }

}  // namespace

// ---- The ideal gas -----------------------------------------------------------------------------------------------

void IdealMixture::set(const AGA8::Composition& x) noexcept {
  gas_count_ = 0;
  std::size_t count = 0;
  for (std::size_t i = 0; i < AGA8::component_count; ++i) {
    if (!(x[i] > 0.0)) continue;
    const IdealGas& gas = ideal_gases[i];
    // Two terms in sinh (C, D and G, H) and two in cosh (E, F and I, J). F is negative for two gases; cosh and the
    // product with tanh are even.
    const double weight[4] = {gas.C, gas.E, gas.G, gas.I};
    const double theta[4] = {gas.D, std::fabs(gas.F), gas.H, gas.J};
    const std::size_t first = count;
    for (std::size_t m = 0; m < 4; ++m) {
      if (weight[m] == 0.0) continue;
      vibrations_.weight[count] = weight[m];
      vibrations_.theta[count] = theta[m];
      vibrations_.sign[count] = m % 2 == 0 ? 1.0 : -1.0;
      ++count;
    }
    gases_[gas_count_++] = {i, x[i], count - first};
  }
  vibrations_.count = count;
  for (; count % Vibrations::group != 0; ++count) {
    vibrations_.weight[count] = 0.0;
    vibrations_.theta[count] = vibrations_.sign[count] = 1.0;
  }
}

helmholtz::IdealGas IdealMixture::at(double T, Entropy entropy) const noexcept {
  const bool with_entropy = entropy == Entropy::include;
  const double log_T = with_entropy ? elementary::log(T) : 0.0;
  VibrationParts parts;
  kernel().vibrate(vibrations_, T, with_entropy, parts);
  helmholtz::IdealGas sum;
  std::size_t k = 0;
  for (std::size_t g = 0; g < gas_count_; ++g) {
    const IdealGas& gas = ideal_gases[gases_[g].component];
    double cp = gas.B;
    double h = gas.A + gas.B * T;
    double s = gas.K + gas.B * log_T;
    for (const std::size_t end = k + gases_[g].vibrations; k < end; ++k) {
      cp += parts.cp[k];
      h += parts.h[k];
      if (with_entropy) s += parts.s[k];
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
  mixing = kernel().mixing(x);
}

void Isotherm::set(const Mixture& mixture, double T, Entropy with) noexcept {
  residual.set(mixture.detail, T);
  set_ideal(mixture, with);
}

void Isotherm::set_ideal(const Mixture& mixture, Entropy with) noexcept {
  ideal = mixture.ideal.at(residual.T, with);
  mixing = mixture.mixing;
  entropy = with;
}

namespace {

MolarState state_from(double T, double rho, const helmholtz::Residual& r, const helmholtz::IdealGas& ideal,
                      double mixing, Entropy entropy) noexcept {
  MolarState now = helmholtz::state(R, T, rho, r, ideal);
  if (entropy == Entropy::include) now.s = helmholtz::entropy(R, T, rho, r, now.ideal.s, mixing, p_reference);
  return now;
}

}  // namespace

MolarState Isotherm::at(double rho) const noexcept {
  return state_from(residual.T, rho, residual.at(rho), ideal, mixing, entropy);
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

void CDetail::find(Density& density, const AGA8::Isotherm& isotherm, const Conditions& at) noexcept {
  density.known = true;
  density.at = at;
  density.found = isotherm.density(at.p, density.rho);
  if (density.found) {
    density.z = at.p / (density.rho * isotherm.RT);
    density.found = std::isfinite(density.z) && std::isfinite(density.rho);
  }
}

bool CDetail::find_base(const Conditions& at) noexcept {
  if (!base_.known || !same(base_.at, at)) {
    AGA8::Isotherm isotherm;
    isotherm.set(mixture_.detail, at.T);
    find(base_, isotherm, at);
  }
  return base_.found;
}

bool CDetail::find_flowing(const Conditions& at) noexcept {
  if (!flowing_.known || !same(flowing_.at, at)) {
    has_state_ = false;
    if (!has_residual_ || !same(isotherm_.residual.T, at.T)) {
      isotherm_.residual.set(mixture_.detail, at.T);
      has_residual_ = true;
      has_ideal_ = false;
    }
    find(flowing_, isotherm_.residual, at);
  }
  return flowing_.found;
}

const MolarState& CDetail::flowing_state(Entropy entropy) noexcept {
  if (!has_ideal_ || isotherm_.entropy < entropy) {
    isotherm_.set_ideal(mixture_, entropy);
    has_ideal_ = true;
    has_state_ = false;
  }
  if (!has_state_) {
    state_ = isotherm_.at(flowing_.rho);
    has_state_ = true;
    has_throat_ = false;
  }
  return state_;
}

void CDetail::set(const AGA8::Composition& x) noexcept {
  if (has_composition_ && same(x, x_)) return;
  x_ = x;
  mixture_.set(x_);
  has_composition_ = true;
  has_residual_ = has_ideal_ = has_state_ = flowing_.known = base_.known = false;
}

namespace {

unsigned needs(std::span<const Property> requested) noexcept {
  unsigned need = 0;
  for (Property property : requested) need |= needs(property);
  return need;
}

}  // namespace

Result CDetail::calculate(const AGA8::Composition& x, const Conditions& flowing, const Conditions& base_state,
                          std::span<const Property> requested, Properties& values) noexcept {
  const unsigned need = needs(requested);
  set(x);
  if ((need & flow) != 0 && !find_flowing(flowing)) return flowing_density_failed;
  if ((need & base) != 0 && !find_base(base_state)) return base_density_failed;
  MolarState s{};
  if ((need & caloric) != 0) {
    s = flowing_state((need & with_entropy) != 0 ? Entropy::include : Entropy::leave_out);
    if ((need & with_entropy) == 0) s.s = 0.0;  // whatever was asked for before
  }
  return properties(need, s, requested, values);
}

void CDetail::calculate_rows(const AGA8::Composition& x, std::span<const Conditions> flowing,
                             const Conditions& base_state, std::span<const Property> requested,
                             Properties* const* values, bool* done) noexcept {
  const unsigned need = needs(requested);
  const Entropy entropy = (need & with_entropy) != 0 ? Entropy::include : Entropy::leave_out;
  const std::size_t rows = flowing.size();
  std::fill_n(done, rows, false);
  set(x);
  if ((need & (flow | caloric)) != (flow | caloric) || ((need & base) != 0 && !find_base(base_state))) return;
  double T[most_rows], p[most_rows], rho[most_rows];
  helmholtz::Residual residuals[most_rows];
  for (std::size_t i = 0; i < rows; ++i) {
    T[i] = flowing[i].T;
    p[i] = flowing[i].p;
  }
  AGA8::kernel().densities(mixture_.detail, T, p, rho, rows);
  AGA8::kernel().residuals(mixture_.detail, T, rho, residuals, rows);
  for (std::size_t i = 0; i < rows; ++i) {
    const double z = p[i] / (rho[i] * (AGA8::R * T[i]));
    if (!std::isfinite(z) || !std::isfinite(rho[i])) continue;
    flowing_ = {true, true, flowing[i], rho[i], z};
    has_residual_ = has_ideal_ = has_state_ = has_throat_ = false;
    const MolarState s =
        state_from(T[i], rho[i], residuals[i], mixture_.ideal.at(T[i], entropy), mixture_.mixing, entropy);
    done[i] = properties(need, s, requested, *values[i]) == success;
  }
  flowing_.known = false;
}

Result CDetail::properties(unsigned need, const MolarState& s, std::span<const Property> requested,
                           Properties& values) noexcept {
  const double M = mixture_.detail.molar_mass;
  const Density &b = base_, &f = flowing_;
  double kappa = 0.0;
  if ((need & caloric) != 0) {
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
    critical_flow = throat_.rho * std::sqrt(throat_.M_w2 * R * s.T) / (f.at.p * 1e3);
  }

  const double air_z = 1.0 + air_virial(b.at.T) * b.at.p / (AGA8::R * b.at.T);
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

constexpr double zero_celsius = 273.15;  // [K]
constexpr Property only_speed[] = {Property::speed_of_sound};
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
  switch (memory.calculate(x, {gas.pressure, gas.temperature + zero_celsius}, base_conditions, properties,
                           answer.values)) {
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
  return answer_of(gas, only_speed, answer, memory);
}

Outcome all_properties(const Gas& gas, Answer& answer, CDetail& memory) noexcept {
  return gas.critical_flow == 2 ? answer_of(gas, requested<true>, answer, memory)
                                : answer_of(gas, requested<false>, answer, memory);
}

// ---- Rows --------------------------------------------------------------------------------------------------------

namespace {

// Rows of one composition that follow each other are calculated together. `wanted(gas)` are the properties.
template <class Wanted>
void answer_rows(const Gas* in, Answer* out, bool* done, std::size_t rows, CDetail& memory,
                 const Wanted& wanted) noexcept {
  Conditions flowing[CDetail::most_rows];
  Properties* values[CDetail::most_rows];
  std::size_t first = 0;
  while (first < rows) {
    const Gas& gas = in[first];
    std::size_t count = 0;
    for (; count < CDetail::most_rows && first + count < rows; ++count) {
      const Gas& other = in[first + count];
      if (other.neo_pentane != gas.neo_pentane || other.critical_flow != gas.critical_flow ||
          !same(other.composition, gas.composition))
        break;
      flowing[count] = {other.pressure, other.temperature + zero_celsius};
      values[count] = &out[first + count].values;
    }
    AGA8::Composition x;
    const bool good = composition::prepare(gas.composition, gas.neo_pentane, AGA8::composition_error, x).good();
    if (good && count > 1) {
      memory.calculate_rows(x, {flowing, count}, base_conditions, wanted(gas), values, done + first);
      const int composition_range = AGA8::composition_range_1994(x);
      for (std::size_t i = first; i < first + count; ++i)
        out[i].range = std::max(composition_range, AGA8::state_limits_1994(in[i].temperature, in[i].pressure));
    } else {
      std::fill_n(done + first, count, false);
    }
    first += count;
  }
}

}  // namespace

void speed_of_sound_rows(const Gas* in, Answer* out, bool* done, std::size_t rows, CDetail& memory) noexcept {
  answer_rows(in, out, done, rows, memory, [](const Gas&) { return std::span<const Property>(only_speed); });
}

void all_properties_rows(const Gas* in, Answer* out, bool* done, std::size_t rows, CDetail& memory) noexcept {
  answer_rows(in, out, done, rows, memory, [](const Gas& gas) {
    return gas.critical_flow == 2 ? std::span<const Property>(requested<true>)
                                  : std::span<const Property>(requested<false>);
  });
}

}  // namespace norvane::AGA10
