#include "math/gas/gost30319.h"

#include <gtest/gtest.h>

#include <cmath>
#include <initializer_list>
#include <string_view>
#include <utility>

#include "math/gas/mr113.h"
#include "math/gas/sgerg.h"
#include "tests/support/arguments.h"

namespace norvane {
namespace {

using namespace GOST30319;

// z of GERG-91 mod. in the closed form of the standard; NaN where that has no value or loses its digits.
double closed_form(const Arguments& in) {
  const SGERG::Coefficients& c = SGERG::coefficients;
  const double T = in.temperature, xa = in.nitrogen, xy = in.carbon_dioxide, xe = 1 - xa - xy, rho = in.density;
  const double zc = 1 - std::pow(0.0741 * rho - 0.006 - 0.063 * xa - 0.0575 * xy, 2);
  const double H = 128.64 + 47.479 * (24.05525 * zc * rho - 28.0135 * xa - 44.010 * xy) / xe;
  const double B1 =
      c.B11[0].at(T) + H * (c.B11[1].a0 + c.B11[1].a1 * T + 8.81514e-9 * T * T) + H * H * c.B11[2].at(T);
  const double B2 = c.B22.at(T), B3 = c.B33.at(T), C2 = c.C222.at(T), C3 = c.C333.at(T);
  const double C1 = c.C111[0].at(T) + H * c.C111[1].at(T) + H * H * c.C111[2].at(T);
  const double Bs = 0.72 + 1.875e-5 * std::pow(320 - T, 2), Cs = 0.92 + 0.0013 * (T - 270);
  const double Bm = xe * xe * B1 + xe * xa * Bs * (B1 + B2) - 1.73 * xe * xy * std::sqrt(B1 * B3) + xa * xa * B2 +
                    2 * xa * xy * c.B23.at(T) + xy * xy * B3;
  const double Cm = std::pow(xe, 3) * C1 + 3 * xe * xe * xa * Cs * std::cbrt(C1 * C1 * C2) +
                    2.76 * xe * xe * xy * std::cbrt(C1 * C1 * C3) + 3 * xe * xa * xa * Cs * std::cbrt(C1 * C2 * C2) +
                    6.6 * xe * xa * xy * std::cbrt(C1 * C2 * C3) + 2.76 * xe * xy * xy * std::cbrt(C1 * C3 * C3) +
                    std::pow(xa, 3) * C2 + 3 * xa * xa * xy * c.C223.at(T) + 3 * xa * xy * xy * c.C233.at(T) +
                    std::pow(xy, 3) * C3;
  const double b = 1000 * in.pressure / (2.7715 * T), B0 = b * Bm, C0 = b * b * Cm, A0 = 1 + 1.5 * (B0 + C0),
               A1 = 1 + B0;
  const double A2 = std::cbrt(A0 - std::sqrt(A0 * A0 - A1 * A1 * A1));
  return A1 > 0.1 && C1 > 0 ? (1 + A2 + A1 / A2) / 3 : std::nan("");
}

// Over gas that the standard is for: both methods and the closed form, K at standard conditions, and the relations
// between the properties.
TEST(Gost30319, MethodsAndPropertiesAgree) {
  test::Random random(8);
  int compared = 0;
  for (int i = 0; i < 20000; ++i) {
    Arguments in = {.pressure = random.within(0.1, 7.5),
                    .temperature = random.within(250, 340),
                    .density = random.within(0.67, 0.76),
                    .nitrogen = random.within(0, 0.03),
                    .carbon_dioxide = random.within(0, 0.01),
                    .method = Method::gerg91_mod};
    Result r, nx19;
    ASSERT_TRUE(calculate(in, r).good());
    if (const double z = closed_form(in); z > 0.0) {
      ++compared;
      ASSERT_NEAR(r.z, z, 1e-12);
    }
    const double R = 8.31451, M = r.molar_mass;
    ASSERT_NEAR(r.mass_density, 1e3 * in.pressure * M / (r.z * R * in.temperature), 2e-4 * r.mass_density);
    ASSERT_NEAR(r.speed_of_sound, std::sqrt(1e3 * r.isentropic_exponent * r.z * R * in.temperature / M), 0.1);
    // By calorific value instead of density.
    const Gerg91Arguments by_value = {.pressure = in.pressure,
                                      .temperature = in.temperature,
                                      .calorific_value = r.superior_calorific_value,
                                      .nitrogen = in.nitrogen,
                                      .carbon_dioxide = in.carbon_dioxide,
                                      .known = Known::calorific_value};
    Result same;
    ASSERT_TRUE(calculate_gerg91(by_value, same).good());
    ASSERT_NEAR(same.density, in.density, 1e-12);
    ASSERT_NEAR(same.k, r.k, 1e-11);
    in.method = Method::nx19_mod;
    if (in.temperature > 270) {
      ASSERT_TRUE(calculate(in, nx19).good());
      ASSERT_NEAR(nx19.k / r.k, 1.0, 0.02) << in.pressure << ' ' << in.temperature << ' ' << in.density;
    }
    in.pressure = 0.101325;
    in.temperature = 293.15;
    for (const Method method : {Method::nx19_mod, Method::gerg91_mod}) {
      in.method = method;
      ASSERT_TRUE(calculate(in, r).good());
      ASSERT_NEAR(r.k, 1.0, 3e-4);
    }
  }
  EXPECT_GT(compared, 10000);
}

TEST(Gost30319, DetailIsARatioOfStates) {
  DetailArguments in = {.pressure = 0.101325, .temperature = 293.15};
  in.composition[0] = 0.95;
  in.composition[3] = 0.05;
  DetailResult r;
  DetailCache cache;
  ASSERT_TRUE(calculate_detail(in, r, cache).good());
  EXPECT_EQ(r.k, 1.0);
  in.pressure = 5.0;
  ASSERT_TRUE(calculate_detail(in, r, cache).good());
  const double flowing = r.z;
  std::swap(in.pressure, in.base_pressure);
  ASSERT_TRUE(calculate_detail(in, r, cache).good());
  EXPECT_EQ(r.zc, flowing);
  in.pressure = 0.0;
  ASSERT_TRUE(calculate_detail(in, r, cache).good());
  EXPECT_EQ(r.z, 1.0);
  EXPECT_EQ(r.mass_density, 0.0);
  in.composition[0] = 0.5;
  EXPECT_EQ(calculate_detail(in, r, cache).status, AGA8::composition_error);
}

TEST(Mr113, ChecksTheArgumentsBeforeTheLibrary) {
  MR113::Result result;
  MR113::Arguments in = {.pressure = 1.0, .temperature = 300};
  EXPECT_EQ(calculate(in, result).status, MR113::library_error);
  in.nitrogen = 0.1;
  EXPECT_EQ(calculate(in, result).status, argument_error) << "the fractions sum to 1.1";
  in.methane = 0.9;
  EXPECT_EQ(calculate(in, result).status, MR113::library_error);
  in.humidity = std::nan("");
  EXPECT_EQ(calculate(in, result).member, &in.humidity);
}

}  // namespace
}  // namespace norvane
