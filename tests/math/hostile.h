// Random inputs with a fixed seed, among them what no instrument ever reads.
#pragma once

#include <iterator>
#include <limits>
#include <random>

namespace norvane::test {

class Random {
 public:
  explicit Random(unsigned seed) : engine_(seed) {}
  double within(double low, double high) {
    return low + (high - low) * (static_cast<double>(engine_()) / 4294967296.0);
  }
  int option(int low, int high) { return low + static_cast<int>(engine_() % static_cast<unsigned>(high - low + 1)); }
  // One in eight is a number that breaks careless code.
  double hostile(double low, double high) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double bad[] = {0.0,
                              -0.0,
                              -1.0,
                              1e-310,
                              1e-12,
                              1.0,
                              273.15,
                              1e12,
                              1e308,
                              infinity,
                              -infinity,
                              -1e308,
                              std::numeric_limits<double>::quiet_NaN()};
    return option(0, 7) != 0 ? within(low, high) : bad[option(0, static_cast<int>(std::size(bad)) - 1)];
  }

 private:
  std::mt19937 engine_;
};

}  // namespace norvane::test
