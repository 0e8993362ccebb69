#include "math/gas/gpa2172.h"

#include <gtest/gtest.h>

#include <cmath>

#include "math/gas/gpa2145_table.h"
#include "tests/support/call.h"

namespace norvane {
namespace {

using namespace GPA2172;
using Fractions = std::array<double, n_fractions>;

constexpr NeoPentane to_n_pentane = NeoPentane::to_n_pentane;
enum class Units { metric, customary };

Result calculate(const Fractions& x, Units units, int edition, NeoPentane mode) {
  Result result;
  EXPECT_TRUE((units == Units::metric ? metric : customary)({x, edition, mode}, result).good());
  return result;
}

constexpr Fractions moist = {0.8302, 0.0032, 0.0059, 0.0745, 0.0439, 0.014, 0, 0, 0,      0, 0.0083,
                             0.0108, 0.0031, 0.0025, 0.003,  0,      0,     0, 0, 0.0006, 0, 0};

// The columns of a table are tied by the molar mass of air and the ideal molar volume.
TEST(Gpa2145Table, ColumnsAgree) {
  const auto check = [](const GPA2145::Component(&table)[GPA2145::n_components], double molar_volume,
                        double rounding) {
    for (std::size_t i = 0; i < GPA2145::n_components; ++i) {
      SCOPED_TRACE(i);
      const auto& c = table[i];
      EXPECT_NEAR(c.ideal_relative_density, c.molar_mass / 28.9625, 1.0e-4);
      EXPECT_NEAR(c.gross_volume, c.gross_mass * c.molar_mass / molar_volume, rounding * c.gross_volume);
      EXPECT_LE(c.net_volume, c.gross_volume);
      // The difference is the heat of condensation of the water formed: 50.31 Btu/ft3, 1.879 MJ/m3 a mole of water.
      const double waters = (c.gross_volume - c.net_volume) / table[5].gross_volume;
      EXPECT_NEAR(waters, std::round(waters), 0.02);
    }
  };
  check(GPA2145::customary_2000, 379.4826, 3e-4);
  check(GPA2145::customary_2003, 379.4826, 3e-4);
  check(GPA2145::customary_2016, 379.4826, 3e-4);
  check(GPA2145::metric_2003, 23.64486, 3e-4);
  check(GPA2145::metric_2016, 23.64486, 3e-4);
  for (std::size_t i = 0; i < GPA2145::n_components; ++i) {
    SCOPED_TRACE(i);
    const auto &us = GPA2145::customary_2016[i], &si = GPA2145::metric_2016[i];
    EXPECT_EQ(us.molar_mass, si.molar_mass);
    EXPECT_NEAR(us.gross_mass * 2.326e-3, si.gross_mass, 5e-4 * si.gross_mass);
    // Factors at 15 degC are some 0.3 % larger than at 60 degF, beyond the change of unit.
    EXPECT_NEAR(us.summation / std::sqrt(6.894757), si.summation, 0.02 * si.summation);
    EXPECT_NEAR(GPA2145::customary_2000[i].gross_volume, us.gross_volume, 1e-4 * us.gross_volume);
    EXPECT_NEAR(GPA2145::customary_2000[i].summation, us.summation, 0.06 * us.summation);
    EXPECT_NEAR(GPA2145::customary_2000[i].molar_mass, us.molar_mass, 1e-4 * us.molar_mass);
  }
}

// Between 2003 and 2016 only last digits of the molar mass and of the value by mass changed.
TEST(Gpa2145Table, EditionsDifferInLastDigits) {
  const auto check = [](const GPA2145::Component& of_2003, const GPA2145::Component& of_2016) {
    EXPECT_NEAR(of_2003.molar_mass, of_2016.molar_mass, 0.00051);
    EXPECT_NEAR(of_2003.gross_mass, of_2016.gross_mass, 0.0021);
    EXPECT_EQ(of_2003.ideal_relative_density, of_2016.ideal_relative_density);
    EXPECT_EQ(of_2003.gross_volume, of_2016.gross_volume);
    EXPECT_EQ(of_2003.net_volume, of_2016.net_volume);
    EXPECT_EQ(of_2003.summation, of_2016.summation);
  };
  for (std::size_t i = 0; i < GPA2145::n_components; ++i) {
    SCOPED_TRACE(i);
    check(GPA2145::customary_2003[i], GPA2145::customary_2016[i]);
    check(GPA2145::metric_2003[i], GPA2145::metric_2016[i]);
  }
}

TEST(Gpa2172, BasesAreTiedToEachOther) {
  for (Units units : {Units::metric, Units::customary}) {
    for (int edition = 1; edition <= 4; ++edition) {
      SCOPED_TRACE(edition);
      const Result r = calculate(moist, units, edition, to_n_pentane);
      Fractions without_water = moist;
      without_water[5] = 0.0;
      for (double& x : without_water) x /= 1.0 - 0.014;
      const Result dried = calculate(without_water, units, edition, to_n_pentane);
      EXPECT_NEAR(dried.wet.gross_volume, r.dry.gross_volume, 1e-12 * r.dry.gross_volume);
      EXPECT_NEAR(dried.wet.real_relative_density, r.dry.real_relative_density, 1e-12);
      EXPECT_NEAR(dried.saturated.real_relative_density, r.saturated.real_relative_density, 1e-12);
      EXPECT_NEAR(dried.saturated.net_volume, r.saturated.net_volume, 1e-12 * r.saturated.net_volume);
      EXPECT_GT(r.saturated.molar_mass, 18.0153);
      EXPECT_LT(r.saturated.compressibility, r.dry.compressibility);
      EXPECT_LT(r.dry.net_volume, r.dry.gross_volume);
    }
  }
  // The editions differ by the air factor where they share the table.
  const auto rd = [](Units units, int edition) {
    return calculate(moist, units, edition, to_n_pentane).dry.real_relative_density;
  };
  EXPECT_NEAR(rd(Units::customary, 3) / rd(Units::customary, 4),
              (1 - 14.696 * 0.00523 * 0.00523) / (1 - 14.696 * 0.00537 * 0.00537), 1e-14);
  EXPECT_EQ(rd(Units::metric, 1), rd(Units::metric, 2));
  EXPECT_EQ(rd(Units::metric, 3), rd(Units::metric, 4));
  EXPECT_NE(rd(Units::metric, 2), rd(Units::metric, 3));
  EXPECT_NE(rd(Units::customary, 1), rd(Units::customary, 2));
}

// By mass the heating value is the plain fraction-weighted sum; ideal sums and the summation factor are linear too.
TEST(Gpa2172, SumsAreLinearInTheComposition) {
  Fractions methane{}, ethane{}, half{};
  methane[0] = ethane[3] = 1.0;
  half[0] = half[3] = 0.5;
  const auto wet = [](const Fractions& x) { return calculate(x, Units::metric, 4, to_n_pentane).wet; };
  const Basis a = wet(methane), b = wet(ethane), m = wet(half);
  EXPECT_DOUBLE_EQ(a.gross_mass, 55.575);
  EXPECT_DOUBLE_EQ(m.gross_mass, (55.575 + 51.951) / 2);
  EXPECT_DOUBLE_EQ(m.molar_mass, (a.molar_mass + b.molar_mass) / 2);
  EXPECT_NEAR(m.gross_volume * m.compressibility,
              (a.gross_volume * a.compressibility + b.gross_volume * b.compressibility) / 2, 1e-13 * m.gross_volume);
  EXPECT_NEAR(std::sqrt(1 - m.compressibility),
              (std::sqrt(1 - a.compressibility) + std::sqrt(1 - b.compressibility)) / 2, 1e-13);
}

TEST(Gpa2172, NeoPentaneGoesWhereTheModeSays) {
  Fractions with = {0.9, 0.01, 0.01, 0.05, 0.02, 0, 0, 0, 0, 0, 0, 0.004, 0.002, 0.001, 0, 0, 0, 0, 0, 0, 0, 0.003};
  const auto value = [](const Fractions& x, NeoPentane mode) {
    return calculate(x, Units::customary, 4, mode).wet.gross_volume;
  };
  Fractions iso = with, normal = with, none = with;
  iso[12] += 0.003, normal[13] += 0.003;
  iso[21] = normal[21] = none[21] = 0.0;
  for (double& x : none) x /= 0.997;
  EXPECT_DOUBLE_EQ(value(with, NeoPentane::to_isopentane), value(iso, to_n_pentane));
  EXPECT_DOUBLE_EQ(value(with, to_n_pentane), value(normal, to_n_pentane));
  EXPECT_DOUBLE_EQ(value(with, NeoPentane::neglect), value(none, to_n_pentane));
}

class Gpa2172Call : public testing::TestWithParam<const char16_t*> {};
INSTANTIATE_TEST_SUITE_P(Functions, Gpa2172Call,
                         testing::Values(u"GPA2172_M", u"GPA2172_C", u"GPA2172_96_M", u"GPA2172_96_C"));

TEST_P(Gpa2172Call, WritesThreeBases) {
  test::Call call(GetParam());
  ASSERT_EQ(call.list(1, moist).run(), 0);
  const bool is_metric = std::u16string_view(GetParam()).ends_with(u"_M");
  const Result r = calculate(moist, is_metric ? Units::metric : Units::customary, 2, to_n_pentane);  // the defaults
  std::size_t output = 1;
  for (const Basis& basis : {r.wet, r.dry, r.saturated})
    for (double value : {basis.gross_volume, basis.molar_mass, basis.ideal_relative_density,
                         basis.real_relative_density, basis.compressibility, basis.gross_mass, basis.net_volume})
      EXPECT_EQ(call.value(output++), value) << output;
}

}  // namespace
}  // namespace norvane
