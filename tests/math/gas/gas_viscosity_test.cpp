#include "math/gas/gas_viscosity.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string_view>

#include "tests/support/arguments.h"

namespace norvane {
namespace {

using ISO20765_5::Arguments;
using ISO20765_5::Cache;
using ISO20765_5::Result;

Result of(const Arguments& in) {
  Result result;
  Cache cache;
  EXPECT_TRUE(calculate(in, result, cache).good());
  return result;
}

Arguments methane(double p, double T) {
  Arguments in = {.pressure = p, .temperature = T};
  in.composition[AGA8::methane] = 1.0;
  return in;
}

TEST(GasViscosity, MethaneIsWhereMeasurementsAre) {
  // The correlation's own figures at 300 K [uPa s]; measured: 11.1, 12.2 and 14.
  EXPECT_NEAR(of(methane(0.1, 300)).viscosity * 1e6, 11.22, 0.01);
  EXPECT_NEAR(of(methane(5.0, 300)).viscosity * 1e6, 11.96, 0.01);
  EXPECT_NEAR(of(methane(10.0, 300)).viscosity * 1e6, 13.60, 0.01);
  EXPECT_EQ(of(methane(0.0, 300)).molar_density, 0.0);
  EXPECT_NEAR(of(methane(0.0, 300)).viscosity, of(methane(1e-6, 300)).viscosity, 1e-12);
  // The two branches of the low-pressure viscosity meet within the correlation's error at Tr = 1.5.
  EXPECT_NEAR(of(methane(0.1, 1.5 * 190.564 - 1e-6)).viscosity / of(methane(0.1, 1.5 * 190.564 + 1e-6)).viscosity,
              1.0, 0.01);
  EXPECT_FALSE(of(methane(10.0, 40.0 + 273.15)).out_of_range);
  EXPECT_TRUE(of(methane(10.01, 300)).out_of_range);
}

TEST(GasViscosity, TakesAmountsAsTheyAre) {
  test::Random random(6);
  Cache cache;
  for (int i = 0; i < 2000; ++i) {
    Arguments in = {.pressure = random.within(0, 10), .temperature = random.within(260, 320)};
    double sum = 0.0;
    for (double& x : in.composition) sum += x = random.whole(0, 2) == 0 ? random.within(0, 0.01) : 0.0;
    in.composition[AGA8::methane] += 1.0 - sum;
    // Percent are the same gas, and neo-pentane counts as i-pentane; a cache that knew another gas changes nothing.
    Arguments other = in;
    other.composition[AGA8::i_pentane] += other.composition.back();
    other.composition.back() = 0.0;
    for (double& x : other.composition) x *= 100.0;
    Result kept;
    ASSERT_TRUE(calculate(in, kept, cache).good());
    ASSERT_EQ(kept.viscosity, of(in).viscosity);
    ASSERT_NEAR(of(other).viscosity / kept.viscosity, 1.0, 1e-10);
  }
  Arguments in = methane(1, 300);
  Result result;
  in.composition[AGA8::nitrogen] = 0.5;
  EXPECT_EQ(calculate(in, result, cache).status, AGA8::composition_error);
  in.composition[AGA8::nitrogen] = -0.5;
  EXPECT_EQ(calculate(in, result, cache).status, calculation_error);
  EXPECT_EQ(calculate(in, result, cache).member, &in.composition);
}

TEST(GasViscosity, AnswersAnyNumbers) {
  test::Random random(7);
  Cache cache;
  for (int i = 0; i < 20000; ++i) {
    Arguments in = {.pressure = random.hostile(0, 300), .temperature = random.hostile(50, 900)};
    in.composition[static_cast<std::size_t>(random.whole(0, 21))] = random.hostile(0.9, 1.1);
    in.composition[static_cast<std::size_t>(random.whole(0, 21))] += random.hostile(0, 0.1);
    Result r;
    const Outcome outcome = calculate(in, r, cache);
    if (outcome.good()) {
      ASSERT_TRUE(r.viscosity > 0.0 && std::isfinite(r.viscosity));
    } else {
      ASSERT_FALSE(std::u16string_view(outcome.text).empty());
    }
  }
}

}  // namespace
}  // namespace norvane
