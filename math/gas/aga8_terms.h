// AGA-8: the terms put in order at compile time, and the steps of the calculation for one state or for several side by
// side. For the files of the equation.
//
// Real is a double or a vector of doubles (core/lanes.h). Both run through the same lines, so that each lane has the bits
// of the lone state.
#pragma once

#include <array>
#include <cstddef>
#include <utility>

#include "core/elementary_lanes.h"
#include "core/lanes.h"
#include "math/gas/aga8.h"

namespace norvane::AGA8 {

// ---- Powers of a temperature or an energy ------------------------------------------------------------------------

inline constexpr double exponents[] = {-13, -6, -1, -0.5, 0, 0.5, 1,   1.5, 2,  3,    3.5, 4,  4.5,
                                       5,   6,  7,  7.5,  8, 9,   9.5, 11,  12, 12.5, 21,  22, 23};
inline constexpr std::size_t exponent_count = std::size(exponents);
template <class Real>
struct Powers {
  Real u[exponent_count];
};

constexpr std::size_t position_of(double u) {
  std::size_t i = 0;
  while (exponents[i] != u) ++i;  // a u that is not listed does not compile
  return i;
}

// x^u for every exponent.
template <class Real>
[[gnu::always_inline]] inline Powers<Real> powers(Real x, Real inverse) noexcept {
  const Real i2 = inverse * inverse, i3 = i2 * inverse, i6 = i3 * i3, i12 = i6 * i6;
  const Real root = lanes::sqrt(x);
  const Real x2 = x * x, x3 = x2 * x, x4 = x2 * x2, x5 = x4 * x, x6 = x3 * x3, x7 = x4 * x3, x8 = x4 * x4;
  const Real x9 = x5 * x4, x11 = x6 * x5, x12 = x6 * x6;
  return {{i12 * inverse,
           i6,
           inverse,
           inverse * root,
           Real{} + 1.0,
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
           x12 * x11}};
}

inline constexpr std::size_t first_density_term = 12;  // term 13: terms below act in B only
inline constexpr std::size_t density_term_count = term_count - first_density_term;
inline constexpr std::size_t virial_term_count = 18;

constexpr std::array<std::size_t, term_count> make_positions() {
  std::array<std::size_t, term_count> positions{};
  for (std::size_t n = 0; n < term_count; ++n) positions[n] = position_of(terms[n].u);
  return positions;
}
inline constexpr auto position = make_positions();

// ---- The 24 pairs (k, b) -----------------------------------------------------------------------------------------

struct Exponents {
  int k, b;
};
inline constexpr Exponents slots[] = {{0, 2}, {0, 3}, {0, 4}, {0, 5}, {0, 6}, {0, 7},  // 0..5
                                      {1, 3}, {1, 8},                                  // 6, 7
                                      {2, 1}, {2, 2}, {2, 3}, {2, 4}, {2, 5}, {2, 6},
                                      {2, 7}, {2, 8}, {2, 9},                   // 8..16
                                      {3, 1}, {3, 3},                           // 17, 18
                                      {4, 1}, {4, 2}, {4, 3}, {4, 4}, {4, 5}};  // 19..23
inline constexpr std::size_t slot_count = std::size(slots);

constexpr std::array<std::size_t, density_term_count> make_slots() {
  std::array<std::size_t, density_term_count> slot{};
  for (std::size_t n = 0; n < density_term_count; ++n) {
    const Term& term = terms[first_density_term + n];
    while (slots[slot[n]].k != term.k || slots[slot[n]].b != term.b) ++slot[n];
  }
  return slot;
}
inline constexpr auto slot_of = make_slots();

// Sums that fold the terms 13..58 into their slots, unrolled: f(term, slot, position of the exponent).
template <class Function, std::size_t... n>
inline void for_each_density_term(const Function& function, std::index_sequence<n...>) noexcept {
  (function(std::integral_constant<std::size_t, n>{}, std::integral_constant<std::size_t, slot_of[n]>{},
            std::integral_constant<std::size_t, position[first_density_term + n]>{}),
   ...);
}

// ---- Pair coefficients, tabulated once ---------------------------------------------------------------------------

// Terms of B that all pairs have, and terms that only pairs of polar components or of hydrogen have.
inline constexpr std::size_t common_terms[] = {1, 2, 3, 4, 5, 6, 14, 15, 17, 18};
inline constexpr std::size_t polar_terms[] = {7, 8, 9, 10, 11, 12, 13, 16};
inline constexpr std::size_t common_count = std::size(common_terms);
inline constexpr std::size_t polar_count = std::size(polar_terms);
inline constexpr std::size_t u_place = common_count, k_place = common_count + 1, block_size = common_count + 2;
inline constexpr std::size_t pair_count = component_count * (component_count + 1) / 2;

// Pairs i <= j of which at least one polar term is not zero.
struct PolarPair {
  std::size_t i, j;
};
inline constexpr PolarPair polar_pairs[] = {{carbon_dioxide, carbon_dioxide},
                                            {carbon_dioxide, water},
                                            {carbon_dioxide, hydrogen_sulfide},
                                            {water, water},
                                            {water, hydrogen_sulfide},
                                            {hydrogen_sulfide, hydrogen_sulfide},
                                            {hydrogen, hydrogen}};

constexpr double with_flag(int flag, double value) { return flag != 0 ? value : 1.0; }
template <class Real>
[[gnu::always_inline]] inline Real with_flag(int flag, Real value) noexcept {
  return flag != 0 ? value : Real{} + 1.0;
}

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

