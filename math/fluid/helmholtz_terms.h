// Sums over the terms of a reduced Helmholtz energy.
//
//   n delta^d tau^t exp(-delta^c), without the exponential where c is 0; t a multiple of one quarter
//
// At one temperature the terms fall into few pairs of exponents (c, d), and with them into one polynomial of delta
// for each c: what a step of a density search has to work out.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <utility>

#include "core/elementary.h"
#include "math/common/helmholtz.h"
#include "math/fluid/phase.h"
#include "math/fluid/powers.h"

namespace norvane::fluid {

struct Term {
  double n;
  int d;
  double t;
  int c;
};

// delta times the first and delta^2 times the second derivative of the residual part to delta.
struct Slopes {
  double d = 0.0, dd = 0.0;
};

template <const auto& terms>
class TermSums {
  static constexpr std::size_t count = std::size(terms);

  struct Layout {
    std::array<int, count> c{};              // of each group, ascending
    std::array<std::size_t, count> first{};  // slot of each group, and the end of the last
    std::array<int, count> d{};              // of each slot, ascending within its group
    std::array<std::size_t, count> slot_of{};
    std::size_t groups = 0, slots = 0;
    int highest_d = 0, highest_t = 0;
  };
  static constexpr Layout make_layout() {
    Layout made;
    for (const Term& term : terms) {
      made.highest_d = std::max(made.highest_d, term.d);
      made.highest_t = std::max(made.highest_t, static_cast<int>(term.t));
    }
    for (int c = 0; c <= 6; ++c) {
      bool some = false;
      for (int d = 1; d <= made.highest_d; ++d) {
        bool used = false;
        for (std::size_t k = 0; k < count; ++k) {
          if (terms[k].c != c || terms[k].d != d) continue;
          made.slot_of[k] = made.slots;
          used = true;
        }
        if (!used) continue;
        if (!some) made.first[made.groups] = made.slots;
        some = true;
        made.d[made.slots++] = d;
      }
      if (some) made.c[made.groups++] = c;
    }
    made.first[made.groups] = made.slots;
    return made;
  }
  static constexpr Layout layout = make_layout();
  static_assert(layout.c[0] == 0);

  static constexpr auto wanted_t() {
    Exponents<static_cast<std::size_t>(layout.highest_t) + 1> wanted{};
    for (const Term& term : terms) wanted[static_cast<std::size_t>(term.t)] = true;
    return wanted;
  }
  static constexpr auto wanted_d() {
    Exponents<static_cast<std::size_t>(std::max(layout.highest_d, 6)) + 1> wanted{};
    for (const Term& term : terms)
      wanted[static_cast<std::size_t>(term.d)] = wanted[static_cast<std::size_t>(term.c)] = true;
    return wanted;
  }

  // f(k) for each term, group or slot, k a constant.
  template <std::size_t size, class Function>
  [[gnu::always_inline]] static void for_each(const Function& f) noexcept {
    [&]<std::size_t... k>(std::index_sequence<k...>) { (f(std::integral_constant<std::size_t, k>{}), ...); }
    (std::make_index_sequence<size>{});
  }

 public:
  // Groups with an exponential; their exponents lead the array that `arguments` fills.
  static constexpr std::size_t exponential_count = layout.groups - 1;
  // Powers of delta, at the place of their exponent.
  using Powers = decltype(powers<wanted_d()>(1.0));

  explicit TermSums(double tau) noexcept {
    const auto whole = powers<wanted_t()>(tau);
    const double root = std::sqrt(tau), fourth_root = std::sqrt(root);
    const double quarters[] = {1.0, fourth_root, root, root * fourth_root};
    for_each<count>([&](auto k) {
      constexpr Term term = terms[k];
      constexpr auto integer = static_cast<std::size_t>(term.t);
      constexpr auto quarter = static_cast<std::size_t>(4.0 * (term.t - static_cast<double>(integer)));
      static_assert(static_cast<double>(integer) + 0.25 * static_cast<double>(quarter) == term.t);
      if constexpr (quarter == 0) {
        value_[k] = term.n * whole[integer];
      } else {
        value_[k] = term.n * (whole[integer] * quarters[quarter]);
      }
      slot_[layout.slot_of[k]] += value_[k];
    });
  }

  static Powers powers_of(double delta) noexcept { return powers<wanted_d()>(delta); }

