#include "math/gas/aga5.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>

#include "tests/math/gas/gas_call.h"

namespace norvane {
namespace {

using Fractions = std::array<double, AGA5::n_fractions>;

AGA5::Result calculate(const Fractions& x, double gravity) {
  AGA5::Result result{};
  EXPECT_TRUE(AGA5::calculate({x, gravity}, result).good());
  return result;
}

constexpr double nan_value = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

TEST(Aga5, EachDiluentLowersTheValueByItsOwnTerm) {
  // Place in the order of AGA-8, k of the volume-based value.
  constexpr std::pair<std::size_t, double> terms[] = {{1, 16.639}, {2, 25.318}, {9, 18.801}, {19, 3.612},
                                                      {8, 13.424}, {6, 13.462}, {5, 11.214}, {7, -0.713}};
  for (const auto& [place, k] : terms) {
    Fractions x{};
    x[place] = 0.5;
    const AGA5::Result result = calculate(x, 0.6);
    EXPECT_NEAR(result.volume_based, 1571.5 * 0.6 + 144.0 - 50.0 * k, 1e-9) << place;
    // The two values differ by the specific volume of air, some 13 ft3/lbm.
    const double by_mass = ((0.00197 / 0.6 + 0.02035) * 1e6 - result.mass_based) * 0.6 / 50.0;
    EXPECT_NEAR(by_mass / k, 13.0, 0.45) << place;
  }
  Fractions others{};  // what is no diluent has no say, whatever it holds
  others[0] = nan_value, others[3] = -1.0, others[21] = infinity;
  EXPECT_EQ(calculate(others, 0.6).volume_based, calculate(Fractions{}, 0.6).volume_based);
}

TEST(Aga5, RefusesCompositionsAndGravities) {
  const auto status = [](double nitrogen, double gravity) {
    Fractions x{};
    x[1] = nitrogen;
    AGA5::Result result{};
    return AGA5::calculate({x, gravity}, result).status;
  };
  EXPECT_EQ(status(1.0, 0.6), success);
  EXPECT_EQ(status(1.0 + 1e-12, 0.6), argument_error);
  EXPECT_EQ(status(-4e-9, 0.6), success) << "a rounding residue";
  EXPECT_EQ(status(-6e-9, 0.6), argument_error);
  for (double bad : {nan_value, infinity, -infinity, 1e308}) EXPECT_EQ(status(bad, 0.6), argument_error);
  EXPECT_EQ(status(2.0, 0.0), argument_error) << "the composition is looked at first";
  EXPECT_EQ(status(0.0, 1e-6), success);
  for (double bad : {0.0, 0.9e-6, -0.6, nan_value, -infinity}) EXPECT_EQ(status(0.0, bad), calculation_error);
}

TEST(Aga5, CallChecksTheGravityBeforeItRuns) {
  Fractions x{};
  x[0] = 1.0;
  test::GasCall call(u"AGA5_C");
  call.cells(1, x);
  EXPECT_EQ(call.run(), 0.0);
  EXPECT_DOUBLE_EQ(call.value(2), 1571.5 * 0.7 + 144.0) << "the default gravity";
  EXPECT_EQ(call.set(2, 0.0).run(), 2.0);
  EXPECT_TRUE(call.status_alone());
  EXPECT_EQ(call.set(2, 1.0000001).run(), 1.0);
  EXPECT_TRUE(call.fell_back());
  EXPECT_EQ(call.set(2, infinity).run(), 1.0);
  EXPECT_EQ(call.set(2, nan_value).run(), 2.0);
  EXPECT_EQ(call.set(2, 0.6).cells(1, std::span(x).first(21)).run(), 1.0);
  EXPECT_TRUE(call.fell_back());
}

}  // namespace
}  // namespace norvane
