#include "math/flow/vcone.h"

#include <gtest/gtest.h>

#include <cmath>

#include "core/text.h"
#include "tests/support/call.h"

namespace norvane {
namespace {

using test::Call;
using VCone::Code;

struct Case {
  VCone::Measurement measured{
      .dp = 100, .pressure = 2, .temperature = 20, .density = 1.5, .viscosity = 0.011, .kappa = 1.3};
  VCone::Geometry geometry{.pipe_diameter = 80, .device_diameter = 60};
  VCone::Result result{};

  Code run(VCone::Type type) { return VCone::cone(measured, geometry, type, 0.85, result); }
};

TEST(VCone, SmallExpansionFactorIsFlagged) {
  Case c;
  c.measured.dp = 400;
  c.geometry.device_diameter = 30;
  ASSERT_EQ(c.run(VCone::Type::standard), Code::ok);
  const double beta4 = std::pow(c.result.beta, 4);
  EXPECT_NEAR(c.result.expansion_factor, 1.0 - (0.649 + 0.696 * beta4) * 0.2 / 1.3, 1e-14);
  EXPECT_EQ(c.result.expansion_out_of_range, c.result.expansion_factor < 0.84);
  ASSERT_EQ(c.run(VCone::Type::wafer), Code::ok);
  EXPECT_NEAR(c.result.expansion_factor, 1.0 - (0.755 + 6.787 * beta4 * beta4) * 0.2 / 1.3, 1e-14);
  EXPECT_LT(c.result.expansion_factor, 0.84);
  EXPECT_TRUE(c.result.expansion_out_of_range);
  c.measured.dp = 10;
  ASSERT_EQ(c.run(VCone::Type::wafer), Code::ok);
  EXPECT_FALSE(c.result.expansion_out_of_range);
}

TEST(VCone, CustomaryEqualsMetricOfConvertedInputs) {
  const double psi = 0.0689476;
  for (int t_cor = 1; t_cor <= 3; ++t_cor)
    for (int fluid = 1; fluid <= 2; ++fluid) {
      Call us(u"VCone_C"), si(u"VCone_M");
      for (Call* call : {&us, &si})
        call->set(u"t cor", t_cor).set(u"fluid", fluid).set(u"t loc", 3).set(u"d loc", 2).set(u"config", 2);
      us.set(u"t exp", 0.5);
      si.set(u"t exp", t_cor == 3 ? 0.5 / 1.8 / psi : 0.5);
      si.set(u"dp", 52 * 2.4884)
          .set(u"pres", 26 * psi)
          .set(u"temp", (75 - 32) / 1.8)
          .set(u"dens", 0.08122 * 16.01846337);
      si.set(u"dyn vis", 6.9e-6 * 1.48816394356955).set(u"isen exp", 1.304);
      si.set(u"pipe diam", 3.078 * 25.4).set(u"pipe exp fac", 1.08e-5 * 1.8).set(u"pipe ref temp", 38 / 1.8);
      si.set(u"cone diam", 2.75 * 25.4).set(u"cone exp fac", 1.63e-5 * 1.8).set(u"cone ref temp", 36 / 1.8);
      ASSERT_EQ(us.run(), 0);
      ASSERT_EQ(si.run(), 0);
      const auto same = [&](const char16_t* name, double factor, double offset = 0.0) {
        EXPECT_NEAR(us[name] * factor + offset, si[name], 1e-12 * std::fabs(si[name]) + 1e-12) << to_utf8(name);
      };
      same(u"mass rate", 3.6 * 0.125997888888889);  // klbm/h to t/h
      same(u"velocity", 0.3048);
      same(u"reynolds", 1.0);
      same(u"cor cone diam", 25.4);
      same(u"recovered pres", psi);
      same(u"recovered temp", 1 / 1.8, -32 / 1.8);
      if (fluid == 1) {
        same(u"upstream temp", 1 / 1.8, -32 / 1.8);
        same(u"upstream dens", 16.01846337);
      } else {
        EXPECT_EQ(us[u"upstream temp"], 0.0);  // not 32 degF
        EXPECT_EQ(us[u"recovered temp"], 75.0);
      }
    }
}

}  // namespace
}  // namespace norvane
