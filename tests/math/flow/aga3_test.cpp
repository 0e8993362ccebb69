#include "math/flow/aga3.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace norvane {
namespace {

using AGA3::Code;
using AGA3::Edition;
using differential_pressure::Fluid;

struct Case {
  AGA3::Measurement measured{
      .dp = 50, .pressure = 500, .temperature = 80, .density = 2, .viscosity = 0.0103, .kappa = 1.3};
  AGA3::Geometry geometry{.pipe_diameter = 8, .device_diameter = 4};
  AGA3::Result result{};
  double gravity = 1.0;

  Code run() { return AGA3::orifice(measured, geometry, Edition::y1992, 0.0, gravity, result); }
};

// Cd solves the correlation: Newton's last step is below 5e-6, and the Reynolds number belongs to the flow. The two
// forms of the correlation meet at X = 1.142..., so Cd as a function of the viscosity has no jump there.
TEST(Aga3, CoefficientIsSmoothAcrossItsTwoForms) {
  Case c;
  c.measured.fluid = Fluid::liquid;
  c.measured.density = 54;
  double last = 0.0;
  bool low = false, high = false;
  for (double mu = 1.0; mu < 200.0; mu *= 1.002) {
    c.measured.viscosity = mu;
    ASSERT_EQ(c.run(), Code::ok);
    const double Cd = c.result.discharge_coefficient;
    EXPECT_NEAR(
        c.result.reynolds,
        48.0 * 1488.16394356955 / (3600.0 * std::numbers::pi) * c.result.mass_rate / (mu * c.result.pipe_diameter),
        1e-8 * c.result.reynolds);
    (c.result.reynolds < 3502.2 ? low : high) = true;
    if (last > 0.0) {
      EXPECT_GT(Cd, last - 1e-5);
      EXPECT_LT(Cd - last, 2e-3);
    }
    last = Cd;
    EXPECT_LE(c.result.steps, 6);
  }
  EXPECT_TRUE(low && high);
}

TEST(Aga3, GravityCorrectionLeavesTheRawFlowAlone) {
  Case plain, corrected;
  corrected.gravity = 0.9985;
  ASSERT_EQ(plain.run(), Code::ok);
  ASSERT_EQ(corrected.run(), Code::ok);
  EXPECT_EQ(corrected.result.mass_rate, plain.result.mass_rate * 0.9985);
  EXPECT_EQ(corrected.result.raw_mass_rate, plain.result.mass_rate);
  EXPECT_EQ(corrected.result.reynolds, plain.result.reynolds);
  EXPECT_NEAR(plain.result.raw_previous_mass_rate, plain.result.mass_rate, 0.02 * plain.result.mass_rate);
}

}  // namespace
}  // namespace norvane
