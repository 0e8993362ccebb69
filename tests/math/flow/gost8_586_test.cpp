#include "math/flow/gost8_586.h"

#include <gtest/gtest.h>

#include <cmath>
#include <iterator>
#include <string_view>

#include "math/flow/gost8_586_table.h"
#include "math/flow/iso5167.h"
#include "tests/support/arguments.h"

namespace norvane {
namespace {

using namespace GOST_8_586_2005;

Arguments gas_run() {
  Arguments in;
  in.measured = {.dp = 250, .pressure = 55, .temperature = 12, .density = 44.5, .viscosity = 1.2e-5, .kappa = 1.3};
  in.geometry = {202.7, 1.1e-5, 20, 121.6, 1.65e-5, 20};
  in.roughness = 0.03;
  in.edge_radius = 0.04;
  return in;
}

// ISO 5167-2:2003, table 1: the greatest 10^4 Ra/D.
TEST(Gost8586, RoughnessLimitsAreThoseOfTheTable) {
  constexpr double Re[] = {1e4, 3e4, 1e5, 3e5, 1e6, 3e6, 1e7, 3e7, 1e8};
  constexpr struct {
    double beta, limit[9];
  } rows[] = {
      {0.2, {15, 15, 15, 15, 15, 15, 15, 15, 15}},          {0.3, {15, 15, 15, 15, 15, 15, 15, 14, 13}},
      {0.4, {15, 15, 10, 7.2, 5.2, 4.1, 3.5, 3.1, 2.7}},    {0.5, {11, 7.7, 4.9, 3.3, 2.2, 1.6, 1.3, 1.1, 0.9}},
      {0.6, {5.6, 4.0, 2.5, 1.6, 1.0, 0.7, 0.6, 0.5, 0.4}}, {0.65, {4.2, 3.0, 1.9, 1.2, 0.8, 0.6, 0.4, 0.3, 0.3}}};
  for (const auto& row : rows)
    for (std::size_t i = 0; i < std::size(Re); ++i) {
      const double computed = greatest_roughness(row.beta, Re[i]);
      const double half_digit = row.limit[i] >= 10 ? 0.5 : 0.0501;
      EXPECT_NEAR(computed, row.limit[i], row.beta == 0.5 && Re[i] >= 1e7 ? 0.07 : half_digit)
          << row.beta << ' ' << Re[i];
    }
  // The bands of the Reynolds number join.
  for (double beta = 0.35; beta < 0.66; beta += 0.05)
    for (double edge : {1e4, 1e5, 3e6})
      EXPECT_NEAR(greatest_roughness(beta, edge * (1 + 1e-9)) / greatest_roughness(beta, edge), 1.0, 0.02)
          << beta << ' ' << edge;
  EXPECT_EQ(least_roughness(0.6, 2.9e6), 0.0);
  EXPECT_EQ(greatest_roughness(0.6, 1e12), greatest_roughness(0.6, 1e8));
}

// With a sharp edge and a pipe within its limits the flow is that of ISO 5167-2:2003.
TEST(Gost8586, SharpPlateInSmoothPipeIsIso5167) {
  test::Random random(10);
  int compared = 0;
  for (int i = 0; i < 20000; ++i) {
    Arguments in = gas_run();
    in.measured.dp = random.within(0, 600);
    in.measured.viscosity = std::exp(random.within(-12, -8));
    in.measured.fluid = static_cast<differential_pressure::Fluid>(random.whole(1, 2));
    in.geometry.device_diameter = in.geometry.pipe_diameter * random.within(0.1, 0.75);
    in.edge_radius = 0.0;
    in.tappings = static_cast<Tappings>(random.whole(1, 3));
    Result r;
    ASSERT_TRUE(calculate(in, r).good());
    ISO5167::Result iso;
    const auto tappings = static_cast<ISO5167::Tappings>(in.tappings);
    ISO5167::orifice(in.measured, in.geometry, tappings, ISO5167::Edition::y2003, 0.0, iso);
    if (r.roughness_factor != 1.0 || r.reynolds < 4000.0) continue;
    ++compared;
    ASSERT_NEAR(r.mass_rate, iso.mass_rate, 2e-12 * iso.mass_rate) << r.reynolds;
    ASSERT_EQ(r.reynolds_out_of_range, iso.reynolds_out_of_range);
    ASSERT_EQ(r.diameter_out_of_range, iso.diameter_out_of_range);
  }
  EXPECT_GT(compared, 5000);
}

TEST(Gost8586, WearRaisesTheCoefficient) {
  Arguments in = gas_run();
  Result sharp, worn;
  ASSERT_TRUE(calculate(in, sharp).good());
  EXPECT_EQ(sharp.edge_factor, 1.0);
  in.edge_radius = 0.2;
  in.roughness = 1.5;
  ASSERT_TRUE(calculate(in, worn).good());
  EXPECT_GT(worn.edge_factor, 1.005);
  EXPECT_GT(worn.roughness_factor, 1.002);
  EXPECT_NEAR(worn.mass_rate / sharp.mass_rate,
              worn.edge_factor * worn.roughness_factor * worn.discharge_coefficient / sharp.discharge_coefficient,
              1e-12);
  // The factor of a rough pipe starts from 1 at the limit; a smooth one is too smooth only at high Reynolds numbers.
  orifice_plate::Flowing flowing;
  ASSERT_TRUE(flowing.set(200, 120));
  const double at_limit = 1e-4 * greatest_roughness(0.6, 1e6) * 200 * 3.141592653589793;
  EXPECT_NEAR(COrifice(flowing, at_limit * 1.0001, 0).roughness_factor(1e6), 1.0, 1e-6);
  EXPECT_EQ(COrifice(flowing, 0, 0).roughness_factor(1e6), 1.0);
  EXPECT_LT(COrifice(flowing, 0, 0).roughness_factor(5e7), 1.0);

  in = gas_run();
  in.measured.dp = 0.0;
  ASSERT_TRUE(calculate(in, worn).good());
  EXPECT_EQ(worn.mass_rate + worn.reynolds + worn.discharge_coefficient, 0.0);
  EXPECT_EQ(worn.expansibility, 1.0);
  in.measured.dp = 55000;
  EXPECT_EQ(calculate(in, worn).member, &in.measured.dp);
  in.measured.dp = 14000;
  ASSERT_TRUE(calculate(in, worn).good());
  EXPECT_TRUE(worn.pressure_out_of_range);
}

TEST(Gost8586, EdgeMeanIsTheMeanOfTheEdge) {
  for (double time : {0.01, 0.5, 3.0, 40.0}) {
    EdgeArguments in{.initial_radius = 0.04, .time = time};
    EdgeResult mean, after;
    ASSERT_TRUE(edge_radius(in, mean).good());
    double sum = 0.0;
    constexpr int steps = 2000;
    in.mode = RadiusMode::after_operation;
    for (int i = 0; i < steps; ++i) {
      in.time = time * (i + 0.5) / steps;
      ASSERT_TRUE(edge_radius(in, after).good());
      sum += after.radius / steps;
    }
    EXPECT_NEAR(mean.radius, sum, 1e-6) << time;
  }
  EdgeResult start;
  for (const RadiusMode mode : {RadiusMode::interval_mean, RadiusMode::after_operation}) {
    ASSERT_TRUE(edge_radius({.initial_radius = 0.04, .time = 0.0, .mode = mode}, start).good());
    EXPECT_DOUBLE_EQ(start.radius, 0.04);
  }
}

TEST(Gost8586, EveryRowAnswersOrSaysWhy) {
  for (int row = -1; row <= 47; ++row) {
    SteelResult steel;
    const Outcome outcome = steel_expansion({Grade{row}, 20.0}, steel);
    EXPECT_EQ(outcome.status, row < 1 || row > 45 || row == 13 ? argument_error : success) << row;
    EXPECT_EQ(std::u16string_view(outcome.text).empty(), outcome.good() && row != 30 && row != 38) << row;
    if (outcome.good()) {
      EXPECT_TRUE(steel.expansion > 6e-6 && steel.expansion < 18e-6) << row;
    }
    RoughnessResult pipe;
    const int status = row < 1 || row > 21 ? argument_error : row == 21 ? calculation_error : success;
    ASSERT_EQ(pipe_roughness({Pipe{row}}, pipe).status, status) << row;
    if (status == success) {
      EXPECT_NEAR(pipe.roughness / pipe.average_roughness, 3.14159, 0.35) << row;
    }
  }
}

}  // namespace
}  // namespace norvane
