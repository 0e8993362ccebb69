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

#include "math/gas/gerg.h"

#include <algorithm>
#include <cmath>

#include "core/elementary.h"
#include "math/gas/gerg2004_table.h"
#include "math/gas/gerg_kernel.h"
#include "math/gas/gerg_terms.h"

namespace norvane::GERG2008 {

// ---- Constants of the pairs --------------------------------------------------------------------------------------

namespace {

const Pair& of_edition(Edition edition, const Pair& pair) noexcept {
  if (edition == Edition::gerg_2004)
    for (const Pair& other : edition_2004::pairs)
      if (other.i == pair.i && other.j == pair.j) return other;
  return pair;
}

}  // namespace

Coefficients::Coefficients(Edition edition) noexcept {
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

const Coefficients& coefficients(Edition edition) noexcept {
  static const Coefficients gerg_2004(Edition::gerg_2004), gerg_2008(Edition::gerg_2008);
  return edition == Edition::gerg_2004 ? gerg_2004 : gerg_2008;
}

// ---- Mixture and isotherm ----------------------------------------------------------------------------------------

namespace {

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

void Mixture::set_terms(Edition of, const Composition& composition) noexcept {
  edition = of;
  x = composition;
  molar_mass = 0.0;
  for (std::size_t i = 0; i < component_count; ++i) molar_mass += x[i] * components[i].M;

  double* coefficient = n.data();
  const auto form = [&](const auto& members, const auto& table_n) {
    sum_form(x, members, table_n, coefficient);
    coefficient += std::size(table_n[0]);
  };
  form(light_members, light_n);
  form(carbon_dioxide_members, carbon_dioxide_n);
  form(simple_members, coefficients(edition).simple);
  form(water_members, water_n);
  form(hydrogen_members, hydrogen_n);
  form(helium_members, helium_n);

  std::array<double, departure_function_count> weight{};
  for (const Departure& pair : departures) weight[pair.function] += x[pair.i] * x[pair.j] * pair.F;
  departs = std::any_of(weight.begin(), weight.end(), [](double w) { return w != 0.0; });
  for (const DepartureTerm& term : departure_terms) *coefficient++ = weight[term.function] * term.n;
}

void Mixture::set(Edition of, const Composition& composition) noexcept {
  set_terms(of, composition);
  const Coefficients& table = coefficients(edition);
  Two sum{};  // v_r and T_r
  for (std::size_t i = 0; i < component_count; ++i) {
    if (!(x[i] > 0.0)) continue;
    Two row = 0.5 * x[i] * table.plain[i][i];
    for (std::size_t j = i + 1; j < component_count; ++j) row += x[j] * table.plain[i][j];
    sum += x[i] * row;
  }
  for (std::size_t s = 0; s < table.skew_count; ++s) {
    const SkewPair& pair = table.skew[s];
    const double x_i = x[pair.i], x_j = x[pair.j];
    if (!(x_i > 0.0 && x_j > 0.0)) continue;
    sum += x_i * x_j * pair.c * ((x_i + x_j) / (pair.b * x_i + x_j));
  }
  v_r = sum[0];
  T_r = sum[1];
}

void PhaseMixture::set(Edition of, const Composition& composition) noexcept {
  set_terms(of, composition);
  const Coefficients& table = coefficients(edition);
  Two slope[component_count];
  for (std::size_t i = 0; i < component_count; ++i) {
    Two row{};
    if (x[i] > 0.0) {
#pragma GCC unroll 7
      for (std::size_t j = 0; j < component_count; ++j) row += x[j] * table.plain[i][j];
    }
    slope[i] = row;
  }
  for (std::size_t s = 0; s < table.skew_count; ++s) {
    const SkewPair& pair = table.skew[s];
    const double x_i = x[pair.i], x_j = x[pair.j];
    if (!(x_i > 0.0 && x_j > 0.0)) continue;
    const SkewPart part(pair, x_i, x_j);
    slope[pair.i] += pair.c * x_j * (part.h + x_i * part.h_i);
    slope[pair.j] += pair.c * x_i * (part.h + x_j * part.h_j);
  }
  Two sum{};  // of the second degree: half of the moles times the slopes
  for (std::size_t i = 0; i < component_count; ++i) {
    sum += x[i] * slope[i];
    reducing[i] = {slope[i][0], slope[i][1]};
  }
  v_r = 0.5 * sum[0];
  T_r = 0.5 * sum[1];
}

namespace {

// A routine of its own: in one with the sums that follow the compiler runs out of registers.
[[gnu::noinline]] void set_powers(double tau, bool departs, std::array<double, power_count>& powers) noexcept {
  fill_powers(tau, departs, powers, std::make_index_sequence<power_count>{});
}

}  // namespace

void Isotherm::set(const Mixture& mixture, double temperature) noexcept {
  T = temperature;
  RT = R * T;
  tau = mixture.T_r / T;
  v_r = mixture.v_r;
  departs = mixture.departs;
  fifth = mixture.x[carbon_dioxide] > 0.0 || mixture.x[water] > 0.0 || mixture.x[hydrogen] > 0.0;
  set_powers(tau, departs, powers);
  for_slots(
      [&](auto slot, auto of_slot) {
        n[slot] = sum_slot<slot>([&](auto term) { return mixture.n[term] * powers[exponents.place[term]]; }, of_slot);
      },
      AllSlots{});
}

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

double Isotherm::energy(double rho) const noexcept {
  const Density density(rho * v_r, fifth);
  Two sum{};
  for_pairs([&](auto pair) { sum += load(n, pair) * factors<pair>(density).f; }, AllPairs{});
  return sum[0] + sum[1];
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

// ---- Ideal gas and properties ------------------------------------------------------------------------------------

// The ideal-gas functions were made with an older gas constant: what is not the ideal gas's own R carries the ratio.
// It leaves enthalpy and entropy zero at the reference state.
helmholtz::IdealGas ideal_mixture(const Composition& x, double T, Entropy entropy) noexcept {
  constexpr double ratio = R_ideal / R_joule;
  const double inverse_T = 1.0 / T;
  const bool with_entropy = entropy == Entropy::include;
  const double log_T = with_entropy ? elementary::log(T) : 0.0;
  std::size_t present[component_count], count = 0;
  for (std::size_t i = 0; i < component_count; ++i)
    if (x[i] > 0.0) present[count++] = i;
  VibrationParts parts;
  kernel().vibrate(present, count, T, with_entropy, parts);
  helmholtz::IdealGas sum;  // cp/R - 1 and s/R, less what all components share, and h/R
  for (std::size_t g = 0; g < count; ++g) {
    const std::size_t i = present[g];
    const Ideal& gas = ideal_gases[i];
    double cp = gas.n3 - 1.0;
    double h = gas.n3 - 1.0;      // over R T, but for n2
    double logarithms = -gas.n1;  // of a0/(R T), but for ln T
    for (std::size_t m = 0; m < Vibrations::of_gas; ++m) {
      if (vibrations.weight[i][m] == 0.0) continue;
      const std::size_t at = Vibrations::of_gas * g + m;
      cp += parts.cp[at];
      h += parts.h[at];
      if (with_entropy) logarithms -= parts.logarithms[at];
    }
    sum.cp += x[i] * cp;
    sum.h += x[i] * (T * h + gas.n2 + T_reference);
    sum.s += x[i] * (h + logarithms);
    sum.s += x[i] * (gas.n3 - 1.0) * log_T;
  }
  const double h = T - T_reference + ratio * sum.h;
  const double s = with_entropy ? ratio * sum.s - elementary::log(T_reference * inverse_T) : 0.0;
  return {R_joule * (1.0 + ratio * sum.cp), R_joule * h, R_joule * s};
}

helmholtz::State state_of(double T, double rho, const helmholtz::Residual& r,
                          const helmholtz::IdealGas& ideal) noexcept {
  return helmholtz::state(R_joule, T, rho, r, ideal);
}

helmholtz::State state(const Mixture& mixture, const Isotherm& isotherm, double rho, Entropy entropy) noexcept {
  const helmholtz::Residual r = residual(mixture, isotherm, rho);
  const double T = isotherm.T;
  helmholtz::State now = helmholtz::state(R_joule, T, rho, r, ideal_mixture(mixture.x, T, entropy));
  if (entropy == Entropy::include)
    now.s = helmholtz::entropy(R_joule, T, rho, r, now.ideal.s, helmholtz::mixing(mixture.x), p_reference);
  return now;
}

}  // namespace norvane::GERG2008
