// Calls of the functions built on the AGA-8 detail equation: pressure, temperature and composition are inputs 1 to 3.
#pragma once

#include <limits>
#include <optional>
#include <vector>

#include "tests/math/gas/gas_call.h"

namespace norvane::test {

class DetailCall : public GasCall {
 public:
  explicit DetailCall(std::u16string_view id) : GasCall(id) { context().slot = &slot_; }
  DetailCall& state(double p, double t) {
    set(1, p).set(2, t);
    return *this;
  }
  DetailCall& composition(std::span<const double> amounts) {
    cells(3, amounts);
    return *this;
  }
  DetailCall& option(std::size_t input, double value) {
    set(input, value);
    return *this;
  }
  // The status output, or nothing when the call failed and answered with its fallback values.
  std::optional<int> operator()() {
    const double status = run();
    if (fell_back()) return std::nullopt;
    return static_cast<int>(status);
  }

 private:
  std::uint64_t slot_ = 0;
};

// 21 fractions and neo-pentane.
template <class Fractions>
std::vector<double> with_neo_pentane(const Fractions& x, double neo_pentane = 0.0) {
  std::vector<double> result(x.begin(), x.end());
  result.push_back(neo_pentane);
  return result;
}

inline constexpr double not_a_number = std::numeric_limits<double>::quiet_NaN();
inline constexpr double infinite = std::numeric_limits<double>::infinity();

}  // namespace norvane::test
