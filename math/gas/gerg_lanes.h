// GERG for several rows of one mixture side by side. Included by one file for each instruction set, which says how wide a
// vector is; everything is a template of that and of the set, so that no two of them share a function.
#pragma once

#include <limits>

#include "core/elementary_lanes.h"
#include "math/gas/gerg_kernel.h"
#include "math/gas/gerg_terms.h"

namespace norvane::GERG2008 {

template <class Value, InstructionSet>
struct Lanes {
  static constexpr std::size_t count = lanes::count_of<Value>;
  using Mask = lanes::MaskOf<Value>;

  struct Isotherms {  // as Isotherm
    Value T, RT, tau;
    double v_r;
    bool departs, fifth;
    Value n[slot_count], powers[power_count];

    [[gnu::always_inline]] inline void set(const Mixture& mixture, Value temperature) noexcept {
      const double *x = mixture.x.data(), *coefficient = mixture.n.data();
      T = temperature;
      RT = R * T;
      tau = mixture.T_r / T;
      v_r = mixture.v_r;
      departs = mixture.departs;
      fifth = x[carbon_dioxide] > 0.0 || x[water] > 0.0 || x[hydrogen] > 0.0;
      fill_powers(tau, departs, powers, std::make_index_sequence<power_count>{});
      for_slots(
          [&](auto slot, auto of_slot) {
            n[slot] =
                sum_slot<slot>([&](auto term) { return coefficient[term] * powers[exponents.place[term]]; }, of_slot);
          },
          AllSlots{});
    }
  };

  struct Densities {             // as Density
    Value power[highest_d + 2];  // delta^d
    Value e[shape_count], q[shape_count], r[shape_count];

    [[gnu::always_inline]] inline Densities(Value delta, bool fifth) noexcept {
      const Value d2 = delta * delta;
      power[1] = delta;
      power[2] = d2;
      for (std::size_t d = 3; d <= highest_d + 1; ++d) power[d] = power[d - 2] * d2;
      const auto delta_to = [this](std::size_t k) { return power[k]; };
      set_exponentials(delta, fifth, delta_to, e, q, r);
    }
    // The factor of a slot, and D and X of its derivatives.
    template <std::size_t slot>
    [[gnu::always_inline]] inline void factor(Value& f, Value& D, Value& X) const noexcept {
      constexpr std::size_t shape = slots[slot].shape;
      constexpr double d = slots[slot].d;
      f = power[slots[slot].d];
      D = Value{} + d;
      X = Value{} + d * (d - 1.0);
      if constexpr (shape != 0) {
        f = f * e[shape];
        D = d - q[shape];
        X = D * (D - 1.0) - r[shape];
      }
    }
  };
  template <std::size_t... slot>
  [[gnu::always_inline]] static inline void for_each_slot(const auto& function,
                                                          std::index_sequence<slot...>) noexcept {
    (function(std::integral_constant<std::size_t, slot>{}), ...);
  }

  // Pressure over rho R T, and its slope, as Isotherm::at: sums of the slots in four parts.
  [[gnu::always_inline]] static inline void at(const Isotherms& isotherm, Value rho, Value& z,
                                               Value& dp_drho) noexcept {
    const Densities density(rho * isotherm.v_r, isotherm.fifth);
    Value first[2][2] = {}, second[2][2] = {};
    const auto add = [&](auto slot) {
      Value f, D, X;
      density.template factor<slot>(f, D, X);
      const Value value = isotherm.n[slot] * f;
      first[slot / 2 % 2][slot % 2] += value * D;
      second[slot / 2 % 2][slot % 2] += value * X;
    };
    if (isotherm.departs) {
      for_each_slot(add, AllSlots{});
    } else {
      for_each_slot(add, std::make_index_sequence<first_departure_slot>{});
    }
    const Value d = (first[0][0] + first[1][0]) + (first[0][1] + first[1][1]);
    const Value dd = (second[0][0] + second[1][0]) + (second[0][1] + second[1][1]);
    z = 1.0 + d;
    dp_drho = 1.0 + 2.0 * d + dd;
  }

