#include "math/gas/aga8.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>

#include "tests/math/gas/gases.h"
#include "tests/support/call.h"

namespace norvane::test {
namespace {

using namespace AGA8;
using namespace composition;

std::vector<Composition> all_gases() {
  std::vector<Composition> gases = {gas_of_21, gulf_coast, coke_oven, sour};
  for (std::size_t i = 0; i < component_count; ++i) {
    Composition pure{};
    pure[i] = 1.0;
    gases.push_back(pure);
  }
  return gases;
}

// Wherever a density is answered over the whole range of the function, it solves the equation, which the referee holds
// against the standard's; natural gases above the range's cold end always get an answer.
TEST(AGA8Detail, DensitySolvesTheEquationOverTheWholeRange) {
  for (const Composition& x : all_gases()) {
    const bool natural_gas = x == gas_of_21 || x == gulf_coast || x == coke_oven;
    CDetail detail;
    for (double t : {-150.0, -129.0, -40.0, 0.0, 20.0, 62.0, 204.0, 450.0}) {
      const double T = t + 273.15;
      Mixture mixture;
      mixture.set(x);
      Isotherm isotherm;
      isotherm.set(mixture, T);
      for (double p : {1e-301, 1e-7, 0.001, 0.101325, 3.0, 7.0, 12.0, 70.0, 137.9, 280.0}) {
        State state;
        const AGA8::Result result = detail.calculate(x, T, p, state);
        if (natural_gas && t >= 62.0) {
          EXPECT_EQ(result, converged) << t << " " << p;
        }
        if (result != converged) continue;
        // What the stop rule leaves. Where cold gases are pressed into a liquid that is none, large terms cancel.
        if (state.z < 15.0) {
          EXPECT_NEAR(isotherm.pressure(state.molar_density) / p, 1.0, 2e-11) << t << " " << p << " z " << state.z;
        }
        EXPECT_DOUBLE_EQ(state.z * state.molar_density * (R * T), p);
        EXPECT_DOUBLE_EQ(state.mass_density, state.molar_density * state.molar_mass);
      }
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

int status_of(const CompositionInput& input, composition::NeoPentaneMode mode, Composition& x) {
  return composition::prepare(input, mode, composition_error, x).status;
}

TEST(AGA8Composition, NeoPentaneIsFoldedOrDropped) {
  CompositionInput input = input_of(gas({{methane, 0.95}, {i_pentane, 0.02}, {n_pentane, 0.01}}), 0.02);
  Composition x;
  ASSERT_EQ(status_of(input, add_to_i_pentane, x), success);
  EXPECT_DOUBLE_EQ(x[i_pentane], 0.04);
  EXPECT_DOUBLE_EQ(x[n_pentane], 0.01);
  ASSERT_EQ(status_of(input, add_to_n_pentane, x), success);
  EXPECT_DOUBLE_EQ(x[n_pentane], 0.03);
  ASSERT_EQ(status_of(input, neglect, x), success);
  EXPECT_DOUBLE_EQ(x[i_pentane], 0.02 / 0.98);
  // Percent are no fractions for the mode that drops.
  for (double& amount : input) amount *= 100.0;
  EXPECT_EQ(status_of(input, neglect, x), composition_error);
  EXPECT_EQ(status_of(input, add_to_n_pentane, x), success);
  EXPECT_DOUBLE_EQ(x[n_pentane], 0.03);
}

TEST(AGA8Composition, SumsAndAmountsAreChecked) {
  const struct {
    double methane, ethane, neo_pentane;
    composition::NeoPentaneMode mode;
    int status;
  } cases[] = {{0.9, 0.0, 0.0, add_to_i_pentane, composition_error},
               {0.95, 0.04991, 0.0, add_to_i_pentane, success},
               {0.95, 0.04989, 0.0, add_to_i_pentane, composition_error},
               {95.0, 5.009, 0.0, add_to_i_pentane, success},
               {95.0, 5.011, 0.0, add_to_i_pentane, composition_error},
               {0.5, 0.0, 0.5, neglect, success},
               {0.5, 0.0, 0.4, neglect, composition_error},
               {1.1, -0.1, 0.0, add_to_i_pentane, calculation_error},
               {1.1, -0.1, 0.0, neglect, calculation_error},
               {1e-8, 0.0, 0.0, add_to_n_pentane, calculation_error},
               {infinite, 0.0, 0.0, add_to_n_pentane, calculation_error}};
  for (const auto& c : cases) {
    Composition x;
    EXPECT_EQ(status_of(input_of(gas({{methane, c.methane}, {ethane, c.ethane}}), c.neo_pentane), c.mode, x),
              c.status)
        << c.methane << " " << c.ethane << " " << c.neo_pentane << " " << c.mode;
  }
}

// ---- The functions -----------------------------------------------------------------------------------------------

TEST(AGA8Functions, PercentDoesNotChangeTheAnswer) {
  Call call(u"AGA8_M");
  ASSERT_EQ(call.list(3, with_neo_pentane(gas_of_21)).set(1, 60.0).set(2, 20.0).run(), 0);
  const double first = call[u"z"];
  std::vector<double> percent = with_neo_pentane(gas_of_21);
  for (double& amount : percent) amount *= 100.0;
  ASSERT_EQ(call.list(3, percent).run(), 0);
  EXPECT_DOUBLE_EQ(call[u"z"], first);
}

// The customary function shows only the limits of the equation as a whole; the metric one the normal range too.
TEST(AGA8Functions, CustomaryIsMetricInItsUnitsButForTheRange) {
  Call metric(u"AGA8_M"), customary(u"AGA8_C");
  metric.list(3, with_neo_pentane(gulf_coast)).set(1, 200.0).set(2, 100.0);
  customary.list(3, with_neo_pentane(gulf_coast)).set(1, 200.0 / 0.0689476).set(2, 212.0);
  ASSERT_EQ(metric.run(), 0);
  ASSERT_EQ(customary.run(), 0);
  EXPECT_EQ(metric[u"oor"], 1);
  EXPECT_EQ(customary[u"oor"], 0);
  EXPECT_NEAR(customary[u"z"], metric[u"z"], 1e-12);
  for (const char16_t* density : {u"mass density", u"molar density"})
    EXPECT_NEAR(customary[density] * 16.01846337, metric[density], 1e-11 * metric[density]);
  EXPECT_EQ(customary[u"molar mass"], metric[u"molar mass"]);
  ASSERT_EQ(customary.set(1, 25000.0).run(), 0);
  EXPECT_EQ(customary[u"oor"], 2);
}

}  // namespace
}  // namespace norvane::test
