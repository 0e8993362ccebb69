#include "math/gas/aga5.h"

#include <gtest/gtest.h>

#include <limits>
#include <utility>

namespace norvane {
namespace {

AGA5::Result values(const AGA5::Gas& gas) {
  AGA5::Result result;
  EXPECT_TRUE(AGA5::calculate(gas, result).good());
  return result;
}

TEST(Aga5, EachDiluentLowersTheValueByItsOwnTerm) {
  // Place in the order of AGA-8, k of the volume-based value.
  constexpr std::pair<std::size_t, double> terms[] = {{1, 16.639}, {2, 25.318}, {9, 18.801}, {19, 3.612},
                                                      {8, 13.424}, {6, 13.462}, {5, 11.214}, {7, -0.713}};
  for (const auto& [place, k] : terms) {
    AGA5::Gas gas{{}, 0.6};
    gas.fractions[place] = 0.5;
    const AGA5::Result result = values(gas);
    EXPECT_NEAR(result.volume_based, 1571.5 * 0.6 + 144.0 - 50.0 * k, 1e-9) << place;
    // The two values differ by the specific volume of air, some 13 ft3/lbm.
    const double by_mass = ((0.00197 / 0.6 + 0.02035) * 1e6 - result.mass_based) * 0.6 / 50.0;
    EXPECT_NEAR(by_mass / k, 13.0, 0.45) << place;
  }
  AGA5::Gas others{{}, 0.6};  // what is no diluent has no say, whatever it holds
  others.fractions[0] = std::numeric_limits<double>::quiet_NaN(), others.fractions[3] = -1.0;
  EXPECT_EQ(values(others).volume_based, values({{}, 0.6}).volume_based);
}

}  // namespace
}  // namespace norvane
