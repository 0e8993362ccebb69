// exp, log and pow of several doubles side by side: each lane has the bits of core/elementary.h.
#pragma once

#include <cstddef>
#include <cstdint>

#include "core/elementary.h"
#include "core/elementary_table.h"
#include "core/lanes.h"

namespace norvane::lanes {

template <class Value>
[[gnu::always_inline]] inline Value exp(Value x) noexcept {
  if (any(~(magnitude(x) < elementary::plain))) [[unlikely]] {
    for (std::size_t i = 0; i < count_of<Value>; ++i) x[i] = elementary::exp(x[i]);
    return x;
  }
  return exp_plain(x);
}

// The same for a lone double, so that one template serves both.
[[gnu::always_inline]] inline double exp(double x) noexcept { return elementary::exp(x); }
[[gnu::always_inline]] inline double log(double x) noexcept { return elementary::log(x); }

// Of four arguments, each in its place; faster than one after the other.
template <class Value>
struct Four {
  Value v[4];
};
template <class Value>
[[gnu::always_inline]] inline Four<Value> exp4(Four<Value> x) noexcept {
  const auto is_plain = [](Value y) { return magnitude(y) < elementary::plain; };
  if (any(~(is_plain(x.v[0]) & is_plain(x.v[1]) & is_plain(x.v[2]) & is_plain(x.v[3])))) [[unlikely]] {
    for (Value& y : x.v)
      for (std::size_t i = 0; i < count_of<Value>; ++i) y[i] = elementary::exp(y[i]);
    return x;
  }
  return {{exp_plain(x.v[0]), exp_plain(x.v[1]), exp_plain(x.v[2]), exp_plain(x.v[3])}};
}
[[gnu::always_inline]] inline Four<double> exp4(const Four<double>& x) noexcept {
  const auto e = elementary::exp4({x.v[0], x.v[1], x.v[2], x.v[3]});
  return {{e[0], e[1], e[2], e[3]}};
}

template <class Value>
[[gnu::always_inline]] inline MaskOf<Value> positive_normal(Value x) noexcept {
  return (x >= 0x1p-1022) & (x <= 0x1.fffffffffffffp+1023);
}

template <class Value>
[[gnu::always_inline]] inline Value log(Value x) noexcept {
  if (any(~positive_normal(x))) [[unlikely]] {
    for (std::size_t i = 0; i < count_of<Value>; ++i) x[i] = elementary::log(x[i]);
    return x;
  }
  Value low;
  return logarithm(x, low);
}

// Each y is between 2^-64 and 2^63.
template <class Value>
[[gnu::always_inline]] inline Value pow(Value x, Value y) noexcept {
  using namespace elementary;
  const auto one_by_one = [&x, &y] {
    for (std::size_t i = 0; i < count_of<Value>; ++i) x[i] = elementary::pow(x[i], y[i]);
    return x;
  };
  if (any(~positive_normal(x) | (x == 1.0))) [[unlikely]]
    return one_by_one();
  Value l_low;
  const Value l = logarithm(x, l_low);
  constexpr std::uint64_t leading = 0xfffffffff8000000;
  const Value y_high = of_bits<Value>(bits_of(y) & leading);
  const Value l_high = of_bits<Value>(bits_of(l) & leading);
  const Value product = y_high * l_high;
  const Value rest = (y - y_high) * l_high + y * ((l - l_high) + l_low);
  if (any(~(magnitude(product) < plain))) [[unlikely]]
    return one_by_one();
  return exp_plain(product, rest);
}

}  // namespace norvane::lanes
