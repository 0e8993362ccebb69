#include "core/elementary.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>

namespace norvane {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan_value = std::numeric_limits<double>::quiet_NaN();
constexpr double smallest = std::numeric_limits<double>::denorm_min();

// Distance from the extended-precision value in units in the last place of the double nearest to it.
double ulps(double got, long double want) {
  const auto nearest = static_cast<double>(want);
  if (!std::isfinite(got) || !std::isfinite(nearest)) return got == nearest ? 0.0 : infinity;
  int exponent = 0;
  std::frexp(nearest, &exponent);
  const long double unit = std::ldexp(1.0L, std::max(exponent - 53, -1074));
  return static_cast<double>(std::fabs((static_cast<long double>(got) - want) / unit));
}

class Numbers {
 public:
  double between(double low, double high) { return std::uniform_real_distribution<double>(low, high)(engine_); }
  // Around 1, at all distances from it.
  double near_one() { return 1.0 + std::ldexp(between(-0.02, 0.02), -static_cast<int>(engine_() % 46)); }

 private:
  std::mt19937_64 engine_{20260101};
};

TEST(Elementary, ExponentialIsWithinAnUlpEverywhere) {
  Numbers numbers;
  double worst = 0.0;
  for (int i = 0; i < 100000; ++i) {
    for (double x : {numbers.between(-745.0, 709.7), numbers.between(-30.0, 5.0), numbers.near_one() - 1.0})
      worst = std::max(worst, ulps(elementary::exp(x), std::exp(static_cast<long double>(x))));
  }
  EXPECT_LT(worst, 0.8);
}

TEST(Elementary, LogarithmIsWithinAnUlpEverywhere) {
  Numbers numbers;
  double worst = 0.0;
  for (int i = 0; i < 100000; ++i) {
    for (double x : {std::exp(numbers.between(-744.0, 709.0)), numbers.between(0.5, 2.0), numbers.near_one()})
      worst = std::max(worst, ulps(elementary::log(x), std::log(static_cast<long double>(x))));
  }
  EXPECT_LT(worst, 0.6);
}

TEST(Elementary, PowerIsWithinAnUlpEverywhere) {
  Numbers numbers;
  double worst = 0.0;
  // The extended-precision power itself loses digits where the exponent of the result is large, hence the margin.
  for (int i = 0; i < 100000; ++i) {
    const double any = std::exp(numbers.between(-700.0, 700.0));
    const double close = numbers.near_one();
    for (double x : {any, close, numbers.between(0.01, 100.0)}) {
      if (x == 1.0) continue;
      for (double y : {numbers.between(-740.0, 709.0) / std::log(x), numbers.between(-3.0, 3.0)}) {
        const long double want = std::pow(static_cast<long double>(x), static_cast<long double>(y));
        worst = std::max(worst, ulps(elementary::pow(x, y), want));
      }
    }
  }
  EXPECT_LT(worst, 1.0);
}

TEST(Elementary, FourExponentialsAreFourTimesOne) {
  Numbers numbers;
  for (int i = 0; i < 10000; ++i) {
    const double wide = i % 3 == 0 ? 2000.0 : 40.0;
    const std::array<double, 4> x = {numbers.between(-wide, wide), -0.0, i % 7 == 0 ? nan_value : -1.0,
                                     numbers.between(-1.0, 0.0)};
    const std::array<double, 4> four = elementary::exp4(x);
    for (std::size_t j = 0; j < 4; ++j) {
      const double one = elementary::exp(x[j]);
      ASSERT_TRUE(four[j] == one || (std::isnan(four[j]) && std::isnan(one))) << x[j];
    }
  }
}

TEST(Elementary, BoundariesOfExponential) {
  EXPECT_EQ(elementary::exp(0.0), 1.0);
  EXPECT_EQ(elementary::exp(-0.0), 1.0);
  EXPECT_EQ(elementary::exp(smallest), 1.0);
  EXPECT_EQ(elementary::exp(infinity), infinity);
  EXPECT_EQ(elementary::exp(-infinity), 0.0);
  EXPECT_TRUE(std::isnan(elementary::exp(nan_value)));
  EXPECT_TRUE(std::isfinite(elementary::exp(709.782712893383)));
  EXPECT_EQ(elementary::exp(709.782712893385), infinity);
  EXPECT_EQ(elementary::exp(1e300), infinity);
  EXPECT_EQ(elementary::exp(-745.13), smallest);
  EXPECT_EQ(elementary::exp(-745.14), 0.0);
  EXPECT_EQ(elementary::exp(-1e300), 0.0);
}

TEST(Elementary, BoundariesOfLogarithm) {
  EXPECT_EQ(elementary::log(1.0), 0.0);
  EXPECT_FALSE(std::signbit(elementary::log(1.0)));
  EXPECT_EQ(elementary::log(0.0), -infinity);
  EXPECT_EQ(elementary::log(-0.0), -infinity);
  EXPECT_EQ(elementary::log(infinity), infinity);
  EXPECT_TRUE(std::isnan(elementary::log(-1.0)));
  EXPECT_TRUE(std::isnan(elementary::log(-smallest)));
  EXPECT_TRUE(std::isnan(elementary::log(-infinity)));
  EXPECT_TRUE(std::isnan(elementary::log(nan_value)));
  EXPECT_LT(ulps(elementary::log(smallest), std::log(static_cast<long double>(smallest))), 0.6);
  EXPECT_LT(ulps(elementary::log(1e-310), std::log(static_cast<long double>(1e-310))), 0.6);
}

// Zeros, infinities, negative bases with whole, odd and broken exponents: exactly what the C standard prescribes.
TEST(Elementary, SpecialValuesOfPower) {
  const double values[] = {0.0,      -0.0, 1.0,   -1.0,   0.5,   -0.5,     2.0,       -2.0,      3.0,
                           -3.0,     2.5,  1e300, 1e-300, -1e16, infinity, -infinity, nan_value, 9007199254740991.0,
                           smallest, -7.0};
  for (double x : values) {
    for (double y : values) {
      const double want = std::pow(x, y);
      const double got = elementary::pow(x, y);
      if (std::isnan(want)) {
        EXPECT_TRUE(std::isnan(got)) << x << " " << y;
      } else {
        EXPECT_DOUBLE_EQ(got, want) << x << " " << y;
        EXPECT_EQ(std::signbit(got), std::signbit(want)) << x << " " << y;
      }
    }
  }
  EXPECT_EQ(elementary::pow(1.0 + 0x1p-52, 0x1p63), infinity);
  EXPECT_EQ(elementary::pow(1.0 - 0x1p-53, 0x1p64), 0.0);
  EXPECT_EQ(elementary::pow(smallest, 1e-300), 1.0);
}

// Recorded digits: another compiler, processor or system must not change a bit.
TEST(Elementary, BitsAreTheSameOnEveryPlatform) {
  Numbers numbers;
  std::uint64_t hash = 14695981039346656037u;
  std::uint64_t state = 1;
  const auto add = [&hash](double value) { hash = (hash ^ std::bit_cast<std::uint64_t>(value)) * 1099511628211u; };
  for (int i = 0; i < 4096; ++i) {
    state = state * 6364136223846793005u + 1442695040888963407u;
    const double x = static_cast<double>(state >> 11) * 0x1p-53 * 20.0 + 1e-3;
    add(elementary::exp(-x));
    add(elementary::log(x));
    add(elementary::pow(x, 0.75 - x));
  }
  EXPECT_EQ(hash, 12817719101218740113u);
}

}  // namespace
}  // namespace norvane
