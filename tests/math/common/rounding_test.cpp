#include "math/common/rounding.h"

#include <gtest/gtest.h>

#include <limits>

namespace norvane {
namespace {

TEST(Rounding, HalvesGoAwayFromZero) {
  EXPECT_EQ(round_half_away(2.5, 0), 3.0);
  EXPECT_EQ(round_half_away(-2.5, 0), -3.0);
  EXPECT_EQ(round_half_away(0.125, 2), 0.13);
  EXPECT_EQ(round_half_away(-0.125, 2), -0.13);
  EXPECT_EQ(round_half_away(0.989966310837, 5), 0.98997);
  EXPECT_EQ(round_half_away(0.49999999999999994, 0), 0.0);
  EXPECT_EQ(truncate_toward_zero(2.9), 2.0);
  EXPECT_EQ(truncate_toward_zero(-2.9), -2.0);
}

TEST(Rounding, NumbersWithoutSuchDecimalsComeBack) {
  const double huge = 1.7e308;
  EXPECT_EQ(round_half_away(huge, 22), huge);
  EXPECT_EQ(round_half_away(4503599627370497.0, 3), 4503599627370497.0);
  EXPECT_EQ(round_half_away(1.26, -1), 1.26);
  EXPECT_EQ(round_half_away(1.26, 23), 1.26);
  EXPECT_EQ(round_half_away(-std::numeric_limits<double>::infinity(), 5), -std::numeric_limits<double>::infinity());
}

}  // namespace
}  // namespace norvane
