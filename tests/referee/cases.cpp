// Prints calls with answers of 33 digits, as lines of tests/data/refereed: what tools/mutation/choose.py chooses from.
//
//   norvane_refereed [states a class] [seed]
//
// Pressures, temperatures and fractions are such that the call's conversions round nothing away.
#include <array>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>

#include "math/fluid/iapws_if97.h"
#include "math/gas/aga8.h"
#include "math/gas/gerg.h"
#include "tests/referee/aga8_reference.h"
#include "tests/referee/api_11_1_reference.h"
#include "tests/referee/gerg_reference.h"
#include "tests/referee/if97_reference.h"

namespace norvane::referee {
namespace {

using Composition = std::array<double, AGA8::component_count>;

std::string text(double value) {
  char digits[32] = {};
  std::to_chars(digits, digits + sizeof digits - 1, value);
  return digits;
}

struct Output {
  const char* key;
  Real value;
};

template <std::size_t n>
void print(const char* function, const std::string& inputs, const Output (&outputs)[n], const char* source) {
  std::string line =
      std::string("{\"function\":\"") + function + "\",\"inputs\":{" + inputs + "},\"outputs\":{\"status\":0";
  for (const Output& output : outputs)
    line += std::string(",\"") + output.key + "\":" + text(static_cast<double>(output.value));
  std::printf("%s},\"source\":\"%s, in quadruple precision\"}\n", line.c_str(), source);
}

class Random {
 public:
  explicit Random(std::uint64_t seed) : engine_(seed) {}
  int below(int n) { return static_cast<int>(engine_() % static_cast<std::uint64_t>(n)); }

