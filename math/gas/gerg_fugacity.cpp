// GERG-2008: fugacity coefficients and their derivatives to the composition.
//
//   n_i     moles of a component; n = 1 wherever a value is taken
//   V       volume, 1/rho
//   W       sum n_i ar_i + (1/n) sum(i<j) n_i n_j F_ij ar_ij, a function of n_i, delta and tau
//   Q_v     n^2 v_r, Q_T = n^2 T_r: functions of the second degree in n_i
//   delta   Q_v/(n V)                                 tau   Q_T/(n^2 T)
//
//   ln phi_i = dW/dn_i + delta W_delta (1/delta) d(delta)/dn_i + tau W_tau (1/tau) d(tau)/dn_i - ln Z
//   n d(ln phi_i)/dn_j = d2W/dn_i dn_j (total) + 1 - (1 + P_i)(1 + P_j)/(1 + 2 d + dd)
//
// with 1 + P_i the derivative of p V/(R T) to n_i at constant volume. Lower-case d, t and their doubles are the
// reduced derivatives of ar, as in math/common/helmholtz.h.

#include <algorithm>
#include <cmath>

#include "core/elementary.h"
#include "math/gas/gerg.h"
#include "math/gas/gerg_terms.h"

namespace norvane::GERG2008 {
namespace {

// A sum of terms and its first reduced derivatives.
struct Value {
  double ar = 0.0, d = 0.0, t = 0.0;
};

// What each term contributes for a coefficient of 1: its value, and with derivatives those too.
template <bool derivatives>
struct TermValues {
  alignas(16) double ar[term_count];
  alignas(16) double d[derivatives ? term_count : 1];
  alignas(16) double t[derivatives ? term_count : 1];

  TermValues(const Isotherm& isotherm, double rho) noexcept {
    const Density density(rho * isotherm.v_r, isotherm.fifth);
    alignas(16) double f[slot_count], D[slot_count];
    for_pairs(
        [&](auto pair) {
          const Factors factor = factors<pair>(density);
          for (std::size_t k = 0; k < 2; ++k) {
            f[2 * pair + k] = factor.f[k];
            D[2 * pair + k] = factor.D[k];
          }
        },
        AllPairs{});
    set(isotherm.powers, f, D, std::make_index_sequence<term_count>{});
  }

 private:
  template <std::size_t... n>
  void set(const std::array<double, power_count>& powers, const double* f, const double* D,
           std::index_sequence<n...>) noexcept {
    ((ar[n] = f[terms[n].slot] * powers[exponents.place[n]]), ...);
    if constexpr (derivatives) {
      ((d[n] = ar[n] * D[terms[n].slot]), ...);
      ((t[n] = ar[n] * terms[n].t), ...);
    }
  }
};

// Sum of a b over neighbouring places, in one order on every platform.
template <std::size_t size>
inline double dot(const double* a, const double* b) noexcept {
  Two sum{};
  for (std::size_t k = 0; k + 1 < size; k += 2) sum += Two{a[k], a[k + 1]} * Two{b[k], b[k + 1]};
  return size % 2 == 0 ? sum[0] + sum[1] : sum[0] + sum[1] + a[size - 1] * b[size - 1];
}

// tau d(ar)/d(tau) of the mixture.
template <class Values, std::size_t... k>
inline double total_t(const Mixture& mixture, const Values& values, std::index_sequence<k...>) noexcept {
  Two sum{};
  ((sum += Two{mixture.n[2 * k], mixture.n[2 * k + 1]} * Two{terms[2 * k].t, terms[2 * k + 1].t} *
           Two{values.ar[2 * k], values.ar[2 * k + 1]}),
   ...);
  return sum[0] + sum[1];
}

// The components that are present.
struct Present {
  std::array<std::size_t, component_count> index;
  std::size_t count = 0;

