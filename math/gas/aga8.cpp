// AGA Report No. 8, detail characterisation method.
//
//   x_i  mole fraction [-]                       T    temperature [K]
//   p    pressure [MPa]                          rho  molar density [kmol/m3]
//   B    second virial coefficient [m3/kmol]     K    mixture size parameter [(m3/kmol)^(1/3)]
//   r    reduced density, K^3 rho [-]            U    mixture energy parameter [K]
//
//   E_ij = E*_ij sqrt(E_i E_j)                   G_ij = G*_ij (G_i + G_j)/2
//
//   Z = 1 + rho B - r sum(13..18) C*_n + sum(13..58) C*_n (b_n - k_n r^k_n) r^b_n exp(-r^k_n)
//   p = rho R T Z
//
//   B      = sum(1..18) a_n T^-u_n sum_i sum_j x_i x_j E_ij^u_n (K_i K_j)^1.5 Bn*_ij
//   Bn*_ij = (G_ij+1-g)^g (Q_i Q_j+1-q)^q (sqrt(F_i F_j)+1-f)^f (S_i S_j+1-s)^s (W_i W_j+1-w)^w
//   C*_n   = a_n (G+1-g)^g (Q^2+1-q)^q (F+1-f)^f U^u_n T^-u_n
//
// The exponential of term n has r^k_n only where k_n > 0. All exponents u are multiples of one half, so that
// a square root and products give every power of a temperature.

#include "math/gas/aga8.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

#include "core/elementary.h"
#include "math/gas/aga8_kernel.h"
#include "math/gas/aga8_terms.h"