  // The search where there is one root: the start from the virial equation, then Newton's method between bounds.
  [[gnu::always_inline]] static inline Value density(const Isotherms& isotherm, Value p) noexcept {
    using lanes::magnitude;
    using lanes::select;
    Value b{}, c{};
    for_each_slot(
        [&](auto slot) {
          if constexpr (virial.b[slot] != 0.0) b += virial.b[slot] * isotherm.n[slot];
          if constexpr (virial.c[slot] != 0.0) c += virial.c[slot] * isotherm.n[slot];
        },
        AllSlots{});
    const Value ideal = p * isotherm.v_r / isotherm.RT;
    Value delta = ideal;
    Mask going = delta == delta;
    for (int i = 0; i < 4; ++i) {
      const Value slope = 1.0 + delta * (2.0 * b + 3.0 * c * delta);
      const Value next = delta - (delta * (1.0 + delta * (b + c * delta)) - ideal) / slope;
      going &= (slope > 0.1) & (next > 0.2 * ideal) & (next < 5.0 * ideal);
      delta = select(going, next, delta);
    }

    Mask active = (p > 0.0) & (isotherm.RT > 0.0) & (isotherm.tau * loopless < 1.0);
    Mask found{};
    Value rho{}, now = delta / isotherm.v_r, low{}, high = Value{} + highest_delta / isotherm.v_r;
    now = select(active, now, high);  // a lane that is left out harms none
    for (int i = 0; i < max_rounds; ++i) {
      Value z, dp_drho;
      at(isotherm, now, z, dp_drho);
      const Value pressure = now * isotherm.RT * z, slope = isotherm.RT * dp_drho;
      active &= slope > 0.0;
      const Value next = now + (p - pressure) / slope;
      const Mask arrived = active & (magnitude(next - now) <= settled * now);
      rho = select(arrived, next, rho);
      found |= arrived;
      active &= ~arrived;
      if (!lanes::any(active)) break;
      const Mask below = pressure < p;
      low = select(below, now, low);
      high = select(below, high, now);
      const Mask inside = (next > low) & (next < high);
      now = select(active, select(inside, next, 0.5 * (low + high)), now);
    }
    return select(found, rho, Value{} + std::numeric_limits<double>::quiet_NaN());
  }
  static constexpr int max_rounds = 30;

  // One state: the vibrations of the gases side by side, in steps over all of them, each short enough for several
  // vectors to be under way at once. With e = exp(-2y): coth y = (1+e)/(1-e), 1/sinh^2 y = 4e/(1-e)^2,
  // ln sinh y = y - ln 2 + ln(1-e); for cosh the signs before e change, and its terms enter enthalpy and entropy with
  // the opposite sign.
  static void vibrate(const std::size_t* gases, std::size_t gas_count, double T, bool with_logarithms,
                      VibrationParts& parts) noexcept {
    using Part = typename lanes::Vector<count <= 4 ? count : 4>::Value;
    constexpr std::size_t of_gas = Vibrations::of_gas, width = lanes::count_of<Part>;
    const double inverse_T = 1.0 / T;
    alignas(64) double exponentials[of_gas * component_count];
    double *cp = parts.cp.data(), *h = parts.h.data(), *logarithms = parts.logarithms.data();
    // f(place in the lists, weight, y, sign)
    const auto for_all = [&](const auto& f) {
      constexpr double signs[of_gas] = {1.0, -1.0, 1.0, -1.0};
      for (std::size_t g = 0; g < gas_count; ++g) {
        for (std::size_t m = 0; m < of_gas; m += width) {
          const Part y = lanes::load<Part>(vibrations.theta[gases[g]] + m) * inverse_T;
          f(of_gas * g + m, lanes::load<Part>(vibrations.weight[gases[g]] + m), y, lanes::load<Part>(signs + m));
        }
      }
    };
    for_all([&](std::size_t at, Part, Part y, Part) { lanes::store(exponentials + at, lanes::exp(-2.0 * y)); });
    for_all([&](std::size_t at, Part weight, Part y, Part sign) {
      const Part e = lanes::load<Part>(exponentials + at);
      const Part inverse = 1.0 / (1.0 - sign * e);
      lanes::store(cp + at, weight * y * y * 4.0 * e * inverse * inverse);
      lanes::store(h + at, sign * weight * y * (1.0 + sign * e) * inverse);
    });
    if (!with_logarithms) return;
    for_all([&](std::size_t at, Part weight, Part y, Part sign) {
      const Part below = 1.0 - sign * lanes::load<Part>(exponentials + at);
      lanes::store(logarithms + at, sign * weight * (y - ln2 + lanes::log(below)));
    });
  }

  // ---- Rows ------------------------------------------------------------------------------------------------------

