// Several doubles side by side, and the steps of exp and log for them.
//
// For the files that are compiled once for each set of vector instructions. Everything here is a template of the vector
// type or has no address of its own, so that no function compiled for a newer processor can take the place of one that
// every processor runs. No operation mixes lanes, and none is fused: a lane does what the scalar code does, in its order.
#pragma once

#include <cstddef>
#include <cstdint>

#include "core/elementary_table.h"

#if defined(__AVX__)
#include <immintrin.h>
#elif defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace norvane::lanes {

template <std::size_t count>
struct Vector {
  typedef double Value __attribute__((vector_size(8 * count)));
  typedef std::uint64_t Bits __attribute__((vector_size(8 * count)));
  typedef std::int64_t Mask __attribute__((vector_size(8 * count)));  // all bits of a lane, or none
};
template <class Value>
inline constexpr std::size_t count_of = sizeof(Value) / sizeof(double);
template <class Value>
using BitsOf = typename Vector<count_of<Value>>::Bits;
template <class Value>
using MaskOf = typename Vector<count_of<Value>>::Mask;

template <class Value>
[[gnu::always_inline]] inline BitsOf<Value> bits_of(Value x) noexcept {
  return reinterpret_cast<BitsOf<Value>>(x);
}
template <class Value>
[[gnu::always_inline]] inline Value of_bits(BitsOf<Value> bits) noexcept {
  return reinterpret_cast<Value>(bits);
}
template <class Value>
[[gnu::always_inline]] inline Value all(double x) noexcept {
  return Value{} + x;  // -0 becomes 0
}
template <class Value>
[[gnu::always_inline]] inline Value magnitude(Value x) noexcept {
  return of_bits<Value>(bits_of(x) & ~(std::uint64_t{1} << 63));
}
// The magnitude of a, which is not negative, with the sign of b.
template <class Value>
[[gnu::always_inline]] inline Value with_sign(Value a, Value b) noexcept {
  return of_bits<Value>(bits_of(a) | (bits_of(b) & (std::uint64_t{1} << 63)));
}

// Where the mask is set a, else b.
template <class Value>
[[gnu::always_inline]] inline Value select(MaskOf<Value> mask, Value a, Value b) noexcept {
#if defined(__AVX__)
  if constexpr (sizeof(Value) == 32)
    return reinterpret_cast<Value>(_mm256_blendv_pd(reinterpret_cast<__m256d>(b), reinterpret_cast<__m256d>(a),
                                                    reinterpret_cast<__m256d>(mask)));
#endif
  const auto bits = reinterpret_cast<BitsOf<Value>>(mask);
  return of_bits<Value>((bits_of(a) & bits) | (bits_of(b) & ~bits));
}
template <class Mask>
[[gnu::always_inline]] inline bool any(Mask mask) noexcept {
#if defined(__AVX__)
  if constexpr (sizeof(Mask) == 32) return _mm256_movemask_pd(reinterpret_cast<__m256d>(mask)) != 0;
#endif
#if defined(__SSE2__)
  if constexpr (sizeof(Mask) == 16) return _mm_movemask_pd(reinterpret_cast<__m128d>(mask)) != 0;
#endif
  auto sum = mask[0];
  for (std::size_t i = 1; i < sizeof(Mask) / sizeof(double); ++i) sum |= mask[i];
  return sum != 0;
}

template <class Value>
[[gnu::always_inline]] inline Value load(const double* from) noexcept {
  Value x;
  __builtin_memcpy(&x, from, sizeof x);
  return x;
}
template <class Value>
[[gnu::always_inline]] inline void store(double* to, Value x) noexcept {
  __builtin_memcpy(to, &x, sizeof x);
}

// Rounded correctly, as division is.
template <class Value>
[[gnu::always_inline]] inline Value sqrt(Value x) noexcept {
#if defined(__AVX__)
  if constexpr (sizeof(Value) == 32) return reinterpret_cast<Value>(_mm256_sqrt_pd(reinterpret_cast<__m256d>(x)));
#endif
#if defined(__SSE2__)
  if constexpr (sizeof(Value) == 16) return reinterpret_cast<Value>(_mm_sqrt_pd(reinterpret_cast<__m128d>(x)));
#endif
  Value root;
  for (std::size_t i = 0; i < count_of<Value>; ++i) root[i] = __builtin_sqrt(x[i]);
  return root;
}

