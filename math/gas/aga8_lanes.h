// AGA-8 with vectors: the sums of one state, or several rows side by side. Included by one file for each instruction
// set, which says how wide a vector is; everything is a template of that and of the set, so that no two of them share a
// function.
#pragma once

#include <cmath>
#include <limits>

#include "math/common/root.h"
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

    [[gnu::always_inline]] inline void set(const auto& mixture, Value temperature) noexcept {
      set_isotherm(*this, mixture, temperature, [this](auto slot, Value sum) {
        C[slot] = sum;
        bC[slot] = static_cast<double>(slots[slot].b) * sum;
      });
    }
    [[gnu::always_inline]] inline Value pressure(Value rho) const noexcept {
      const Value r = K3 * rho, r2 = r * r, r3 = r2 * r, r4 = r2 * r2;
      return pressure_of(*this, rho, r, r2, lanes::exp4(lanes::Four<Value>{{-r, -r2, -r3, -r4}}), groups(C, r),
                         groups(bC, r));
    }
  };
  struct ResidualIsotherms : Isotherms {  // as ResidualIsotherm
    struct Sums {
      Value B, linear;
      std::array<Value, slot_count> C;
    };
    Sums u, uu;
    std::array<Value, slot_count> bbC, buC;

    [[gnu::always_inline]] inline void set(const Mixture& mixture, Value temperature) noexcept {
      const ResidualSums<Value> sum = set_residual_isotherm(*this, mixture, temperature);
      this->C = sum.C;
      u.C = sum.u;
      uu.C = sum.uu;
      for (std::size_t s = 0; s < slot_count; ++s) {
        const double b = slots[s].b;
        this->bC[s] = b * sum.C[s];
        bbC[s] = b * this->bC[s];
        buC[s] = b * sum.u[s];
      }
    }
    [[gnu::always_inline]] inline ResidualOf<Value> at(Value rho) const noexcept {
      const Value r = this->K3 * rho, r2 = r * r, r3 = r2 * r, r4 = r2 * r2;
      return residual_of(*this, rho, r, r2, lanes::exp4(lanes::Four<Value>{{-r, -r2, -r3, -r4}}), groups(this->C, r),
                         groups(this->bC, r), groups(bbC, r), groups(u.C, r), groups(buC, r), groups(uu.C, r));
    }
  };

  // ---- One state: what is summed with several weights stands side by side ----------------------------------------

  using Two = lanes::Vector<2>::Value;
  using Part = typename lanes::Vector<count <= 4 ? count : 4>::Value;  // of the four weights beside the pair
  static constexpr std::size_t part_size = lanes::count_of<Part>, part_count = 4 / part_size;

  // The exponentials of -r^k.
  [[gnu::always_inline]] static inline lanes::Four<double> exponentials(double r, double r2) noexcept {
    const double r3 = r2 * r, r4 = r2 * r2;
    if constexpr (part_size < 4) {
      return lanes::exp4(lanes::Four<double>{{-r, -r2, -r3, -r4}});
    } else {
      const Part e = lanes::exp(Part{-r, -r2, -r3, -r4});
      return {{e[0], e[1], e[2], e[3]}};
    }
  }
  // The groups of coefficients that stand `stride` numbers apart, all weights at once.
  template <class Weights>
  [[gnu::always_inline]] static inline Groups<Weights> groups_of(const double* coefficients, std::size_t stride,
                                                                 double r) noexcept {
    return groups([=](std::size_t s) { return lanes::load<Weights>(coefficients + stride * s); },
                  lanes::all<Weights>(r));
  }
  template <class Weights>
  [[gnu::always_inline]] static inline Groups<double> of_weight(const Groups<Weights>& all, std::size_t i) noexcept {
    return {all.k0[i], all.k1[i], all.k2[i], all.k3[i], all.k4[i]};
  }

  [[gnu::always_inline]] static inline double pressure_at(const Isotherm& isotherm, double rho) noexcept {
    const double r = isotherm.K3 * rho, r2 = r * r;
    const Groups<Two> both = groups_of<Two>(isotherm.C[0].data(), 2, r);
    return pressure_of(isotherm, rho, r, r2, exponentials(r, r2), of_weight(both, 0), of_weight(both, 1));
  }
  static double pressure(const Isotherm& isotherm, double rho) noexcept { return pressure_at(isotherm, rho); }

  static bool density(const Isotherm& isotherm, double p, double& rho) noexcept {
    if (!(p > 0.0)) return false;  // no gas without pressure; the ideal volume would be infinite
    const root::March march{start_of_search(isotherm, p), isotherm.max_density, p / isotherm.RT / first_step};
    root::Point low{}, high{};
    return root::bracket([&isotherm](double x) { return pressure_at(isotherm, x); }, p, march, low, high) &&
           root::brent([&isotherm, p](double x) { return pressure_at(isotherm, x) - p; }, low, high,
                       {.f = tolerance * p}, rho);
  }

  static void set(Isotherm& isotherm, const Mixture& mixture, double T) noexcept {
    set_isotherm(isotherm, mixture, T, [&isotherm](auto slot, double sum) {
      lanes::store(isotherm.C[slot].data(), Two{1.0, static_cast<double>(slots[slot].b)} * sum);
    });
  }

  static void set_residual(ResidualIsotherm& isotherm, const Mixture& mixture, double T) noexcept {
    const Powers<double> t = powers<double>(1.0 / T, T);
    // A term times 1, u, u (u+1) and nothing.
    struct Sum {
      Part part[part_count] = {};
      [[gnu::always_inline]] inline void add(double u, double value) noexcept {
        const double weight[] = {1.0, u, u * (u + 1.0), 0.0};
        for (std::size_t k = 0; k < part_count; ++k) part[k] += lanes::load<Part>(weight + part_size * k) * value;
      }
      [[gnu::always_inline]] inline double operator[](std::size_t i) const noexcept {
        return part[i / part_size][i % part_size];
      }
    };
    Sum B, linear;
    for (std::size_t n = 0; n < virial_term_count; ++n) B.add(terms[n].u, mixture.beta[n] * t.u[position[n]]);
    for (std::size_t n = first_density_term; n < virial_term_count; ++n)
      linear.add(terms[n].u, mixture.gamma[n - first_density_term] * t.u[position[n]]);
    set_limits(isotherm, mixture, T);
    isotherm.B = B[0];
    isotherm.u.B = B[1];
    isotherm.uu.B = B[2];
    isotherm.linear = linear[0];
    isotherm.u.linear = linear[1];
    isotherm.uu.linear = linear[2];
    for_each_slot(
        [&](auto slot) {
          Sum sum;
          for_terms_of<slot>(
              [&](auto n, auto power) { sum.add(terms[first_density_term + n].u, mixture.gamma[n] * t.u[power]); },
              std::make_index_sequence<density_term_count>{});
          constexpr double b = slots[slot].b;
          const double C = sum[0];
          lanes::store(isotherm.C[slot].data(), Two{1.0, b} * C);
          if constexpr (part_size == 4) {
            const Part weighted = __builtin_shufflevector(sum.part[0], sum.part[0], 0, 1, 1, 2);
            lanes::store(isotherm.rest[slot].data(), Part{b, 1.0, b, 1.0} * weighted * Part{b, 1.0, 1.0, 1.0});
          } else {
            isotherm.rest[slot] = {b * (b * C), sum[1], b * sum[1], sum[2]};
          }
        },
        std::make_index_sequence<slot_count>{});
  }

  static helmholtz::Residual residual(const ResidualIsotherm& isotherm, double rho) noexcept {
    const double r = isotherm.K3 * rho, r2 = r * r;
    const Groups<Two> both = groups_of<Two>(isotherm.C[0].data(), 2, r);
    Groups<Part> part[part_count];
    for (std::size_t k = 0; k < part_count; ++k)
      part[k] = groups_of<Part>(isotherm.rest[0].data() + part_size * k, 4, r);
    const auto rest = [&part](std::size_t i) { return of_weight(part[i / part_size], i % part_size); };
    const ResidualOf<double> sum = residual_of(isotherm, rho, r, r2, exponentials(r, r2), of_weight(both, 0),
                                               of_weight(both, 1), rest(0), rest(1), rest(2), rest(3));
    return {sum.ar, sum.d, sum.dd, sum.t, sum.tt, sum.dt};
  }

  // ---- Rows ------------------------------------------------------------------------------------------------------

  // A row of the table has twelve numbers.
  using Row = typename lanes::Vector<count <= 4 ? count : 4>::Value;
  static void sum_pairs(const Composition& x, PairSums& sums) noexcept {
    AGA8::sum_pairs<Row>(x.data(), sums.data());
  }

  // x_i of each lane. Absent components add zeros, which change no sum.
  [[gnu::always_inline]] static inline void set_mixtures(Mixtures& mixture,
                                                         const Value (&x)[component_count]) noexcept {
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

  [[gnu::always_inline]] static inline Value density_of(const Isotherms& isotherm, Value p) noexcept {
    const Value least_step = p / isotherm.RT / first_step;
    Value rho;
    const auto found =
        root::search([&isotherm](Value x) { return isotherm.pressure(x); }, p, start_of_search(isotherm, p),
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
      isotherm.set(mixture, gather(T, row));
      scatter(rho, row, used, density_of(isotherm, gather(p, row)));
    });
  }

  static void gases(const Composition* const* x, const double* T, const double* p, double* rho, double* molar_mass,
                    std::size_t rows) noexcept {
    for_groups(rows, [&](const std::size_t(&row)[count], std::size_t used) {
      Value fractions[component_count];
      for (std::size_t c = 0; c < component_count; ++c)
        for (std::size_t i = 0; i < count; ++i) fractions[c][i] = x[row[i]]->data()[c];
      Mixtures mixture;
      set_mixtures(mixture, fractions);
      Isotherms isotherm;
      isotherm.set(mixture, gather(T, row));
      scatter(rho, row, used, density_of(isotherm, gather(p, row)));
      scatter(molar_mass, row, used, mixture.molar_mass);
    });
  }

  static void residuals(const Mixture& mixture, const double* T, const double* rho, helmholtz::Residual* residuals,
                        std::size_t rows) noexcept {
    for_groups(rows, [&](const std::size_t(&row)[count], std::size_t used) {
      ResidualIsotherms isotherm;
      isotherm.set(mixture, gather(T, row));
      const ResidualOf<Value> r = isotherm.at(gather(rho, row));
      for (std::size_t i = 0; i < used; ++i) residuals[row[i]] = {r.ar[i], r.d[i], r.dd[i], r.t[i], r.tt[i], r.dt[i]};
    });
  }

  static constexpr Kernel kernel = {&sum_pairs, &set,       &pressure, &density,  &set_residual,
                                    &residual,  &densities, &gases,    &residuals};
};

}  // namespace norvane::AGA8
