// The equations of state of carbon dioxide and ethylene, which share their terms, their density search and their
// phases.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "math/fluid/ethylene_iupac.h"
#include "math/fluid/ethylene_nist1045.h"
#include "math/fluid/nist_co2.h"
#include "math/fluid/nist_ethylene_visc.h"
#include "tests/math/fluid/consistency.h"

namespace norvane::test {
namespace {

constexpr double not_a_number = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();

// An equation in kg/m3 and kJ/kg.
struct Fluid {
  const char* name;
  bool (*density)(double p, double T, double& rho);
  helmholtz::State (*state)(double T, double rho);  // per `amount` kilograms
  double amount;
  double R;  // [kJ/(kg K)]
  double critical_temperature, critical_pressure, critical_density;
  double lowest_temperature, highest_temperature, highest_pressure;
  double own_critical_temperature;  // of the equation, where its isotherms begin to have a loop
};

bool nist1045_density(double p, double T, double& rho) {
  const bool found = Ethylene_NIST1045::density(p, T, Ethylene_NIST1045::Phase::automatic, rho);
  rho *= Ethylene_NIST1045::molar_mass;
  return found;
}
helmholtz::State nist1045_state(double T, double rho) {
  return Ethylene_NIST1045::state(T, rho / Ethylene_NIST1045::molar_mass);
}

const Fluid fluids[] = {{"carbon dioxide", NIST_CO2::density, NIST_CO2::state, 1.0, NIST_CO2::R, 304.1282, 7.3773,
                         467.6, 216.592, 1100.0, 800.0, 304.1282},
                        {"ethylene IUPAC", Ethylene_IUPAC::density, Ethylene_IUPAC::state, 1.0, Ethylene_IUPAC::R,
                         282.3452, 5.0401, 214.164, 104.0, 450.0, 260.0, 282.32},
                        {"ethylene NIST", nist1045_density, nist1045_state, 28.054, Ethylene_NIST1045::R / 28.054,
                         282.3428, 5.0403, 214.164, 104.0, 450.0, 25.0, 282.35}};

double density(const Fluid& fluid, double p, double T) {
  double rho = 0.0;
  EXPECT_TRUE(fluid.density(p, T, rho)) << fluid.name << " " << p << " MPa, " << T << " K";
  return rho;
}

// The pressure of the equation itself [MPa].
double pressure(const Fluid& fluid, double T, double rho) {
  return rho * fluid.R * T * fluid.state(T, rho).z / 1000.0;
}

FluidState at(const Fluid& fluid, double p, double T) {
  const double rho = density(fluid, p, T);
  const helmholtz::State x = fluid.state(T, rho);
  const double m = fluid.amount;
  return {1.0 / rho, x.h / m, x.s / m, x.cp / m, x.cv / m, 1000.0 * x.M_w2 / m};
}

TEST(SingleFluid, PropertiesBelongTogether) {
  for (const Fluid& fluid : fluids) {
    SCOPED_TRACE(fluid.name);
    const auto state = [&](double p, double T) { return at(fluid, p, T); };
    const double Tc = fluid.critical_temperature, pc = fluid.critical_pressure;
    // Thin and dense gas, liquid, and states around the critical point, where the special terms of carbon dioxide
    // count.
    for (const auto& [pr, Tr] : {std::pair{0.01, 0.9}, {0.4, 0.95}, {0.5, 1.5}, {4.0, 1.45}, {1.2, 0.75}, {4.8, 0.8}})
      expect_consistent(state, pr * pc, Tr * Tc, 1e-5);
    for (const auto& [pr, Tr] : {std::pair{1.2, 0.99}, {0.85, 0.99}, {1.1, 1.01}, {1.3, 1.04}})
      expect_consistent(state, pr * pc, Tr * Tc, 2e-3);
  }
}

TEST(SingleFluid, SaturationLineFromBothSides) {
  for (const Fluid& fluid : fluids) {
    SCOPED_TRACE(fluid.name);
    for (double share : {0.02, 0.2, 0.5, 0.8, 0.95, 0.99, 0.9995}) {
      const double T = fluid.lowest_temperature + share * (fluid.own_critical_temperature - fluid.lowest_temperature);
      double low = 1e-6, high = fluid.critical_pressure * 1.01;
      for (int i = 0; i < 60; ++i) {
        const double p = 0.5 * (low + high);
        (density(fluid, p, T) < fluid.critical_density ? low : high) = p;
      }
      // Either side has the same Gibbs energy, and runs smoothly into the line.
      const double gas = density(fluid, low, T), liquid = density(fluid, high, T);
      const helmholtz::State g = fluid.state(T, gas), l = fluid.state(T, liquid);
      EXPECT_NEAR((g.h - l.h) / T, g.s - l.s, 1e-8 * g.ideal.cp) << T;
      EXPECT_GT(liquid, fluid.critical_density);
      EXPECT_LT(gas, fluid.critical_density);
      for (double step : {1e-9, 1e-7}) {
        const double slack = 2.0 * step * low / (gas * gas) / std::fabs(1.0 / gas - 1.0 / liquid);
        EXPECT_NEAR(density(fluid, low * (1.0 - step), T) / gas, 1.0, 1e3 * step + slack) << T;
        EXPECT_NEAR(density(fluid, high * (1.0 + step), T) / liquid, 1.0, 1e3 * step) << T;
      }
    }
  }
}

// The state with this pressure that is reached from outside, without a look into the loop: below it (gas) or above
// it (liquid) the pressure rises all the way.
TEST(SingleFluid, DensityIsTheOutermostRoot) {
  std::mt19937_64 random(29);
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  for (const Fluid& fluid : fluids) {
    SCOPED_TRACE(fluid.name);
    const double Tc = fluid.own_critical_temperature, pc = fluid.critical_pressure;
    for (int i = 0; i < 4000; ++i) {
      const double near = std::pow(10.0, -9.0 * unit(random)), side = 2.0 * unit(random) - 1.0;
      double T = fluid.lowest_temperature + (fluid.highest_temperature - fluid.lowest_temperature) * unit(random);
      double p = fluid.highest_pressure * std::pow(unit(random), 3.0);
      if (i % 3 == 1) T = Tc * (1.0 - 0.15 * unit(random)), p = pc * 1.2 * unit(random);
      if (i % 3 == 2) T = Tc * (1.0 + 0.1 * side * near), p = pc * (1.0 + near * (unit(random) - 0.5));
      const double rho = density(fluid, p, T);
      SCOPED_TRACE(testing::Message() << p << " MPa, " << T << " K, " << rho << " kg/m3");
      // Within rounding of the pressure, which in a cold liquid is the difference of large numbers.
      ASSERT_NEAR(pressure(fluid, T, rho), p, 1e-11 * p + 1e-12 * rho * T / fluid.critical_density);
      if (i % 8 != 0) continue;
      const bool gas = rho < fluid.critical_density && T < Tc;
      const double outer = gas ? 0.0 : std::max(rho, 3.0 * fluid.critical_density);
      for (int k = 1; k < 40; ++k) {
        const helmholtz::State x = fluid.state(T, rho + (outer - rho) * k / 40.0);
        ASSERT_GT(x.dp_drho, -1e-6) << k;
      }
    }
  }
}

TEST(SingleFluid, CriticalPointHasAnAnswer) {
  for (const Fluid& fluid : fluids) {
    SCOPED_TRACE(fluid.name);
    const double T = fluid.critical_temperature, p = fluid.critical_pressure;
    for (double dT : {-1e-6, -1e-9, 0.0, 1e-9, 1e-6})
      for (double dp : {-1e-3, -1e-9, 0.0, 1e-9, 1e-3})
        EXPECT_NEAR(density(fluid, p * (1.0 + dp), T + dT) / fluid.critical_density, 1.0, 0.25) << dT << " " << dp;
    EXPECT_LT(density(fluid, p * 0.995, T), density(fluid, p * 1.005, T));
  }
}

TEST(SingleFluid, ThinGasIsIdeal) {
  for (const Fluid& fluid : fluids) {
    for (double p : {1e-300, 1e-100, 1e-12}) {
      const double rho = density(fluid, p, 300.0);
      EXPECT_NEAR(pressure(fluid, 300.0, rho) / p, 1.0, 1e-9);
    }
  }
  Ethylene_IUPAC::Result x;
  ASSERT_TRUE(Ethylene_IUPAC::calculate({1e-12, 298.15}, x).good());
  EXPECT_NEAR(x.z, 1.0, 1e-9);
  EXPECT_NEAR(x.enthalpy * Ethylene_IUPAC::molar_mass, 29610.08, 1e-3);
  const double R = Ethylene_IUPAC::R;
  EXPECT_NEAR(x.entropy + R * std::log(1e-12 / 0.101325), 219.2234 / Ethylene_IUPAC::molar_mass, 1e-6);
}

// ---- The functions ------------------------------------------------------------------------------------------------

TEST(Ethylene_NIST1045, APhaseCanBeContinuedToItsEnd) {
  using namespace Ethylene_NIST1045;
  const auto run = [](double p, double T, Phase phase) {
    Result x;
    const int status = calculate({p, T, phase}, x).status;
    return status == success ? x.molar_density : -static_cast<double>(status);
  };
  // At 200 K the saturation pressure is 0.455 MPa, the vapour ends at 2.84 times that.
  EXPECT_NEAR(run(0.5, 200.0, Phase::gas) / run(0.45, 200.0, Phase::automatic), 1.13, 0.05);
  EXPECT_NEAR(run(0.4, 200.0, Phase::liquid) / run(0.46, 200.0, Phase::automatic), 1.0, 1e-3);
  EXPECT_EQ(run(0.4, 200.0, Phase::gas), run(0.4, 200.0, Phase::automatic));
  EXPECT_EQ(run(20.0, 200.0, Phase::liquid), run(20.0, 200.0, Phase::automatic));
  // Beyond its end there is no such phase, whatever roots the loop has there.
  for (double p = 1.3; p < 40.0; p *= 1.01) EXPECT_EQ(run(p, 200.0, Phase::gas), -no_convergence) << p;
  for (double p = 2.9; p > 1e-6; p *= 0.9) EXPECT_EQ(run(p, 270.0, Phase::liquid), -no_convergence) << p;
  Result x;
  EXPECT_NE(calculate({0.5, 200.0, Phase::gas}, x).text[0], u'\0');
  EXPECT_EQ(calculate({0.4, 200.0, Phase::gas}, x).text[0], u'\0');
  // Nothing to choose above the critical temperature.
  EXPECT_EQ(run(5.0, 290.0, Phase::gas), run(5.0, 290.0, Phase::automatic));
  EXPECT_EQ(run(9.0, 290.0, Phase::gas), run(9.0, 290.0, Phase::automatic));
  // The equation turns down in the solid.
  EXPECT_EQ(run(38.0, 104.0, Phase::automatic), -no_convergence);
}

TEST(NIST_Ethylene_Visc, ThinGasHasTheDiluteViscosity) {
  using namespace NIST_Ethylene_Visc;
  for (double T : {110.0, 300.0, 500.0}) EXPECT_NEAR(viscosity(T, 1e-200) / dilute_viscosity(T), 1.0, 1e-12);
}

template <class Calculate, class Arguments>
void expect_refused(Calculate calculate, const Arguments&) {
  for (double bad : {0.0, -0.0, -1.0, not_a_number, infinite, -infinite}) {
    const Arguments p{bad, 250.0}, T{1.0, bad};
    EXPECT_EQ(calculate(p).status, argument_error) << bad;
    EXPECT_EQ(calculate(p).member, &p.pressure) << bad;
    EXPECT_EQ(calculate(T).status, argument_error) << bad;
    EXPECT_EQ(calculate(T).member, &T.temperature) << bad;
  }
}

// Whatever the numbers, an answer with status 0 is finite and positive, one without has a reason.
TEST(SingleFluid, HostileNumbersAreRefusedOrAnswered) {
  NIST_CO2::Result co2;
  Ethylene_IUPAC::Result iupac;
  Ethylene_NIST1045::Result nist;
  NIST_Ethylene_Visc::Result visc;
  expect_refused([&](const auto& in) { return calculate(in, co2); }, NIST_CO2::Arguments{});
  expect_refused([&](const auto& in) { return calculate(in, iupac); }, Ethylene_IUPAC::Arguments{});
  expect_refused([&](const auto& in) { return calculate(in, nist); }, Ethylene_NIST1045::Arguments{});
  expect_refused([&](const auto& in) { return calculate(in, visc); }, NIST_Ethylene_Visc::Arguments{});
  for (int phase : {0, 4, -1}) {
    const Ethylene_NIST1045::Arguments in{1.0, 300.0, static_cast<Ethylene_NIST1045::Phase>(phase)};
    EXPECT_EQ(calculate(in, nist).member, &in.phase);
  }
  const auto answered = [](const Outcome& outcome, std::initializer_list<double> values) {
    if (!outcome.good()) {
      EXPECT_NE(outcome.text[0], u'\0');
      return;
    }
    for (double value : values) EXPECT_TRUE(value > 0.0 && value < 1e300) << value;
  };
  std::vector<double> numbers = {5e-324, 1e-310, 1e-300, 1e-30, 1e300, 1.7e308};
  for (double x = 1e-6; x < 1e7; x *= 3.7) numbers.push_back(x);
  for (double p : numbers) {
    for (double T : numbers) {
      SCOPED_TRACE(testing::Message() << p << " MPa, " << T << " K");
      Outcome o = calculate(NIST_CO2::Arguments{p, T}, co2);
      answered(o, {co2.density});
      o = calculate(Ethylene_IUPAC::Arguments{p, T}, iupac);
      answered(o, {iupac.z, iupac.density, iupac.cp, iupac.cv, iupac.speed_of_sound});
      EXPECT_TRUE(!o.good() || (std::isfinite(iupac.enthalpy) && std::isfinite(iupac.entropy)));
      for (int phase : {1, 2, 3}) {
        o = calculate(Ethylene_NIST1045::Arguments{p, T, static_cast<Ethylene_NIST1045::Phase>(phase)}, nist);
        answered(o, {nist.z, nist.density, nist.molar_density});
      }
      o = calculate(NIST_Ethylene_Visc::Arguments{p, T}, visc);
      answered(o, {visc.viscosity});
    }
  }
}

}  // namespace
}  // namespace norvane::test
