// The relations of thermodynamics between properties that equations give one by one, held against differences.
#pragma once

#include <gtest/gtest.h>

#include <cmath>

namespace norvane::test {

struct FluidState {
  double v;   // [m3/kg]
  double h;   // [kJ/kg]
  double s;   // [kJ/(kg K)]
  double cp;  // [kJ/(kg K)]
  double cv;  // [kJ/(kg K)]
  double w2;  // [m2/s2]
};

// `at(p, T)` is a FluidState at p [MPa] and T [K]; the state has to lie well inside one phase and one equation.
template <class At>
void expect_consistent(const At& at, double p, double T, double tolerance) {
  constexpr double kJ = 1000.0, step = 2e-4;
  // Central differences over one and two steps, of which the error of second order is taken away.
  const auto slope = [&](auto property, double dp, double dT) {
    const auto over = [&](double n) {
      return (property(at(p + n * dp, T + n * dT)) - property(at(p - n * dp, T - n * dT))) / (2.0 * n * (dp + dT));
    };
    return (4.0 * over(1.0) - over(2.0)) / 3.0;
  };
  const auto v = [](const FluidState& x) { return x.v; };
  const auto h = [](const FluidState& x) { return x.h; };
  const auto s = [](const FluidState& x) { return x.s; };
  const double dp = step * p, dT = step * T;
  const FluidState x = at(p, T);
  const double v_p = slope(v, dp, 0.0), v_T = slope(v, 0.0, dT);
  SCOPED_TRACE(testing::Message() << "at " << p << " MPa, " << T << " K");
  EXPECT_NEAR(slope(h, 0.0, dT) / x.cp, 1.0, tolerance) << "dh/dT";
  EXPECT_NEAR(slope(s, 0.0, dT) * T / x.cp, 1.0, tolerance) << "ds/dT";
  EXPECT_NEAR(slope(h, dp, 0.0) / (kJ * x.v), 1.0 - T * v_T / x.v, tolerance * (1.0 + T * std::fabs(v_T) / x.v))
      << "dh/dp";
  EXPECT_NEAR(slope(s, dp, 0.0) * T / (kJ * x.v), -T * v_T / x.v, tolerance * (1.0 + T * std::fabs(v_T) / x.v))
      << "ds/dp";
  EXPECT_NEAR((x.cp + kJ * T * v_T * v_T / v_p) / x.cv, 1.0, 3.0 * tolerance) << "cv";
  EXPECT_NEAR(-1e6 * x.v * x.v / (v_p + kJ * T * v_T * v_T / x.cp) / x.w2, 1.0, 3.0 * tolerance) << "w";
}

}  // namespace norvane::test
