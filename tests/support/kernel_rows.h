// Gases and states for comparing kernels with lone calculations: most are ordinary, some strain every step.
#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <random>

namespace norvane::test {

class RandomRows {
 public:
  explicit RandomRows(unsigned seed) : engine_(seed) {}

  bool once_in(std::size_t n) { return engine_() % n == 0; }
  double between(double low, double high) {
    return low + (high - low) * static_cast<double>(engine_()) / 4294967296.0;
  }

  // Fractions of 21 components, adding up to 1: from pure ones to all of them, with traces.
  std::array<double, 21> composition() {
    std::array<double, 21> x{};
    const std::size_t kind = engine_() % 8;
    if (kind == 0) {
      x[engine_() % x.size()] = 1.0;
      return x;
    }
    x[0] = 1.0;
    for (double& fraction : x)
      if (kind < 3 || once_in(3)) fraction += kind == 1 ? between(0.0, 1.0) : between(0.0, 0.03);
    if (kind == 7) x[engine_() % x.size()] = 1e-300;
    double sum = 0.0;
    for (double fraction : x) sum += fraction;
    for (double& fraction : x) fraction /= sum;
    return x;
  }

  // The same as it is given, with neo-pentane, and now and then what no gas is.
  void fill(std::array<double, 22>& amounts) {
    const std::array<double, 21> x = composition();
    for (std::size_t i = 0; i < x.size(); ++i) amounts[i] = x[i];
    amounts[21] = once_in(4) ? 1e-5 : 0.0;
    if (once_in(20)) amounts[engine_() % amounts.size()] = odd();
  }

  double temperature() {  // [K]
    if (once_in(10)) return std::exp(between(-2.0, 8.0));
    return once_in(200) ? odd() : between(250.0, 350.0);
  }
  double pressure() {  // [MPa]
    if (once_in(10)) return std::exp(between(-40.0, 8.0));
    return once_in(200) ? odd() : between(0.01, 15.0);
  }

 private:
  double odd() {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double numbers[] = {
        0.0, -0.0, -1.0, 1e300, -1e300, 5e-324, std::numeric_limits<double>::quiet_NaN(), -infinity, infinity, 1e-12};
    return numbers[engine_() % std::size(numbers)];
  }

  std::mt19937 engine_;
};

}  // namespace norvane::test