  Coefficients() noexcept;
};
// Made once.
const Coefficients& coefficients() noexcept;

// ---- Mixture -----------------------------------------------------------------------------------------------------

// The sums over the pairs of one composition, in registers: Row is a part of a row of the table.
template <class Row>
[[gnu::always_inline]] inline void sum_pairs(const double* x, double* result) noexcept {
  constexpr std::size_t width = lanes::count_of<Row>, parts = block_size / width;
  static_assert(parts * width == block_size);
  const Coefficients& table = coefficients();
  std::size_t present[component_count], count = 0;
  for (std::size_t i = 0; i < component_count; ++i)
    if (x[i] > 0.0) present[count++] = i;
  Row sum[parts] = {};
  for (std::size_t a = 0; a < count; ++a) {
    const double(*row)[block_size] = table.block + Coefficients::row(present[a]);
    const double x_a = x[present[a]];
    for (std::size_t b = a; b < count; ++b) {
      const double weight = x_a * x[present[b]];
      const double* entry = row[present[b]];
      for (std::size_t m = 0; m < parts; ++m) sum[m] += weight * lanes::load<Row>(entry + width * m);
    }
  }
  for (std::size_t m = 0; m < parts; ++m) lanes::store(result + width * m, sum[m]);
}

// What the sums over the pairs make of U^5 and K^5.
template <class M, class Real>
[[gnu::always_inline]] inline void set_energy_and_size(M& mixture, Real U, Real K3) noexcept {
  mixture.U = U;
  mixture.K3 = K3;
  const Powers<Real> u = powers(U, 1.0 / U);
  const Real Q2 = mixture.Q * mixture.Q;
  for_each_density_term(
      [&](auto n, auto, auto power) {
        constexpr const Term& term = terms[first_density_term + n];
        mixture.gamma[n] =
            term.a * with_flag(term.g, mixture.G) * with_flag(term.q, Q2) * with_flag(term.f, mixture.F) * u.u[power];
      },
      std::make_index_sequence<density_term_count>{});
}

// ---- Isotherm ----------------------------------------------------------------------------------------------------

// Fills an isotherm's members from a mixture's; the mixture may be one for all lanes.
template <class I, class M, class Real>
[[gnu::always_inline]] inline void set_limits(I& isotherm, const M& mixture, Real T) noexcept {
  isotherm.T = T;
  isotherm.RT = R * T;
  isotherm.K3 = Real{} + mixture.K3;
  // Above the critical temperature the equation stays well-behaved to much greater densities.
  constexpr double critical = 1.2593;  // critical temperature over energy parameter, as methane has it
  const Real max_density = 1.0 / isotherm.K3;
  isotherm.max_density = lanes::select(T > critical * mixture.U, max_density * 20.0, max_density);
}

template <class I, class M, class Real>
[[gnu::always_inline]] inline void set_isotherm(I& isotherm, const M& mixture, Real T) noexcept {
  set_limits(isotherm, mixture, T);
  const Powers<Real> t = powers<Real>(1.0 / T, T);
  Real B{};
  for (std::size_t n = 0; n < virial_term_count; ++n) B += mixture.beta[n] * t.u[position[n]];
  Real linear{};
  for (std::size_t n = 0; n < virial_term_count - first_density_term; ++n)
    linear += mixture.gamma[n] * t.u[position[first_density_term + n]];
  std::array<Real, slot_count> sum{};
  for_each_density_term([&](auto n, auto slot, auto power) { sum[slot] += mixture.gamma[n] * t.u[power]; },
                        std::make_index_sequence<density_term_count>{});
  isotherm.B = B;
  isotherm.linear = linear;
  isotherm.C = sum;
  for (std::size_t s = 0; s < slot_count; ++s) isotherm.bC[s] = static_cast<double>(slots[s].b) * sum[s];
}

