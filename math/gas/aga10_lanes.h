// AGA-10: the vibrations of the ideal gases side by side. Included by one file for each instruction set, which says how
// wide a vector is; everything is a template of that and of the set, so that no two of them
// share a function.
#pragma once

#include "core/elementary_lanes.h"
#include "math/gas/aga10_kernel.h"

namespace norvane::AGA10 {

template <class Value, InstructionSet>
struct Lanes {
  static constexpr std::size_t count = lanes::count_of<Value>;
  static_assert(Vibrations::group % count == 0);

  // In steps over all of them, each short enough for several vectors to be under way at once. With e = exp(-2y):
  // coth y = (1+e)/(1-e), 1/sinh^2 y = 4e/(1-e)^2, ln sinh y = y - ln 2 + ln(1-e); for cosh the signs before e change,
  // and its terms enter enthalpy and entropy with the opposite sign.
  static void vibrate(const Vibrations& vibrations, double T, bool with_entropy, VibrationParts& parts) noexcept {
    constexpr double ln2 = 0.69314718055994531;
    const double inverse_T = 1.0 / T;
    const double *thetas = vibrations.theta.data(), *weights = vibrations.weight.data(),
                 *signs = vibrations.sign.data();
    double *cp = parts.cp.data(), *h = parts.h.data(), *s = parts.s.data();
    alignas(64) double exponentials[Vibrations::most], cotangents[Vibrations::most];
    const std::size_t last = vibrations.count;
    for (std::size_t k = 0; k < last; k += count) {
      const Value y = lanes::load<Value>(thetas + k) * inverse_T;
      lanes::store(exponentials + k, lanes::exp(-2.0 * y));
    }
    for (std::size_t k = 0; k < last; k += count) {
      const Value weight = lanes::load<Value>(weights + k), sign = lanes::load<Value>(signs + k);
      const Value y = lanes::load<Value>(thetas + k) * inverse_T;
      const Value e = lanes::load<Value>(exponentials + k);
      const Value inverse = 1.0 / (1.0 - sign * e);
      const Value cotangent = (1.0 + sign * e) * inverse;
      lanes::store(cp + k, weight * y * y * 4.0 * e * inverse * inverse);
      lanes::store(h + k, sign * weight * T * y * cotangent);
      lanes::store(cotangents + k, cotangent);
    }
    if (!with_entropy) return;
    for (std::size_t k = 0; k < last; k += count) {
      const Value weight = lanes::load<Value>(weights + k), sign = lanes::load<Value>(signs + k);
      const Value y = lanes::load<Value>(thetas + k) * inverse_T;
      const Value below = 1.0 - sign * lanes::load<Value>(exponentials + k);
      lanes::store(s + k, sign * weight * (y * lanes::load<Value>(cotangents + k) - (y - ln2 + lanes::log(below))));
    }
  }

  static double mixing(const std::array<double, AGA8::component_count>& x) noexcept {
    constexpr std::size_t places = (AGA8::component_count + count - 1) / count * count;
    const double* fractions = x.data();
    double present[places], logarithms[places];
    std::size_t n = 0;
    for (std::size_t i = 0; i < AGA8::component_count; ++i)
      if (fractions[i] > 0.0) present[n++] = fractions[i];
    for (std::size_t i = n; i % count != 0; ++i) present[i] = 1.0;
    for (std::size_t i = 0; i < n; i += count)
      lanes::store(logarithms + i, lanes::log(lanes::load<Value>(present + i)));
    double sum = 0.0;
    for (std::size_t i = 0; i < n; ++i) sum += present[i] * logarithms[i];
    return sum;
  }

  static constexpr Kernel kernel = {&vibrate, &mixing};
};

}  // namespace norvane::AGA10