  template <std::size_t size>
  static void arguments(const Powers& delta, std::array<double, size>& x) noexcept {
    static_assert(size >= exponential_count);
    // What a lower argument gives is nothing beside 1 either, and takes longer.
    constexpr double lowest = -600.0;
    for_each<exponential_count>(
        [&](auto g) { x[g] = std::max(-delta[static_cast<std::size_t>(layout.c[g + 1])], lowest); });
  }

  // `e` holds the exponentials of the arguments.
  template <std::size_t size>
  Slopes slopes(const Powers& delta, const std::array<double, size>& e) const noexcept {
    Slopes sum;
    for_each<layout.groups>([&](auto g) {
      double v = 0.0, dv = 0.0, ddv = 0.0;  // sums of the polynomial, weighted by 1, d and d (d - 1)
      for_each<layout.first[g + 1] - layout.first[g]>([&](auto k) {
        constexpr std::size_t slot = layout.first[g] + k;
        constexpr double d = layout.d[slot];
        const double term = slot_[slot] * delta[static_cast<std::size_t>(layout.d[slot])];
        v += term;
        dv += d * term;
        if constexpr (d > 1.0) ddv += d * (d - 1.0) * term;
      });
      if constexpr (g == 0) {
        sum.d += dv;
        sum.dd += ddv;
      } else {
        constexpr double c = layout.c[g];
        const double q = c * delta[static_cast<std::size_t>(layout.c[g])];
        sum.d += e[g - 1] * (dv - q * v);
        sum.dd += e[g - 1] * (ddv - q * (2.0 * dv + (c - 1.0 - q) * v));
      }
    });
    return sum;
  }

  // B and C of p/(rho R T) = 1 + B delta + C delta^2 + ...
  Virials virials() const noexcept {
    Virials sum{0.0, 0.0};
    for_each<layout.groups>([&](auto g) {
      for_each<layout.first[g + 1] - layout.first[g]>([&](auto k) {
        constexpr std::size_t slot = layout.first[g] + k;
        if constexpr (layout.d[slot] == 1) sum.B += slot_[slot];
        if constexpr (layout.d[slot] == 2) sum.C += 2.0 * slot_[slot];
        if constexpr (layout.d[slot] == 1 && layout.c[g] == 1) sum.C -= 2.0 * slot_[slot];
      });
    });
    return sum;
  }

  // The sum itself.
  template <std::size_t size>
  double value(const Powers& delta, const std::array<double, size>& e) const noexcept {
    double sum = 0.0;
    for_each<layout.groups>([&](auto g) {
      double v = 0.0;
      for_each<layout.first[g + 1] - layout.first[g]>([&](auto k) {
        constexpr std::size_t slot = layout.first[g] + k;
        v += slot_[slot] * delta[static_cast<std::size_t>(layout.d[slot])];
      });
      sum += g == 0 ? v : e[g == 0 ? 0 : g - 1] * v;
    });
    return sum;
  }

  // The sum with all its derivatives, term by term.
  template <std::size_t size>
  helmholtz::Residual residual(const Powers& delta, const std::array<double, size>& e) const noexcept {
    helmholtz::Residual sum{};
    for_each<count>([&](auto k) {
      constexpr Term term = terms[k];
      constexpr double d = term.d, c = term.c, t = term.t;
      double v = value_[k] * delta[static_cast<std::size_t>(term.d)];
      double first = d, second = d * (d - 1.0);  // of the term's own logarithm
      if constexpr (term.c > 0) {
        constexpr std::size_t g = [] {
          std::size_t group = 0;
          while (layout.c[group] != term.c) ++group;
          return group;
        }();
        v *= e[g - 1];
        const double q = c * delta[static_cast<std::size_t>(term.c)];
        first = d - q;
        second = first * (first - 1.0) - c * q;
      }
      sum.ar += v;
      sum.d += first * v;
      sum.dd += second * v;
      sum.t += t * v;
      sum.tt += t * (t - 1.0) * v;
      sum.dt += t * (first * v);
    });
    return sum;
  }

 private:
  std::array<double, count> value_;          // n tau^t
  std::array<double, layout.slots> slot_{};  // its sums over equal (c, d)
};

// Several exponentials, four at a time.
template <std::size_t size>
inline void exponentials(std::array<double, size>& x) noexcept {
  static_assert(size % 4 == 0);
  for (std::size_t i = 0; i < size; i += 4) {
    const auto e = elementary::exp4({x[i], x[i + 1], x[i + 2], x[i + 3]});
    for (std::size_t k = 0; k < 4; ++k) x[i + k] = e[k];
  }
}

}  // namespace norvane::fluid
