// GERG-2008: the terms put in order at compile time, and what a density makes of them. For the files of the equation.
//
//   A factor of the density, f = delta^d exp(-w), with q = delta w' and r = delta^2 w'' + q:
//   delta f' = f D, D = d - q        delta^2 f'' = f X, X = D^2 - D - r
//
// All exponents t are multiples of 1/8 or of 1/20: three square roots and four exponentials give every power of tau.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <utility>

#include "core/elementary_lanes.h"
#include "math/gas/gerg.h"

namespace norvane::GERG2008 {

// Two doubles side by side, in the vector registers that every processor of the platform has.
using Two = double __attribute__((vector_size(16)));

// ---- The terms, put in order at compile time ---------------------------------------------------------------------

// Factors of the density that differ in their exponential. Those with c are exp(-delta^c), c = 0 stands for none.
struct Shape {
  int c;
  double eta, beta;
};
inline constexpr Shape shapes[] = {{0, 0, 0},       {1, 0, 0},    {2, 0, 0},       {3, 0, 0},         {5, 0, 0},
                                   {6, 0, 0},       {-1, 0, 2},   {-1, 0, 3},      {-1, 0.25, 0.75},  {-1, 0.25, 1},
                                   {-1, 0.25, 2.5}, {-1, 0.5, 2}, {-1, 0.75, 1.5}, {-1, 0.875, 1.25}, {-1, 1, 1}};
inline constexpr std::size_t shape_count = std::size(shapes);
inline constexpr std::size_t first_departure_shape = 6;

// Slots come in pairs that lie in one vector register: neighbours of one shape, or factors of two shapes.
struct Slot {
  std::size_t shape;
  int d;
};
inline constexpr Slot slots[slot_count] = {
    {0, 1}, {0, 2}, {0, 3}, {0, 4},  {0, 7},  {0, 8},  {1, 1},  {1, 2},  {1, 3}, {1, 4}, {1, 5},
    {1, 6}, {2, 1}, {2, 2}, {2, 3},  {2, 4},  {3, 1},  {3, 2},  {3, 3},  {3, 4}, {3, 5}, {3, 6},
    {4, 1}, {4, 2}, {4, 5}, {4, 6},  {5, 5},  {5, 6},  {5, 7},  {5, 8},  {6, 1}, {6, 2}, {7, 2},
    {7, 3}, {8, 1}, {9, 1}, {10, 2}, {11, 2}, {12, 2}, {13, 2}, {14, 1}, {14, 2}};
inline constexpr std::size_t first_departure_slot = 30;
inline constexpr std::size_t highest_d = 7;

struct Term {
  double t;
  std::size_t slot;
};

constexpr std::size_t slot_of(const Shape& shape, int d) {
  std::size_t s = 0;
  while (slots[s].d != d || shapes[slots[s].shape].c != shape.c || shapes[slots[s].shape].eta != shape.eta ||
         shapes[slots[s].shape].beta != shape.beta)
    ++s;  // a factor that is not listed does not compile
  return s;
}

constexpr std::array<Term, term_count> make_terms() {
  std::array<Term, term_count> all{};
  std::size_t n = 0;
  const auto form = [&](const auto& rows) {
    for (const Exponents& row : rows) all[n++] = {row.t, slot_of({row.c, 0, 0}, row.d)};
  };
  form(light_form);
  form(carbon_dioxide_form);
  form(simple_form);
  form(water_form);
  form(hydrogen_form);
  form(helium_form);
  for (const DepartureTerm& row : departure_terms) {
    const bool plain = row.eta == 0.0 && row.beta == 0.0;
    all[n++] = {row.t, slot_of({plain ? 0 : -1, row.eta, row.beta}, row.d)};
  }
  return all;
}
inline constexpr std::array<Term, term_count> terms = make_terms();

// ---- Powers of tau -----------------------------------------------------------------------------------------------

struct Exponent {
  double t;
  int whole;
  std::size_t fraction;  // place in the table of fractional powers
};

// Fractions: eight eighths, then four twentieths above each quarter.
inline constexpr std::size_t eighths = 8, fraction_count = 24;
constexpr double fraction_value(std::size_t f) {
  if (f < eighths) return static_cast<double>(f) / 8.0;
  return static_cast<double>((f - eighths) / 4) / 4.0 + static_cast<double>((f - eighths) % 4 + 1) / 20.0;
}
constexpr std::size_t fraction_place(double value) {
  std::size_t f = 0;
  while (value - fraction_value(f) > 1e-9 || fraction_value(f) - value > 1e-9) ++f;
  return f;
}

struct ExponentTable {
  std::array<Exponent, power_count> exponent{};
  std::array<std::size_t, term_count> place{};  // of each term's power
  std::size_t count = 0;
};
constexpr ExponentTable make_exponents() {
  ExponentTable table;
  for (std::size_t n = 0; n < term_count; ++n) {
    const double t = terms[n].t;
    std::size_t k = 0;
    while (k < table.count && table.exponent[k].t != t) ++k;
    if (k == table.count) {
      int whole = static_cast<int>(t);
      if (t < whole) --whole;
      table.exponent[table.count++] = {t, whole, fraction_place(t - whole)};
    }
    table.place[n] = k;
  }
  return table;
}
inline constexpr ExponentTable exponents = make_exponents();
static_assert(exponents.count == power_count);

template <class Real, class List, std::size_t... k>
[[gnu::always_inline]] inline void fill_powers(Real tau, bool departs, List& powers,
                                               std::index_sequence<k...>) noexcept {
  constexpr int lowest = -1, highest = 30;
  Real whole[highest - lowest + 1];  // whole[m + 1] = tau^m
  whole[0] = 1.0 / tau;
  whole[1] = Real{} + 1.0;
  whole[2] = tau;
  for (std::size_t m = 2; m <= highest; ++m) whole[m + 1] = whole[m / 2 + 1] * whole[m - m / 2 + 1];

  Real fraction[fraction_count];
  fraction[0] = Real{} + 1.0;
  fraction[4] = lanes::sqrt(tau);
  fraction[2] = lanes::sqrt(fraction[4]);
  fraction[1] = lanes::sqrt(fraction[2]);
  fraction[3] = fraction[2] * fraction[1];
  for (std::size_t f = 5; f < eighths; ++f) fraction[f] = fraction[4] * fraction[f - 4];
  if (departs) {
    const Real l = lanes::log(tau);
    const lanes::Four<Real> twentieths = lanes::exp4(lanes::Four<Real>{{0.05 * l, 0.1 * l, 0.15 * l, 0.2 * l}});
    for (std::size_t f = 0; f < 16; ++f) fraction[eighths + f] = fraction[f / 4 * 2] * twentieths.v[f % 4];
  } else {
    for (std::size_t f = eighths; f < fraction_count; ++f) fraction[f] = Real{};
  }
  ((powers[k] = whole[exponents.exponent[k].whole + 1] * fraction[exponents.exponent[k].fraction]), ...);
}

// The terms of each slot.
struct SlotTerms {
  std::array<std::size_t, term_count> term{};
  std::array<std::size_t, slot_count + 1> begin{};
};
constexpr SlotTerms make_slot_terms() {
  SlotTerms table;
  std::size_t k = 0;
  for (std::size_t s = 0; s < slot_count; ++s) {
    table.begin[s] = k;
    for (std::size_t n = 0; n < term_count; ++n)
      if (terms[n].slot == s) table.term[k++] = n;
  }
  table.begin[slot_count] = k;
  return table;
}
inline constexpr SlotTerms slot_terms = make_slot_terms();
static_assert(slot_terms.begin[slot_count] == term_count);

// Sum of f(term) over the terms of a slot, unrolled; the term is a constant.
template <std::size_t slot, class Function, std::size_t... k>
inline auto sum_slot(const Function& f, std::index_sequence<k...>) noexcept {
  if constexpr (sizeof...(k) == 0) {
    return decltype(f(std::integral_constant<std::size_t, 0>{})){};
  } else {
    return (... + f(std::integral_constant<std::size_t, slot_terms.term[slot_terms.begin[slot] + k]>{}));
  }
}
template <class Function, std::size_t... slot>
inline void for_slots(const Function& set, std::index_sequence<slot...>) noexcept {
  (set(std::integral_constant<std::size_t, slot>{},
       std::make_index_sequence<slot_terms.begin[slot + 1] - slot_terms.begin[slot]>{}),
   ...);
}
using AllSlots = std::make_index_sequence<slot_count>;

// ---- Factors of the density --------------------------------------------------------------------------------------

// The exponentials of all shapes, with q and r of their derivatives; delta_to(k) is delta^k. Real is a double or a vector
// of doubles (core/lanes.h), whose lanes have the bits of the double.
template <class Real, class Power>
[[gnu::always_inline]] inline void set_exponentials(Real delta, bool fifth, const Power& delta_to,
                                                    Real (&e)[shape_count], Real (&q)[shape_count],
                                                    Real (&r)[shape_count]) noexcept {
  const Real d2 = delta * delta, d3 = d2 * delta;
  // With y = delta - 1/2, exp(-y^2/8) and exp(-delta/4) have all but three of the exponentials as powers.
  constexpr double e_1_8 = 1.1331484530668263, e_1_4 = 1.2840254166877415, e_1_2 = 1.6487212707001282;
  const Real y = delta - departure_centre;
  const lanes::Four<Real> exponential =
      lanes::exp4(lanes::Four<Real>{{-0.25 * delta, -0.125 * y * y, -d3, -d3 * d3}});
  const Real root = exponential.v[0], b = exponential.v[1];
  const Real root2 = root * root;
  e[0] = Real{} + 1.0;
  e[1] = root2 * root2;  // exp(-delta)
  const Real b2 = b * b, b4 = b2 * b2, b8 = b4 * b4;
  e[2] = b8 * (e[1] * e_1_4);  // exp(-delta^2)
  e[3] = exponential.v[2];
  e[4] = fifth ? lanes::exp(-d3 * d2) : Real{};
  e[5] = exponential.v[3];
  const Real a = root * e_1_8, a2 = a * a;  // exp(-y/4)
  const Real c = e[1] * e_1_2, c2 = c * c;  // exp(-y)
  e[6] = c2;                                // eta, beta = 0, 2
  e[7] = c2 * c;                            // 0, 3
  e[8] = b2 * (a2 * a);                     // 1/4, 3/4
  e[9] = b2 * c;                            // 1/4, 1
  e[10] = b2 * (c2 * a2);                   // 1/4, 5/2
  e[11] = b4 * c2;                          // 1/2, 2
  e[12] = b4 * b2 * (c * a2);               // 3/4, 3/2
  e[13] = b4 * (b2 * b) * (c * a);          // 7/8, 5/4
  e[14] = b8 * c;                           // 1, 1
  for (std::size_t g = 0; g < first_departure_shape; ++g) {
    const double k = shapes[g].c;
    q[g] = shapes[g].c == 0 ? Real{} : k * delta_to(static_cast<std::size_t>(shapes[g].c));
    r[g] = k * q[g];
  }
  for (std::size_t g = first_departure_shape; g < shape_count; ++g) {
    q[g] = delta * (2.0 * shapes[g].eta * y + shapes[g].beta);
    r[g] = q[g] + 2.0 * shapes[g].eta * d2;
  }
}

// What the factors of a density are made of.
struct Density {
  Two power[highest_d + 1];  // {delta^d, delta^(d+1)}
  double e[shape_count];     // exp(-w) of each shape
  double q[shape_count], r[shape_count];

