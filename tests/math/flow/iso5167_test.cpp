#include "math/flow/iso5167.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace norvane {
namespace {

using namespace ISO5167;
using differential_pressure::Fluid;
using differential_pressure::Location;

struct Case {
  Measurement measured{
      .dp = 100, .pressure = 50, .temperature = 20, .density = 40, .viscosity = 1.5e-5, .kappa = 1.4};
  Geometry geometry{.pipe_diameter = 200, .device_diameter = 100};
  Result result{};

  Code orifice(Tappings tappings = Tappings::corner, Edition edition = Edition::y2003, double hole = 0.0) {
    return ISO5167::orifice(measured, geometry, tappings, edition, hole, result);
  }
  Code venturi(VenturiType type, double coefficient = 0.8) {
    return ISO5167::venturi(measured, geometry, type, {}, coefficient, result);
  }
};

TEST(Iso5167, LimitsAreInclusiveOrStrictAsTheElementSays) {
  const auto corner = [](Case& c) { return c.orifice(); };
  const auto stolz = [](Case& c) { return c.orifice(Tappings::corner, Edition::y1991); };
  const auto conical = [](Case& c) { return c.orifice(Tappings::conical_entrance); };
  const auto isa = [](Case& c) { return isa1932_nozzle(c.measured, c.geometry, Edition::y2003, c.result); };
  const auto as_cast = [](Case& c) { return c.venturi(VenturiType::as_cast); };
  const auto custom = [](Case& c) { return c.venturi(VenturiType::custom); };
  const struct {
    Code (*run)(Case&);
    double D, d;
    Code code;
  } rows[] = {
      {corner, 50, 25, Code::ok},
      {corner, 49.999, 25, Code::pipe_diameter},
      {corner, 60, 12.5, Code::ok},
      {corner, 60, 12.499, Code::device_diameter},
      {corner, 1000, 750, Code::ok},
      {corner, 1000, 751, Code::beta},
      {corner, 1001, 751, Code::beta},  // the later check overrides
      {corner, 200, 39, Code::ok},
      {stolz, 200, 39, Code::beta},
      {conical, 50, 5.9, Code::device_diameter},
      {conical, 500, 159, Code::reynolds},  // and beta; Re above 2e5 beta
      {isa, 50, 25, Code::ok},
      {isa, 500, 149, Code::beta},  // where beta is outside there is no limit for Re
      {as_cast, 100, 55, Code::pipe_diameter},
      {as_cast, 100.001, 55, Code::ok},
      {as_cast, 200, 60, Code::beta},
      {custom, 2000, 1, Code::ok},
  };
  for (const auto& row : rows) {
    Case c;
    c.measured.viscosity = 5e-5;
    c.geometry = {.pipe_diameter = row.D, .device_diameter = row.d};
    EXPECT_EQ(row.run(c), row.code) << row.D << " " << row.d;
    const bool diameter = row.code != Code::ok && (row.code != Code::reynolds || row.d == 159);
    EXPECT_EQ(c.result.diameter_out_of_range, diameter) << row.D << " " << row.d;
    EXPECT_EQ(c.result.reynolds_out_of_range, row.code == Code::reynolds) << row.D << " " << row.d;
  }
}

// The least Reynolds number of each row, met from both sides by the viscosity.
TEST(Iso5167, LeastReynoldsNumbersOfTheOrifice) {
  struct Row {
    Edition edition;
    Tappings tappings;
    double beta, least;
  };
  constexpr double D = 300.0;
  const Row rows[] = {
      {Edition::y1991, Tappings::corner, 0.44, 5000},
      {Edition::y1991, Tappings::corner, 0.46, 10000},
      {Edition::y1991, Tappings::d_and_half_d, 0.5, 1260 * 0.25 * D},
      {Edition::y1991, Tappings::flange, 0.5, 1260 * 0.25 * D},
      {Edition::y1998, Tappings::corner, 0.49, 4000},
      {Edition::y1998, Tappings::d_and_half_d, 0.6, 16000 * 0.36},
      {Edition::y1998, Tappings::flange, 0.25, 4000},
      {Edition::y1998, Tappings::flange, 0.6, 170 * 0.36 * D},
      {Edition::y2003, Tappings::corner, 0.55, 5000},
      {Edition::y2003, Tappings::d_and_half_d, 0.6, 16000 * 0.36},
      {Edition::y2003, Tappings::flange, 0.3, 5000},
      {Edition::y2003, Tappings::quarter_circle, 0.55, 1000 * 0.55 + 9.4e6 * std::pow(0.31, 8)},
      {Edition::y2003, Tappings::conical_entrance, 0.25, 80},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::Message() << static_cast<int>(row.edition) << " " << static_cast<int>(row.tappings) << " "
                                    << row.beta);
    Case c;
    c.measured.fluid = Fluid::liquid;
    c.measured.density = 900;
    c.geometry = {.pipe_diameter = D, .device_diameter = row.beta * D};
    // The Reynolds number falls with the viscosity; the bisection ends on both sides of the limit.
    double low = 1e-6, high = 1e2;
    for (int i = 0; i < 100; ++i) {
      c.measured.viscosity = std::sqrt(low * high);
      const Code code = c.orifice(row.tappings, row.edition);
      const bool inside = delivered(code) && c.result.reynolds >= row.least;
      const bool too_high = row.tappings == Tappings::conical_entrance && c.result.reynolds > 2e5 * row.beta;
      if (delivered(code) && !too_high && std::fabs(c.result.reynolds / row.least - 1.0) > 1e-9) {
        EXPECT_EQ(c.result.reynolds_out_of_range, !inside) << c.result.reynolds;
      }
      (inside ? low : high) = c.measured.viscosity;
    }
    EXPECT_NEAR(high / low, 1.0, 1e-12);
  }
}