template <class I, class M, class Real>
[[gnu::always_inline]] inline void set_residual_isotherm(I& isotherm, const M& mixture, Real T) noexcept {
  const Powers<Real> t = powers<Real>(1.0 / T, T);
  Real B{}, uB{}, uuB{};
  for (std::size_t n = 0; n < virial_term_count; ++n) {
    const double u = terms[n].u;
    const Real value = mixture.beta[n] * t.u[position[n]];
    B += value;
    uB += u * value;
    uuB += u * (u + 1.0) * value;
  }
  std::array<Real, slot_count> sum{}, u_sum{}, uu_sum{};
  Real linear{}, u_linear{}, uu_linear{};
  for_each_density_term(
      [&](auto n, auto slot, auto power) {
        constexpr double u = terms[first_density_term + n].u;
        const Real value = mixture.gamma[n] * t.u[power];
        sum[slot] += value;
        u_sum[slot] += u * value;
        uu_sum[slot] += u * (u + 1.0) * value;
        if constexpr (first_density_term + n < virial_term_count) {
          linear += value;
          u_linear += u * value;
          uu_linear += u * (u + 1.0) * value;
        }
      },
      std::make_index_sequence<density_term_count>{});
  set_limits(isotherm, mixture, T);
  isotherm.B = B;
  isotherm.linear = linear;
  isotherm.C = sum;
  isotherm.u.B = uB;
  isotherm.u.linear = u_linear;
  isotherm.u.C = u_sum;
  isotherm.uu.B = uuB;
  isotherm.uu.linear = uu_linear;
  isotherm.uu.C = uu_sum;
  for (std::size_t s = 0; s < slot_count; ++s) {
    const double b = slots[s].b;
    const Real bC = b * sum[s];
    isotherm.bC[s] = bC;
    isotherm.bbC[s] = b * bC;
    isotherm.buC[s] = b * u_sum[s];
  }
}

// Polynomials of the five groups of equal k in the reduced density, powers of r2 = r^2 kept
// apart so that the two halves run side by side.
template <class Real>
[[gnu::always_inline]] inline Real group0(const Real* c, Real r, Real r2) noexcept {  // b = 2..7
  return r2 * ((c[0] + r2 * (c[2] + r2 * c[4])) + r * (c[1] + r2 * (c[3] + r2 * c[5])));
}
template <class Real>
[[gnu::always_inline]] inline Real group1(const Real* c, Real r3, Real r5) noexcept {  // b = 3, 8
  return r3 * (c[0] + r5 * c[1]);
}
template <class Real>
[[gnu::always_inline]] inline Real group2(const Real* c, Real r, Real r2) noexcept {  // b = 1..9
  return r * ((c[0] + r2 * (c[2] + r2 * (c[4] + r2 * (c[6] + r2 * c[8])))) +
              r * (c[1] + r2 * (c[3] + r2 * (c[5] + r2 * c[7]))));
}
template <class Real>
[[gnu::always_inline]] inline Real group3(const Real* c, Real r, Real r2) noexcept {  // b = 1, 3
  return r * (c[0] + r2 * c[1]);
}
template <class Real>
[[gnu::always_inline]] inline Real group4(const Real* c, Real r, Real r2) noexcept {  // b = 1..5
  return r * ((c[0] + r2 * (c[2] + r2 * c[4])) + r * (c[1] + r2 * c[3]));
}

// Sums over the slots of one k of c_s r^b_s.
template <class Real>
struct Groups {
  Real k0, k1, k2, k3, k4;
};
template <class Real>
[[gnu::always_inline]] inline Groups<Real> groups(const std::array<Real, slot_count>& c, Real r) noexcept {
  const Real r2 = r * r, r3 = r2 * r;
  const Real* first = c.data();
  return {group0(first, r, r2), group1(first + 6, r3, r2 * r3), group2(first + 8, r, r2), group3(first + 17, r, r2),
          group4(first + 19, r, r2)};
}

