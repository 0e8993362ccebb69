#include "math/gas/aga10.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>
#include <span>
#include <utility>
#include <vector>

#include "tests/math/gas/gases.h"
#include "tests/support/call.h"

namespace norvane::test {
namespace {

using namespace AGA10;

constexpr double R = 8.31451;

const AGA8::Composition argon_gas = gas({{AGA8::argon, 1.0}});
const AGA8::Composition* const gases[] = {&gas_of_21, &gulf_coast, &coke_oven, &sour, &argon_gas};

// Enthalpies of the elements and of water at 25 degC above 0 K, and absolute entropies,
// as the thermodynamic tables print them [J/mol, J/(mol K)].
TEST(AGA10, IdealGasesHaveTheirTabulatedEnthalpyAndEntropy) {
  const struct {
    AGA8::ComponentIndex component;
    double h, s;
  } cases[] = {{AGA8::methane, 10018, 186.27}, {AGA8::nitrogen, 8670, 191.47}, {AGA8::carbon_dioxide, 9366, 0},
               {AGA8::water, 9902, 0},         {AGA8::n_butane, 19285, 0},     {AGA8::helium, 6197, 126.04}};
  for (const auto& c : cases) {
    const helmholtz::IdealGas ideal = ideal_mixture(gas({{c.component, 1.0}}), 298.15, Entropy::include);
    EXPECT_NEAR(ideal.h, c.h, 1.0) << c.component;
    if (c.s > 0.0) {
      EXPECT_NEAR(ideal.s, c.s, 0.01) << c.component;
    }
  }
}

double property(const AGA8::Composition& x, double p, double T, Property which) {
  Properties values{};
  EXPECT_EQ(calculate(x, {p, T}, base_conditions, {&which, 1}, values), AGA10::success);
  return values[static_cast<std::size_t>(which)];
}

// The critical flow factor is the greatest mass flux along the isentrope: found here by walking
// down the isentrope, without any speed of sound.
TEST(AGA10, CriticalFlowFactorIsTheGreatestFlux) {
  for (const AGA8::Composition* x : gases) {
    // The last two are dense: a perfect gas with their isentropic exponent is no guide to the throat.
    for (const auto& [p, T] : {std::pair{0.5, 300.0}, {6.0, 320.0}, {15.0, 400.0}, {50.0, 330.0}, {140.0, 330.0}}) {
      AGA8::Mixture mixture;
      mixture.set(*x);
      AGA8::Isotherm isotherm;
      isotherm.set(mixture, T);
      double rho = 0.0;
      ASSERT_TRUE(isotherm.density(p, rho));
      const MolarState start = state(mixture, *x, T, rho, Entropy::include);
      // At this share of the stagnation density, molar, over sqrt(1/M).
      const auto flux = [&, from = T](double share) {
        double at = from;
        MolarState s = start;
        for (int i = 0; i < 40; ++i) {  // Newton on the entropy
          s = state(mixture, *x, at, rho * share, Entropy::include);
          at *= std::exp((start.s - s.s) / s.cv);
        }
        return s.rho * std::sqrt(2.0 * (start.h - s.h));
      };
      double low = 0.4, high = 0.9;  // golden section on a maximum
      for (int i = 0; i < 60; ++i) {
        const double a = high - 0.6180339887498949 * (high - low), b = low + 0.6180339887498949 * (high - low);
        (flux(a) > flux(b) ? high : low) = flux(a) > flux(b) ? b : a;
      }
      const double want = flux(0.5 * (low + high)) * std::sqrt(R * T) / (p * 1e3);
      EXPECT_NEAR(property(*x, p, T, Property::critical_flow_factor) / want, 1.0, 1e-10) << p;
    }
  }
  // A perfect monatomic gas: sqrt(5/3) (3/4)^2, to the digits of the tabulated heat capacity.
  const double perfect = std::sqrt(5.0 / 3.0) * 0.5625;
  for (Property factor :
       {Property::critical_flow_factor, Property::ideal_gas_flow_factor, Property::isentropic_flow_factor})
    EXPECT_NEAR(property(argon_gas, 1e-6, 300.0, factor), perfect, 2e-6);
}

// An answer from memory has the bits of a fresh one, whatever was kept: each of composition, temperature, pressure, base
// state and the properties asked for changes or stays by chance.
TEST(AGA10, MemoryAnswersWhatAFreshCalculationDoes) {
  constexpr Property of_critical_flow[] = {Property::critical_flow_factor, Property::entropy, Property::base_z};
  constexpr Property plain[] = {Property::speed_of_sound, Property::ideal_molar_enthalpy,
                                Property::real_relative_density};
  constexpr Property of_base[] = {Property::base_density}, of_density[] = {Property::flowing_z};
  const std::span<const Property> wanted[] = {of_critical_flow, plain, of_base, of_density};
  constexpr Conditions flowing[] = {{4.0, 280.0}, {4.0, 310.0}, {9.0, 310.0}, {20.0, 160.0}, {9.0, 280.0}};
  constexpr Conditions bases[] = {base_conditions, {0.101325, 288.15}, {0.101325, 310.0}};
  CDetail memory;
  std::minstd_rand random(10);
  std::size_t gas = 0, state = 0, base = 0, list = 0;
  const auto draw = [&random](std::size_t& index, std::size_t size) {
    if (random() % 3 == 0) index = random() % size;
  };
  for (int i = 0; i < 400; ++i) {
    draw(gas, std::size(gases));
    draw(state, std::size(flowing));
    draw(base, std::size(bases));
    draw(list, std::size(wanted));
    Properties kept{}, fresh{};
    ASSERT_EQ(memory.calculate(*gases[gas], flowing[state], bases[base], wanted[list], kept),
              calculate(*gases[gas], flowing[state], bases[base], wanted[list], fresh));
    ASSERT_EQ(std::memcmp(&kept, &fresh, sizeof kept), 0) << gas << state << base << list;
  }
}

// ---- The functions -----------------------------------------------------------------------------------------------

TEST(AGA10Functions, ModeDecidesAboutTheFlowFactorsOnly) {
  Call fast(u"AGA10ex_M"), slow(u"AGA10ex_M"), plain(u"AGA10_M");
  for (Call* call : {&fast, &slow, &plain}) call->list(3, with_neo_pentane(gulf_coast)).set(1, 70.0).set(2, 30.0);
  slow.set(u"critical flow", 2.0);
  for (Call* call : {&fast, &slow, &plain}) ASSERT_EQ(call->run(), 0);
  for (const Function_COutput& output : fast.spec().output_records()) {
    if (output.key == u"crit" || output.key == u"ideal s" || output.key == u"cri") {
      EXPECT_EQ(fast[output.key], 0.0);
      EXPECT_GT(slow[output.key], 0.6);
    } else {
      EXPECT_EQ(fast[output.key], slow[output.key]) << to_utf8(output.key);
    }
  }
  EXPECT_EQ(plain[u"sos"], fast[u"sos"]);
  const double base_density = fast[u"base dens molar"], base_z = fast[u"base z"];
  ASSERT_EQ(fast.set(1, 3.0).set(2, 90.0).run(), 0);
  EXPECT_EQ(fast[u"base dens molar"], base_density);  // the base state does not follow the flowing one
  EXPECT_EQ(fast[u"base z"], base_z);
  EXPECT_EQ(fast[u"oor"], 0);
  ASSERT_EQ(fast.set(1, 1400.0).run(), 0);
  EXPECT_EQ(fast[u"oor"], 2);
}

// Whatever the state, an answer with status 0 is finite and obeys 0 < cv < cp, and no call hangs.
TEST(AGA10Functions, EveryAnswerIsAState) {
  for (const AGA8::Composition* x : gases) {
    Call call(u"AGA10ex_M");
    call.list(3, with_neo_pentane(*x)).set(u"critical flow", 2.0);
    int answers = 0;
    for (double t = -200.0; t <= 400.0; t += 25.0) {
      for (double p : {1e-300, 1e-3, 1.0, 40.0, 100.0, 400.0, 2000.0}) {
        const int status = call.set(1, p).set(2, t).run();
        ASSERT_NE(status, Call::refused);
        if (status != 0) continue;
        ++answers;
        EXPECT_GT(call[u"real cv"], 0.0);
        EXPECT_GT(call[u"real cp"], call[u"real cv"]);
        EXPECT_GT(call[u"sos"], 0.0);
      }
    }
    EXPECT_GT(answers, 50);
  }
}

}  // namespace
}  // namespace norvane::test