  struct Ideal {
    Value cp, h;
  };
  [[gnu::always_inline]] static inline Ideal ideal_mixture(const double* x, Value T) noexcept {
    constexpr double ratio = R_ideal / R_joule;
    const Value inverse_T = 1.0 / T;
    Value cp_sum{}, h_sum{};
    for (std::size_t i = 0; i < component_count; ++i) {
      if (!(x[i] > 0.0)) continue;
      const GERG2008::Ideal& gas = ideal_gases[i];
      const double weight[4] = {gas.n4, gas.n5, gas.n6, gas.n7};
      const Value y[4] = {gas.theta4 * inverse_T, gas.theta5 * inverse_T, gas.theta6 * inverse_T,
                          gas.theta7 * inverse_T};
      Value cp = Value{} + (gas.n3 - 1.0);
      Value h = cp;
      if (gas.n4 != 0.0) {
        for (std::size_t m = 0; m < 4; ++m) {
          if (weight[m] == 0.0) continue;
          const Value e = lanes::exp(-2.0 * y[m]);
          const double sign = m % 2 == 0 ? 1.0 : -1.0;
          const Value inverse = 1.0 / (1.0 - sign * e);
          cp += weight[m] * y[m] * y[m] * 4.0 * e * inverse * inverse;
          h += sign * weight[m] * y[m] * (1.0 + sign * e) * inverse;
        }
      }
      cp_sum += x[i] * cp;
      h_sum += x[i] * (T * h + gas.n2 + T_reference);
    }
    const Value h = T - T_reference + ratio * h_sum;
    return {R_joule * (1.0 + ratio * cp_sum), R_joule * h};
  }

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

  static void densities(const Mixture& mixture, const double* T, const double* p, double* rho,
                        std::size_t rows) noexcept {
    for_groups(rows, [&](const std::size_t(&row)[count], std::size_t used) {
      Isotherms isotherm;
      isotherm.set(mixture, gather(T, row));
      const Value found = density(isotherm, gather(p, row));
      for (std::size_t i = 0; i < used; ++i) rho[row[i]] = found[i];
    });
  }

  static void states(const Mixture& mixture, const double* T, const double* rho, helmholtz::State* states,
                     std::size_t rows) noexcept {
    const double *x = mixture.x.data(), *coefficient = mixture.n.data();
    for_groups(rows, [&](const std::size_t(&row)[count], std::size_t used) {
      const Value temperature = gather(T, row), at = gather(rho, row);
      Isotherms isotherm;
      isotherm.set(mixture, temperature);
      Value tn[slot_count], ttn[slot_count];
      for_slots(
          [&](auto slot, auto of_slot) {
            tn[slot] = sum_slot<slot>(
                [&](auto term) {
                  constexpr double t = terms[term].t;
                  return coefficient[term] * isotherm.powers[exponents.place[term]] * t;
                },
                of_slot);
            ttn[slot] = sum_slot<slot>(
                [&](auto term) {
                  constexpr double t = terms[term].t;
                  return coefficient[term] * isotherm.powers[exponents.place[term]] * (t * (t - 1.0));
                },
                of_slot);
          },
          AllSlots{});
      const Densities density(at * isotherm.v_r, isotherm.fifth);
      Value ar[2] = {}, d[2] = {}, dd[2] = {}, t[2] = {}, tt[2] = {}, dt[2] = {};
      for_each_slot(
          [&](auto slot) {
            constexpr std::size_t side = slot % 2;
            Value f, D, X;
            density.template factor<slot>(f, D, X);
            const Value value = isotherm.n[slot] * f, t_value = tn[slot] * f;
            ar[side] += value;
            d[side] += value * D;
            dd[side] += value * X;
            t[side] += t_value;
            dt[side] += t_value * D;
            tt[side] += ttn[slot] * f;
          },
          AllSlots{});
      const auto sum = [](const Value(&parts)[2]) { return parts[0] + parts[1]; };
      const Value all[6] = {sum(ar), sum(d), sum(dd), sum(t), sum(tt), sum(dt)};
      const Ideal ideal = ideal_mixture(x, temperature);
      for (std::size_t i = 0; i < used; ++i)
        states[row[i]] =
            state_of(temperature[i], at[i], {all[0][i], all[1][i], all[2][i], all[3][i], all[4][i], all[5][i]},
                     {ideal.cp[i], ideal.h[i], 0.0});
    });
  }

  static constexpr Kernel kernel = {&vibrate, &densities, &states};
};

}  // namespace norvane::GERG2008
