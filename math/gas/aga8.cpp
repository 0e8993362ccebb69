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
#include "math/common/root.h"

namespace norvane::AGA8 {
namespace {

// ---- Powers of a temperature or an energy ------------------------------------------------------------------------

constexpr double exponents[] = {-13, -6, -1, -0.5, 0, 0.5, 1,   1.5, 2,  3,    3.5, 4,  4.5,
                                5,   6,  7,  7.5,  8, 9,   9.5, 11,  12, 12.5, 21,  22, 23};
constexpr std::size_t exponent_count = std::size(exponents);
using Powers = std::array<double, exponent_count>;

constexpr std::size_t position_of(double u) {
  std::size_t i = 0;
  while (exponents[i] != u) ++i;  // a u that is not listed does not compile
  return i;
}

// x^u for every exponent.
inline Powers powers(double x, double inverse) noexcept {
  const double i2 = inverse * inverse, i3 = i2 * inverse, i6 = i3 * i3, i12 = i6 * i6;
  const double root = std::sqrt(x);
  const double x2 = x * x, x3 = x2 * x, x4 = x2 * x2, x5 = x4 * x, x6 = x3 * x3, x7 = x4 * x3, x8 = x4 * x4;
  const double x9 = x5 * x4, x11 = x6 * x5, x12 = x6 * x6;
  return {i12 * inverse,
          i6,
          inverse,
          inverse * root,
          1.0,
          root,
          x,
          x * root,
          x2,
          x3,
          x3 * root,
          x4,
          x4 * root,
          x5,
          x6,
          x7,
          x7 * root,
          x8,
          x9,
          x9 * root,
          x11,
          x12,
          x12 * root,
          x12 * x9,
          x11 * x11,
          x12 * x11};
}

constexpr std::size_t first_density_term = 12;  // term 13: terms below act in B only
constexpr std::size_t density_term_count = term_count - first_density_term;
constexpr std::size_t virial_term_count = 18;

constexpr std::array<std::size_t, term_count> make_positions() {
  std::array<std::size_t, term_count> positions{};
  for (std::size_t n = 0; n < term_count; ++n) positions[n] = position_of(terms[n].u);
  return positions;
}
constexpr auto position = make_positions();

// ---- The 24 pairs (k, b) -----------------------------------------------------------------------------------------

struct Exponents {
  int k, b;
};
constexpr Exponents slots[] = {{0, 2}, {0, 3}, {0, 4}, {0, 5}, {0, 6}, {0, 7},                          // 0..5
                               {1, 3}, {1, 8},                                                          // 6, 7
                               {2, 1}, {2, 2}, {2, 3}, {2, 4}, {2, 5}, {2, 6}, {2, 7}, {2, 8}, {2, 9},  // 8..16
                               {3, 1}, {3, 3},                                                          // 17, 18
                               {4, 1}, {4, 2}, {4, 3}, {4, 4}, {4, 5}};                                 // 19..23
constexpr std::size_t slot_count = std::size(slots);

constexpr std::array<std::size_t, density_term_count> make_slots() {
  std::array<std::size_t, density_term_count> slot{};
  for (std::size_t n = 0; n < density_term_count; ++n) {
    const Term& term = terms[first_density_term + n];
    while (slots[slot[n]].k != term.k || slots[slot[n]].b != term.b) ++slot[n];
  }
  return slot;
}
constexpr auto slot_of = make_slots();

// Sums that fold the terms 13..58 into their slots, unrolled: f(term, slot, position of the exponent).
template <class Function, std::size_t... n>
inline void for_each_density_term(const Function& function, std::index_sequence<n...>) noexcept {
  (function(std::integral_constant<std::size_t, n>{}, std::integral_constant<std::size_t, slot_of[n]>{},
            std::integral_constant<std::size_t, position[first_density_term + n]>{}),
   ...);
}

// ---- Pair coefficients, tabulated once ---------------------------------------------------------------------------

// Terms of B that all pairs have, and terms that only pairs of polar components or of hydrogen have.
constexpr std::size_t common_terms[] = {1, 2, 3, 4, 5, 6, 14, 15, 17, 18};
constexpr std::size_t polar_terms[] = {7, 8, 9, 10, 11, 12, 13, 16};
constexpr std::size_t common_count = std::size(common_terms);
constexpr std::size_t polar_count = std::size(polar_terms);
constexpr std::size_t u_place = common_count, k_place = common_count + 1, block_size = common_count + 2;
constexpr std::size_t pair_count = component_count * (component_count + 1) / 2;

// Pairs i <= j of which at least one polar term is not zero.
struct PolarPair {
  std::size_t i, j;
};
constexpr PolarPair polar_pairs[] = {{carbon_dioxide, carbon_dioxide},
                                     {carbon_dioxide, water},
                                     {carbon_dioxide, hydrogen_sulfide},
                                     {water, water},
                                     {water, hydrogen_sulfide},
                                     {hydrogen_sulfide, hydrogen_sulfide},
                                     {hydrogen, hydrogen}};

double power5(double x) noexcept {
  const double x2 = x * x;
  return x2 * x2 * x;
}
double power_5_2(double x) noexcept { return x * x * std::sqrt(x); }
constexpr double with_flag(int flag, double value) { return flag != 0 ? value : 1.0; }

// Coefficients of x_i x_j, doubled for i < j since a pair stands for both orders.
struct Coefficients {
  // Pairs (0,0), (0,1) ... (0,20), (1,1) ...: ten terms of B, then U^5, then K^5.
  alignas(64) double block[pair_count][block_size];
  double polar[std::size(polar_pairs)][polar_count];
  struct Orientation {
    std::size_t i, j;
    double g;
  };
  std::array<Orientation, std::size(pairs)> orientation;  // (G*_ij - 1)(G_i + G_j) of the pairs with G*_ij not 1
  std::size_t orientation_count = 0;