 private:
  std::mt19937_64 engine_;
};

// A temperature [K] as the call's input, when its conversion is exact.
bool celsius(int T, std::string& input) {
  const std::string digits = text(static_cast<double>((T * 100 - 27315)) / 100.0);
  input = "\"temperature\":" + digits;
  return std::strtod(digits.c_str(), nullptr) + 273.15 == T;
}

// Fractions in 1024ths: one component, two of them, or any number.
Composition gas(Random& random, int kind) {
  Composition x{};
  int left = 1024;
  const auto any = [&] { return static_cast<std::size_t>(random.below(static_cast<int>(x.size()))); };
  if (kind == 1) {
    const int share = 200 + random.below(600);
    x[any()] += share / 1024.0;
    left -= share;
  }
  for (int i = 0; kind == 2 && i < 20; ++i) {
    const int share = 10 + random.below(i < 3 ? 200 : 30);
    if (share >= left) break;
    x[any()] += share / 1024.0;
    left -= share;
  }
  x[any()] += left / 1024.0;
  return x;
}

std::string list(const Composition& x) {
  std::string all = ",\"composition\":[";
  for (double fraction : x) all += text(fraction) + ",";
  return all + "0]";
}

void gases(Random& random, int states) {
  const Aga8Reference aga8;
  const GergReferee gerg_2004(true), gerg_2008(false);
  for (int n = 0; n < 3 * states; ++n) {
    const Composition x = gas(random, n % 3);
    const int T = 230 + random.below(230),
              bar = random.below(3) == 0 ? 5 * (1 + random.below(8)) : 10 * (1 + random.below(30));
    std::string inputs;
    if (!celsius(T, inputs)) continue;
    inputs = "\"pressure\":" + std::to_string(bar) + "," + inputs + list(x);
    const double p = bar / 10.0;

    AGA8::CDetail detail;
    AGA8::State got;
    const Aga8Reference::Mixture m = aga8.mixture(x);
    const auto energy = [&](const Jet& t, const Jet& d) { return aga8.energy(m, t, d); };
    Real rho = 0;
    if (detail.calculate(x, T, p, got) == AGA8::converged) rho = got.molar_density;
    if (rho > 0 && density_near(energy, T, aga8.R(), Real(1000) * p, rho)) {
      const HelmholtzState s = aga8.residual(m, T, rho);
      const IdealState ideal = aga8.ideal(x, T);
      print("AGA8_M", inputs,
            {{"z", s.z()}, {"mass density", rho * m.M}, {"molar density", rho}, {"molar mass", m.M}}, "AGA-8 detail");
      if (n % 2 == 0)
        print("AGA10ex_M", inputs,
              {{"sos", sqrt(s.M_w2(ideal) * 1000 / m.M)},
               {"ideal h", ideal.h / m.M},
               {"real h", s.h(ideal) / m.M},
               {"real s", s.s(ideal) / m.M},
               {"ideal cp molar", ideal.cp},
               {"real cp molar", s.cp(ideal)},
               {"real cv molar", s.cv(ideal)},
               {"kappa", s.kappa(ideal)}},
              "AGA-10");
    }
    for (const GERG2008::Edition edition : {GERG2008::Edition::gerg_2008, GERG2008::Edition::gerg_2004}) {
      const bool earlier = edition == GERG2008::Edition::gerg_2004;
      const GergReferee& reference = earlier ? gerg_2004 : gerg_2008;
      const auto gerg = [&](const Jet& t, const Jet& d) { return reference.energy(x, t, d); };
      GERG2008::CEquation equation;
      double found = 0.0;
      if (equation.density(edition, x, T, p, found) == GERG2008::CEquation::Root::none) continue;
      Real density = found, M = 0;
      if (!density_near(gerg, T, reference.R(), Real(1000) * p, density)) continue;
      for (std::size_t i = 0; i < x.size(); ++i) M += x[i] * printed(GERG2008::components[i].M);
      const HelmholtzState s = HelmholtzState::of(gerg, T, density, reference.R());
      const IdealState ideal = reference.ideal(x, T);
      print(earlier ? "GERG2004_Gas" : "GERG2008_Gas", inputs,
            {{"z", s.z()},
             {"mass density", density * M},
             {"sos", sqrt(s.M_w2(ideal) * 1000 / M)},
             {"kappa", s.kappa(ideal)}},
            earlier ? "GERG-2004" : "GERG-2008");
    }
  }
}

void water(Random& random, int states) {
  for (int n = 0; n < 8 * states; ++n) {
    const int T = n % 8 < 2   ? 274 + random.below(349)
                  : n % 8 < 4 ? 274 + random.below(790)
                  : n % 8 < 6 ? 624 + random.below(230)
                              : 1074 + random.below(1190);
    const int bar = n % 8 == 3 ? 1 + random.below(60) : 10 * (1 + random.below(n % 8 < 6 ? 100 : 50));
    const IAPWS_IF97::Phase phase = n % 8 == 3 ? IAPWS_IF97::Phase::steam : IAPWS_IF97::Phase::automatic;
    std::string inputs;
    if (!celsius(T, inputs)) continue;
    IAPWS_IF97::Result got;
    const double p = bar / 10.0;
    if (!IAPWS_IF97::calculate({p, static_cast<double>(T), phase}, got).good()) continue;
    WaterState want;
    Real rho = got.density, at, slope;
    if (got.region == 3 && !If97::region3_density(p, T, rho)) continue;
    const bool metastable = got.region == 2 && T < 647 && p > If97::saturation_pressure(T);
    want = got.region == 1   ? If97::region1(p, T)
           : got.region == 3 ? If97::region3(rho, T, at, slope)
           : got.region == 5 ? If97::region5(p, T)
           : metastable      ? If97::metastable(p, T)
                             : If97::region2(p, T);
    print("IAPWS_IF97_M",
          "\"pressure\":" + std::to_string(bar) + "," + inputs +
              ",\"phase\":" + std::to_string(static_cast<int>(phase)),
          {{"mass density", want.rho}, {"enthalpy", want.h}, {"entropy", want.s}, {"kappa", want.kappa}},
          "IAPWS-IF97");
  }
}

void liquids(Random& random, int states) {
  using namespace API_11_1_2004;
  for (int n = 0; n < states; ++n) {
    const int rd = 62 + random.below(52), t = random.below(300) - 40, p = random.below(1400),
              group = 1 + random.below(7);
    Correction got;
    const double relative =
        std::strtod(("0." + std::to_string(rd + 100).substr(1)).c_str(), nullptr) + (rd >= 100 ? 1.0 : 0.0);
    const Real rho = printed(relative) * 999.016_r;
    if (!observed_from_base({static_cast<Group>(group), 0.0}, static_cast<double>(rho), t, p, Rounding::off, got)
             .good())
      continue;
    const VolumeFactors want = volume_factors(got.k, rho, t, p);
    print(
        "API_Table24_2004",
        "\"rel density 60\":" + text(relative) + ",\"temperature\":" + std::to_string(t) +
            ",\"pressure\":" + std::to_string(p) + ",\"product\":" + std::to_string(group),
        {{"ctl", want.ctl}, {"cpl", want.cpl}, {"ctpl", want.ctl * want.cpl}, {"alpha", want.alpha60}, {"f", want.f}},
        "API MPMS 11.1:2004");
  }
}

}  // namespace
}  // namespace norvane::referee

int main(int count, char** arguments) {
  const int states = count > 1 ? std::atoi(arguments[1]) : 100;
  norvane::referee::Random random(count > 2 ? std::strtoull(arguments[2], nullptr, 10) : 1);
  norvane::referee::gases(random, states);
  norvane::referee::water(random, states);
  norvane::referee::liquids(random, states);
}
