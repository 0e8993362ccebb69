// API MPMS 11.1:2004 where the published cases do not look: whole ranges, group boundaries, limits, hostile numbers.
#include "math/liquid/api_11_1_2004.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "tests/support/call.h"

namespace norvane::API_11_1_2004 {
namespace {

using test::infinite;
using test::not_a_number;

// A base of 60 degF, 15 degC or 20 degC under one signature: degF, psi gauge.
struct Base {
  const char* name;
  int degC;  // 0 for 60 degF
  Outcome to_base(Liquid liquid, double rho, double degF, double psig, Correction& c) const {
    if (degC == 0) return base_from_observed(liquid, rho, degF, psig, Rounding::off, c);
    return base_from_observed(liquid, metric(), rho, (degF - 32) / 1.8, psig * 0.06894757, Rounding::off, c);
  }
  Outcome to_observed(Liquid liquid, double rho, double degF, double psig, Correction& c) const {
    if (degC == 0) return observed_from_base(liquid, rho, degF, psig, Rounding::off, c);
    return observed_from_base(liquid, metric(), rho, (degF - 32) / 1.8, psig * 0.06894757, Rounding::off, c);
  }
  MetricBase metric() const { return degC == 15 ? MetricBase::degC15 : MetricBase::degC20; }
};
constexpr Base bases[] = {{"60 degF", 0}, {"15 degC", 15}, {"20 degC", 20}};

// The densities at 60 degF to which a named refined product belongs.
bool in_own_band(Group group, double rho60) {
  switch (group) {
    case Group::gasoline: return rho60 < 770.352;
    case Group::transition: return rho60 >= 770.352 && rho60 < 787.5195;
    case Group::jet_fuel: return rho60 >= 787.5195 && rho60 < 838.3127;
    case Group::fuel_oil: return rho60 >= 838.3127;
    default: return true;
  }
}

TEST(Api11_1_2004, PrintedIntermediateValues) {  // 11.1.6.1 examples 1 and 4, 11.1.7.2 example 10
  EXPECT_NEAR(ipts68_of_its90(-27.7), -27.712499233089, 5e-13);
  EXPECT_NEAR(ipts68_of_its90(85.0), 85.013358222928, 5e-13);
  Correction c;
  ASSERT_TRUE(observed_from_base({Group::crude}, density_of_gravity(17.785), -27.7, 0, Rounding::off, c).good());
  EXPECT_NEAR(c.alpha, 0.000380407044, 5e-13);
  ASSERT_TRUE(observed_from_base({Group::refined}, density_of_relative(0.7943), 85, 247.3, Rounding::off, c).good());
  EXPECT_NEAR(c.alpha, 0.000524557068, 5e-13);
  ASSERT_TRUE(
      base_from_observed({Group::lubricating_oil}, MetricBase::degC15, 734.3, 150, 1, Rounding::off, c).good());
  EXPECT_NEAR(c.base_density, 820.979105094945, 1e-6);
  EXPECT_NEAR(c.ctl, 0.894250233938, 2e-11);
  EXPECT_NEAR(c.cpl, 1.000189663064, 2e-12);
}

// Hot light liquids under pressure have two base densities for one observed density. The lower one is no
// liquid of the standard; it must never come without the range flag.
TEST(Api11_1_2004, LowerOfTwoSolutionsIsFlagged) {
  int lower = 0;
  for (const Group group : {Group::crude, Group::refined, Group::gasoline}) {
    const Liquid liquid{group};
    for (double rho60 = 610.6; rho60 < 700; rho60 += 1.1) {
      for (double degF = 180; degF <= 302; degF += 6.1) {
        for (const double psig : {100.0, 600.0, 900.0, 1200.0, 1500.0}) {
          SCOPED_TRACE(std::to_string(rho60) + " " + std::to_string(degF) + " " + std::to_string(psig));
          Correction there, back;
          ASSERT_TRUE(observed_from_base(liquid, rho60, degF, psig, Rounding::off, there).good());
          ASSERT_FALSE(there.out_of_range);
          ASSERT_TRUE(base_from_observed(liquid, there.observed_density, degF, psig, Rounding::off, back).good());
          if (std::fabs(back.base_density - rho60) <= 1e-8 * rho60) continue;
          ++lower;
          ASSERT_TRUE(back.out_of_range) << back.base_density;
        }
      }
    }
  }
  EXPECT_GT(lower, 0);
}

// alpha60 jumps a little where two groups meet. Densities around the jump from both sides: a value that gives
// the observed density back, or no convergence, and that only inside a gap between the two sides.
TEST(Api11_1_2004, BoundariesOfRefinedGroupsNeverGiveAWrongValue) {
  const Liquid liquid{Group::refined};
  int in_gap = 0;
  for (const double boundary : {770.352, 787.5195, 838.3127}) {
    for (const double degF : {-58.0, 20.0, 59.0, 61.0, 110.0, 302.0}) {
      for (const double psig : {0.0, 1500.0}) {
        Correction below, from;
        ASSERT_TRUE(observed_from_base(liquid, std::nextafter(boundary, 0), degF, psig, Rounding::off, below).good());
        ASSERT_TRUE(observed_from_base(liquid, boundary, degF, psig, Rounding::off, from).good());
        ASSERT_NE(below.group, from.group);
        const double jump = from.observed_density - below.observed_density;
        ASSERT_LT(std::fabs(jump), 1e-4);
        // A step from the other side misses a root at the very edge by a part of the jump.
        const double edge = 1e-6 + 0.1 * std::fabs(jump);
        for (int i = -200; i <= 200; ++i) {
          const double observed = below.observed_density + jump / 2 + (std::fabs(jump) + 1e-5) * i / 100;
          SCOPED_TRACE(std::to_string(boundary) + " " + std::to_string(degF) + " " + std::to_string(i));
          Correction found, check;
          const Outcome outcome = base_from_observed(liquid, observed, degF, psig, Rounding::off, found);
          if (outcome.status == no_convergence) {
            ++in_gap;
            ASSERT_GT(observed, below.observed_density - edge);
            ASSERT_LT(observed, from.observed_density + edge);
            continue;
          }
          ASSERT_TRUE(outcome.good());
          ASSERT_TRUE(in_own_band(found.group, found.base_density));
          ASSERT_TRUE(observed_from_base(liquid, found.base_density, degF, psig, Rounding::off, check).good());
          ASSERT_NEAR(check.observed_density, observed, 1e-6);
          ASSERT_EQ(check.group, found.group);
        }
      }
    }
  }
  EXPECT_GT(in_gap, 0);
}

// What happens at the limits, each bound inclusive: in range at the bound, out of range 2e-6 beyond.
TEST(Api11_1_2004, RangeFlags) {
  struct Case {
    Liquid liquid;
    double rho60, degF, psig;
    bool out;
  };
  const Case cases[] = {
      {{Group::crude}, 850, -58, 0, false},           {{Group::crude}, 850, -58.000002, 0, true},
      {{Group::crude}, 850, 302, 1500, false},        {{Group::crude}, 850, 302.000002, 0, true},
      {{Group::crude}, 850, 60, 1500.0000005, false}, {{Group::crude}, 850, 60, 1500.000002, true},
      {{Group::crude}, 850, 60, -0.000002, true},     {{Group::crude}, 610.6, 60, 0, false},
      {{Group::crude}, 610.599998, 60, 0, true},      {{Group::jet_fuel}, 1163.5, 60, 0, false},
      {{Group::refined}, 1163.500002, 60, 0, true},   {{Group::lubricating_oil}, 800.9, 60, 0, false},
      {{Group::lubricating_oil}, 800.8, 60, 0, true}, {{Group::special, 0.0005}, 300, 60, 0, false},
      {{Group::special, 0.00023}, 800, 60, 0, true},  {{Group::special, 0.00093}, 800, 60, 0, true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::to_string(c.rho60) + " " + std::to_string(c.degF) + " " + std::to_string(c.psig));
    Correction there, back;
    ASSERT_TRUE(observed_from_base(c.liquid, c.rho60, c.degF, c.psig, Rounding::off, there).good());
    EXPECT_EQ(there.out_of_range, c.out);
    ASSERT_TRUE(base_from_observed(c.liquid, there.observed_density, c.degF, c.psig, Rounding::off, back).good());
    EXPECT_NEAR(back.base_density, c.rho60, 2e-6);
  }
  // Observed densities have limits of their own.
  Correction c;
  ASSERT_TRUE(base_from_observed({Group::crude}, 1201.9, -58, 1500, Rounding::off, c).good());
  EXPECT_TRUE(c.out_of_range);
}

TEST(Api11_1_2004, NegativePressureCorrectsNothing) {
  for (const Base& base : bases) {
    Correction c, zero;
    ASSERT_TRUE(base.to_base({Group::crude}, 823.7, 80, -7.3, c).good());
    ASSERT_TRUE(base.to_base({Group::crude}, 823.7, 80, 0, zero).good());
    EXPECT_EQ(c.cpl, 1.0);
    EXPECT_EQ(c.base_density, zero.base_density);
    EXPECT_EQ(c.f, zero.f);
    EXPECT_TRUE(c.out_of_range);
    EXPECT_FALSE(zero.out_of_range);
  }
}

// A liquid with a known alpha60 goes another way to the same factors as the crude oil that has this alpha60.
TEST(Api11_1_2004, SpecialApplicationAgreesWithTheCorrelation) {
  for (const double rho60 : {650.0, 800.0, 1000.0}) {
    for (const double degF : {-40.0, 75.0, 250.0}) {
      Correction crude, special, back;
      ASSERT_TRUE(observed_from_base({Group::crude}, rho60, degF, 900, Rounding::off, crude).good());
      const Liquid liquid{Group::special, crude.alpha};
      ASSERT_TRUE(observed_from_base(liquid, rho60, degF, 900, Rounding::off, special).good());
      EXPECT_NEAR(special.ctl, crude.ctl, 1e-15);
      EXPECT_NEAR(special.cpl, crude.cpl, 1e-9);
      EXPECT_EQ(special.alpha, crude.alpha);
      ASSERT_TRUE(base_from_observed(liquid, special.observed_density, degF, 900, Rounding::off, back).good());
      EXPECT_NEAR(back.base_density, rho60, 1e-9 * rho60);
    }
  }
}

TEST(Api11_1_2004, RoundingTouchesCtplOnly) {
  for (const auto& [id, value] : {std::pair{u"API_Table5_2004", 36.3}, {u"API_Table60_2004", 871.3}}) {
    test::Call plain(id), rounded(id);
    for (test::Call* call : {&plain, &rounded}) call->set(1, value).set(2, 87.3).set(3, 21.0);
    ASSERT_EQ(plain.run(), 0);
    ASSERT_EQ(rounded.set(u"api rnd", 1.0).run(), 0);
    for (const Function_COutput& output : plain.spec().output_records()) {
      if (output.key != u"ctpl") {
        EXPECT_EQ(rounded[output.key], plain[output.key]);
      }
    }
    EXPECT_NE(rounded[u"ctpl"], plain[u"ctpl"]);
    EXPECT_NEAR(rounded[u"ctpl"], plain[u"ctpl"], 5e-6);
    EXPECT_EQ(rounded[u"ctpl"], std::round(rounded[u"ctpl"] * 1e5) / 1e5);
  }
}

}  // namespace
}  // namespace norvane::API_11_1_2004
