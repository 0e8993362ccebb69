#include "math/fluid/iapws_if97.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace norvane::test {
namespace {

using namespace IAPWS_IF97;

constexpr double not_a_number = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();

Result at(double p, double T, Phase phase = Phase::automatic) {
  Result result;
  const Outcome outcome = calculate({p, T, phase}, result);
  EXPECT_EQ(outcome.status, success) << p << " MPa, " << T << " K";
  return result;
}

// Regions meet at their boundaries within the jumps that the release admits; a state on a boundary
// belongs to the region named first.
TEST(IF97, RegionsMeetAtTheirBoundaries) {
  const double up = 1e-9;
  const struct {
    double p, T, dp, dT;
    int region, beyond;
    double jump;
  } cases[] = {{40.0, 623.15, 0, up, 1, 3, 1e-4},
               {100.0, 623.15, 0, up, 1, 3, 1e-4},
               {boundary23_pressure(700.0), 700.0, up, 0, 2, 3, 4e-4},
               {boundary23_pressure(860.0), 860.0, up, 0, 2, 3, 4e-4},
               {99.0, 863.15, 0, up, 2, 2, 1e-8},
               {0.01, 1073.15, 0, up, 2, 5, 4e-4},
               {50.0, 1073.15, 0, up, 2, 5, 4e-4}};
  for (const auto& c : cases) {
    const Result on = at(c.p, c.T), beyond = at(c.p * (1.0 + c.dp), c.T * (1.0 + c.dT));
    EXPECT_EQ(on.region, c.region) << c.p << " " << c.T;
    EXPECT_EQ(beyond.region, c.beyond) << c.p << " " << c.T;
    EXPECT_NEAR(beyond.density / on.density, 1.0, c.jump) << c.p << " " << c.T;
    EXPECT_NEAR(beyond.enthalpy, on.enthalpy, 0.4) << c.p << " " << c.T;
    EXPECT_NEAR(beyond.entropy, on.entropy, 4e-4) << c.p << " " << c.T;
  }
  // The dense side of region 3 up to its corner, where a constant start of the iteration would fail.
  EXPECT_EQ(at(99.0, 862.0).region, 2);
  EXPECT_EQ(at(99.99, 862.0).region, 3);
}

TEST(IF97, SaturationLineFromBothSides) {
  for (double T : {273.15, 300.0, 500.0, 623.15, 623.16, 640.0, 646.0, 647.0, 647.08}) {
    const double p = saturation_pressure(T);
    EXPECT_NEAR(saturation_temperature(p), T, 1e-8 * T);
    const Result liquid = at(p * (1.0 + 1e-9), T), more = at(p * (1.0 + 2e-9), T), on = at(p, T);
    const Result steam = at(p * (1.0 - 1e-9), T), less = at(p * (1.0 - 2e-9), T);
    EXPECT_EQ(liquid.region, T > 623.15 ? 3 : 1);
    EXPECT_EQ(steam.region, T > 623.15 ? 3 : 2);
    // On the line the liquid is answered; either side runs smoothly into it.
    EXPECT_NEAR(on.density / liquid.density, 1.0, 1e-5) << T;
    EXPECT_NEAR(more.density / liquid.density, 1.0, 1e-5) << T;
    EXPECT_NEAR(less.density / steam.density, 1.0, 1e-5) << T;
    EXPECT_GT(liquid.density, critical_density);
    EXPECT_LT(steam.density, critical_density);
    // Both phases have one Gibbs energy, within what the four equations differ.
    EXPECT_NEAR((steam.enthalpy - liquid.enthalpy) / T, steam.entropy - liquid.entropy, 2e-4) << T;
    // The phase that is stable anyway may be asked for.
    EXPECT_EQ(at(p * (1.0 + 1e-9), T, Phase::liquid).density, liquid.density);
    EXPECT_EQ(at(p * (1.0 - 1e-9), T, Phase::steam).density, steam.density);
  }
}

TEST(IF97, APhaseCanBeContinuedAcrossTheLine) {
  // Steam a little wet by its pressure and water a little too hot, as they are measured.
  for (double T : {400.0, 550.0, 622.0, 635.0}) {
    const double p = saturation_pressure(T);
    const Result steam = at(p * 1.01, T, Phase::steam), water = at(p * 0.99, T, Phase::liquid);
    EXPECT_NEAR(steam.density / at(p * 0.999, T).density, 1.0, T > 600.0 ? 0.1 : 0.03);
    EXPECT_NEAR(water.density / at(p * 1.001, T).density, 1.0, 0.03);
    Result result;
    EXPECT_NE(calculate({p * 1.01, T, Phase::steam}, result).text[0], u'\0');
    EXPECT_EQ(calculate({p * 0.99, T, Phase::steam}, result).text[0], u'\0');
  }
  // Up to 10 MPa the equation for metastable vapour, above it that of region 2.
  EXPECT_EQ(at(1.5, 450.0, Phase::steam).density, 1.0 / metastable_vapour(1.5, 450.0).v);
  EXPECT_EQ(at(10.5, 580.0, Phase::steam).density, 1.0 / region2(10.5, 580.0).v);
  // Nothing to choose elsewhere.
  for (Phase phase : {Phase::liquid, Phase::steam})
    for (const auto& [p, T] : {std::pair{1.0, 700.0}, {30.0, 700.0}, {1.0, 1500.0}, {22.5, 648.0}})
      EXPECT_EQ(at(p, T, phase).density, at(p, T).density);
  // Beyond the spinodal there is no such phase: it is refused, not replaced by the other one.
  Result result;
  EXPECT_EQ(calculate({20.0, 640.0, Phase::liquid}, result).status, success);
  EXPECT_EQ(calculate({19.0, 640.0, Phase::liquid}, result).status, no_convergence);
  EXPECT_EQ(calculate({20.4, 640.0, Phase::steam}, result).status, success);
  EXPECT_EQ(calculate({21.0, 640.0, Phase::steam}, result).status, no_convergence);
  EXPECT_EQ(calculate({13.4, 553.0, Phase::steam}, result).status, calculation_error);
}

TEST(IF97, DensityOfRegion3IsTheRootOnTheRightSide) {
  std::mt19937_64 random(17);
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  for (int i = 0; i < 20000; ++i) {
    // The whole region, and ever closer to the critical point and to the saturation line.
    const double near = std::pow(10.0, -11.0 * unit(random)), side = 2.0 * unit(random) - 1.0;
    double T = 623.15 + 240.0 * unit(random), p = 16.6 + 83.4 * unit(random);
    if (i % 3 == 1)
      T = critical_temperature + side * near, p = critical_pressure * (1.0 + near * (unit(random) - 0.5));
    if (i % 3 == 2) T = critical_temperature - 23.9 * unit(random), p = saturation_pressure(T) * (1.0 + side * near);
    Result result;
    ASSERT_EQ(calculate({p, T}, result).status, success) << p << " " << T;
    if (result.region != 3) continue;
    ASSERT_NEAR(region3_pressure(result.density, T) / p, 1.0, 3e-12) << p << " " << T;
    // Within 20 microkelvins the equation of the line and that of the region do not know each other's phase.
    if (T < critical_temperature - 2e-5) {
      ASSERT_EQ(result.density > critical_density, p >= saturation_pressure(T)) << p << " " << T;
    }
  }
  const Result critical = at(critical_pressure, critical_temperature);
  EXPECT_NEAR(critical.density, critical_density, 0.5);
}

TEST(IF97, WhatLiesOutsideIsRefusedWithItsLimit) {
  Result result;
  const auto outcome = [&result](const Arguments& in) { return calculate(in, result); };
  const Arguments good{};
  for (double T : {273.149, 2273.151, -1.0, 0.0, not_a_number, infinite, -infinite}) {
    const Arguments in{good.pressure, T};
    const Outcome o = outcome(in);
    EXPECT_EQ(o.status, argument_error) << T;
    EXPECT_EQ(o.member, &in.temperature);
    EXPECT_EQ(o.limits[1], highest_temperature);
  }
  for (double p : {0.0, -0.0, -1.0, 100.0001, not_a_number, infinite, -infinite}) {
    const Arguments in{p, 500.0};
    const Outcome o = outcome(in);
    EXPECT_EQ(o.status, argument_error) << p;
    EXPECT_EQ(o.member, &in.pressure);
  }
  const Arguments hot{50.0001, 1073.16};
  EXPECT_EQ(outcome(hot).status, argument_error);
  EXPECT_EQ(outcome(hot).limits[0], highest_pressure_region5);
  for (int phase : {0, 4, -1, 2147483647}) {
    const Arguments in{1.0, 300.0, static_cast<Phase>(phase)};
    EXPECT_EQ(outcome(in).member, &in.phase) << phase;
  }
  // The corners are inside.
  for (const auto& [p, T] : {std::pair{100.0, 273.15}, {100.0, 1073.15}, {50.0, 2273.15}, {1e-9, 273.15}}) at(p, T);
}

}  // namespace
}  // namespace norvane::test