namespace norvane::AGA8 {
// ---- Pair coefficients -------------------------------------------------------------------------------------------

namespace {

double power5(double x) noexcept {
  const double x2 = x * x;
  return x2 * x2 * x;
}
double power_5_2(double x) noexcept { return x * x * std::sqrt(x); }

Pair interaction(std::size_t i, std::size_t j) noexcept {
  for (const Pair& pair : pairs)
    if (pair.i == i && pair.j == j) return pair;
  return {i, j, 1.0, 1.0, 1.0, 1.0};
}

// a_n Bn*_ij E_ij^u_n (K_i K_j)^1.5
double virial(const Pair& pair, const Term& term) noexcept {
  const Component& i = components[pair.i];
  const Component& j = components[pair.j];
  const double E = pair.E * std::sqrt(i.E * j.E);
  const double G = pair.G * (i.G + j.G) / 2.0;
  const double KK = i.K * j.K;
  const double structure = with_flag(term.g, G) * with_flag(term.q, i.Q * j.Q) *
                           with_flag(term.f, std::sqrt(i.F * j.F)) * with_flag(term.s, i.S * j.S) *
                           with_flag(term.w, i.W * j.W);
  return term.a * structure * powers(E, 1.0 / E).u[position_of(term.u)] * KK * std::sqrt(KK);
}

}  // namespace

Coefficients::Coefficients() noexcept {
  for (std::size_t i = 0; i < component_count; ++i) {
    for (std::size_t j = i; j < component_count; ++j) {
      const Pair pair = interaction(i, j);
      const double weight = i == j ? 1.0 : 2.0;
      double* entry = block[row(i) + j];
      for (std::size_t m = 0; m < common_count; ++m) entry[m] = weight * virial(pair, terms[common_terms[m] - 1]);
      const Component& a = components[i];
      const Component& b = components[j];
      entry[u_place] = weight * power5(pair.U) * power_5_2(a.E) * power_5_2(b.E);
      entry[k_place] = weight * power5(pair.K) * power_5_2(a.K) * power_5_2(b.K);
      if (pair.G != 1.0) orientation[orientation_count++] = {i, j, (pair.G - 1.0) * (a.G + b.G)};
    }
  }
  for (std::size_t p = 0; p < std::size(polar_pairs); ++p) {
    const auto [i, j] = polar_pairs[p];
    for (std::size_t m = 0; m < polar_count; ++m)
      polar[p][m] = (i == j ? 1.0 : 2.0) * virial(interaction(i, j), terms[polar_terms[m] - 1]);
  }
}

const Coefficients& coefficients() noexcept {
  static const Coefficients table;
  return table;
}

// ---- Mixture, isotherm and residual ------------------------------------------------------------------------------

double molar_mass(const Composition& x) noexcept {
  double sum = 0.0;
  for (std::size_t i = 0; i < component_count; ++i) sum += x[i] * components[i].M;
  return sum;
}

void Mixture::set(const Composition& x) noexcept {
  const Coefficients& table = coefficients();
  double mass = 0.0, orientation = 0.0, quadrupole = 0.0, high_temperature = 0.0;
  for (std::size_t i = 0; i < component_count; ++i) {
    if (!(x[i] > 0.0)) continue;
    const Component& component = components[i];
    mass += x[i] * component.M;
    orientation += x[i] * component.G;
    quadrupole += x[i] * component.Q;
    high_temperature += x[i] * x[i] * component.F;
  }
  PairSums sum;
  kernel().sum_pairs(x, sum);
  std::array<double, polar_count> polar{};
  for (std::size_t p = 0; p < std::size(polar_pairs); ++p) {
    const double weight = x[polar_pairs[p].i] * x[polar_pairs[p].j];
    if (weight == 0.0) continue;
    for (std::size_t m = 0; m < polar_count; ++m) polar[m] += weight * table.polar[p][m];
  }
  for (std::size_t p = 0; p < table.orientation_count; ++p) {
    const Coefficients::Orientation& pair = table.orientation[p];
    orientation += x[pair.i] * x[pair.j] * pair.g;
  }
  for (std::size_t m = 0; m < common_count; ++m) beta[common_terms[m] - 1] = sum[m];
  for (std::size_t m = 0; m < polar_count; ++m) beta[polar_terms[m] - 1] = polar[m];
  molar_mass = mass;
  G = orientation;
  Q = quadrupole;
  F = high_temperature;
  // Both powers at once.
  using Two = lanes::Vector<2>::Value;
  const Two roots = lanes::pow(Two{sum[u_place], sum[k_place]}, Two{0.2, 0.6});
  set_energy_and_size(*this, roots[0], roots[1]);
}

void Isotherm::set(const Mixture& mixture, double temperature) noexcept { kernel().set(*this, mixture, temperature); }

double Isotherm::pressure(double rho) const noexcept { return kernel().pressure(*this, rho); }

bool Isotherm::density(double p, double& rho) const noexcept { return kernel().density(*this, p, rho); }

void ResidualIsotherm::set(const Mixture& mixture, double temperature) noexcept {
  kernel().set_residual(*this, mixture, temperature);
}

helmholtz::Residual ResidualIsotherm::at(double rho) const noexcept { return kernel().residual(*this, rho); }

helmholtz::Residual residual(const Mixture& mixture, double T, double rho) noexcept {
  ResidualIsotherm isotherm;
  isotherm.set(mixture, T);
  return isotherm.at(rho);
}

// ---- The calculation with its memory -----------------------------------------------------------------------------

namespace {

// Equal bits: a NaN equals itself, and 0 and -0 differ.
bool same(double a, double b) noexcept { return std::memcmp(&a, &b, sizeof a) == 0; }

}  // namespace

const CDetail::Prepared* CDetail::prepare(const CompositionInput& given, NeoPentaneMode mode,
                                          Outcome& refusal) noexcept {
  if (has_given_ && mode == mode_ && std::memcmp(given.data(), given_.data(), sizeof given_) == 0) return &prepared_;
  has_given_ = false;
  refusal = composition::prepare(given, mode, composition_error, prepared_.x);
  if (!refusal.good()) return nullptr;
  prepared_.range_1994 = composition_range_1994(prepared_.x);
  given_ = given;
  mode_ = mode;
  has_given_ = true;
  return &prepared_;
}

const Mixture& CDetail::mixture(const Composition& x) noexcept {
  if (!has_composition_ || std::memcmp(x.data(), x_.data(), sizeof x_) != 0) {
    x_ = x;
    mixture_.set(x_);
    has_composition_ = true;
    has_isotherm_ = has_state_ = false;
  }
  return mixture_;
}

Result CDetail::calculate(const Composition& x, double T, double p, State& state) noexcept {
  (void)mixture(x);
  if (!has_isotherm_ || !same(T, T_)) {
    isotherm_.set(mixture_, T);
    T_ = T;
    has_isotherm_ = true;
    has_state_ = false;
  }
  if (!has_state_ || !same(p, p_)) {
    p_ = p;
    has_state_ = true;
    result_ = isotherm_.density(p_, rho_) ? converged : failed;
    if (result_ == converged) {
      z_ = p_ / (rho_ * isotherm_.RT);
      if (!std::isfinite(z_) || !std::isfinite(rho_)) result_ = not_finite;
    }
  }
  if (result_ == converged) state = {z_, rho_, mixture_.molar_mass, rho_ * mixture_.molar_mass};
  return result_;
}

// ---- A gas as it is given ----------------------------------------------------------------------------------------

namespace {

constexpr double zero_celsius = 273.15;  // [K]

Outcome density_of(const Gas& gas, const Composition& x, State& state, CDetail& memory) noexcept {
  switch (memory.calculate(x, gas.temperature + zero_celsius, gas.pressure, state)) {
    case converged: return {};
    case not_finite: return failure(calculation_error, u"the density or the compressibility is no finite number");
    default: break;
  }
  if (!(gas.pressure > 0.0)) return blame(gas.pressure, calculation_error, u"must be above %", 0.0);
  return blame(gas.pressure, calculation_error,
               u"has no gas density at this temperature: the pressure falls with density before it reaches it");
}

// Limits of state_of; those of temperature are compared in kelvin, in which the equation works.
constexpr double lowest_t = -150.0, highest_t = 450.0, highest_p = 280.0;
bool within_limits_of_t(double T) noexcept { return T >= lowest_t + zero_celsius && T <= highest_t + zero_celsius; }
bool within_limits_of_p(double p) noexcept { return p >= 0.0 && p <= highest_p; }

}  // namespace

Outcome state_of(const Gas& gas, Answer& answer, CDetail& memory) noexcept {
  Outcome refusal;
  const CDetail::Prepared* prepared = memory.prepare(gas.composition, gas.neo_pentane, refusal);
  if (prepared == nullptr) return refusal;
  const Composition& x = prepared->x;
  const double t = gas.temperature, p = gas.pressure;
  if (!within_limits_of_t(t + zero_celsius))
    return blame(gas.temperature, argument_error, u"must be within % to %", lowest_t, highest_t);
  if (!within_limits_of_p(p)) return blame(gas.pressure, argument_error, u"must be within % to %", 0.0, highest_p);
  answer.range = gas.edition == 1 ? std::max(prepared->range_1994, state_range_1994(t, p)) : range_2017(x, t, p);
  return density_of(gas, x, answer.state, memory);
}

Outcome state_of_unlimited(const Gas& gas, Answer& answer, CDetail& memory) noexcept {
  Outcome refusal;
  const CDetail::Prepared* prepared = memory.prepare(gas.composition, gas.neo_pentane, refusal);
  if (prepared == nullptr) return refusal;
  // The normal limits of temperature and pressure play no part here, only those of the equation as a whole.
  answer.range = std::max(prepared->range_1994, state_limits_1994(gas.temperature, gas.pressure));
  return density_of(gas, prepared->x, answer.state, memory);
}

// ---- Rows --------------------------------------------------------------------------------------------------------

namespace {

constexpr std::size_t most_rows = 64;  // that are prepared at a time

// Rows that go into a kernel together.
struct Group {
  std::size_t count = 0;
  std::size_t row[most_rows];
  const Composition* x[most_rows];
  double T[most_rows], p[most_rows], rho[most_rows], molar_mass[most_rows];

