// AGA-8 for several rows side by side. Included by one file for each instruction set, which says how wide a vector is;
// everything is a template of that and of the set, so that no two of them
// share a function.
#pragma once

#include <cmath>
#include <limits>

#include "math/common/root_lanes.h"
#include "math/gas/aga8_kernel.h"
#include "math/gas/aga8_terms.h"

namespace norvane::AGA8 {

template <class Value, InstructionSet>
struct Lanes {
  static constexpr std::size_t count = lanes::count_of<Value>;

  struct Mixtures {  // as Mixture
    Value K3, U, G, Q, F, molar_mass;
    Value beta[18], gamma[46];
  };
  struct Isotherms {  // as Isotherm
    Value T, RT, B, K3, linear, max_density;
    std::array<Value, slot_count> C, bC;
  };
  struct ResidualIsotherms : Isotherms {  // as ResidualIsotherm
    struct Sums {
      Value B, linear;
      std::array<Value, slot_count> C;
    };
    Sums u, uu;
    std::array<Value, slot_count> bbC, buC;
  };

  // A row of the table has twelve numbers.
  using Row = typename lanes::Vector<count <= 4 ? count : 4>::Value;
  static void sum_pairs(const Composition& x, PairSums& sums) noexcept {
    AGA8::sum_pairs<Row>(x.data(), sums.data());
  }

  // x_i of each lane. Absent components add zeros, which change no sum.
  [[gnu::always_inline]] static inline void set(Mixtures& mixture, const Value (&x)[component_count]) noexcept {
    const Coefficients& table = coefficients();
    std::size_t present[component_count], present_count = 0;
    Value molar_mass{}, G{}, Q{}, F{};
    for (std::size_t i = 0; i < component_count; ++i) {
      if (!lanes::any(x[i] > 0.0)) continue;
      present[present_count++] = i;
      const Component& component = components[i];
      molar_mass += x[i] * component.M;
      G += x[i] * component.G;
      Q += x[i] * component.Q;
      F += x[i] * x[i] * component.F;
    }
    Value sum[block_size] = {};
    for (std::size_t a = 0; a < present_count; ++a) {
      const double(*row)[block_size] = table.block + Coefficients::row(present[a]);
      const Value x_a = x[present[a]];
      for (std::size_t b = a; b < present_count; ++b) {
        const Value weight = x_a * x[present[b]];
        const double* entry = row[present[b]];
        for (std::size_t m = 0; m < block_size; ++m) sum[m] += weight * entry[m];
      }
    }
    Value polar[polar_count] = {};
    for (std::size_t p = 0; p < std::size(polar_pairs); ++p) {
      const Value weight = x[polar_pairs[p].i] * x[polar_pairs[p].j];
      if (!lanes::any(weight != 0.0)) continue;
      for (std::size_t m = 0; m < polar_count; ++m) polar[m] += weight * table.polar[p][m];
    }
    for (std::size_t p = 0; p < table.orientation_count; ++p) {
      const Coefficients::Orientation& pair = table.orientation[p];
      G += x[pair.i] * x[pair.j] * pair.g;
    }
    for (std::size_t m = 0; m < common_count; ++m) mixture.beta[common_terms[m] - 1] = sum[m];
    for (std::size_t m = 0; m < polar_count; ++m) mixture.beta[polar_terms[m] - 1] = polar[m];
    mixture.molar_mass = molar_mass;
    mixture.G = G;
    mixture.Q = Q;
    mixture.F = F;
    set_energy_and_size(mixture, lanes::pow(sum[u_place], lanes::all<Value>(0.2)),
                        lanes::pow(sum[k_place], lanes::all<Value>(0.6)));
  }

  [[gnu::always_inline]] static inline Value density(const Isotherms& isotherm, Value p) noexcept {
    const Value least_step = p / isotherm.RT / first_step;
    Value rho;
    const auto found =
        root::search([&isotherm](Value x) { return pressure_of(isotherm, x); }, p, start_of_search(isotherm, p),
                     isotherm.max_density, least_step, tolerance * p, rho);
    return lanes::select(found & (p > 0.0), rho, lanes::all<Value>(std::numeric_limits<double>::quiet_NaN()));
  }

  // Rows in groups of as many as there are lanes; the last group is filled up with its last row.
  template <class Function>
  [[gnu::always_inline]] static inline void for_groups(std::size_t rows, const Function& function) noexcept {
    for (std::size_t first = 0; first < rows; first += count) {
      std::size_t row[count];
      for (std::size_t i = 0; i < count; ++i) row[i] = first + i < rows ? first + i : rows - 1;
      function(row, rows - first < count ? rows - first : count);
    }
  }
  [[gnu::always_inline]] static inline Value gather(const double* from, const std::size_t (&row)[count]) noexcept {
    Value x;
    for (std::size_t i = 0; i < count; ++i) x[i] = from[row[i]];
    return x;
  }
  [[gnu::always_inline]] static inline void scatter(double* to, const std::size_t (&row)[count], std::size_t used,
                                                    Value x) noexcept {
    for (std::size_t i = 0; i < used; ++i) to[row[i]] = x[i];
  }

  static void densities(const Mixture& mixture, const double* T, const double* p, double* rho,
                        std::size_t rows) noexcept {
    for_groups(rows, [&](const std::size_t(&row)[count], std::size_t used) {
      Isotherms isotherm;
      set_isotherm(isotherm, mixture, gather(T, row));
      scatter(rho, row, used, density(isotherm, gather(p, row)));
    });
  }

  static void gases(const Composition* const* x, const double* T, const double* p, double* rho, double* molar_mass,
                    std::size_t rows) noexcept {
    for_groups(rows, [&](const std::size_t(&row)[count], std::size_t used) {
      Value fractions[component_count];
      for (std::size_t c = 0; c < component_count; ++c)
        for (std::size_t i = 0; i < count; ++i) fractions[c][i] = x[row[i]]->data()[c];
      Mixtures mixture;
      set(mixture, fractions);
      Isotherms isotherm;
      set_isotherm(isotherm, mixture, gather(T, row));
      scatter(rho, row, used, density(isotherm, gather(p, row)));
      scatter(molar_mass, row, used, mixture.molar_mass);
    });
  }

  static void residuals(const Mixture& mixture, const double* T, const double* rho, helmholtz::Residual* residuals,
                        std::size_t rows) noexcept {
    for_groups(rows, [&](const std::size_t(&row)[count], std::size_t used) {
      ResidualIsotherms isotherm;
      set_residual_isotherm(isotherm, mixture, gather(T, row));
      const ResidualOf<Value> r = residual_of(isotherm, gather(rho, row));
      for (std::size_t i = 0; i < used; ++i) residuals[row[i]] = {r.ar[i], r.d[i], r.dd[i], r.t[i], r.tt[i], r.dt[i]};
    });
  }

  static constexpr Kernel kernel = {&sum_pairs, &densities, &gases, &residuals};
};

}  // namespace norvane::AGA8
