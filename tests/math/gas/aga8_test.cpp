#include "math/gas/aga8.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>

#include "tests/math/gas/detail_call.h"
#include "tests/math/gas/detail_reference.h"

namespace norvane::test {
namespace {

using namespace AGA8;

std::vector<Composition> all_gases() {
  std::vector<Composition> gases = {gas_of_21, gulf_coast, coke_oven, sour};
  for (std::size_t i = 0; i < component_count; ++i) {
    Composition pure{};
    pure[i] = 1.0;
    gases.push_back(pure);
  }
  return gases;
}

// A relative rounding error that 23rd powers and sums of the terms explain.
constexpr double rounding = 2e-14;

TEST(AGA8Detail, PressureIsThatOfTheEquationWrittenOut) {
  for (const Composition& x : all_gases()) {
    Mixture mixture;
    mixture.set(x);
    for (double T : {123.15, 265.15, 300.0, 723.15}) {
      const DetailReference reference(x, T);
      EXPECT_NEAR(mixture.K3 / static_cast<double>(std::pow(reference.K(), 3.0L)), 1.0, 4e-15);
      EXPECT_NEAR(mixture.U / static_cast<double>(reference.U()), 1.0, 4e-15);
      Isotherm isotherm;
      isotherm.set(mixture, T);
      // The virial coefficient changes its sign, so that its scale is that of a hard core.
      EXPECT_NEAR(isotherm.B, static_cast<double>(reference.B()), rounding * (mixture.K3 + std::fabs(isotherm.B)));
      for (double r : {1e-9, 0.01, 0.1, 0.5, 1.0, 2.0, 15.0}) {
        const double rho = r / mixture.K3;
        const DetailReference::Z want = reference.z(rho);
        EXPECT_NEAR(isotherm.pressure(rho) / (rho * isotherm.RT), static_cast<double>(want.value),
                    rounding * static_cast<double>(want.size))
            << T << " " << r;
      }
    }
  }
}

// Wherever a density is answered over the whole range of the function, it solves the equation; natural gases above
// the range's cold end always get an answer.
TEST(AGA8Detail, DensitySolvesTheEquationOverTheWholeRange) {
  for (const Composition& x : all_gases()) {
    const bool natural_gas = x == gas_of_21 || x == gulf_coast || x == coke_oven;
    CDetail detail;
    for (double t : {-150.0, -129.0, -40.0, 0.0, 20.0, 62.0, 204.0, 450.0}) {
      const double T = t + 273.15;
      const DetailReference reference(x, T);
      for (double p : {1e-300, 1e-6, 0.01, 1.01325, 30.0, 70.0, 120.0, 700.0, 1379.0, 2800.0}) {
        State state;
        const Result result = detail.calculate(x, T, p / 10.0, state);
        if (natural_gas && t >= 62.0) {
          EXPECT_EQ(result, converged) << t << " " << p;
        }
        if (result != converged) continue;
        const DetailReference::Z want = reference.z(state.molar_density);
        const auto equation = static_cast<double>(want.value * state.molar_density * R * T);
        // What the stop rule leaves, and rounding.
        const auto allowed = 2e-11 + rounding * static_cast<double>(want.size / std::fabs(want.value));
        EXPECT_NEAR(equation / (p / 10.0), 1.0, allowed) << t << " " << p << " z " << state.z;
        EXPECT_DOUBLE_EQ(state.z * state.molar_density * (R * T), p / 10.0);
        EXPECT_DOUBLE_EQ(state.mass_density, state.molar_density * state.molar_mass);
      }
    }
  }
}

bool same_bits(const State& a, const State& b) { return std::memcmp(&a, &b, sizeof a) == 0; }

// Composition, temperature and pressure change in every combination, failures among them; what the memory answers
// must be what a fresh calculation answers, bit for bit, at once and when asked again.
TEST(AGA8Detail, MemoryAnswersAsAFreshCalculation) {
  std::mt19937_64 engine(8);
  const Composition methane_only = gas({{methane, 1.0}});
  const Composition gases[] = {gas_of_21, gulf_coast, methane_only};
  const double temperatures[] = {123.15, 288.15, 288.15000000000003, 313.15, 800.0};
  const double pressures[] = {0.0, 0.101325, 6.0, 6.000000000000001, 280.0, -1.0, not_a_number};
  CDetail memory;
  int answered = 0, refused = 0;
  for (int i = 0; i < 3000; ++i) {
    const Composition& x = gases[engine() % 3];
    const double T = temperatures[engine() % 5];
    const double p = pressures[engine() % 7];
    CDetail fresh;
    State kept, again, want;
    const Result expected = fresh.calculate(x, T, p, want);
    ASSERT_EQ(memory.calculate(x, T, p, kept), expected) << T << " " << p;
    ASSERT_EQ(memory.calculate(x, T, p, again), expected);
    ASSERT_TRUE(same_bits(kept, want) && same_bits(again, want)) << T << " " << p;
    ++(expected == converged ? answered : refused);
  }
  EXPECT_GT(answered, 500);
  EXPECT_GT(refused, 500);
}

TEST(AGA8Detail, HostileNumbersEndAsAResult) {
  const double numbers[] = {not_a_number, infinite, -infinite, 0.0, -0.0, -1.0, 1e-320, 1e308, 300.0, 5.0};
  for (double T : numbers) {
    for (double p : numbers) {
      CDetail detail;
      State state;
      const Result result = detail.calculate(gulf_coast, T, p, state);
      EXPECT_TRUE(result != converged || (std::isfinite(state.z) && state.z > 0.0)) << T << " " << p;
    }
  }
}

// ---- Composition -------------------------------------------------------------------------------------------------

CompositionInput input_of(const Composition& x, double neo_pentane = 0.0) {
  CompositionInput input{};
  std::copy(x.begin(), x.end(), input.begin());
  input.back() = neo_pentane;
  return input;
}

TEST(AGA8Composition, NeoPentaneIsFoldedOrDropped) {
  CompositionInput input = input_of(gas({{methane, 0.95}, {i_pentane, 0.02}, {n_pentane, 0.01}}), 0.02);
  Composition x;
  ASSERT_EQ(composition::prepare(input, composition::add_to_i_pentane, composition_error, x).status, success);
  EXPECT_DOUBLE_EQ(x[i_pentane], 0.04);
  EXPECT_DOUBLE_EQ(x[n_pentane], 0.01);
  ASSERT_EQ(composition::prepare(input, composition::add_to_n_pentane, composition_error, x).status, success);
  EXPECT_DOUBLE_EQ(x[n_pentane], 0.03);
  ASSERT_EQ(composition::prepare(input, composition::neglect, composition_error, x).status, success);
  EXPECT_DOUBLE_EQ(x[i_pentane], 0.02 / 0.98);
  // Percent are no fractions for the mode that drops.
  for (double& amount : input) amount *= 100.0;
  EXPECT_EQ(composition::prepare(input, composition::neglect, composition_error, x).status, composition_error);
  EXPECT_EQ(composition::prepare(input, composition::add_to_n_pentane, composition_error, x).status, success);
  EXPECT_DOUBLE_EQ(x[n_pentane], 0.03);
}

TEST(AGA8Composition, SumsAndAmountsAreChecked) {
  const auto result = [](double methane_amount, double ethane_amount, NeoPentaneMode mode, double neo = 0.0) {
    Composition x;
    return composition::prepare(input_of(gas({{methane, methane_amount}, {ethane, ethane_amount}}), neo), mode, composition_error, x).status;
  };
  EXPECT_EQ(result(0.9, 0.0, composition::add_to_i_pentane), composition_error);
  EXPECT_EQ(result(0.95, 0.04991, composition::add_to_i_pentane), success);
  EXPECT_EQ(result(0.95, 0.04989, composition::add_to_i_pentane), composition_error);
  EXPECT_EQ(result(95.0, 5.009, composition::add_to_i_pentane), success);
  EXPECT_EQ(result(95.0, 5.011, composition::add_to_i_pentane), composition_error);
  EXPECT_EQ(result(0.5, 0.0, composition::neglect, 0.5), success);
  EXPECT_EQ(result(0.5, 0.0, composition::neglect, 0.4), composition_error);
  EXPECT_EQ(result(1.1, -0.1, composition::add_to_i_pentane), calculation_error);
  EXPECT_EQ(result(1.1, -0.1, composition::neglect), calculation_error);
  EXPECT_EQ(result(1e-8, 0.0, composition::add_to_n_pentane), calculation_error);
  EXPECT_EQ(result(infinite, 0.0, composition::add_to_n_pentane), calculation_error);
  for (NeoPentaneMode mode : {composition::add_to_i_pentane, composition::add_to_n_pentane, composition::neglect}) {
    EXPECT_NE(result(not_a_number, 1.0, mode), success);
    EXPECT_NE(result(1.0, 0.0, mode, not_a_number), success);
  }
}

// ---- Range rules -------------------------------------------------------------------------------------------------

// Methane makes up the rest.
Composition with(ComponentIndex component, double fraction) {
  Composition x{};
  x[methane] = 1.0 - fraction;
  x[component] = fraction;
  return x;
}
constexpr double above(double limit) { return limit * (1.0 + 1e-9) + 1e-15; }

TEST(AGA8Range, CompositionOf1994ChangesAtItsLimits) {
  const struct {
    ComponentIndex component;
    double normal, extended;  // upper limits; 2 means none
  } rules[] = {{ethane, 0.1, 2},         {propane, 0.04, 0.12},    {i_butane, 0.01, 0.06},
               {n_butane, 0.01, 0.06},   {i_pentane, 0.003, 0.04}, {n_pentane, 0.003, 0.04},
               {n_hexane, 0.002, 2},     {n_decane, 0.002, 2},     {carbon_monoxide, 0.03, 0.03},
               {carbon_dioxide, 0.3, 2}, {nitrogen, 0.5, 2},       {helium, 0.002, 0.03},
               {argon, 0.0, 0.01},       {oxygen, 0.0, 0.21},      {hydrogen_sulfide, 0.0002, 2},
               {hydrogen, 0.1, 2},       {water, 0.0005, 2}};
  for (const auto& rule : rules) {
    EXPECT_EQ(composition_range_1994(with(rule.component, rule.normal)), 0) << rule.component;
    EXPECT_EQ(composition_range_1994(with(rule.component, above(rule.normal))), rule.normal == rule.extended ? 2 : 1)
        << rule.component;
    if (rule.extended > 1.0) continue;
    EXPECT_EQ(composition_range_1994(with(rule.component, rule.extended)), rule.normal == rule.extended ? 0 : 1);
    EXPECT_EQ(composition_range_1994(with(rule.component, above(rule.extended))), 2) << rule.component;
  }
  Composition x = with(i_butane, 0.006);
  x[n_butane] = 0.0041;  // only the sum is above
  EXPECT_EQ(composition_range_1994(x), 1);
  x = with(n_hexane, 0.002);
  x[n_heptane] = 0.002;  // hexanes and heavier do not sum
  EXPECT_EQ(composition_range_1994(x), 0);
  EXPECT_EQ(composition_range_1994(with(nitrogen, 0.55)), 1);
  EXPECT_EQ(composition_range_1994(gas({{methane, 0.44}, {nitrogen, 0.5}, {carbon_dioxide, 0.06}})), 1);
}

TEST(AGA8Range, StateOf1994ChangesAtItsLimits) {
  const struct {
    double t, p;
    int code;
  } cases[] = {{-8, 120, 0},    {62, 0, 0},           {-8.001, 1, 1},       {62.001, 1, 1},  {20, 120.001, 1},
               {-129, 1379, 1}, {204, 1379, 1},       {-129.1, 1, 2},       {204.001, 1, 2}, {20, 1379.1, 2},
               {20, -0.001, 2}, {not_a_number, 1, 2}, {20, not_a_number, 2}};
  for (const auto& c : cases) EXPECT_EQ(state_range_1994(c.t, c.p / 10.0), c.code) << c.t << " " << c.p;
}

TEST(AGA8Range, RegionsOf2017) {
  const Composition pure = with(methane, 1.0);
  const struct {
    double t, p;
    int code;
  } states[] = {{-4, 103, 0},   {-8, 210, 0},  {-8.001, 210, 1}, {20, 210.1, 1}, {-130, 1, 1},         {180, 2800, 1},
                {-130.1, 1, 2}, {180.1, 1, 2}, {20, 2800.1, 2},  {20, -0.1, 2},  {20, not_a_number, 2}};
  for (const auto& c : states) EXPECT_EQ(range_2017(pure, c.t, c.p / 10.0), c.code) << c.t << " " << c.p;

  const auto at = [](const Composition& x, double p) { return range_2017(x, 20.0, p / 10.0); };
  EXPECT_EQ(at(with(nitrogen, 0.5), 103.0), 0);  // region A only
  EXPECT_EQ(at(with(nitrogen, 0.5), 104.0), 1);
  EXPECT_EQ(at(with(hydrogen, 0.9), 21.0), 0);  // region B only
  EXPECT_EQ(at(with(hydrogen, 0.9), 21.1), 1);
  EXPECT_EQ(at(with(ethane, 0.04), 210.0), 0);  // region C only at this pressure
  EXPECT_EQ(at(with(ethane, above(0.04)), 210.0), 1);
  // Sums of region A: pentanes, hexane and heavier, heptane and heavier.
  Composition x = with(i_pentane, 0.002);
  x[n_pentane] = 0.0011;
  EXPECT_EQ(at(x, 50.0), 1);
  x = with(n_hexane, 0.0012);
  x[n_heptane] = 0.00031;
  EXPECT_EQ(at(x, 50.0), 1);
  x = with(n_heptane, 0.0002);
  x[n_octane] = 0.00021;
  EXPECT_EQ(at(x, 50.0), 1);
  x = with(i_pentane, 0.015);
  x[n_pentane] = 0.006;  // and the one of region B
  EXPECT_EQ(at(x, 10.0), 1);
}

TEST(AGA8Range, CarbonDioxideLadderOf2017) {
  const struct {
    ComponentIndex component;
    double fraction, limit;
  } steps[] = {{propane, 0.021, 0.05},  {propane, 0.011, 0.07},  {i_butane, 0.0011, 0.10}, {n_butane, 0.0031, 0.10},
               {nitrogen, 0.151, 0.10}, {nitrogen, 0.071, 0.20}, {ethane, 0.05, 0.30}};
  for (const auto& step : steps) {
    for (double carbon_dioxide_fraction : {step.limit, above(step.limit)}) {
      Composition x = with(step.component, step.fraction);
      x[methane] -= carbon_dioxide_fraction;
      x[carbon_dioxide] = carbon_dioxide_fraction;
      EXPECT_EQ(range_2017(x, 20.0, 6.0), carbon_dioxide_fraction > step.limit ? 1 : 0) << step.component;
    }
  }
}

// ---- The functions -----------------------------------------------------------------------------------------------

enum Outputs : std::size_t { status, z, mass_density, molar_density, molar_mass_output, oor };

TEST(AGA8Functions, PercentNamesAndRepetitionDoNotChangeTheAnswer) {
  DetailCall call(u"AGA8_M");
  call.composition(with_neo_pentane(gas_of_21)).state(60.0, 20.0);
  ASSERT_EQ(call(), 0);
  const double first = call.value(z);
  EXPECT_EQ(call(), 0);
  EXPECT_EQ(call.value(z), first);
  std::vector<double> percent = with_neo_pentane(gas_of_21);
  for (double& amount : percent) amount *= 100.0;
  ASSERT_EQ(call.composition(percent)(), 0);
  EXPECT_DOUBLE_EQ(call.value(z), first);
  EXPECT_EQ(call.value(oor), 1);
}

// A temperature beyond the equation is an argument error in the metric function only;
// pressure 0 is inside every range and has no density.
TEST(AGA8Functions, StatusTellsWhatFailed) {
  const struct {
    double p, t;
    std::optional<int> metric;
  } cases[] = {{2800.0, 20.0, 0},       {2800.1, 20.0, 1},   {-0.1, 20.0, 1},     {60.0, 450.1, 1},
               {60.0, -150.1, 1},       {0.0, 20.0, 2},      {800.0, -129.0, 2},  {not_a_number, 20.0, 1},
               {60.0, not_a_number, 1}, {infinite, 20.0, 1}, {60.0, -infinite, 1}};
  for (const auto& c : cases) {
    DetailCall call(u"AGA8_M");
    call.composition(with_neo_pentane(gulf_coast)).state(c.p, c.t);
    EXPECT_EQ(call(), c.metric) << c.p << " " << c.t;
    EXPECT_EQ(call.status_alone(), c.metric != 0) << c.p << " " << c.t;
  }
  const struct {
    double p, t;
    std::optional<int> customary;
  } customary_cases[] = {{870.0, 68.0, 0},    {0.0, 68.0, 2},      {not_a_number, 68.0, 2}, {870.0, not_a_number, 2},
                         {40001.0, 68.0, {}}, {870.0, -251.0, {}}, {infinite, 68.0, {}}};
  for (const auto& c : customary_cases) {
    DetailCall call(u"AGA8_C");
    call.composition(with_neo_pentane(gulf_coast)).state(c.p, c.t);
    EXPECT_EQ(call(), c.customary) << c.p << " " << c.t;
  }
}

TEST(AGA8Functions, ArgumentsThatCannotBeUsedEndTheCall) {
  DetailCall call(u"AGA8_M");
  call.state(60.0, 20.0);
  EXPECT_EQ(call(), std::nullopt);  // no composition
  EXPECT_EQ(call.composition(std::vector<double>(21, 1.0 / 21.0))(), std::nullopt);
  EXPECT_EQ(call.composition(with_neo_pentane(gulf_coast))(), 0);
  for (double mode : {0.0, 4.0, not_a_number, 1e300}) EXPECT_EQ(call.option(4, mode)(), std::nullopt) << mode;
  call.option(4, 1.0);
  for (double edition : {0.0, 3.0, not_a_number}) EXPECT_EQ(call.option(5, edition)(), std::nullopt) << edition;
  call.option(5, 2.0);
  EXPECT_EQ(call.composition(with_neo_pentane(gas({{methane, 0.9}})))(), 4);
  EXPECT_TRUE(call.status_alone());
  EXPECT_EQ(call.composition(with_neo_pentane(gas({{methane, 1.1}, {ethane, -0.1}})))(), 2);
  EXPECT_EQ(call.composition(with_neo_pentane(gas({{methane, not_a_number}})))(), 2);
}

// The customary function shows only the limits of the equation as a whole; the metric one the normal range too.
TEST(AGA8Functions, RangeOfTheCustomaryFunctionHasTwoLevelsOfState) {
  DetailCall metric(u"AGA8_M"), customary(u"AGA8_C");
  metric.composition(with_neo_pentane(gulf_coast)).state(200.0, 100.0);
  customary.composition(with_neo_pentane(gulf_coast)).state(200.0 / 0.0689476, 212.0);
  ASSERT_EQ(metric(), 0);
  ASSERT_EQ(customary(), 0);
  EXPECT_EQ(metric.value(oor), 1);
  EXPECT_EQ(customary.value(oor), 0);
  EXPECT_NEAR(customary.value(z), metric.value(z), 1e-12);
  EXPECT_NEAR(customary.value(mass_density) * 16.01846337, metric.value(mass_density), 1e-9);
  EXPECT_NEAR(customary.value(molar_density) * 16.01846337, metric.value(molar_density), 1e-11);
  EXPECT_EQ(customary.value(molar_mass_output), metric.value(molar_mass_output));
  ASSERT_EQ(customary.state(25000.0, 212.0)(), 0);
  EXPECT_EQ(customary.value(oor), 2);
}

}  // namespace
}  // namespace norvane::test
