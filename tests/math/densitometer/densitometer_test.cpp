// Densitometers: divisors, limits, switches and defaults; the equations themselves are held by the published cases.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <utility>
#include <vector>

#include "catalogue/catalogue.h"
#include "core/text.h"
#include "math/densitometer/sarasota.h"
#include "math/densitometer/solartron.h"
#include "math/densitometer/ugc.h"
#include "tests/framework/test_context.h"

namespace norvane {
namespace {


constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

// Meters whose uncorrected density is k0 or, for Sarasota, set by the period.
Solartron::GasMeter gas_of(double density) {
  Solartron::GasMeter m{};
  m.temperature = 35;
  m.ref_temperature = 20;
  m.k0 = density;
  m.k3 = 400;
  m.k4 = 55;
  m.calibration_gas = 0.00236;
  m.method = Solartron::GasValue::given;
  m.gas_value = 0.49;
  return m;
}

Solartron::LiquidMeter liquid_of(double density) {
  Solartron::LiquidMeter m{};
  m.k0 = density;
  m.sound_correction = Solartron::SoundCorrection::velocity;
  m.velocity_of_sound = 1250;
  return m;
}

TEST(SolartronGas, ZeroDivisorsFailWhereTheyAreUsed) {
  Solartron::GasDensity d;
  auto m = gas_of(50);
  m.k4 = -50;
  EXPECT_EQ(Solartron::gas_density(m, d).status, success);
  m.sound_correction = true;
  EXPECT_EQ(Solartron::gas_density(m, d).status, calculation_error);
  m.k4 = 55;
  EXPECT_EQ(Solartron::gas_density(m, d).status, success);
  m.temperature = -273;
  EXPECT_EQ(Solartron::gas_density(m, d).status, calculation_error);
  m = gas_of(50);
  m.specific_heat_ratio = 0;
  EXPECT_EQ(Solartron::gas_density(m, d).status, success);
  m.method = Solartron::GasValue::from_relative_density;  // a failure although the correction is off
  EXPECT_EQ(Solartron::gas_density(m, d).status, calculation_error);
}

TEST(SolartronGas, EveryStageIsHeldWithinItsLimits) {
  Solartron::GasDensity d;
  EXPECT_EQ(Solartron::gas_density(gas_of(0), d).status, success);
  EXPECT_EQ(Solartron::gas_density(gas_of(3000), d).status, success);
  EXPECT_EQ(Solartron::gas_density(gas_of(std::nextafter(3000, inf)), d).status, calculation_error);
  for (const double density : {-1e-9, nan, inf, -inf}) {
    EXPECT_EQ(Solartron::gas_density(gas_of(density), d).status, calculation_error) << density;
  }
  auto m = gas_of(50);
  m.temperature_correction = true;
  m.k19 = -10;  // 50 - 150 kg/m3, which the sound correction alone would bring back
  EXPECT_EQ(Solartron::gas_density(m, d).status, calculation_error);
  m = gas_of(50);
  m.sound_correction = true;
  m.k3 = 1e9;
  EXPECT_EQ(Solartron::gas_density(m, d).status, calculation_error);
}

TEST(SolartronLiquid, SoundCorrectionEndsAtItsLimits) {
  Solartron::LiquidDensity d;
  for (const double density : {0.0, 299.999, 1400.001, 1500.0}) {
    auto m = liquid_of(density);
    m.velocity_of_sound = 0;  // not read there
    EXPECT_EQ(Solartron::liquid_density(m, d).status, success);
    EXPECT_EQ(d.corrected, density);
  }
  for (const double density : {300.0, 1100.0, 1400.0}) {
    auto m = liquid_of(density);
    ASSERT_EQ(Solartron::liquid_density(m, d).status, success);
    EXPECT_NE(d.corrected, density);
    m.velocity_of_sound = 0;
    EXPECT_EQ(Solartron::liquid_density(m, d).status, calculation_error);
  }
  // The branches of the calibration velocity: 1100 kg/m3 itself belongs to the lower, 1700.5 m/s.
  auto m = liquid_of(1100);
  m.velocity_of_sound = 1700.5;
  ASSERT_EQ(Solartron::liquid_density(m, d).status, success);
  EXPECT_EQ(d.corrected, 1100);
}

TEST(SolartronLiquid, ThePressureCorrectedDensityAloneIsNotHeldWithinLimits) {
  Solartron::LiquidDensity d;
  auto m = liquid_of(10);
  m.pressure_correction = true;
  m.pressure = 1;
  m.k21a = -60;                                                            // 10 - 60 = -50 kg/m3
  EXPECT_EQ(Solartron::liquid_density(m, d).status, calculation_error);  // also the final density
  m.sound_correction = Solartron::SoundCorrection::kr_kj;
  m.kj = -60;
  m.kr = 0.06;  // + 0.06 x 10^3 = + 60
  ASSERT_EQ(Solartron::liquid_density(m, d).status, success);
  EXPECT_NEAR(d.pressure_corrected, -50, 1e-12);
  EXPECT_NEAR(d.corrected, 10, 1e-12);
}

TEST(Sarasota, PeriodAtVacuumAndZeroPeriodConstant) {
  Sarasota::Meter m{};
  m.period = m.t0 = 500;
  m.d0 = 230;
  m.k = 0.9;
  Sarasota::Density rho{-1};
  EXPECT_EQ(Sarasota::density(m, rho).status, success);
  EXPECT_EQ(rho.density, 0.0);
  m.period = 499;
  EXPECT_EQ(Sarasota::density(m, rho).status, calculation_error);  // negative
  m.period = 5000;
  EXPECT_EQ(Sarasota::density(m, rho).status, calculation_error);  // above 3000
  m.period = 540;
  m.temperature = 50;
  m.temperature_coefficient = -10;
  EXPECT_EQ(Sarasota::density(m, rho).status, success);
  m.temperature_correction = true;  // 500 - 10 x 50 = 0
  EXPECT_EQ(Sarasota::density(m, rho).status, calculation_error);
}

TEST(OpenResults, AnyFiniteNumberIsAnsweredAndNoOther) {
  Solartron::Gravity sg{};
  EXPECT_EQ(Solartron::specific_gravity({0, -10000, 0}, sg).status, success);
  EXPECT_EQ(sg.sg, -10000);
  EXPECT_EQ(Solartron::specific_gravity({1e200, 0, 1}, sg).status, calculation_error);
  EXPECT_EQ(Solartron::specific_gravity({nan, 0, 1}, sg).status, calculation_error);
  UGC::Meter m{};
  UGC::Density d;
  m.k0 = -5000;
  EXPECT_EQ(UGC::density(m, d).status, success);
  EXPECT_EQ(d.corrected, -5000);
  m.kt2 = 1e9;
  m.temperature = 1e308;
  EXPECT_EQ(UGC::density(m, d).status, success);
  m.temperature_correction = true;
  EXPECT_EQ(UGC::density(m, d).status, calculation_error);
}

class DensitometerFunction : public testing::Test {
 protected:
  // Status of a call with the given inputs, by key, and defaults for the others.
  int call(std::u16string_view id, const std::vector<std::pair<std::u16string_view, double>>& given) {
    const Function_CFunctionSpec* spec = catalogue::find(id);
    std::vector<FUNCTION_ARG> args(spec->input_count, FUNCTION_ARG::Missing());
    for (const auto& [key, value] : given) {
      std::size_t i = 0;
      while (i < args.size() && spec->inputs[i].key != key) ++i;
      if (i == args.size()) {
        ADD_FAILURE() << "no input " << to_utf8(key);
        return -1;
      }
      args[i] = FUNCTION_ARG::Number(value);
    }
    EXPECT_EQ(context_.Run(*spec, std::move(args)), 0u);
    const FUNCTION_ARG& status = context_.output.array.elements[0];
    return status.kind == ARG_INTEGER ? status.integer : static_cast<int>(status.number);
  }
  double out(std::size_t index) const { return context_.output.array.elements[index].number; }
  test::TestContext context_;
};

TEST_F(DensitometerFunction, DefaultsGiveAPlausibleAnswer) {
  EXPECT_EQ(call(u"Solartron_Gas_M", {}), 0);
  EXPECT_NEAR(out(1), 74.844893, 1e-6);
  EXPECT_NEAR(out(3), 74.661986, 1e-6);
  EXPECT_EQ(call(u"Solartron_SG", {}), 0);
  EXPECT_NEAR(out(1), 0.684929, 1e-6);
  EXPECT_EQ(call(u"Sarasota_M", {}), 0);
  EXPECT_NEAR(out(1), 38.1248, 1e-4);
  EXPECT_EQ(call(u"UGC_M", {}), 0);
  EXPECT_NEAR(out(1), 93.95, 1e-9);
  EXPECT_EQ(call(u"Solartron_Liquid_M", {}), 0);
}

TEST_F(DensitometerFunction, SwitchesOutsideTheirListAreArgumentErrors) {
  const std::pair<std::u16string_view, std::u16string_view> switches[] = {
      {u"Solartron_Gas_M", u"temp cor"},
      {u"Solartron_Gas_M", u"vos cor"},
      {u"Solartron_Gas_M", u"g value method"},
      {u"Solartron_Liquid_M", u"temp corr"},
      {u"Solartron_Liquid_M", u"pres corr"},
      {u"Solartron_Liquid_M", u"vos corr"},
      {u"Sarasota_M", u"temp cor"},
      {u"Sarasota_M", u"pres cor"},
      {u"UGC_M", u"temp cor"},
      {u"UGC_M", u"pres cor"},
  };
  for (const auto& [id, key] : switches) {
    for (const double value : {-1.0, 3.0, nan, inf, -inf}) {
      EXPECT_EQ(call(id, {{key, value}}), 1) << to_utf8(id) << ' ' << to_utf8(key) << ' ' << value;
    }
  }
}

TEST_F(DensitometerFunction, NoNumberThatIsNotFiniteGetsThrough) {
  for (const char16_t* id : {u"Solartron_Gas_M", u"Solartron_Liquid_M", u"Solartron_SG", u"Sarasota_M", u"UGC_M"}) {
    for (const double value : {nan, inf, -inf, 1e308}) {
      const int status = call(id, {{u"periodic time", value}});
      EXPECT_TRUE(status == 1 || status == 2) << to_utf8(id) << ' ' << value << ' ' << status;
    }
  }
}

}  // namespace
}  // namespace norvane
