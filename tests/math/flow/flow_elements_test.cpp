// All eight elements against what holds whatever the coefficients are: the states at the three points, the flow
// equation, and the way to zero flow.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <string>

#include "core/text.h"
#include "tests/support/call.h"

namespace norvane {
namespace {

using test::Call;
using test::infinite;

// Where an element's records and units differ from its siblings'.
struct Element {
  const char16_t* id;
  std::u16string pressure, temperature, density, kappa;  // keys
  double dp_per_pressure, absolute_zero;
  bool clears_liquids = true;
};
const Element elements[] = {
    {u"ISO5167_Orifice", u"pres", u"temp", u"dens", u"kappa", 1000.0, 273.15},
    {u"ISO5167_ISA1932", u"pres", u"temp", u"dens", u"kappa", 1000.0, 273.15},
    {u"ISO5167_LongRadius", u"pres", u"temp", u"dens", u"kappa", 1000.0, 273.15},
    {u"ISO5167_VenturiNozzle", u"pres", u"temp", u"dens", u"kappa", 1000.0, 273.15},
    {u"ISO5167_Venturi", u"p", u"t", u"dens", u"kappa", 1000.0, 273.15},
    {u"AGA3_C", u"pressure", u"temperature", u"density", u"isen exp", 27.707, 459.67, false},
    {u"VCone_M", u"pres", u"temp", u"dens", u"isen exp", 1000.0, 273.15},
    {u"VCone_C", u"pres", u"temp", u"dens", u"isen exp", 6894.76 / 248.84, 459.67},
};
constexpr const char16_t* points[] = {u"upstream", u"downstream", u"recovered"};

std::u16string key(int point, const char16_t* quantity) { return std::u16string(points[point]) + u" " + quantity; }

class FlowElements : public testing::TestWithParam<Element> {};
INSTANTIATE_TEST_SUITE_P(All, FlowElements, testing::ValuesIn(elements),
                         [](const auto& test) { return to_utf8(test.param.id); });

// Locations, corrections and fluids, all combinations.
template <class Check>
void walk(const Element& element, Check check) {
  for (int fluid = 1; fluid <= 2; ++fluid)
    for (int p_loc = 1; p_loc <= 2; ++p_loc)
      for (int t_loc = 1; t_loc <= 3; ++t_loc)
        for (int t_cor = 1; t_cor <= 3; ++t_cor)
          for (int d_loc = 1; d_loc <= 3; ++d_loc)
            for (double d_exp : {0.0, 0.83}) {
              Call call(element.id);
              const double t_exp = t_cor == 3 ? 0.4 : t_cor == 2 ? -0.21 : 7.0;
              call.set(u"fluid", fluid).set(u"p loc", p_loc).set(u"t loc", t_loc).set(u"t cor", t_cor);
              call.set(u"t exp", t_exp).set(u"d loc", d_loc).set(u"d exp", d_exp);
              SCOPED_TRACE(testing::Message() << "fluid " << fluid << " p" << p_loc << " t" << t_loc << " cor "
                                              << t_cor << " d" << d_loc << " exp " << d_exp);
              ASSERT_EQ(call.run(), 0);
              check(call, fluid == 2, p_loc - 1, t_loc - 1, t_cor, t_exp, d_loc - 1, d_exp);
            }
}

TEST_P(FlowElements, StatesAtTheThreePointsBelongTogether) {
  const Element& e = GetParam();
  walk(e, [&e](Call& call, bool liquid, int p_loc, int t_loc, int t_cor, double t_exp, int d_loc, double d_exp) {
    double p[3], T[3], rho[3];
    for (int i = 0; i < 3; ++i) {
      p[i] = call[key(i, u"pres")];
      T[i] = call[key(i, u"temp")];
      rho[i] = call[key(i, u"dens")];
    }
    EXPECT_EQ(p[p_loc], call.default_of(e.pressure));
    EXPECT_EQ(T[t_loc], call.default_of(e.temperature));
    EXPECT_EQ(rho[d_loc], call.default_of(e.density));
    EXPECT_NEAR(p[0] - p[1], call.default_of(u"dp") / e.dp_per_pressure, 1e-12 * p[0]);
    EXPECT_GE(p[2], p[1]);
    EXPECT_LT(p[2], p[0]);
    if (liquid) {
      EXPECT_EQ(call[u"exp factor"], 1.0);
    }

    const double kappa = call.default_of(e.kappa);
    const double n_T = t_cor == 1 ? (1.0 - kappa) / kappa : t_exp;
    const double n_rho = d_exp != 0.0 ? d_exp : 1.0 / kappa;
    for (int i = 0; i < 3; ++i) {
      if (liquid && e.clears_liquids) {
        if (i != t_loc) {
          EXPECT_EQ(T[i], 0.0);
        }
        if (i != d_loc) {
          EXPECT_EQ(rho[i], 0.0);
        }
        continue;
      }
      const double absolute = t_cor == 3 ? T[t_loc] + e.absolute_zero + (p[i] - p[t_loc]) * t_exp
                                         : (T[t_loc] + e.absolute_zero) * std::pow(p[t_loc] / p[i], n_T);
      // The loop leaves the recovered pressure, and what hangs on it, open by its tolerance.
      EXPECT_NEAR(T[i] + e.absolute_zero, absolute, 1e-8 * absolute);
      EXPECT_NEAR(rho[i], rho[d_loc] * std::pow(p[i] / p[d_loc], n_rho), 1e-8 * rho[i]);
    }
  });
}

// The flow equation in SI units from the outputs alone; AGA-3's own constants are right to some 5e-6.
TEST_P(FlowElements, OutputsObeyTheFlowEquation) {
  const Element& e = GetParam();
  const std::u16string id = e.id;
  const bool customary = id == u"AGA3_C" || id == u"VCone_C";
  const bool cone = id.starts_with(u"VCone");
  const double meter = customary ? 0.0254 : 0.001, pascal = customary ? 248.84 : 100.0;
  const double kg_m3 = customary ? 16.01846337 : 1.0;
  const double kg_s = customary ? 0.125997888888889 : cone ? 1000.0 / 3600.0 : 1.0;
  walk(e, [&](Call& call, bool liquid, int, int, int, double, int d_loc, double) {
    if (liquid && e.clears_liquids && d_loc != 0) return;  // the upstream density is not shown
    const double beta = call.value(2), d = call.value(3) * meter, D = call.value(4) * meter;
    EXPECT_NEAR(beta, cone ? std::sqrt(1.0 - d * d / (D * D)) : d / D, 1e-12);
    const double throat = D * D * beta * beta / std::sqrt(1.0 - std::pow(beta, 4));
    const double C = call.value(15), eps = call.value(16), rho1 = call[u"upstream dens"] * kg_m3;
    const double dp = call.default_of(u"dp") * pascal;
    const double rate = C * eps * std::numbers::pi / 4.0 * throat * std::sqrt(2.0 * dp * rho1);
    const double tolerance = id == u"AGA3_C" ? 3e-5 : 1e-8;  // 248.84 Pa against 27.707 inH2O per psi
    EXPECT_NEAR(call[u"mass rate"] * kg_s, rate, tolerance * rate);
    const double viscosity = call.spec().inputs[5].default_value.AsDouble() * (customary ? 1.48816394356955 : 1.0);
    const double Re = 4.0 * rate / (std::numbers::pi * viscosity * D);
    EXPECT_NEAR(call[u"reynolds"], Re, tolerance * Re);
  });
}

// What a call delivers for one point, given for that point, gives the same flow.
TEST_P(FlowElements, FlowDoesNotDependOnWhereTheStateIsMeasured) {
  const Element& e = GetParam();
  for (int t_cor = 1; t_cor <= 3; ++t_cor) {
    Call reference(e.id);
    reference.set(u"t loc", 1).set(u"t cor", t_cor).set(u"t exp", t_cor == 3 ? 0.4 : -0.21);
    ASSERT_EQ(reference.run(), 0);
    for (int p = 0; p < 2; ++p)
      for (int t = 0; t < 3; ++t)
        for (int d = 0; d < 3; ++d) {
          Call call(e.id);
          call.set(u"t cor", t_cor).set(u"t exp", t_cor == 3 ? 0.4 : -0.21);
          call.set(u"p loc", p + 1).set(e.pressure, reference[key(p, u"pres")]);
          call.set(u"t loc", t + 1).set(e.temperature, reference[key(t, u"temp")]);
          call.set(u"d loc", d + 1).set(e.density, reference[key(d, u"dens")]);
          ASSERT_EQ(call.run(), 0);
          EXPECT_NEAR(call[u"mass rate"], reference[u"mass rate"], 3e-8 * reference[u"mass rate"]);
        }
  }
}

// Down to nothing: the flow falls without a jump, and follows the root of dp where the coefficient is fixed.
TEST_P(FlowElements, FlowFallsSteadilyToZero) {
  const Element& e = GetParam();
  const std::u16string id = e.id;
  const bool fixed = id.find(u"Venturi") != id.npos || id.starts_with(u"VCone");
  for (int fluid = 1; fluid <= 2; ++fluid) {
    Call call(e.id);
    call.set(u"fluid", fluid).set(u"t loc", 1).set(5, 1e-6);  // the viscosity
    if (id.find(u"Venturi") != id.npos) call.set(u"p loss mod", 2).set(u"p loss val", 12);
    const double smallest = fixed || id == u"AGA3_C" ? 1e-290 : 1e-3;
    double last_rate = infinite, last_dp = infinite;
    for (double dp = 20.0; dp > smallest; dp /= 16.0) {
      SCOPED_TRACE(dp);
      ASSERT_EQ(call.set(u"dp", dp).run(), 0);
      const double rate = call[u"mass rate"], eps = call[u"exp factor"];
      EXPECT_LT(rate, last_rate);
      if (last_dp < infinite) {
        EXPECT_GT(rate, last_rate / (fixed ? 4.0001 : 5.0));
        EXPECT_LT(rate, last_rate / (fixed ? 3.85 : 2.0));
      }
      EXPECT_LE(eps, 1.0);
      // 1 - eps is in proportion to dp; half a digit is left of it where 1 - eps is 1e-15.
      const double x = dp / e.dp_per_pressure / call[u"upstream pres"];
      if (fluid == 1) {
        EXPECT_NEAR((1.0 - eps) / x, 0.6, x > 1e-12 ? 0.8 : 1e-15 / x + 0.8);
      }
      last_rate = rate;
      last_dp = dp;
    }
    ASSERT_EQ(call.set(u"dp", 0.0).run(), 0);
    EXPECT_EQ(call[u"mass rate"], 0.0);
    EXPECT_EQ(call[u"reynolds"], 0.0);
    EXPECT_EQ(call[u"exp factor"], 1.0);
    EXPECT_EQ(call[u"upstream pres"], call[u"recovered pres"]);
    EXPECT_EQ(call[u"upstream temp"], call.default_of(e.temperature));
    EXPECT_EQ(call[u"upstream dens"], call.default_of(e.density));
    EXPECT_GT(call.value(2), 0.0);
    if (!id.starts_with(u"VCone")) {
      EXPECT_GT(call[u"vel of approach"], 1.0);
      for (std::size_t flag = 18; flag <= 20; ++flag) EXPECT_EQ(call.value(flag), 0.0);
    }
  }
}

}  // namespace
}  // namespace norvane