// The same for a lone double, so that one template serves both.
[[gnu::always_inline]] inline double sqrt(double x) noexcept { return __builtin_sqrt(x); }
[[gnu::always_inline]] inline double magnitude(double x) noexcept { return __builtin_fabs(x); }
[[gnu::always_inline]] inline double select(bool condition, double a, double b) noexcept { return condition ? a : b; }

// ---- Steps of exp and log, see core/elementary.cpp -------------------------------------------------------------

// Of lanes below `plain` in magnitude. `low`, if there is one, is added to the argument and far below it.
template <class Value, class... Low>
[[gnu::always_inline]] inline Value exp_plain(Value x, Low... low) noexcept {
  using namespace elementary;
  const Value shifted = x * inverse_step + rounder;
  const Value n = shifted - rounder;
  const BitsOf<Value> whole = bits_of(shifted);  // n in the low bits; those of `rounder` are far above
  Value value, tail;
  for (std::size_t i = 0; i < count_of<Value>; ++i) {
    const PowerOfTwo& middle = powers_of_two[whole[i] & 127];
    value[i] = middle.value;
    tail[i] = middle.tail;
  }
  const Value r = (((x - n * step_high) - n * step_low) + ... + low);
  const Value r2 = r * r;
  const Value p = r2 * (0.5 + r * (1.0 / 6.0)) + r2 * r2 * (1.0 / 24.0 + r * (1.0 / 120.0));
  const Value rest = tail + r + p;
  const Value scaled = of_bits<Value>(bits_of(value) + ((whole & ~std::uint64_t{127}) << 45));
  return scaled + scaled * rest;
}

// log x as high + low, of lanes that are positive normal numbers.
template <class Value>
[[gnu::always_inline]] inline Value logarithm(Value x, Value& low_part) noexcept {
  using namespace elementary;
  using Bits = BitsOf<Value>;
  const Bits offset = bits_of(x) - first_interval;
  Value inverse, log_high, log_low;
  for (std::size_t i = 0; i < count_of<Value>; ++i) {
    const LogInterval& interval = log_intervals[(offset[i] >> 45) & 127];
    inverse[i] = interval.inverse;
    log_high[i] = interval.log_high;
    log_low[i] = interval.log_low;
  }
  // The exponent as a number: its bits, made positive, into those of `rounder`.
  constexpr std::uint64_t bias = 1024;
  const Bits k = ((offset + (bias << 52)) >> 52) + rounder_bits;
  const Value exponent = of_bits<Value>(k) - (rounder + static_cast<double>(bias));
  const Bits z_bits = bits_of(x) - (offset & 0xfff0000000000000);
  const Value z = of_bits<Value>(z_bits);
  const Value z_high = of_bits<Value>((z_bits + 0x10000000) & 0xffffffffe0000000);
  const Value r_high = z_high * inverse - 1.0;
  const Value r_low = (z - z_high) * inverse;
  const Value r = r_high + r_low;

  const Value a = exponent * ln2_high + log_high + r_high;
  const Value q = 0.5 * r_high * r_high;
  const Value b = a - q;
  const Value b_rest = (a - b) - q;
  const Value s = b + r_low;
  const Value s_low = s - b;
  const Value s_rest = (b - (s - s_low)) + (r_low - s_low);
  const Value r2 = r * r;
  const Value series = (1.0 / 3.0 - r * 0.25) +
                       r2 * ((0.2 - r * (1.0 / 6.0)) + r2 * ((1.0 / 7.0 - r * 0.125) + r2 * (1.0 / 9.0 - r * 0.1)));
  const Value rest = r * r2 * series - r_low * (r_high + 0.5 * r_low);
  const Value low = (b_rest + s_rest) + (exponent * ln2_low + log_low) + rest;
  const Value high = s + low;
  low_part = (s - high) + low;
  return high;
}

}  // namespace norvane::lanes
