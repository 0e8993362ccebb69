// GERG-2008 and GERG-2004.
//
//   x_i    mole fraction [-]                        T    temperature [K]
//   rho    molar density [kmol/m3]                  p    pressure [MPa]
//   delta  rho v_r, reduced density                 tau  T_r/T, inverse reduced temperature
//
//   T_r = sum x_i^2 Tc_i + sum(i<j) 2 x_i x_j bT gT (x_i+x_j)/(bT^2 x_i+x_j) sqrt(Tc_i Tc_j)
//   v_r = sum x_i^2/rhoc_i + sum(i<j) 2 x_i x_j bv gv (x_i+x_j)/(bv^2 x_i+x_j) (rhoc_i^-1/3 + rhoc_j^-1/3)^3/8
//   ar  = sum x_i ar_i + sum(i<j) x_i x_j F_ij ar_ij
//   ar_i  = sum n delta^d tau^t [exp(-delta^c)]
//   ar_ij = sum n delta^d tau^t [exp(-eta (delta-1/2)^2 - beta (delta-1/2))]
//
// A factor of the density, f = delta^d exp(-w), with q = delta w' and r = delta^2 w'' + q:
//   delta f' = f D, D = d - q        delta^2 f'' = f (D^2 - D - r)
//
// All exponents t are multiples of 1/8 or of 1/20: three square roots and four exponentials give every power of tau.

#include "math/gas/gerg.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "core/elementary.h"
#include "math/gas/gerg2004_table.h"

namespace norvane::GERG2008 {
namespace {

// ---- The terms, put in order at compile time ---------------------------------------------------------------------

// Factors of the density that differ in their exponential. Those with c are exp(-delta^c), c = 0 stands for none.
struct Shape {
  int c;
  double eta, beta;
};
constexpr Shape shapes[] = {{0, 0, 0},       {1, 0, 0},    {2, 0, 0},       {3, 0, 0},         {5, 0, 0},
                            {6, 0, 0},       {-1, 0, 2},   {-1, 0, 3},      {-1, 0.25, 0.75},  {-1, 0.25, 1},
                            {-1, 0.25, 2.5}, {-1, 0.5, 2}, {-1, 0.75, 1.5}, {-1, 0.875, 1.25}, {-1, 1, 1}};
constexpr std::size_t shape_count = std::size(shapes);
constexpr std::size_t first_departure_shape = 6;

// Slots come in pairs that lie in one vector register: neighbours of one shape, or factors of two shapes.
struct Slot {
  std::size_t shape;
  int d;
};
constexpr Slot slots[slot_count] = {{0, 1},  {0, 2},  {0, 3},  {0, 4},  {0, 7},  {0, 8}, {1, 1}, {1, 2}, {1, 3},
                                    {1, 4},  {1, 5},  {1, 6},  {2, 1},  {2, 2},  {2, 3}, {2, 4}, {3, 1}, {3, 2},
                                    {3, 3},  {3, 4},  {3, 5},  {3, 6},  {4, 1},  {4, 2}, {4, 5}, {4, 6}, {5, 5},
                                    {5, 6},  {5, 7},  {5, 8},  {6, 1},  {6, 2},  {7, 2}, {7, 3}, {8, 1}, {9, 1},
                                    {10, 2}, {11, 2}, {12, 2}, {13, 2}, {14, 1}, {14, 2}};
constexpr std::size_t first_departure_slot = 30;
constexpr std::size_t highest_d = 7;

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
constexpr std::array<Term, term_count> terms = make_terms();

// ---- Powers of tau -----------------------------------------------------------------------------------------------

struct Exponent {
  double t;
  int whole;
  std::size_t fraction;  // place in the table of fractional powers
};

// Fractions: eight eighths, then four twentieths above each quarter.
constexpr std::size_t eighths = 8, fraction_count = 24;
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
constexpr ExponentTable exponents = make_exponents();
static_assert(exponents.count == power_count);

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
constexpr SlotTerms slot_terms = make_slot_terms();
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

template <std::size_t... k>
inline void fill_powers(double tau, bool departs, std::array<double, power_count>& powers,
                        std::index_sequence<k...>) noexcept {
  constexpr int lowest = -1, highest = 30;
  double whole[highest - lowest + 1];  // whole[m + 1] = tau^m
  whole[0] = 1.0 / tau;
  whole[1] = 1.0;
  whole[2] = tau;
  for (std::size_t m = 2; m <= highest; ++m) whole[m + 1] = whole[m / 2 + 1] * whole[m - m / 2 + 1];

  double fraction[fraction_count];
  fraction[0] = 1.0;
  fraction[4] = std::sqrt(tau);
  fraction[2] = std::sqrt(fraction[4]);
  fraction[1] = std::sqrt(fraction[2]);
  fraction[3] = fraction[2] * fraction[1];
  for (std::size_t f = 5; f < eighths; ++f) fraction[f] = fraction[4] * fraction[f - 4];
  if (departs) {
    const double l = elementary::log(tau);
    const auto twentieths = elementary::exp4({0.05 * l, 0.1 * l, 0.15 * l, 0.2 * l});
    for (std::size_t f = 0; f < 16; ++f) fraction[eighths + f] = fraction[f / 4 * 2] * twentieths[f % 4];
  } else {
    std::fill_n(fraction + eighths, fraction_count - eighths, 0.0);
  }
  ((powers[k] = whole[exponents.exponent[k].whole + 1] * fraction[exponents.exponent[k].fraction]), ...);
}

// ---- Constants of the pairs, made once ---------------------------------------------------------------------------

// Two doubles side by side, in the vector registers that every processor of the platform has.
using Two = double __attribute__((vector_size(16)));

// A pair whose reducing function is not symmetrical: c x_i x_j (x_i+x_j)/(b x_i+x_j), of volume and temperature.
struct SkewPair {
  std::size_t i, j;
  Two c, b;
};

struct Coefficients {
  // Volume and temperature of the pairs with beta = 1, and twice the fluids' own on the diagonal: half of x'Mx adds
  // them up.
  Two plain[component_count][component_count] = {};
  std::array<SkewPair, std::size(pairs)> skew{};
  std::size_t skew_count = 0;
  double simple[std::size(simple_members)][std::size(simple_form)] = {};