  static constexpr std::size_t row(std::size_t i) { return i * component_count - i * (i + 1) / 2; }  // + j

  Coefficients() noexcept {
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

  static Pair interaction(std::size_t i, std::size_t j) noexcept {
    for (const Pair& pair : pairs)
      if (pair.i == i && pair.j == j) return pair;
    return {i, j, 1.0, 1.0, 1.0, 1.0};
  }

  // a_n Bn*_ij E_ij^u_n (K_i K_j)^1.5
  static double virial(const Pair& pair, const Term& term) noexcept {
    const Component& i = components[pair.i];
    const Component& j = components[pair.j];
    const double E = pair.E * std::sqrt(i.E * j.E);
    const double G = pair.G * (i.G + j.G) / 2.0;
    const double KK = i.K * j.K;
    const double structure = with_flag(term.g, G) * with_flag(term.q, i.Q * j.Q) *
                             with_flag(term.f, std::sqrt(i.F * j.F)) * with_flag(term.s, i.S * j.S) *
                             with_flag(term.w, i.W * j.W);
    return term.a * structure * powers(E, 1.0 / E)[position_of(term.u)] * KK * std::sqrt(KK);
  }
};

const Coefficients& coefficients() noexcept {
  static const Coefficients table;
  return table;
}

}  // namespace

double molar_mass(const Composition& x) noexcept {
  double sum = 0.0;
  for (std::size_t i = 0; i < component_count; ++i) sum += x[i] * components[i].M;
  return sum;
}

void Mixture::set(const Composition& x) noexcept {
  const Coefficients& table = coefficients();
  std::array<std::size_t, component_count> present;
  std::size_t count = 0;
  G = Q = F = molar_mass = 0.0;
  for (std::size_t i = 0; i < component_count; ++i) {
    if (!(x[i] > 0.0)) continue;
    present[count++] = i;
    const Component& component = components[i];
    molar_mass += x[i] * component.M;
    G += x[i] * component.G;
    Q += x[i] * component.Q;
    F += x[i] * x[i] * component.F;
  }

  std::array<double, block_size> sum{};
  for (std::size_t a = 0; a < count; ++a) {
    const double(*row)[block_size] = table.block + Coefficients::row(present[a]);
    for (std::size_t b = a; b < count; ++b) {
      const double weight = x[present[a]] * x[present[b]];
      const double* entry = row[present[b]];
      for (std::size_t m = 0; m < block_size; ++m) sum[m] += weight * entry[m];
    }
  }
  std::array<double, polar_count> polar{};
  for (std::size_t p = 0; p < std::size(polar_pairs); ++p) {
    const double weight = x[polar_pairs[p].i] * x[polar_pairs[p].j];
    if (weight == 0.0) continue;
    for (std::size_t m = 0; m < polar_count; ++m) polar[m] += weight * table.polar[p][m];
  }
  for (std::size_t p = 0; p < table.orientation_count; ++p) {
    const Coefficients::Orientation& pair = table.orientation[p];
    G += x[pair.i] * x[pair.j] * pair.g;
  }

  for (std::size_t m = 0; m < common_count; ++m) beta[common_terms[m] - 1] = sum[m];
  for (std::size_t m = 0; m < polar_count; ++m) beta[polar_terms[m] - 1] = polar[m];
  U = elementary::pow(sum[u_place], 0.2);
  K3 = elementary::pow(sum[k_place], 0.6);

  const Powers u = powers(U, 1.0 / U);
  const double Q2 = Q * Q;
  for_each_density_term(
      [&](auto n, auto, auto power) {
        constexpr const Term& term = terms[first_density_term + n];
        gamma[n] = term.a * with_flag(term.g, G) * with_flag(term.q, Q2) * with_flag(term.f, F) * u[power];
      },
      std::make_index_sequence<density_term_count>{});
}

void Isotherm::set(const Mixture& mixture, double temperature) noexcept {
  T = temperature;
  RT = R * T;
  K3 = mixture.K3;
  // Above the critical temperature the equation stays well-behaved to much greater densities.
  constexpr double critical = 1.2593;  // critical temperature over energy parameter, as methane has it
  max_density = 1.0 / K3;
  if (T > critical * mixture.U) max_density *= 20.0;

  const Powers t = powers(1.0 / T, T);
  B = 0.0;
  for (std::size_t n = 0; n < virial_term_count; ++n) B += mixture.beta[n] * t[position[n]];
  linear = 0.0;
  for (std::size_t n = 0; n < virial_term_count - first_density_term; ++n)
    linear += mixture.gamma[n] * t[position[first_density_term + n]];
  std::array<double, slot_count> sum{};
  for_each_density_term([&](auto n, auto slot, auto power) { sum[slot] += mixture.gamma[n] * t[power]; },
                        std::make_index_sequence<density_term_count>{});
  C = sum;
  for (std::size_t s = 0; s < slot_count; ++s) bC[s] = slots[s].b * sum[s];
}

namespace {

// Polynomials of the five groups of equal k in the reduced density, powers of r2 = r^2 kept
// apart so that the two halves run side by side.
inline double group0(const double* c, double r, double r2) noexcept {  // b = 2..7
  return r2 * ((c[0] + r2 * (c[2] + r2 * c[4])) + r * (c[1] + r2 * (c[3] + r2 * c[5])));
}
inline double group1(const double* c, double r3, double r5) noexcept {  // b = 3, 8
  return r3 * (c[0] + r5 * c[1]);
}
inline double group2(const double* c, double r, double r2) noexcept {  // b = 1..9
  return r * ((c[0] + r2 * (c[2] + r2 * (c[4] + r2 * (c[6] + r2 * c[8])))) +
              r * (c[1] + r2 * (c[3] + r2 * (c[5] + r2 * c[7]))));
}
inline double group3(const double* c, double r, double r2) noexcept {  // b = 1, 3
  return r * (c[0] + r2 * c[1]);
}
inline double group4(const double* c, double r, double r2) noexcept {  // b = 1..5
  return r * ((c[0] + r2 * (c[2] + r2 * c[4])) + r * (c[1] + r2 * c[3]));
}

// Sums over the slots of one k of c_s r^b_s.
struct Groups {
  double k0, k1, k2, k3, k4;
};
inline Groups groups(const std::array<double, slot_count>& c, double r) noexcept {
  const double r2 = r * r, r3 = r2 * r;
  return {group0(&c[0], r, r2), group1(&c[6], r3, r2 * r3), group2(&c[8], r, r2), group3(&c[17], r, r2),
          group4(&c[19], r, r2)};
}

}  // namespace

double Isotherm::pressure(double rho) const noexcept {
  const double r = K3 * rho;
  const double r2 = r * r, r3 = r2 * r, r4 = r2 * r2;
  const auto e = elementary::exp4({-r, -r2, -r3, -r4});
  const Groups v = groups(C, r);
  const Groups bv = groups(bC, r);
  const double sum = bv.k0 + (e[0] * (bv.k1 - r * v.k1) + e[1] * (bv.k2 - 2.0 * r2 * v.k2)) +
                     (e[2] * (bv.k3 - 3.0 * r3 * v.k3) + e[3] * (bv.k4 - 4.0 * r4 * v.k4));
  return rho * RT * (1.0 + (rho * B - r * linear) + sum);
}

bool Isotherm::density(double p, double& rho) const noexcept {
  if (!(p > 0.0)) return false;  // no gas without pressure; the ideal volume would be infinite
  // The report's start. Where the second virial coefficient is a small correction of the ideal volume, a little below
  // the density that both make, so that the march meets the root from below; else a little above the ideal density.
  constexpr double small_virial = 0.167, below = 0.95, above = 1.15;
  constexpr double first_step = 20.0;  // a clipped step is at least a twentieth of the ideal density
  constexpr double tolerance = 1e-11;  // of the pressure
  const double ideal = p / RT;
  const double v = RT / p;
  const double start = small_virial * v > std::fabs(B) ? below / (v + B) : above / v;
  root::Point low{}, high{};
  return root::bracket([this](double x) { return pressure(x); }, p, {start, max_density, ideal / first_step}, low,
                       high) &&
         root::brent([this, p](double x) { return pressure(x) - p; }, low, high, {.f = tolerance * p}, rho);
}

void ResidualIsotherm::set(const Mixture& mixture, double temperature) noexcept {
  T = temperature;
  K3 = mixture.K3;
  const Powers t = powers(1.0 / T, T);
  // Sums in registers of their own.
  Sums<double> virial, first;
  for (std::size_t n = 0; n < virial_term_count; ++n) {
    const double u = terms[n].u;
    const double value = mixture.beta[n] * t[position[n]];
    virial.value += value;
    virial.u += u * value;
    virial.uu += u * (u + 1.0) * value;
  }
  Sums<std::array<double, slot_count>> sum;
  for_each_density_term(
      [&](auto n, auto slot, auto power) {
        constexpr double u = terms[first_density_term + n].u;
        const double value = mixture.gamma[n] * t[power];
        sum.value[slot] += value;
        sum.u[slot] += u * value;
        sum.uu[slot] += u * (u + 1.0) * value;
        if constexpr (first_density_term + n < virial_term_count) {
          first.value += value;
          first.u += u * value;
          first.uu += u * (u + 1.0) * value;
        }
      },
      std::make_index_sequence<density_term_count>{});
  B = virial;
  linear = first;
  C = sum;
  for (std::size_t s = 0; s < slot_count; ++s) {
    bC[s] = slots[s].b * sum.value[s];
    bbC[s] = slots[s].b * bC[s];
    buC[s] = slots[s].b * sum.u[s];
  }
}

helmholtz::Residual ResidualIsotherm::at(double rho) const noexcept {
  const double r = K3 * rho;
  const double r2 = r * r, r3 = r2 * r, r4 = r2 * r2;
  const auto e = elementary::exp4({-r, -r2, -r3, -r4});
  helmholtz::Residual sum{};
  // A group of equal k: v = C r^b exp(-q/k) with q = k r^k. rho v_rho = v (b - q), and
  // rho^2 v_rhorho = v ((b - q)^2 - (b - q) - k q).
  const auto add = [&sum](double k, double q, double exponential, double v, double bv, double bbv, double uv,
                          double buv, double uuv) {
    sum.ar += exponential * v;
    sum.d += exponential * (bv - q * v);
    sum.dd += exponential * (bbv - (2.0 * q + 1.0) * bv + (q * q + q - k * q) * v);
    sum.t += exponential * uv;
    sum.tt += exponential * uuv;
    sum.dt += exponential * (buv - q * uv);
  };
  const Groups v = groups(C.value, r), bv = groups(bC, r), bbv = groups(bbC, r);
  const Groups uv = groups(C.u, r), buv = groups(buC, r), uuv = groups(C.uu, r);
  add(0.0, 0.0, 1.0, v.k0, bv.k0, bbv.k0, uv.k0, buv.k0, uuv.k0);
  add(1.0, r, e[0], v.k1, bv.k1, bbv.k1, uv.k1, buv.k1, uuv.k1);
  add(2.0, 2.0 * r2, e[1], v.k2, bv.k2, bbv.k2, uv.k2, buv.k2, uuv.k2);
  add(3.0, 3.0 * r3, e[2], v.k3, bv.k3, bbv.k3, uv.k3, buv.k3, uuv.k3);
  add(4.0, 4.0 * r4, e[3], v.k4, bv.k4, bbv.k4, uv.k4, buv.k4, uuv.k4);

  // The terms linear in density.
  const double first = rho * B.value - r * linear.value;
  const double u_first = rho * B.u - r * linear.u;
  sum.ar += first;
  sum.d += first;
  sum.t += u_first;
  sum.tt += rho * B.uu - r * linear.uu;
  sum.dt += u_first;
  sum.tt -= 2.0 * sum.t;  // T^2 d2/dT2 = tau^2 d2/dtau2 + 2 tau d/dtau
  return sum;
}

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

Result CDetail::calculate(const Composition& x, double T, double p, State& state) noexcept {
  if (!has_composition_ || std::memcmp(x.data(), x_.data(), sizeof x_) != 0) {
    x_ = x;
    mixture_.set(x_);
    has_composition_ = true;
    has_isotherm_ = has_state_ = false;
  }
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

}  // namespace

Outcome state_of(const Gas& gas, Answer& answer, CDetail& memory) noexcept {
  Composition x;
  const Outcome prepared = composition::prepare(gas.composition, gas.neo_pentane, composition_error, x);
  if (!prepared.good()) return prepared;
  const double t = gas.temperature, p = gas.pressure;
  constexpr double lowest_t = -150.0, highest_t = 450.0, highest_p = 280.0;
  // Compared in kelvin, in which the equation works.
  const double T = t + zero_celsius;
  if (!(T >= lowest_t + zero_celsius && T <= highest_t + zero_celsius))
    return blame(gas.temperature, argument_error, u"must be within % to %", lowest_t, highest_t);
  if (!(p >= 0.0 && p <= highest_p))
    return blame(gas.pressure, argument_error, u"must be within % to %", 0.0, highest_p);
  answer.range = gas.edition == 1 ? std::max(composition_range_1994(x), state_range_1994(t, p)) : range_2017(x, t, p);
  return density_of(gas, x, answer.state, memory);
}

Outcome state_of_unlimited(const Gas& gas, Answer& answer, CDetail& memory) noexcept {
  Composition x;
  const Outcome prepared = composition::prepare(gas.composition, gas.neo_pentane, composition_error, x);
  if (!prepared.good()) return prepared;
  // The normal limits of temperature and pressure play no part here, only those of the equation as a whole.
  answer.range = std::max(composition_range_1994(x), state_limits_1994(gas.temperature, gas.pressure));
  return density_of(gas, x, answer.state, memory);
}

}  // namespace norvane::AGA8