  Density(double delta, bool fifth) noexcept {
    const double d2 = delta * delta;
    power[1] = Two{delta, d2};
    power[2] = power[1] * delta;
    for (std::size_t d = 3; d <= highest_d; ++d) power[d] = power[d - 2] * d2;

    const auto delta_to = [this](std::size_t k) { return power[k][0]; };
    set_exponentials(delta, fifth, delta_to, e, q, r);
  }
};

// The factors f of two neighbouring slots at a density, and D and X of their derivatives.
struct Factors {
  Two f, D, X;
};
template <std::size_t pair>
inline Factors factors(const Density& density) noexcept {
  constexpr Slot first = slots[2 * pair], second = slots[2 * pair + 1];
  constexpr Two d = {first.d, second.d};
  if constexpr (first.shape == 0) {
    return {density.power[first.d], d, d * (d - 1.0)};
  } else if constexpr (first.shape == second.shape) {
    static_assert(second.d == first.d + 1);
    const Two D = d - density.q[first.shape];
    return {density.power[first.d] * density.e[first.shape], D, D * (D - 1.0) - density.r[first.shape]};
  } else {
    static_assert(second.d == first.d);
    const Two e = {density.e[first.shape], density.e[second.shape]};
    const Two q = {density.q[first.shape], density.q[second.shape]};
    const Two r = {density.r[first.shape], density.r[second.shape]};
    const Two D = d - q;
    return {density.power[first.d][0] * e, D, D * (D - 1.0) - r};
  }
}

template <class Function, std::size_t... pair>
inline void for_pairs(const Function& function, std::index_sequence<pair...>) noexcept {
  (function(std::integral_constant<std::size_t, pair>{}), ...);
}
using PurePairs = std::make_index_sequence<first_departure_slot / 2>;
using AllPairs = std::make_index_sequence<slot_count / 2>;

inline Two load(const Slots& values, std::size_t pair) noexcept {
  return Two{values[2 * pair], values[2 * pair + 1]};
}

// ---- Constants of the properties --------------------------------------------------------------------------------

inline constexpr double R_joule = 8.314472;     // [J/(mol K)]
inline constexpr double R_ideal = 8.31451;      // that of the ideal-gas functions [J/(mol K)]
inline constexpr double T_reference = 298.15;   // [K], of enthalpy and entropy
inline constexpr double p_reference = 101.325;  // [kPa], of the entropy
inline constexpr double ln2 = 0.69314718055994531;

// The ideal gases' vibrations: n4 to n7 and their temperatures. A place without one has a temperature that harms nothing.
struct Vibrations {
  static constexpr std::size_t of_gas = 4;
  double weight[component_count][of_gas], theta[component_count][of_gas];
};
constexpr Vibrations make_vibrations() {
  Vibrations made{};
  for (std::size_t i = 0; i < component_count; ++i) {
    const Ideal& gas = ideal_gases[i];
    const double weight[] = {gas.n4, gas.n5, gas.n6, gas.n7};
    const double theta[] = {gas.theta4, gas.theta5, gas.theta6, gas.theta7};
    for (std::size_t m = 0; m < Vibrations::of_gas; ++m) {
      made.weight[i][m] = weight[m];
      made.theta[i][m] = weight[m] != 0.0 ? theta[m] : 1.0;
    }
  }
  return made;
}
inline constexpr Vibrations vibrations = make_vibrations();

// Everything but the entropy.
helmholtz::State state_of(double T, double rho, const helmholtz::Residual& r,
                          const helmholtz::IdealGas& ideal) noexcept;

// ---- Search for a density ----------------------------------------------------------------------------------------

// Above this T/T_r no mixture has loops; the highest found among random ones is 1.03, with hydrogen.
inline constexpr double loopless = 1.1;
inline constexpr double settled = 1e-8;  // relative; a Newton step this short leaves an error of its square
inline constexpr double highest_delta = 6.0;

// exp(x) for the constants of the departure functions at density zero.
constexpr double exp_series(double x) {
  double term = 1.0, sum = 1.0;
  for (int k = 1; k < 30; ++k) sum += term *= x / k;
  return sum;
}
// z = 1 + b delta + c delta^2 + ...: what each slot adds to b and c.
struct Virial {
  Slots b{}, c{};
};
constexpr Virial make_virial() {
  Virial weights;
  for (std::size_t s = 0; s < slot_count; ++s) {
    const Shape& shape = shapes[slots[s].shape];
    const double e = shape.c >= 0 ? 1.0 : exp_series(0.5 * shape.beta - 0.25 * shape.eta);
    const double slope = shape.c == 1 ? 1.0 : shape.c >= 0 ? 0.0 : shape.beta - shape.eta;  // w' at density zero
    if (slots[s].d == 1) {
      weights.b[s] = e;
      weights.c[s] = -2.0 * slope * e;
    } else if (slots[s].d == 2) {
      weights.c[s] = 2.0 * e;
    }
  }
  return weights;
}
inline constexpr Virial virial = make_virial();

// ---- Constants of the pairs --------------------------------------------------------------------------------------

// A pair whose reducing function is not symmetrical: c x_i x_j (x_i+x_j)/(b x_i+x_j), of volume and temperature.
struct SkewPair {
  std::size_t i, j;
  Two c, b;
};

// Its factor h = (x_i + x_j)/(b x_i + x_j) with its derivatives to x_i and x_j.
struct SkewPart {
  Two inverse, h, h_i, h_j;

  SkewPart(const SkewPair& pair, double x_i, double x_j) noexcept
      : inverse(1.0 / (pair.b * x_i + x_j)),
        h((x_i + x_j) * inverse),
        h_i((1.0 - pair.b * h) * inverse),
        h_j((1.0 - h) * inverse) {}
};

struct Coefficients {
  // Volume and temperature of the pairs with beta = 1, and twice the fluids' own on the diagonal: half of x'Mx adds
  // them up.
  Two plain[component_count][component_count] = {};
  std::array<SkewPair, std::size(pairs)> skew{};
  std::size_t skew_count = 0;
  double simple[std::size(simple_members)][std::size(simple_form)] = {};

  explicit Coefficients(Edition edition) noexcept;
};

// Made once.
const Coefficients& coefficients(Edition edition) noexcept;

}  // namespace norvane::GERG2008
