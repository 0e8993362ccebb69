#include "math/gas/nx19.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string_view>

#include "tests/support/arguments.h"

namespace norvane {
namespace {

using NX19::Arguments;
using NX19::Method;
using NX19::Reduced;
using NX19::Result;

// The report's closed form, with the correction E of the region.
double as_reported(double Pi, double tau, int region) {
  const double a = tau - 1.09, c = -a, k = region == 4 ? 1.25 + 80 * std::pow(0.88 - tau, 2) : 1.25;
  const double cold = 1 - 0.00075 * std::pow(Pi, 2.3) * (2 - std::exp(-20 * c));
  const double E = region == 1 ? 1 - 0.00075 * std::pow(Pi, 2.3) * std::exp(-20 * a) -
                                     0.0011 * std::sqrt(a) * Pi * Pi * std::pow(2.17 + 1.4 * std::sqrt(a) - Pi, 2)
                   : region == 2 ? cold - 1.317 * std::pow(c, 4) * Pi * (1.69 - Pi * Pi)
                                 : cold + 0.455 *
                                              (200 * std::pow(c, 6) - 0.03249 * c + 2.0167 * c * c -
                                               18.028 * std::pow(c, 3) + 42.844 * std::pow(c, 4)) *
                                              (Pi - 1.3) * (1.69 * std::pow(2, k) - Pi * Pi);
  const double m = 0.0330378 / std::pow(tau, 2) - 0.0221323 / std::pow(tau, 3) + 0.0161353 / std::pow(tau, 5);
  const double n = (0.265827 / std::pow(tau, 2) + 0.0457697 / std::pow(tau, 4) - 0.133185 / tau) / m;
  const double B = (3 - m * n * n) / (9 * m * Pi * Pi);
  const double b = (9 * n - 2 * m * n * n * n) / (54 * m * Pi * Pi * Pi) - E / (2 * m * Pi * Pi);
  const double D = std::cbrt(b + std::sqrt(b * b + B * B * B));
  return std::pow(1 + 0.00132 / std::pow(tau, 3.25), 2) / (B / D - D + n / (3 * Pi));
}

TEST(Nx19, MeetsTheClosedFormInEveryRegion) {
  for (double tau = 0.8401; tau < 1.4; tau += 0.003)
    for (double Pi = 0.0147; Pi < 2.0; Pi += 0.007) {
      const int region = tau > 1.09 ? 1 : Pi < 1.3 ? 2 : tau > 0.88 ? 3 : 4;
      ASSERT_EQ(NX19::region({Pi, tau}), region);
      double z = 0.0;
      ASSERT_TRUE(NX19::compressibility({Pi, tau}, region, NX19::n4_as_reported, z)) << Pi << ' ' << tau;
      ASSERT_NEAR(z, as_reported(Pi, tau, region), 1e-11) << Pi << ' ' << tau;
    }
  // Where two regions meet either gives the same; at the low end, where the closed form is 0/0, the limit is met.
  const auto z = [](double Pi, double tau, int region) {
    double value = 0.0;
    EXPECT_TRUE(NX19::compressibility({Pi, tau}, region, NX19::n4_as_reported, value));
    return value;
  };
  EXPECT_NEAR(z(1.0, 1.09, 1), z(1.0, 1.09, 2), 1e-9);
  EXPECT_NEAR(z(1.3, 0.95, 2), z(1.3, 0.95, 3), 1e-9);
  EXPECT_NEAR(z(1.7, 0.88, 3), z(1.7, 0.88, 4), 1e-9);
  EXPECT_NEAR(z(1e-12, 1.0, 2), z(0.0, 1.0, 2), 1e-11);
  for (const Reduced outside : {Reduced{2.001, 1}, {1, 0.839}, {1, 1.401}, {-1e-9, 1}, {std::nan(""), 1}})
    EXPECT_EQ(NX19::region(outside), 0);
}

TEST(Nx19, MethodsAgreeOnLeanGasAndStartAtOne) {
  Arguments in = {.pressure = 14.7,
                  .temperature = 60,
                  .specific_gravity = 0.5725,
                  .carbon_dioxide = 0.003,
                  .nitrogen = 0.005,
                  .methane = 0.97};
  Result result;
  ASSERT_TRUE(calculate(in, result).good());
  EXPECT_NEAR(result.z, 1.0, 2e-4) << "relative to base conditions";
  for (double pressure = 100; pressure < 1500; pressure += 100) {
    in.pressure = pressure;
    in.method = Method::specific_gravity;
    ASSERT_TRUE(calculate(in, result).good());
    const double z = result.z;
    in.method = Method::methane;
    ASSERT_TRUE(calculate(in, result).good());
    EXPECT_NEAR(result.z, z, 2e-3) << pressure;
    EXPECT_FALSE(result.out_of_range);
  }
  in.method = Method::specific_gravity;
  in.specific_gravity = 0.7501;
  ASSERT_TRUE(calculate(in, result).good());
  EXPECT_TRUE(result.out_of_range);
  in.pressure = 3000;
  EXPECT_EQ(calculate(in, result).status, calculation_error);
  in.specific_gravity = -0.6;
  EXPECT_EQ(calculate(in, result).member, &in.specific_gravity);
}

}  // namespace
}  // namespace norvane