  explicit Present(const Composition& x) noexcept {
    for (std::size_t i = 0; i < component_count; ++i)
      if (x[i] > 0.0) index[count++] = i;
  }
};

// The pure fluids' energies.
template <bool derivatives>
void set_fluids(const Mixture& mixture, const TermValues<derivatives>& values,
                std::array<Value, component_count>& fluid) noexcept {
  std::size_t first = 0;
  const auto form = [&](const auto& members, const auto& n) {
    constexpr std::size_t size = sizeof(n[0]) / sizeof(double);
    for (std::size_t m = 0; m < std::size(members); ++m) {
      if (!(mixture.x[members[m]] > 0.0)) continue;
      Value& sum = fluid[members[m]];
      sum.ar = dot<size>(n[m], values.ar + first);
      if constexpr (derivatives) {
        sum.d = dot<size>(n[m], values.d + first);
        sum.t = dot<size>(n[m], values.t + first);
      }
    }
    first += size;
  };
  form(light_members, light_n);
  form(carbon_dioxide_members, carbon_dioxide_n);
  form(simple_members, coefficients(mixture.edition).simple);
  form(water_members, water_n);
  form(hydrogen_members, hydrogen_n);
  form(helium_members, helium_n);
}

// The departure functions' part: per pair F_ij ar_ij, per component sum_k x_k F_ik ar_ik, and in all.
struct Departures {
  std::array<Value, std::size(departures)> pair{};
  std::array<Value, component_count> component{};
  Value all;
};
template <bool derivatives>
void set_departures(const Mixture& mixture, const TermValues<derivatives>& values, Departures& sums) noexcept {
  std::array<Value, departure_function_count> function{};
  for (std::size_t k = 0; k < std::size(departure_terms); ++k) {
    Value& sum = function[departure_terms[k].function];
    const double n = departure_terms[k].n;
    sum.ar += n * values.ar[pure_term_count + k];
    if constexpr (derivatives) {
      sum.d += n * values.d[pure_term_count + k];
      sum.t += n * values.t[pure_term_count + k];
    }
  }
  const auto add = [](Value& sum, double weight, const Value& value) {
    sum.ar += weight * value.ar;
    if constexpr (derivatives) {
      sum.d += weight * value.d;
      sum.t += weight * value.t;
    }
  };
  for (std::size_t p = 0; p < std::size(departures); ++p) {
    const Departure& pair = departures[p];
    const double x_i = mixture.x[pair.i], x_j = mixture.x[pair.j];
    if (!(x_i > 0.0 && x_j > 0.0)) continue;
    add(sums.pair[p], pair.F, function[pair.function]);
    add(sums.component[pair.i], x_j, sums.pair[p]);
    add(sums.component[pair.j], x_i, sums.pair[p]);
    add(sums.all, x_i * x_j, sums.pair[p]);
  }
}

// Second derivatives of Q_v and Q_T, side by side, to the moles.
using Curvature = std::array<std::array<Two, component_count>, component_count>;
void set_curvature(const PhaseMixture& mixture, const Present& present, Curvature& q) noexcept {
  const Coefficients& table = coefficients(mixture.edition);
  for (std::size_t a = 0; a < present.count; ++a)
    for (std::size_t b = 0; b <= a; ++b)
      q[present.index[a]][present.index[b]] = table.plain[present.index[a]][present.index[b]];
  for (std::size_t s = 0; s < table.skew_count; ++s) {
    const SkewPair& pair = table.skew[s];
    const double x_i = mixture.x[pair.i], x_j = mixture.x[pair.j];
    if (!(x_i > 0.0 && x_j > 0.0)) continue;
    const SkewPart part(pair, x_i, x_j);
    const Two h_ii = -2.0 * pair.b * part.h_i * part.inverse, h_jj = -2.0 * part.h_j * part.inverse,
              h_ij = -(pair.b * part.h_j + part.h_i) * part.inverse;
    q[pair.i][pair.i] += pair.c * x_j * (2.0 * part.h_i + x_i * h_ii);
    q[pair.j][pair.j] += pair.c * x_i * (2.0 * part.h_j + x_j * h_jj);
    q[std::max(pair.i, pair.j)][std::min(pair.i, pair.j)] +=
        pair.c * (part.h + x_i * part.h_i + x_j * part.h_j + x_i * x_j * h_ij);
  }
}

template <bool with_slope>
void calculate(const PhaseMixture& mixture, const Isotherm& isotherm, double rho, double z, PerComponent& ln_phi,
               PerPair* slope) noexcept {
  const Present present(mixture.x);
  const TermValues<with_slope> values(isotherm, rho);
  std::array<Value, component_count> fluid;
  set_fluids(mixture, values, fluid);
  Departures departure;
  if (mixture.departs) set_departures(mixture, values, departure);
  // At a root of the pressure d is known better from z than from the equation.
  const double d = z - 1.0;
  const double t = total_t(mixture, values, std::make_index_sequence<term_count / 2>{});

  // Reduced derivatives of delta and tau: (1/delta) d(delta)/dn_i and (1/tau) d(tau)/dn_i.
  const double inverse_v = 1.0 / mixture.v_r, inverse_T = 1.0 / mixture.T_r;
  PerComponent delta_i, tau_i;
  const double ln_z = elementary::log(z);
  for (std::size_t a = 0; a < present.count; ++a) {
    const std::size_t i = present.index[a];
    delta_i[i] = mixture.reducing[i][0] * inverse_v - 1.0;
    tau_i[i] = mixture.reducing[i][1] * inverse_T - 2.0;
    ln_phi[i] = fluid[i].ar + (departure.component[i].ar - departure.all.ar) + d * delta_i[i] + t * tau_i[i] - ln_z;
  }
  if constexpr (with_slope) {
    const helmholtz::Residual r = residual(mixture, isotherm, rho);
    Curvature q;
    set_curvature(mixture, present, q);
    PerComponent W_delta, W_tau, P;
    for (std::size_t a = 0; a < present.count; ++a) {
      const std::size_t i = present.index[a];
      W_delta[i] = fluid[i].d + departure.component[i].d - departure.all.d;
      W_tau[i] = fluid[i].t + departure.component[i].t - departure.all.t;
      P[i] = W_delta[i] + (r.d + r.dd) * delta_i[i] + r.dt * tau_i[i];
    }
    const double inverse_slope = 1.0 / (1.0 + 2.0 * r.d + r.dd);
    for (std::size_t a = 0; a < present.count; ++a) {
      const std::size_t i = present.index[a];
      for (std::size_t b = 0; b <= a; ++b) {
        const std::size_t j = present.index[b];
        const double delta_ij = (q[i][j][0] - mixture.reducing[i][0] - mixture.reducing[j][0]) * inverse_v + 2.0;
        const double tau_ij =
            (q[i][j][1] - 2.0 * (mixture.reducing[i][1] + mixture.reducing[j][1])) * inverse_T + 6.0;
        const double W_ij = 2.0 * departure.all.ar - departure.component[i].ar - departure.component[j].ar +
                            W_delta[i] * delta_i[j] + W_delta[j] * delta_i[i] + W_tau[i] * tau_i[j] +
                            W_tau[j] * tau_i[i] + r.dd * delta_i[i] * delta_i[j] +
                            r.dt * (delta_i[i] * tau_i[j] + delta_i[j] * tau_i[i]) + r.tt * tau_i[i] * tau_i[j] +
                            r.d * delta_ij + r.t * tau_ij;
        (*slope)[i][j] = (*slope)[j][i] = W_ij + 1.0 - (1.0 + P[i]) * (1.0 + P[j]) * inverse_slope;
      }
    }
    if (mixture.departs) {
      for (std::size_t p = 0; p < std::size(departures); ++p) {
        (*slope)[departures[p].i][departures[p].j] += departure.pair[p].ar;
        (*slope)[departures[p].j][departures[p].i] += departure.pair[p].ar;
      }
    }
  }
}

}  // namespace

void fugacity(const PhaseMixture& mixture, const Isotherm& isotherm, double rho, double z,
              PerComponent& ln_phi) noexcept {
  calculate<false>(mixture, isotherm, rho, z, ln_phi, nullptr);
}
void fugacity(const PhaseMixture& mixture, const Isotherm& isotherm, double rho, double z, PerComponent& ln_phi,
              PerPair& slope) noexcept {
  calculate<true>(mixture, isotherm, rho, z, ln_phi, &slope);
}

}  // namespace norvane::GERG2008
