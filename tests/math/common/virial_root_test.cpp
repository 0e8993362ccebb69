#include "math/common/virial_root.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "math/common/cube_root.h"
#include "tests/support/arguments.h"

namespace norvane {
namespace {

TEST(VirialRoot, FollowsTheGasToTheEndOfItsBranch) {
  test::Random random(1);
  int ends = 0;
  for (int i = 0; i < 100000; ++i) {
    const double b = random.within(-0.5, 0.3), c = random.within(-0.02, 0.05);
    const auto rise = [&](double x) { return x * (1.0 + x * (b + c * x)); };
    const auto slope = [&](double x) { return 1.0 + x * (2.0 * b + 3.0 * c * x); };
    const double x = std::exp(random.within(-20.0, 4.0));
    // On the branch the slope is positive all the way: at its far end, and where it is least.
    const double vertex = -b / (3.0 * c);
    if (!(slope(x) > 0.0) || (vertex > 0.0 && vertex < x && !(slope(vertex) > 0.0))) continue;
    double root = -1.0;
    ASSERT_TRUE(virial_root(rise(x), b, c, root)) << b << ' ' << c << ' ' << x;
    const double terms = x * (1.0 + x * (std::fabs(b) + std::fabs(c) * x));  // what rounds in a
    ASSERT_NEAR(root, x, 1e-15 * (4.0 * x + 4.0 * terms / slope(x))) << b << ' ' << c;
    // Past the end of the branch there is no gas, even where the cubic has a root further out.
    const double q = b * b - 3.0 * c;
    if (const double end = q > 0.0 ? std::sqrt(q) - b : 0.0; end > 0.0) {
      ++ends;
      ASSERT_FALSE(virial_root(rise(1.0 / end) * (1.0 + 1e-12), b, c, root)) << b << ' ' << c;
      ASSERT_TRUE(virial_root(rise(1.0 / end) * (1.0 - 1e-12), b, c, root)) << b << ' ' << c;
    }
  }
  EXPECT_GT(ends, 1000);
}

TEST(VirialRoot, EndsOnAnyNumbers) {
  test::Random random(2);
  for (int i = 0; i < 200000; ++i) {
    double x = 0.0;
    const double a = random.hostile(0.0, 1e3);
    if (virial_root(a, random.hostile(-10.0, 10.0), random.hostile(-10.0, 10.0), x)) {
      ASSERT_TRUE(a >= 0.0 && x >= 0.0 && std::isfinite(x));
    }
  }
}

TEST(CubeRoot, IsWithinAUnitInTheLastPlace) {
  test::Random random(3);
  for (int i = 0; i < 100000; ++i) {
    const double x = std::ldexp(random.within(1.0, 8.0), random.whole(-1022, 1020));
    const long double exact = std::cbrt(static_cast<long double>(x));
    const double unit = std::ldexp(0x1p-52, std::ilogb(static_cast<double>(exact)));
    ASSERT_LT(std::fabs(static_cast<double>(cube_root(x) - exact)), unit) << x;
  }
  constexpr double infinity = std::numeric_limits<double>::infinity();
  EXPECT_EQ(cube_root(27.0), 3.0);
  EXPECT_EQ(cube_root(0.0), 0.0);
  for (double bad : {-1.0, -1e-310, infinity, std::nan("")}) EXPECT_TRUE(std::isnan(cube_root(bad))) << bad;
}

}  // namespace
}  // namespace norvane