TEST(Iso5167, DrainHoleEnlargesTheBore) {
  Case c;
  c.orifice(Tappings::corner, Edition::y2003, 1.0);
  EXPECT_NEAR(c.result.device_diameter, 100.0 * 1.000055, 1e-12);
}

// 1e-12 kg/s is less than the last digit of such a flow.
TEST(Iso5167, LargestFlowsConverge) {
  std::minstd_rand random(11);
  const auto share = [&random] { return static_cast<double>(random()) / 2147483647.0; };
  for (int n = 0; n < 5000; ++n) {
    Case c;
    c.measured.dp = 5000 + 5000 * share();
    c.measured.density = 1000 + 1000 * share();
    c.measured.density_location = share() < 0.5 ? Location::upstream : Location::recovered;
    c.geometry = {.pipe_diameter = 2000, .device_diameter = 1000 + 900 * share()};
    EXPECT_TRUE(delivered(c.orifice(static_cast<Tappings>(random() % 3), static_cast<Edition>(random() % 3))));
    EXPECT_GT(c.result.mass_rate, 4000.0);
  }
}

// A nozzle outside its limits is delivered converged or not ...
TEST(Iso5167, ViscousFlowsEndWithACode) {
  Case c;
  c.measured.fluid = Fluid::liquid;
  c.measured.dp = 3000;
  c.measured.density = 900;
  c.measured.viscosity = 0.2;
  c.geometry = {.pipe_diameter = 100, .device_diameter = 50};
  EXPECT_EQ(isa1932_nozzle(c.measured, c.geometry, Edition::y2003, c.result), Code::reynolds);
  EXPECT_EQ(c.result.rounds, 25);
  // ... unless the loop has been where the coefficient is negative.
  c.measured.dp = 100;
  c.measured.viscosity = 0.3;
  c.geometry.device_diameter = 35;
  EXPECT_EQ(isa1932_nozzle(c.measured, c.geometry, Edition::y2003, c.result), Code::no_convergence);
}

// (1 - eps)/x goes to 0.75/kappa + 0.75 beta^4/(1 - beta^4)/kappa for small x, the first term of the series.
TEST(Iso5167, ExpansibilityOfNozzlesKeepsItsDigits) {
  for (double kappa : {std::nextafter(1.0, 2.0), 1.0001, 1.3, 9.0}) {
    for (double x : {1e-3, 1e-6, 1e-9}) {
      Case c;
      c.measured.kappa = kappa;
      c.measured.dp = 1000 * c.measured.pressure * x;
      c.venturi(VenturiType::custom);
      const double beta4 = 1.0 / 16.0;
      const double slope = (0.75 + 0.75 * beta4 / (1.0 - beta4)) / kappa + beta4 / (4.0 * kappa * (1.0 - beta4));
      EXPECT_NEAR((1.0 - c.result.expansibility) / x, slope, 2.0 * x + 3e-16 / x) << kappa << " " << x;
    }
  }
}

}  // namespace
}  // namespace norvane
