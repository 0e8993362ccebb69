#include "math/flow/aga3.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "tests/math/flow/flow_call.h"

namespace norvane {
namespace {

using AGA3::Code;
using AGA3::Edition;
using differential_pressure::Fluid;
using differential_pressure::Location;
using test::FlowCall;

struct Case {
  AGA3::Measurement measured{
      .dp = 50, .pressure = 500, .temperature = 80, .density = 2, .viscosity = 0.0103, .kappa = 1.3};
  AGA3::Geometry geometry{.pipe_diameter = 8, .device_diameter = 4};
  AGA3::Result result{};
  double gravity = 1.0;

  Code run(Edition edition = Edition::y1992) {
    return AGA3::orifice(measured, geometry, edition, 0.0, gravity, result);
  }
};

TEST(Aga3, ArgumentsHaveTheirCodes) {
  const auto code_of = [](auto change) {
    Case c;
    change(c);
    return c.run();
  };
  EXPECT_EQ(code_of([](Case& c) { c.geometry.device_diameter = 0; }), Code::diameter);
  EXPECT_EQ(code_of([](Case& c) { c.geometry.device_diameter = 8; }), Code::diameter);
  EXPECT_EQ(code_of([](Case& c) {
              c.geometry.pipe_expansion = 1;
              c.geometry.pipe_reference_temperature = 90;
            }),
            Code::diameter);
  EXPECT_EQ(code_of([](Case& c) { c.measured.density = 0; }), Code::density);
  EXPECT_EQ(code_of([](Case& c) { c.measured.pressure = 0; }), Code::pressure);
  EXPECT_EQ(code_of([](Case& c) { c.measured.pressure_location = Location::recovered; }), Code::pressure_location);
  EXPECT_EQ(code_of([](Case& c) { c.measured.dp = -1; }), Code::differential_pressure);
  EXPECT_EQ(code_of([](Case& c) { c.measured.kappa = 0; }), Code::isentropic_exponent);
  // A downstream pressure of zero, and below.
  const auto vacuum = [](Case& c) {
    c.measured.pressure = 2;
    c.measured.dp = 55.414;
  };
  EXPECT_EQ(code_of(vacuum), Code::math);
  EXPECT_EQ(code_of([&](Case& c) {
              vacuum(c);
              c.measured.density_location = Location::downstream;
            }),
            Code::downstream_pressure);
  EXPECT_EQ(code_of([&](Case& c) {
              vacuum(c);
              c.measured.dp = 60;
            }),
            Code::math);
  EXPECT_EQ(code_of([](Case& c) { c.measured.viscosity = 0; }), Code::math);
  EXPECT_EQ(code_of([](Case& c) { c.gravity = std::nan(""); }), Code::math);
  EXPECT_EQ(code_of([](Case& c) {
              c.measured.kappa = 1e-6;
              c.measured.density_exponent = 1;
              c.measured.temperature_correction = differential_pressure::TemperatureCorrection::exponent;
              c.measured.pressure = 10;
            }),
            Code::negative_flow);
}

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

// On the diameters at flowing temperature.
TEST(Aga3, RangeFlagsDoNotChangeTheCode) {
  Case c;
  c.geometry = {.pipe_diameter = 2, .pipe_expansion = 1e-5, .pipe_reference_temperature = 68, .device_diameter = 1};
  ASSERT_EQ(c.run(), Code::ok);
  EXPECT_FALSE(c.result.diameter_out_of_range);
  c.geometry.pipe_reference_temperature = 100;
  ASSERT_EQ(c.run(), Code::ok);
  EXPECT_TRUE(c.result.diameter_out_of_range);

  Case pressure;
  pressure.measured.pressure = 10;
  pressure.measured.dp = 0.22 * 277.07;
  ASSERT_EQ(pressure.run(Edition::y1992), Code::ok);
  EXPECT_TRUE(pressure.result.pressure_out_of_range);
  ASSERT_EQ(pressure.run(Edition::y2012), Code::ok);
  EXPECT_FALSE(pressure.result.pressure_out_of_range);
}

TEST(Aga3, StatusComesWithItsDetailAndNothingElse) {
  const auto expect = [](auto change, int status, int detail, const char16_t* blamed) {
    FlowCall call(u"AGA3_C");
    change(call);
    EXPECT_EQ(call.run(), status);
    EXPECT_EQ(call[u"aga3 status"], detail);
    EXPECT_EQ(call.written(), 2u);
    if (blamed != nullptr) {
      EXPECT_TRUE(call.blames(blamed));
    }
  };
  expect([](FlowCall& c) { c.set(u"pipe diam", 0); }, 1, 1, u"pipe diam");
  expect([](FlowCall& c) { c.set(u"orif diam", 12); }, 1, 1, u"orif diam");
  expect([](FlowCall& c) { c.set(u"drain hole", 2.363); }, 1, 1, u"drain hole");
  expect([](FlowCall& c) { c.set(u"edition", std::nan("")); }, 1, 0, u"edition");
  expect([](FlowCall& c) { c.set(u"orif diam", 11.811); }, 2, 1, u"orif diam");
  expect([](FlowCall& c) { c.set(u"density", 0); }, 1, 2, u"density");
  expect([](FlowCall& c) { c.set(u"isen exp", 0); }, 1, 6, u"isen exp");
  expect([](FlowCall& c) { c.set(u"viscosity", 0); }, 2, 11, nullptr);
  FlowCall fits(u"AGA3_C");
  EXPECT_EQ(fits.set(u"drain hole", 2.362).run(), 0);
}

}  // namespace
}  // namespace norvane