  explicit Coefficients(Edition edition) noexcept {
    Component fluid[component_count];
    std::copy(std::begin(components), std::end(components), fluid);
    for (std::size_t m = 0; m < std::size(simple_members); ++m)
      std::copy_n(simple_n[m], std::size(simple_form), simple[m]);
    if (edition == Edition::gerg_2004) {
      for (const edition_2004::Fluid& other : edition_2004::fluids) {
        fluid[other.component].rho_c = other.rho_c;
        fluid[other.component].T_c = other.T_c;
        for (std::size_t m = 0; m < std::size(simple_members); ++m)
          if (simple_members[m] == other.component) std::copy_n(other.n, std::size(simple_form), simple[m]);
      }
    }
    double root[component_count];  // rhoc^-1/3
    for (std::size_t i = 0; i < component_count; ++i) {
      root[i] = elementary::pow(fluid[i].rho_c, -1.0 / 3.0);
      plain[i][i] = Two{2.0 / fluid[i].rho_c, 2.0 * fluid[i].T_c};
    }
    for (const Pair& printed : pairs) {
      const Pair& pair = of_edition(edition, printed);
      const std::size_t i = pair.i, j = pair.j;
      const double sum = root[i] + root[j];
      const Two c = {2.0 * pair.beta_v * pair.gamma_v * sum * sum * sum / 8.0,
                     2.0 * pair.beta_T * pair.gamma_T * std::sqrt(fluid[i].T_c * fluid[j].T_c)};
      if (pair.beta_v == 1.0 && pair.beta_T == 1.0) {
        plain[i][j] = plain[j][i] = c;
      } else {
        skew[skew_count++] = {i, j, c, Two{pair.beta_v * pair.beta_v, pair.beta_T * pair.beta_T}};
      }
    }
  }