  void add(std::size_t i, const Composition& composition, double temperature, double pressure) noexcept {
    row[count] = i;
    x[count] = &composition;
    T[count] = temperature;
    p[count++] = pressure;
  }
  // Answers the rows whose density was found.
  void deliver(Answer* out, bool* done) const noexcept {
    for (std::size_t k = 0; k < count; ++k) {
      const double z = p[k] / (rho[k] * (R * T[k]));
      if (!std::isfinite(z) || !std::isfinite(rho[k])) continue;
      out[row[k]].state = {z, rho[k], molar_mass[k], rho[k] * molar_mass[k]};
      done[row[k]] = true;
    }
  }
};

// judge(gas, T): whether the row is within the limits; range(gas, x, composition's range of 1994).
template <class Judge, class Range>
void calculate_rows(const Gas* in, Answer* out, bool* done, std::size_t rows, CDetail& memory, const Judge& judge,
                    const Range& range) noexcept {
  std::array<Composition, most_rows> fractions;
  Group alone, run;
  std::size_t gases = 0;
  const auto end_run = [&] {
    if (run.count == 1) {
      alone.add(run.row[0], *run.x[0], run.T[0], run.p[0]);
    } else if (run.count > 1) {
      const Mixture& mixture = memory.mixture(*run.x[0]);
      kernel().densities(mixture, run.T, run.p, run.rho, run.count);
      std::fill_n(run.molar_mass, run.count, mixture.molar_mass);
      run.deliver(out, done);
    }
    run.count = 0;
  };
  const Gas* last = nullptr;
  bool good = false;
  int composition_range = 0;
  for (std::size_t i = 0; i < rows; ++i) {
    const Gas& gas = in[i];
    if (last == nullptr || gas.neo_pentane != last->neo_pentane ||
        std::memcmp(&gas.composition, &last->composition, sizeof gas.composition) != 0) {
      end_run();
      good = composition::prepare(gas.composition, gas.neo_pentane, composition_error, fractions[gases]).good();
      if (good) composition_range = composition_range_1994(fractions[gases++]);
      last = &gas;
    }
    done[i] = false;
    const double T = gas.temperature + zero_celsius;
    if (!good || !judge(gas, T)) continue;
    out[i].range = range(gas, fractions[gases - 1], composition_range);
    run.add(i, fractions[gases - 1], T, gas.pressure);
  }
  end_run();
  kernel().gases(alone.x, alone.T, alone.p, alone.rho, alone.molar_mass, alone.count);
  alone.deliver(out, done);
}

template <class Judge, class Range>
void in_parts(const Gas* in, Answer* out, bool* done, std::size_t rows, CDetail& memory, const Judge& judge,
              const Range& range) noexcept {
  for (std::size_t first = 0; first < rows; first += most_rows)
    calculate_rows(in + first, out + first, done + first, std::min(most_rows, rows - first), memory, judge, range);
}

}  // namespace

void state_of_rows(const Gas* in, Answer* out, bool* done, std::size_t rows, CDetail& memory) noexcept {
  in_parts(
      in, out, done, rows, memory,
      [](const Gas& gas, double T) { return within_limits_of_t(T) && within_limits_of_p(gas.pressure); },
      [](const Gas& gas, const Composition& x, int composition_range) {
        const double t = gas.temperature, p = gas.pressure;
        return gas.edition == 1 ? std::max(composition_range, state_range_1994(t, p)) : range_2017(x, t, p);
      });
}

void state_of_unlimited_rows(const Gas* in, Answer* out, bool* done, std::size_t rows, CDetail& memory) noexcept {
  in_parts(
      in, out, done, rows, memory, [](const Gas&, double) { return true; },
      [](const Gas& gas, const Composition&, int composition_range) {
        return std::max(composition_range, state_limits_1994(gas.temperature, gas.pressure));
      });
}

}  // namespace norvane::AGA8
