// The powers of a number that a table of terms needs, each by one product: x^k = x^(k/2) x^(k - k/2).
#pragma once

#include <array>
#include <cstddef>
#include <utility>

namespace norvane::fluid {

// Exponents 0 ... size - 1: those that are wanted, and the halves that lead to them.
template <std::size_t size>
using Exponents = std::array<bool, size>;

template <std::size_t size>
constexpr Exponents<size> with_halves(Exponents<size> wanted) {
  for (std::size_t k = size; k-- > 2;) {
    if (!wanted[k]) continue;
    wanted[k / 2] = wanted[k - k / 2] = true;
  }
  return wanted;
}

// x^k at place k for every exponent of `wanted`; the other places hold nothing.
template <auto wanted>
[[gnu::always_inline]] inline std::array<double, wanted.size()> powers(double x) noexcept {
  constexpr auto needed = with_halves(wanted);
  std::array<double, needed.size()> power;
  const auto fill = [&]<std::size_t k>(std::integral_constant<std::size_t, k>) {
    if constexpr (needed[k]) {
      if constexpr (k == 0) {
        power[k] = 1.0;
      } else if constexpr (k == 1) {
        power[k] = x;
      } else {
        power[k] = power[k / 2] * power[k - k / 2];
      }
    }
  };
  [&]<std::size_t... k>(std::index_sequence<k...>) { (fill(std::integral_constant<std::size_t, k>{}), ...); }
  (std::make_index_sequence<needed.size()>{});
  return power;
}

}  // namespace norvane::fluid