 private:
  static const Pair& of_edition(Edition edition, const Pair& pair) noexcept {
    if (edition == Edition::gerg_2004)
      for (const Pair& other : edition_2004::pairs)
        if (other.i == pair.i && other.j == pair.j) return other;
    return pair;
  }
};

const Coefficients& coefficients(Edition edition) noexcept {
  static const Coefficients gerg_2004(Edition::gerg_2004), gerg_2008(Edition::gerg_2008);
  return edition == Edition::gerg_2004 ? gerg_2004 : gerg_2008;
}

// ---- Mixture -----------------------------------------------------------------------------------------------------

// Sums the coefficients of a form's fluids.
template <std::size_t count, std::size_t size>
void sum_form(const Composition& x, const std::size_t (&members)[count], const double (&n)[count][size],
              double* sum) noexcept {
  double total[size] = {};
  for (std::size_t m = 0; m < count; ++m) {
    const double fraction = x[members[m]];
    if (!(fraction > 0.0)) continue;
    for (std::size_t k = 0; k < size; ++k) total[k] += fraction * n[m][k];
  }
  std::copy_n(total, size, sum);
}

}  // namespace

void Mixture::set(Edition of, const Composition& composition) noexcept {
  edition = of;
  x = composition;
  const Coefficients& table = coefficients(edition);

  std::array<std::size_t, component_count> present;
  std::size_t count = 0;
  molar_mass = 0.0;
  for (std::size_t i = 0; i < component_count; ++i) {
    if (!(x[i] > 0.0)) continue;
    present[count++] = i;
    molar_mass += x[i] * components[i].M;
  }
  Two sum{};  // v_r and T_r
  for (std::size_t a = 0; a < count; ++a) {
    const Two* const table_row = table.plain[present[a]];
    Two row = 0.5 * x[present[a]] * table_row[present[a]];
    for (std::size_t b = a + 1; b < count; ++b) row += x[present[b]] * table_row[present[b]];
    sum += x[present[a]] * row;
  }
  for (std::size_t s = 0; s < table.skew_count; ++s) {
    const SkewPair& pair = table.skew[s];
    const double x_i = x[pair.i], x_j = x[pair.j];
    if (!(x_i > 0.0 && x_j > 0.0)) continue;
    sum += x_i * x_j * pair.c * ((x_i + x_j) / (pair.b * x_i + x_j));
  }
  v_r = sum[0];
  T_r = sum[1];

  double* coefficient = n.data();
  const auto form = [&](const auto& members, const auto& table_n) {
    sum_form(x, members, table_n, coefficient);
    coefficient += std::size(table_n[0]);
  };
  form(light_members, light_n);
  form(carbon_dioxide_members, carbon_dioxide_n);
  form(simple_members, table.simple);
  form(water_members, water_n);
  form(hydrogen_members, hydrogen_n);
  form(helium_members, helium_n);

  std::array<double, departure_function_count> weight{};
  for (const Departure& pair : departures) weight[pair.function] += x[pair.i] * x[pair.j] * pair.F;
  departs = std::any_of(weight.begin(), weight.end(), [](double w) { return w != 0.0; });
  for (const DepartureTerm& term : departure_terms) *coefficient++ = weight[term.function] * term.n;
}

void Isotherm::set(const Mixture& mixture, double temperature) noexcept {
  T = temperature;
  RT = R * T;
  tau = mixture.T_r / T;
  v_r = mixture.v_r;
  departs = mixture.departs;
  fifth = mixture.x[carbon_dioxide] > 0.0 || mixture.x[water] > 0.0 || mixture.x[hydrogen] > 0.0;
  fill_powers(tau, departs, powers, std::make_index_sequence<power_count>{});
  for_slots(
      [&](auto slot, auto of_slot) {
        n[slot] = sum_slot<slot>([&](auto term) { return mixture.n[term] * powers[exponents.place[term]]; }, of_slot);
      },
      AllSlots{});
}

namespace {

// What the factors of a density are made of.
struct Density {
  Two power[highest_d + 1];  // {delta^d, delta^(d+1)}
  double e[shape_count];     // exp(-w) of each shape
  double q[shape_count], r[shape_count];

