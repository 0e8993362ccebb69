// The algorithms themselves, without the bounds that a record puts before them: any number ends with a status and a
// reason, or with finite results.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "math/liquid/api_11_1_1952.h"
#include "math/liquid/api_11_1_1980.h"
#include "math/liquid/api_11_2_1.h"
#include "math/liquid/api_11_2_2.h"
#include "math/liquid/api_11_2_4.h"
#include "math/liquid/astm_d4311.h"
#include "math/liquid/composites.h"
#include "math/liquid/gpa_tp15.h"
#include "math/liquid/oiml_r22.h"

namespace norvane {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double densities[] = {nan, inf,  -inf, 0.0, -0.0, 5e-324, 1e-310, -1.0,  1e-9,  0.1, 0.3251, 0.4,
                                0.6, 0.75, 1.1,  1.2, 50.0, 330.0,  600.0,  785.0, 850.0, 1e4, 1e300,  -1e300};
constexpr double temperatures[] = {nan,  inf,   -inf,  -459.67, -460.0, -273.15, -443.0, -100.0, 0.0,
                                   60.0, 199.0, 400.0, 1e3,     1e5,    1e300,   -1e300, 5e-324};
constexpr double pressures[] = {0.0, nan, inf, 1e3, 1e5, -1e300};

void expect_sane(const Outcome& outcome, std::initializer_list<double> results, const std::string& what) {
  if (outcome.good()) {
    for (const double result : results) ASSERT_TRUE(std::isfinite(result)) << what;
  } else {
    ASSERT_TRUE(outcome.status >= 1 && outcome.status <= 3) << what;
    ASSERT_NE(outcome.text[0], u'\0') << what;
  }
}

template <class Observation, class Correction>
void expect_sane(Outcome (*calculation)(const Observation&, Correction&) noexcept, Observation o) {
  for (const double density : densities) {
    for (const double t : temperatures) {
      o.density = density;
      o.temperature = t;
      Correction c;
      const Outcome outcome = calculation(o, c);
      expect_sane(outcome, {c.base_density, c.ctl}, std::to_string(density) + " at " + std::to_string(t));
    }
  }
}

TEST(LiquidHostility, TablesSurviveAnyNumber) {
  for (int product = 0; product <= 8; ++product) {
    API_11_1_1980::Observation o;
    o.product = static_cast<liquid::Product>(product);
    o.hydrometer = true;
    for (const auto calculation :
         {API_11_1_1980::to_60F, API_11_1_1980::from_60F, API_11_1_1980::to_15C, API_11_1_1980::from_15C})
      expect_sane(calculation, o);
  }
  for (const auto calculation :
       {API_11_1_1952::to_60F, API_11_1_1952::from_60F, API_11_1_1952::to_15C, API_11_1_1952::from_15C})
    expect_sane(calculation, {});
  for (const bool rounding : {false, true}) {
    API_11_2_4::Observation o;
    o.rounding = rounding;
    for (const auto calculation : {API_11_2_4::to_60F, API_11_2_4::from_60F, API_11_2_4::to_15C, API_11_2_4::from_15C,
                                   API_11_2_4::to_20C, API_11_2_4::from_20C})
      expect_sane(calculation, o);
  }
}

TEST(LiquidHostility, FactorsSurviveAnyNumber) {
  for (const double x : densities) {
    for (const double t : temperatures) {
      const std::string what = std::to_string(x) + " at " + std::to_string(t);
      for (const double p : pressures) {
        for (const auto calculation :
             {API_11_2_1::factor, API_11_2_1::factor_metric, API_11_2_2::factor, API_11_2_2::factor_metric}) {
          liquid::Compressed c;
          const Outcome outcome = calculation({x, t, p, 0.0, false}, c);
          expect_sane(outcome, {c.cpl, c.f}, what + ", " + std::to_string(p));
        }
      }
      GPA_TP15::Result pe;
      expect_sane(GPA_TP15::pressure({x, t}, pe), {pe.equilibrium_pressure}, what);
      for (const auto calculation : {ASTM_D4311::factor_60F, ASTM_D4311::factor_15C}) {
        ASTM_D4311::Result factor;
        expect_sane(calculation({x, t}, factor), {factor.ctl}, what);
      }
      for (int mode = 0; mode <= 4; ++mode) {
        OIML_R22::Result r;
        const Outcome outcome = OIML_R22::calculate({static_cast<OIML_R22::Mode>(mode), x, t, x, x, false}, r);
        expect_sane(outcome, {r.density, r.mass_content, r.volume_content, r.density_20, r.ctl}, what);
      }
    }
  }
}

template <class Arguments, class Result>
void expect_sane_composite(Outcome (*calculation)(const Arguments&, Result&) noexcept, Arguments in) {
  for (const double density : densities) {
    for (const double t : temperatures) {
      for (const double p : pressures) {
        for (int conversion = 1; conversion <= 2; ++conversion) {
          in.flow.density = density;
          in.flow.temperature = t;
          in.flow.pressure = p;
          in.flow.conversion = static_cast<liquid::Conversion>(conversion);
          Result r;
          const Outcome outcome = calculation(in, r);
          expect_sane(outcome, {r.converted.density, r.converted.cpl, r.converted.ctpl, r.converted.f, r.table.ctl},
                      std::to_string(density) + " at " + std::to_string(t) + ", " + std::to_string(p));
        }
      }
    }
  }
}

TEST(LiquidHostility, CompositesSurviveAnyNumber) {
  for (const auto product : {liquid::Product::crude, liquid::Product::refined, liquid::Product::transition}) {
    composite::Arguments1980 in;
    in.product = product;
    expect_sane_composite(composite::dens60F_1980, in);
    expect_sane_composite(composite::dens15C_1980, in);
  }
  expect_sane_composite(composite::rd60F_1952, {});
  expect_sane_composite(composite::dens15C_1952, {});
  for (const auto mode : {composite::Equilibrium::given, composite::Equilibrium::calculated}) {
    composite::ArgumentsNgl in;
    in.equilibrium = mode;
    for (const auto calculation : {composite::rd60F_ngl, composite::dens15C_ngl, composite::dens20C_ngl})
      expect_sane_composite(calculation, in);
  }
}

}  // namespace
}  // namespace norvane