template <class I, class Real>
[[gnu::always_inline]] inline Real pressure_of(const I& isotherm, Real rho) noexcept {
  const Real r = isotherm.K3 * rho;
  const Real r2 = r * r, r3 = r2 * r, r4 = r2 * r2;
  const lanes::Four<Real> e = lanes::exp4(lanes::Four<Real>{{-r, -r2, -r3, -r4}});
  const Groups<Real> v = groups(isotherm.C, r);
  const Groups<Real> bv = groups(isotherm.bC, r);
  const Real sum = bv.k0 + (e.v[0] * (bv.k1 - r * v.k1) + e.v[1] * (bv.k2 - 2.0 * r2 * v.k2)) +
                   (e.v[2] * (bv.k3 - 3.0 * r3 * v.k3) + e.v[3] * (bv.k4 - 4.0 * r4 * v.k4));
  return rho * isotherm.RT * (1.0 + (rho * isotherm.B - r * isotherm.linear) + sum);
}

// As helmholtz::Residual.
template <class Real>
struct ResidualOf {
  Real ar, d, dd, t, tt, dt;

  // A group of equal k: v = C r^b exp(-q/k) with q = k r^k. rho v_rho = v (b - q), and
  // rho^2 v_rhorho = v ((b - q)^2 - (b - q) - k q).
  [[gnu::always_inline]] inline void add(double k, Real q, Real exponential, Real v, Real bv, Real bbv, Real uv,
                                         Real buv, Real uuv) noexcept {
    ar += exponential * v;
    d += exponential * (bv - q * v);
    dd += exponential * (bbv - (2.0 * q + 1.0) * bv + (q * q + q - k * q) * v);
    t += exponential * uv;
    tt += exponential * uuv;
    dt += exponential * (buv - q * uv);
  }
};

template <class I, class Real>
[[gnu::always_inline]] inline ResidualOf<Real> residual_of(const I& isotherm, Real rho) noexcept {
  const Real r = isotherm.K3 * rho;
  const Real r2 = r * r, r3 = r2 * r, r4 = r2 * r2;
  const lanes::Four<Real> e = lanes::exp4(lanes::Four<Real>{{-r, -r2, -r3, -r4}});
  const Groups<Real> v = groups(isotherm.C, r), bv = groups(isotherm.bC, r), bbv = groups(isotherm.bbC, r);
  const Groups<Real> uv = groups(isotherm.u.C, r), buv = groups(isotherm.buC, r), uuv = groups(isotherm.uu.C, r);
  ResidualOf<Real> sum{};
  sum.add(0.0, Real{}, Real{} + 1.0, v.k0, bv.k0, bbv.k0, uv.k0, buv.k0, uuv.k0);
  sum.add(1.0, r, e.v[0], v.k1, bv.k1, bbv.k1, uv.k1, buv.k1, uuv.k1);
  sum.add(2.0, 2.0 * r2, e.v[1], v.k2, bv.k2, bbv.k2, uv.k2, buv.k2, uuv.k2);
  sum.add(3.0, 3.0 * r3, e.v[2], v.k3, bv.k3, bbv.k3, uv.k3, buv.k3, uuv.k3);
  sum.add(4.0, 4.0 * r4, e.v[3], v.k4, bv.k4, bbv.k4, uv.k4, buv.k4, uuv.k4);

  // The terms linear in density.
  const Real first = rho * isotherm.B - r * isotherm.linear;
  const Real u_first = rho * isotherm.u.B - r * isotherm.u.linear;
  sum.ar += first;
  sum.d += first;
  sum.t += u_first;
  sum.tt += rho * isotherm.uu.B - r * isotherm.uu.linear;
  sum.dt += u_first;
  sum.tt -= 2.0 * sum.t;  // T^2 d2/dT2 = tau^2 d2/dtau2 + 2 tau d/dtau
  return sum;
}

// The report's start of the search. Where the second virial coefficient is a small correction of the ideal volume, a
// little below the density that both make, so that the march meets the root from below; else a little above the ideal
// density.
template <class I, class Real>
[[gnu::always_inline]] inline Real start_of_search(const I& isotherm, Real p) noexcept {
  constexpr double small_virial = 0.167, below = 0.95, above = 1.15;
  const Real v = isotherm.RT / p;
  const Real size = lanes::magnitude(isotherm.B);
  return lanes::select(small_virial * v > size, below / (v + isotherm.B), above / v);
}
inline constexpr double first_step = 20.0;  // a clipped step is at least a twentieth of the ideal density
inline constexpr double tolerance = 1e-11;  // of the pressure

}  // namespace norvane::AGA8