  Density(double delta, bool fifth) noexcept {
    const double d2 = delta * delta, d3 = d2 * delta;
    power[1] = Two{delta, d2};
    power[2] = power[1] * delta;
    for (std::size_t d = 3; d <= highest_d; ++d) power[d] = power[d - 2] * d2;

    // With y = delta - 1/2, exp(-y^2/8) and exp(-delta/4) have all but three of the exponentials as powers.
    constexpr double e_1_8 = 1.1331484530668263, e_1_4 = 1.2840254166877415, e_1_2 = 1.6487212707001282;
    const double y = delta - departure_centre;
    const auto exponential = elementary::exp4({-0.25 * delta, -0.125 * y * y, -d3, -d3 * d3});
    const double root = exponential[0], b = exponential[1];
    const double root2 = root * root;
    e[0] = 1.0;
    e[1] = root2 * root2;  // exp(-delta)
    const double b2 = b * b, b4 = b2 * b2, b8 = b4 * b4;
    e[2] = b8 * (e[1] * e_1_4);  // exp(-delta^2)
    e[3] = exponential[2];
    e[4] = fifth ? elementary::exp(-d3 * d2) : 0.0;
    e[5] = exponential[3];
    const double a = root * e_1_8, a2 = a * a;  // exp(-y/4)
    const double c = e[1] * e_1_2, c2 = c * c;  // exp(-y)
    e[6] = c2;                                  // eta, beta = 0, 2
    e[7] = c2 * c;                              // 0, 3
    e[8] = b2 * (a2 * a);                       // 1/4, 3/4
    e[9] = b2 * c;                              // 1/4, 1
    e[10] = b2 * (c2 * a2);                     // 1/4, 5/2
    e[11] = b4 * c2;                            // 1/2, 2
    e[12] = b4 * b2 * (c * a2);                 // 3/4, 3/2
    e[13] = b4 * (b2 * b) * (c * a);            // 7/8, 5/4
    e[14] = b8 * c;                             // 1, 1
    for (std::size_t g = 0; g < first_departure_shape; ++g) {
      const int k = shapes[g].c;
      q[g] = k == 0 ? 0.0 : k * power[k][0];
      r[g] = k * q[g];
    }
    for (std::size_t g = first_departure_shape; g < shape_count; ++g) {
      q[g] = delta * (2.0 * shapes[g].eta * y + shapes[g].beta);
      r[g] = q[g] + 2.0 * shapes[g].eta * d2;
    }
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

}  // namespace

Isotherm::Point Isotherm::at(double rho) const noexcept {
  const Density density(rho * v_r, fifth);
  Two first[2] = {}, second[2] = {};  // two sums run side by side
  const auto add = [&](auto pair) {
    const Factors factor = factors<pair>(density);
    const Two value = load(n, pair) * factor.f;
    first[pair % 2] += value * factor.D;
    second[pair % 2] += value * factor.X;
  };
  if (departs) {
    for_pairs(add, AllPairs{});
  } else {
    for_pairs(add, PurePairs{});
  }
  const Two d = first[0] + first[1], dd = second[0] + second[1];
  const double d1 = d[0] + d[1];
  return {1.0 + d1, 1.0 + 2.0 * d1 + (dd[0] + dd[1])};
}

// ---- Density from pressure ---------------------------------------------------------------------------------------
//
// Above a certain temperature the pressure rises with density all the way. Below it an isotherm has a vapour branch
// that begins at density zero and ends where the pressure stops rising, a liquid branch that comes down from high
// density, and between them loops without meaning, rising ones among them. The two branches are followed from their
// own ends, in steps too short to miss a loop.

namespace {

// Above this T/T_r no mixture has loops; the highest found among random ones is 1.03, with hydrogen.
constexpr double loopless = 1.1;
constexpr double settled = 1e-8;       // relative; a Newton step this short leaves an error of its square
constexpr double longest_step = 0.15;  // in delta; the loops are three times as wide
constexpr double narrowest = 0.005;    // in delta; where the search for a fall of the pressure ends
constexpr double highest_delta = 6.0;
constexpr int max_steps = 100;

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
constexpr Virial virial = make_virial();

struct Place {
  double rho;
  double p;      // [MPa]
  double slope;  // dp/drho [MPa m3/kmol]
};

class DensitySearch {
 public:
  DensitySearch(const Isotherm& isotherm, double p) noexcept : isotherm_(isotherm), p_(p) {}

