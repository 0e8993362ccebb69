#include "math/gas/sgerg.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string_view>

#include "tests/support/arguments.h"

namespace norvane {
namespace {

using SGERG::Arguments;
using SGERG::InputSet;
using SGERG::Range;
using SGERG::Reference;
using SGERG::Result;

// Gas 1 of ISO 12213-3, annex C, at 60 bar and 290 K.
constexpr Arguments gas_1 = {
    .pressure = 60, .temperature = 290, .calorific_value = 40.66, .relative_density = 0.581, .carbon_dioxide = 0.006};

Result of(const Arguments& in) {
  Result result;
  const Outcome outcome = calculate(in, result);
  EXPECT_TRUE(outcome.good()) << outcome.status;
  return result;
}

// The sets know the same gas by different properties.
TEST(Sgerg, InputSetsAgree) {
  test::Random random(3);
  int gases = 0;
  for (int i = 0; i < 3000; ++i) {
    Arguments in = {.pressure = random.within(0, 120),
                    .temperature = random.within(263, 338),
                    .calorific_value = random.within(25, 45),
                    .carbon_dioxide = random.within(0, 0.2),
                    .nitrogen = random.within(0, 0.2),
                    .hydrogen = random.within(0, 0.1),
                    .input_set = InputSet::calorific_co2_n2};
    Result known, result;
    if (!calculate(in, known).good()) continue;  // inert and calorific value need not fit
    ++gases;
    in.relative_density = known.relative_density;
    for (const InputSet set :
         {InputSet::calorific_density_co2, InputSet::calorific_density_n2, InputSet::density_co2_n2}) {
      in.input_set = set;
      ASSERT_TRUE(calculate(in, result).good());
      ASSERT_NEAR(result.z, known.z, 1e-11);
      ASSERT_NEAR(result.calorific_value, in.calorific_value, 1e-10);
      ASSERT_NEAR(result.mixture.N2, in.nitrogen, 1e-10);
      ASSERT_NEAR(result.mixture.CO2, in.carbon_dioxide, 1e-10);
    }
  }
  EXPECT_GT(gases, 1000);
}

TEST(Sgerg, ReferenceConditionsDescribeOneGas) {
  // Calorific value and relative density of gas 1 over those at 25/0 and 0 degC.
  constexpr struct {
    Reference reference;
    double Hs, d;
  } conditions[] = {{Reference::c0_0, 1.00257, 1.0},
                    {Reference::c15_15, 0.94851, 0.999739},
                    {Reference::c25_15, 0.94754, 0.999739},
                    {Reference::c20_20, 0.93173, 0.999663},
                    {Reference::c25_20, 0.93126, 0.999663}};
  const double z = of(gas_1).z;
  for (const auto& at : conditions) {
    Arguments in = gas_1;
    in.reference = at.reference;
    in.calorific_value *= at.Hs;
    in.relative_density *= at.d;
    const Result result = of(in);
    EXPECT_NEAR(result.z, z, 1e-5) << static_cast<int>(at.reference);
    EXPECT_NEAR(result.calorific_value, 40.66, 4e-4) << static_cast<int>(at.reference);
  }
  // 60 degF at 14.73 psia holds as much gas as 15 degC at 14.73 (288.15/288.7056) psia, nearly.
  Arguments in = gas_1;
  in.reference = Reference::f60_60;
  in.calorific_value *= 0.94851 * 14.73 * 0.0689476 / 1.01325 * 288.15 / 288.7056;
  in.relative_density *= 0.999739;
  EXPECT_NEAR(of(in).calorific_value, 40.66, 5e-3);
}

// AGA Report No. 8 Part 1, gross method: the same virial coefficients, other constants of air.
TEST(Sgerg, MeetsTheGrossMethod) {
  Arguments in = {.pressure = 100,
                  .temperature = 300,
                  .relative_density = 0.7112387718599272,
                  .carbon_dioxide = 0.06,
                  .nitrogen = 0.02,
                  .input_set = InputSet::density_co2_n2};
  EXPECT_NEAR(of(in).molar_density, 5.197833636353455, 2e-5);
  EXPECT_NEAR(of(in).calorific_value, 42.15440903329388, 2e-4);
  in.calorific_value = 41.37676728724603;
  in.input_set = InputSet::calorific_density_co2;
  EXPECT_NEAR(of(in).molar_density, 5.144374668159809, 1e-5);
  EXPECT_NEAR(of(in).mixture.N2, 0.03191, 1e-5);
}

TEST(Sgerg, TellsRangesAndContradictions) {
  const auto with = [](auto change) {
    Arguments in = gas_1;
    change(in);
    return in;
  };
  EXPECT_EQ(of(gas_1).range, Range::normal);
  EXPECT_EQ(of(with([](Arguments& a) { a.temperature = 65.0 + 273.15, a.pressure = 120; })).range, Range::normal);
  EXPECT_EQ(of(with([](Arguments& a) { a.temperature = -23.0 + 273.15; })).range, Range::extended);
  EXPECT_EQ(of(with([](Arguments& a) { a.pressure = 120.001; })).range, Range::out_of_range);
  EXPECT_EQ(of(with([](Arguments& a) { a.pressure = 0; })).z, 1.0);
  EXPECT_EQ(of(with([](Arguments& a) { a.pressure = 0; })).mass_density, 0.0);

  Result result;
  const auto blamed = [&](const Arguments& in) { return calculate(in, result); };
  EXPECT_EQ(blamed(with([](Arguments& a) { a.relative_density = 0.549; })).status, calculation_error);
  EXPECT_EQ(blamed(with([](Arguments& a) { a.calorific_value = 60; })).status, calculation_error);
  EXPECT_EQ(blamed(with([](Arguments& a) { a.calorific_value = 16; })).status, calculation_error) << "half nitrogen";
  EXPECT_EQ(blamed(with([](Arguments& a) { a.pressure = 800, a.temperature = 150; })).status, calculation_error);
  // What the set does not need is not looked at, what it needs is blamed by its member.
  EXPECT_TRUE(blamed(with([](Arguments& a) { a.nitrogen = std::nan(""); })).good());
  const Arguments bad = with([](Arguments& a) { a.carbon_dioxide = 1.1; });
  EXPECT_EQ(calculate(bad, result).member, &bad.carbon_dioxide);
  EXPECT_EQ(blamed(with([](Arguments& a) { a.carbon_dioxide = 0.6, a.hydrogen = 0.4; })).status, argument_error);
}

}  // namespace
}  // namespace norvane
