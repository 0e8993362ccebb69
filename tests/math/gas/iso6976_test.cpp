#include "math/gas/iso6976.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "math/gas/iso6976_1995_table.h"
#include "math/gas/iso6976_2016_table.h"
#include "tests/support/call.h"

namespace norvane {
namespace {

using namespace ISO6976;

constexpr auto atoms = MolarMassMethod::calculate;
constexpr auto tabulated = MolarMassMethod::table;
constexpr auto definitive = CalorificMethod::definitive;
constexpr auto alternative = CalorificMethod::alternative;

using Few = std::array<double, n_common>;
using Of1995 = std::array<double, n_1995>;
using Of2016 = std::array<double, n_2016>;

template <class Gas>
Gas pure(std::size_t row) {
  Gas x{};
  x[row] = 1.0;
  return x;
}

Result run1995(const Few& x, int reference, MolarMassMethod mass = atoms, CalorificMethod method = definitive) {
  return edition_1995(std::span(x), reference, mass, method);
}
Result run1995(const Of1995& x, int reference, MolarMassMethod mass = atoms, CalorificMethod method = definitive) {
  return edition_1995(std::span(x), reference, mass, method);
}
Result run2016(const Few& x, int reference, MolarMassMethod mass = atoms) {
  return edition_2016(std::span(x), reference, mass);
}
Result run2016(const Of2016& x, int reference, MolarMassMethod mass = atoms) {
  return edition_2016(std::span(x), reference, mass);
}

// In the standard's order: methane ... n-decane, hydrogen, water, hydrogen sulfide, carbon monoxide, helium,
// argon, nitrogen, oxygen, carbon dioxide.
constexpr Few natural = {0.84,  0.06,  0.02, 0.004,  0.003, 0.001, 0.001, 0.0005, 0.0005, 0.0002, 0.0001,
                         5e-05, 5e-05, 0.01, 0.0006, 0.001, 0.001, 0.001, 0.0005, 0.035,  0.0015, 0.019};
constexpr Few lean = {0.93, 0.01, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0.02, 0, 0, 0, 0, 0, 0.03, 0, 0.01};

// A typing slip in a table shows against the physics its columns share.
TEST(Iso6976Table, Edition1995IsConsistentWithItself) {
  using namespace edition1995;
  constexpr double vaporisation[] = {44.016, 44.224, 44.433, 45.074};  // 25, 20, 15, 0 degC
  for (std::size_t i = 0; i < edition1995::n_components; ++i) {
    SCOPED_TRACE(table1[i].name);
    const bool light = table1[i].name == "hydrogen" || table1[i].name == "helium" || table1[i].name == "neon";
    for (std::size_t k = 0; k < 3; ++k) {
      if (light) continue;
      EXPECT_NEAR(table2[i].sqrt_b[k], std::sqrt(1.0 - table2[i].z[k]), 0.51e-4);
    }
    // The 2-butenes, 2-methylpropene and hydrogen cyanide are tabulated to one decimal.
    const bool coarse = (i >= 20 && i <= 22) || table1[i].name == "hydrogen cyanide";
    for (std::size_t k = 0; k < 4; ++k) {
      EXPECT_NEAR(table3[i].inferior[k], table3[i].superior[k] - table1[i].atoms[1] / 2.0 * vaporisation[k],
                  coarse ? 0.15 : 0.015);
    }
    for (int reference = 1; reference <= 6; ++reference) {
      const Properties exact = run1995(pure<Of1995>(i), reference).properties;
      const Properties rounded = run1995(pure<Of1995>(i), reference, atoms, alternative).properties;
      EXPECT_NEAR(run1995(pure<Of1995>(i), reference, tabulated).properties.molar_mass, exact.molar_mass, 6e-4);
      const double half = i == 0 ? 0.00051 : 0.0051;
      EXPECT_NEAR(rounded.superior_mass, exact.superior_mass, half);
      EXPECT_NEAR(rounded.inferior_mass, exact.inferior_mass, half);
      EXPECT_NEAR(rounded.superior_volume, exact.superior_volume, half / exact.compressibility);
      EXPECT_NEAR(rounded.inferior_volume, exact.inferior_volume, half / exact.compressibility);
    }
  }
}

TEST(Iso6976Table, Edition2016AgreesWithItsAtomsAndWith1995) {
  constexpr std::size_t column_1995[] = {3, 2, 2, 1, 0};  // of 0, 15, (15.55), 20, 25 degC
  for (std::size_t i = 0; i < edition2016::n_components; ++i) {
    SCOPED_TRACE(edition2016::table1[i].name);
    EXPECT_NEAR(run2016(pure<Of2016>(i), 7, tabulated).properties.molar_mass,
                run2016(pure<Of2016>(i), 7).properties.molar_mass, 6e-6);
    const auto& gross = edition2016::table3[i].gross;
    // 60 degF lies where the other temperatures lead: factors on a parabola, gross values on a line.
    const auto& factor = edition2016::table2[i].s;
    const double parabola = factor[0] * (0.55 * -4.45) / (-15.0 * -20.0) +
                            factor[1] * (15.55 * -4.45) / (15.0 * -5.0) + factor[3] * (15.55 * 0.55) / (20.0 * 5.0);
    EXPECT_NEAR(factor[2], parabola, 0.9e-4);
    EXPECT_NEAR(gross[2], gross[1] + (gross[3] - gross[1]) * 0.55 / 5.0, 0.0095);
    for (std::size_t k = 0; k < 5; ++k) {
      if (k > 0 && edition2016::table1[i].atoms[1] > 0) {
        EXPECT_LT(gross[k], gross[k - 1]) << "a gross value falls as the temperature rises";
      }
      if (k == 2 || i >= edition1995::n_components) continue;
      const bool revised = k == 0 && edition2016::table1[i].name == "n-butane";
      EXPECT_NEAR(gross[k], edition1995::table3[i].superior[column_1995[k]], revised ? 0.5 : 0.125);
    }
    if (i < edition1995::n_components) {
      EXPECT_EQ(edition2016::table1[i].name, edition1995::table1[i].name);
      for (std::size_t k = 0; k < 5; ++k) EXPECT_EQ(edition2016::table1[i].atoms[k], edition1995::table1[i].atoms[k]);
    }
  }
}

// Every option reads the columns of its own two temperatures: they show in what two options share.
TEST(Iso6976, ReferencesSelectTheirTemperatures) {
  const auto walk = [](auto run) {
    const auto at = [&](int reference) { return run(natural, reference).properties; };
    for (auto [a, b] : {std::pair{2, 3}, {3, 4}, {5, 6}}) EXPECT_EQ(at(a).density, at(b).density);
    for (auto [a, b] : {std::pair{1, 3}, {4, 6}}) EXPECT_EQ(at(a).superior_molar, at(b).superior_molar);
    EXPECT_GT(at(2).density, at(1).density);
    EXPECT_GT(at(1).density, at(5).density);
    EXPECT_GT(at(2).superior_molar, at(3).superior_molar);
    EXPECT_GT(at(3).superior_molar, at(5).superior_molar);
    EXPECT_GT(at(5).superior_molar, at(4).superior_molar);
  };
  walk([](const Few& x, int reference) { return run1995(x, reference); });
  walk([](const Few& x, int reference) { return run2016(x, reference); });
  const auto f60 = run2016(natural, 7).properties, c15 = run2016(natural, 1).properties;
  EXPECT_LT(f60.density, c15.density);
  EXPECT_NEAR(f60.density / c15.density, 288.15 / 288.70, 3e-5);
  EXPECT_LT(f60.superior_molar, c15.superior_molar);

  for (int reference : {0, -1, 7, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
    EXPECT_EQ(run1995(natural, reference).outcome.status, argument_error);
  for (int reference : {0, 8}) EXPECT_EQ(run2016(natural, reference).outcome.status, argument_error);
}

TEST(Iso6976, SumsAreLinearInTheComposition) {
  constexpr double share = 0.3;
  Few mixture;
  for (std::size_t i = 0; i < n_common; ++i) mixture[i] = share * natural[i] + (1 - share) * lean[i];
  const auto check = [&](auto run) {
    const Properties a = run(natural).properties, b = run(lean).properties, m = run(mixture).properties;
    const auto linear = [&](auto quantity) {
      const double expected = share * quantity(a) + (1 - share) * quantity(b);
      EXPECT_NEAR(quantity(m), expected, 1e-13 * std::fabs(expected));
    };
    linear([](const Properties& gas) { return gas.molar_mass; });
    linear([](const Properties& gas) { return gas.superior_molar; });
    linear([](const Properties& gas) { return gas.inferior_molar; });
    linear([](const Properties& gas) { return gas.superior_mass * gas.molar_mass; });
    linear([](const Properties& gas) { return gas.inferior_mass * gas.molar_mass; });
    linear([](const Properties& gas) { return gas.superior_volume * gas.compressibility; });
    linear([](const Properties& gas) { return gas.inferior_volume * gas.compressibility; });
    linear([](const Properties& gas) { return gas.density * gas.compressibility; });
    linear([](const Properties& gas) { return gas.relative_density * gas.compressibility; });
    EXPECT_NEAR(std::sqrt(1 - m.compressibility),
                share * std::sqrt(1 - a.compressibility) + (1 - share) * std::sqrt(1 - b.compressibility), 1e-13);
    EXPECT_DOUBLE_EQ(m.wobbe, m.superior_volume / std::sqrt(m.relative_density));
  };
  for (auto mass : {atoms, tabulated}) {
    for (int reference = 1; reference <= 6; ++reference)
      for (auto method : {definitive, alternative})
        check([=](const Few& x) { return run1995(x, reference, mass, method); });
    for (int reference = 1; reference <= 7; ++reference)
      check([=](const Few& x) { return run2016(x, reference, mass); });
  }
}

// Hydrogen's negative factor keeps its sign: with a share of hydrogen the gas is nearer to ideal.
TEST(Iso6976, HydrogenLowersTheSumOfFactors) {
  Few with = lean, without = lean;
  with[13] = 0.05, with[0] = lean[0] - 0.03;
  EXPECT_GT(run1995(with, 1).properties.compressibility, run1995(without, 1).properties.compressibility);
  EXPECT_DOUBLE_EQ(run1995(pure<Few>(13), 1).properties.compressibility, 1.0 - 0.0048 * 0.0048);
}

// The full gas with the rare components absent is the gas of 22: both pick the same rows.
TEST(Iso6976, AllComponentsAgreeWithTheCommonOnes) {
  Of1995 x55{};
  Of2016 x60{};
  for (std::size_t i = 0; i < n_common; ++i) x55[common_rows[i]] = x60[common_rows[i]] = natural[i];
  for (int reference = 1; reference <= 6; ++reference) {
    const auto few = run1995(natural, reference, tabulated, alternative).properties;
    const auto all = run1995(x55, reference, tabulated, alternative).properties;
    EXPECT_EQ(few.superior_volume, all.superior_volume);
    EXPECT_EQ(few.inferior_mass, all.inferior_mass);
    EXPECT_EQ(few.density, all.density);
    EXPECT_EQ(run2016(natural, reference).properties.wobbe, run2016(x60, reference).properties.wobbe);
  }
}

TEST(Iso6976, RangeOfApplication) {
  // {component in the order of 22, its limit}: at the limit inside, above it outside; methane the other way round.
  const auto gas = [](std::size_t i, double fraction) {
    Few x{};
    x[0] = 1.0 - fraction;
    x[i] = fraction;
    return x;
  };
  for (std::size_t i = 1; i < n_common; ++i) {
    const double limit = i == 1 || i == 21 ? 0.15 : i == 19 ? 0.3 : 0.05;
    EXPECT_TRUE(run1995(gas(i, limit), 1).range.ok()) << i;
    const Result outside = run1995(gas(i, limit + 1e-9), 1);
    EXPECT_EQ(outside.range.first_outside, static_cast<int>(common_rows[i]));
    EXPECT_EQ(outside.range.limit, limit);
    EXPECT_GT(outside.properties.wobbe, 0.0) << "a warning leaves the results valid";
  }
  Few thin{};
  thin[0] = 0.49, thin[1] = 0.15, thin[19] = 0.3, thin[2] = 0.05, thin[21] = 0.01;
  EXPECT_EQ(run1995(thin, 1).range.first_outside, 0);
  EXPECT_EQ(run2016(thin, 1).range.first_outside, 0);
  EXPECT_EQ(component_name(0), "methane");
  EXPECT_EQ(component_name(59), "n-pentadecane");
  EXPECT_EQ(component_name(60), "");

  Of2016 heavy{};  // every fraction inside its limit, the gas far from ideal
  heavy[0] = 0.5;
  for (std::size_t i : std::initializer_list<std::size_t>{14, 15, 16, 33, 34, 55, 56, 57, 58, 59}) heavy[i] = 0.05;
  EXPECT_EQ(run2016(heavy, 2).range.first_outside, Range::compressibility);
}

// The factors of the heaviest alkanes exceed 1, so that Z of the pure vapour is negative: no numbers, no NaN.
TEST(Iso6976, NoCompressibilityFails) {
  EXPECT_EQ(run2016(pure<Of2016>(59), 2).outcome.status, calculation_error);
  EXPECT_EQ(run2016(pure<Of2016>(59), 1).outcome.status, success);
  EXPECT_EQ(run1995(Few{}, 1).outcome.status, calculation_error) << "no gas at all";
}

// ---- Through the call path ---------------------------------------------------------------------------------------

// In the order of AGA-8 with neo-pentane behind.
constexpr std::array<double, 22> eight = {0.9247, 0.0175, 0.0068, 0.035, 0.0098, 0, 0, 0, 0, 0, 0.0034,
                                          0.0022, 0,      0.0006, 0,     0,      0, 0, 0, 0, 0, 0};

TEST(Iso6976Call, PercentIsTheSameGas) {
  for (const char16_t* id : {u"ISO6976_1995_M", u"ISO6976_2016_M", u"ISO6976ex_1995_M", u"ISO6976ex_2016_M"}) {
    test::Call fractions(id), percent(id);
    std::array<double, 22> hundred;
    for (std::size_t i = 0; i < 22; ++i) hundred[i] = eight[i] * 100.0;
    EXPECT_EQ(fractions.list(1, eight).run(), 0);
    EXPECT_EQ(percent.list(1, hundred).run(), 0);
    for (std::size_t i = 1; i < 13; ++i)
      EXPECT_NEAR(percent.value(i), fractions.value(i), 1e-13 * fractions.value(i));
  }
}

// Each cell of each further array moves the molar mass by its own component's; an empty array holds nothing.
TEST(Iso6976Call, FurtherArraysHoldTheirComponents) {
  const auto walk = [](const char16_t* id,
                       std::initializer_list<std::pair<std::size_t, std::vector<double>>> arrays) {
    for (const auto& [input, masses] : arrays) {
      for (std::size_t k = 0; k < masses.size(); ++k) {
        std::vector<double> cells(masses.size(), 0.0);
        cells[k] = 0.02;
        test::Call call(id);
        call.list(1, std::vector<double>{0.98, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
        EXPECT_EQ(call.list(input, cells).set(u"molar mass method", 2.0).run(), 0);
        const double methane = id[10] == u'1' ? 16.043 : 16.04246;
        EXPECT_NEAR((call.value(5) - 0.98 * methane) / 0.02, masses[k], 0.003) << input << " " << k;
      }
      test::Call empty(id);
      EXPECT_EQ(empty.list(1, eight).list(input, std::vector<double>{}).run(), 0);
    }
  };
  const std::vector<double> alkenes = {28.054, 42.081, 56.108, 56.108, 56.108, 56.108,
                                       70.134, 40.065, 54.092, 54.092, 26.038};
  const std::vector<double> others = {32.042, 48.109, 17.0306, 27.026, 60.076, 76.143, 20.1797, 64.065};
  walk(u"ISO6976ex_1995_M", {{2, {86.177, 86.177, 86.177, 86.177}},
                             {3, alkenes},
                             {4, {70.134, 84.161, 98.188, 84.161, 98.188, 112.215}},
                             {5, {78.114, 92.141, 106.167, 106.167}},
                             {6, others}});
  walk(u"ISO6976ex_2016_M", {{2, {86.175, 86.175, 86.175, 86.175, 156.308, 170.335, 184.361, 198.388, 212.415}},
                             {3, alkenes},
                             {4, {70.133, 84.159, 98.186, 84.159, 98.186, 112.213, 78.112, 92.138, 106.165, 106.165}},
                             {5, others}});
}

}  // namespace
}  // namespace norvane