  // The density that the virial equation up to the third coefficient has, near it, or the ideal gas's.
  double estimate() const noexcept {
    double b = 0.0, c = 0.0;
    for (std::size_t s = 0; s < slot_count; ++s) {
      b += virial.b[s] * isotherm_.n[s];
      c += virial.c[s] * isotherm_.n[s];
    }
    const double ideal = p_ * isotherm_.v_r / isotherm_.RT;
    double delta = ideal;
    for (int i = 0; i < 4; ++i) {
      const double slope = 1.0 + delta * (2.0 * b + 3.0 * c * delta);
      if (!(slope > 0.1)) break;
      const double next = delta - (delta * (1.0 + delta * (b + c * delta)) - ideal) / slope;
      if (!(next > 0.2 * ideal && next < 5.0 * ideal)) break;
      delta = next;
    }
    return delta / isotherm_.v_r;
  }

  Place at(double rho) const noexcept {
    const Isotherm::Point point = isotherm_.at(rho);
    return {rho, rho * isotherm_.RT * point.z, isotherm_.RT * point.dp_drho};
  }

  // Newton's method between two densities with the pressure rising from below p to above it.
  bool polish(double low, double high, Place now, double& rho) const noexcept {
    for (int i = 0; i < max_steps; ++i) {
      if (!(now.slope > 0.0)) return false;
      const double next = now.rho + (p_ - now.p) / now.slope;
      if (std::fabs(next - now.rho) <= settled * now.rho) {
        rho = next;
        return true;
      }
      (now.p < p_ ? low : high) = now.rho;
      now = at(next > low && next < high ? next : 0.5 * (low + high));
    }
    return false;
  }

  // Follows a branch from one end toward the pressure sought as long as the pressure rises with density.
  bool follow(Place now, double first, double& rho) const noexcept {
    const bool upward = now.p < p_;
    const double longest = longest_step / isotherm_.v_r;
    double barrier = upward ? highest_delta / isotherm_.v_r : 0.0;  // a density where the pressure does not rise
    double next = first;
    for (int i = 0; i < max_steps; ++i) {
      const double step = next - now.rho;
      if (std::fabs(step) <= settled * now.rho) {
        rho = next;
        return true;
      }
      if (std::fabs(step) > longest) next = now.rho + std::copysign(longest, step);
      if (upward ? next >= barrier : next <= barrier) {
        // The branch bends toward its end, so that its tangent passes the pressure sought before it does itself.
        const double reach = (next - now.rho) / (barrier - now.rho);
        if (!(reach < 1.5) || std::fabs(barrier - now.rho) <= settled * now.rho) return false;
        next = 0.5 * (now.rho + barrier);
      }
      const Place there = at(next);
      double fall = 0.0;
      if (!(there.slope > 0.0)) {
        barrier = next;
      } else if (falls_between(now, there, fall)) {
        barrier = fall;
      } else {
        if ((there.p < p_) != upward) return polish(std::min(now.rho, next), std::max(now.rho, next), there, rho);
        now = there;
      }
      next = now.rho + (p_ - now.p) / now.slope;
    }
    return false;
  }

 private:
  // Whether the pressure falls somewhere between two places where it rises. The cubic through both has no fall when its
  // slopes are below three times the mean one; else the middle is looked at.
  bool falls_between(const Place& a, const Place& b, double& where) const noexcept {
    const double mean = (b.p - a.p) / (b.rho - a.rho);
    constexpr double steep = 2.5;
    if (a.slope < steep * mean && b.slope < steep * mean) return false;
    if (std::fabs(b.rho - a.rho) * isotherm_.v_r < narrowest) {
      where = b.rho;
      return !(mean > 0.0);
    }
    const Place middle = at(0.5 * (a.rho + b.rho));
    if (!(middle.slope > 0.0)) {
      where = middle.rho;
      return true;
    }
    return falls_between(a, middle, where) || falls_between(middle, b, where);
  }

  const Isotherm& isotherm_;
  double p_;
};

}  // namespace

bool Isotherm::vapour_density(double p, double& rho) const noexcept {
  if (!(p > 0.0 && RT > 0.0)) return false;
  const DensitySearch search(*this, p);
  const double start = search.estimate();
  if (tau * loopless < 1.0) return search.polish(0.0, highest_delta / v_r, search.at(start), rho);
  return search.follow({0.0, 0.0, RT}, start, rho);
}

bool Isotherm::liquid_density(double p, double& rho) const noexcept {
  if (!(p > 0.0 && RT > 0.0)) return false;
  if (tau * loopless < 1.0) return vapour_density(p, rho);
  // A little above the density of any liquid at low pressure, and up from there when the pressure is high.
  constexpr double intercept = 4.2, fall = 2.1;
  constexpr double raise = 1.1;
  const DensitySearch search(*this, p);
  Place top = search.at(std::max(intercept - fall / tau, 1.0) / v_r);
  while (top.p < p) {
    if (!(top.rho * v_r < highest_delta)) return false;
    top = search.at(raise * top.rho);
  }
  if (!(top.slope > 0.0)) return false;
  return search.follow(top, top.rho + (p - top.p) / top.slope, rho);
}

bool Isotherm::density_near(double p, double guess, double& rho) const noexcept {
  constexpr double far = 0.1;  // relative; a root further away may be another one
  const DensitySearch search(*this, p);
  Place now = search.at(guess);
  for (int i = 0; i < 6; ++i) {
    if (!(now.slope > 0.0)) return false;
    const double next = now.rho + (p - now.p) / now.slope;
    if (!(std::fabs(next - guess) <= far * guess)) return false;
    if (std::fabs(next - now.rho) <= settled * now.rho) {
      rho = next;
      return true;
    }
    now = search.at(next);
  }
  return false;
}

helmholtz::Residual residual(const Mixture& mixture, const Isotherm& isotherm, double rho) noexcept {
  Slots tn, ttn;
  for_slots(
      [&](auto slot, auto of_slot) {
        const Two sum = sum_slot<slot>(
            [&](auto term) {
              constexpr double t = terms[term].t;
              return mixture.n[term] * isotherm.powers[exponents.place[term]] * Two{t, t * (t - 1.0)};
            },
            of_slot);
        tn[slot] = sum[0];
        ttn[slot] = sum[1];
      },
      AllSlots{});
  const Density density(rho * isotherm.v_r, isotherm.fifth);
  Two ar{}, d{}, dd{}, t{}, tt{}, dt{};
  for_pairs(
      [&](auto pair) {
        const Factors factor = factors<pair>(density);
        const Two value = load(isotherm.n, pair) * factor.f, t_value = load(tn, pair) * factor.f;
        ar += value;
        d += value * factor.D;
        dd += value * factor.X;
        t += t_value;
        dt += t_value * factor.D;
        tt += load(ttn, pair) * factor.f;
      },
      AllPairs{});
  return {ar[0] + ar[1], d[0] + d[1], dd[0] + dd[1], t[0] + t[1], tt[0] + tt[1], dt[0] + dt[1]};
}

}  // namespace norvane::GERG2008
