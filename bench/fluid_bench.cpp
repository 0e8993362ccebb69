// Water and steam, carbon dioxide, ethylene: the algorithms beside plain transcriptions of their equations, and the
// whole call through the context.
#include <array>
#include <cmath>
#include <cstddef>
#include <random>

#include "bench/bench_call.h"
#include "math/fluid/ethylene_iupac.h"
#include "math/fluid/ethylene_nist1045.h"
#include "math/fluid/iapws_if97.h"
#include "math/fluid/iapws_if97_table.h"
#include "math/fluid/nist_co2.h"
#include "math/fluid/nist_co2_table.h"
#include "math/fluid/nist_ethylene_visc.h"

namespace norvane::bench {
namespace {

// States drawn at random, so that no branch is learnt by heart.
struct State {
  double p, T;  // [MPa], [K]
};
constexpr std::size_t state_count = 1024;
using States = std::array<State, state_count>;

template <class Accept>
States states(double p_low, double p_high, double T_low, double T_high, const Accept& accept) {
  std::mt19937_64 random(1);
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  States drawn;
  for (State& state : drawn) {
    do {
      state = {p_low + (p_high - p_low) * unit(random), T_low + (T_high - T_low) * unit(random)};
    } while (!accept(state));
  }
  return drawn;
}

template <class Function>
void over(benchmark::State& state, const States& states, const Function& function) {
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(function(states[i]));
    i = (i + 1) % state_count;
  }
}

// ---- Water and steam ----------------------------------------------------------------------------------------------

States region(int wanted) {
  const double p_high = wanted == 5 ? 50.0 : 100.0;
  return states(wanted == 3 ? 16.0 : 0.001, p_high,
                wanted == 5   ? 1074.0
                : wanted == 3 ? 623.2
                              : 273.2,
                wanted == 5   ? 2273.0
                : wanted == 3 ? 863.0
                              : 1073.0,
                [wanted](const State& s) {
                  IAPWS_IF97::Result result;
                  return IAPWS_IF97::calculate({s.p, s.T}, result).good() && result.region == wanted;
                });
}

void if97(benchmark::State& state, int wanted) {
  over(state, region(wanted), [](const State& s) {
    IAPWS_IF97::Result result;
    (void)IAPWS_IF97::calculate({s.p, s.T}, result);
    return result;
  });
}
BENCHMARK_CAPTURE(if97, region_1, 1);
BENCHMARK_CAPTURE(if97, region_2, 2);
BENCHMARK_CAPTURE(if97, region_3, 3);
BENCHMARK_CAPTURE(if97, region_5, 5);

// Density, enthalpy and entropy term by term as the release writes them.
struct Plain {
  double rho, h, s;
};

Plain plain_region1(const State& x) {
  const double pi = x.p / 16.53, tau = 1386.0 / x.T;
  double g = 0.0, g_p = 0.0, g_t = 0.0;
  for (const auto& [I, J, n] : IAPWS_IF97::region1_terms) {
    g += n * std::pow(7.1 - pi, I) * std::pow(tau - 1.222, J);
    g_p -= n * I * std::pow(7.1 - pi, I - 1) * std::pow(tau - 1.222, J);
    g_t += n * std::pow(7.1 - pi, I) * J * std::pow(tau - 1.222, J - 1);
  }
  const double R = IAPWS_IF97::R;
  return {1000.0 * x.p / (R * x.T * pi * g_p), R * x.T * tau * g_t, R * (tau * g_t - g)};
}

Plain plain_region2(const State& x) {
  const double pi = x.p, tau = 540.0 / x.T;
  double g = std::log(pi), g_p = 1.0 / pi, g_t = 0.0;
  for (const auto& [J, n] : IAPWS_IF97::region2_ideal) {
    g += n * std::pow(tau, J);
    g_t += n * J * std::pow(tau, J - 1);
  }
  for (const auto& [I, J, n] : IAPWS_IF97::region2_terms) {
    g += n * std::pow(pi, I) * std::pow(tau - 0.5, J);
    g_p += n * I * std::pow(pi, I - 1) * std::pow(tau - 0.5, J);
    g_t += n * std::pow(pi, I) * J * std::pow(tau - 0.5, J - 1);
  }
  const double R = IAPWS_IF97::R;
  return {1000.0 * x.p / (R * x.T * pi * g_p), R * x.T * tau * g_t, R * (tau * g_t - g)};
}

// Newton's method on the density, as the calculation has it but from the same start only.
Plain plain_region3(const State& x) {
  const double R = IAPWS_IF97::R, tau = IAPWS_IF97::critical_temperature / x.T;
  const bool dense = x.T < IAPWS_IF97::critical_temperature
                         ? x.p >= IAPWS_IF97::saturation_pressure(x.T)
                         : x.p >= IAPWS_IF97::region3_pressure(IAPWS_IF97::critical_density, x.T);
  double rho = dense ? 780.0 - 1.15 * (x.T - 623.15) : 1000.0 * x.p / (R * x.T);
  double phi = 0.0, d = 0.0, dd = 0.0, t = 0.0;
  for (int step = 0; step < 30; ++step) {
    const double delta = rho / IAPWS_IF97::critical_density;
    const double n1 = IAPWS_IF97::region3_terms[0].n;
    phi = n1 * std::log(delta), d = n1 / delta, dd = -n1 / (delta * delta), t = 0.0;
    for (std::size_t k = 1; k < std::size(IAPWS_IF97::region3_terms); ++k) {
      const auto& [I, J, n] = IAPWS_IF97::region3_terms[k];
      phi += n * std::pow(delta, I) * std::pow(tau, J);
      d += n * I * std::pow(delta, I - 1) * std::pow(tau, J);
      dd += n * I * (I - 1) * std::pow(delta, I - 2) * std::pow(tau, J);
      t += n * std::pow(delta, I) * J * std::pow(tau, J - 1);
    }
    const double p = rho * R * x.T * delta * d / 1000.0;
    const double slope = R * x.T * (2.0 * delta * d + delta * delta * dd) / 1000.0;
    const double change = (x.p - p) / slope;
    rho += change;
    if (std::fabs(change) < 1e-9 * rho) break;
  }
  const double delta = rho / IAPWS_IF97::critical_density;
  return {rho, R * x.T * (tau * t + delta * d), R * (tau * t - phi)};
}

void if97_plain(benchmark::State& state, int wanted, Plain (*function)(const State&)) {
  over(state, region(wanted), function);
}
BENCHMARK_CAPTURE(if97_plain, region_1, 1, plain_region1);
BENCHMARK_CAPTURE(if97_plain, region_2, 2, plain_region2);
BENCHMARK_CAPTURE(if97_plain, region_3, 3, plain_region3);

// ---- Carbon dioxide -----------------------------------------------------------------------------------------------

States gas_co2() {
  return states(0.1, 7.0, 225.0, 304.0, [](const State& s) { return s.p < 0.98 * NIST_CO2::vapour_pressure(s.T); });
}
States liquid_co2() {
  return states(0.6, 30.0, 220.0, 300.0, [](const State& s) { return s.p > 1.02 * NIST_CO2::vapour_pressure(s.T); });
}
States hot_co2() {
  return states(0.1, 40.0, 305.0, 500.0, [](const State&) { return true; });
}
States near_critical_co2() {
  return states(6.8, 8.8, 303.0, 308.0, [](const State&) { return true; });
}

void co2(benchmark::State& state, States (*make)()) {
  over(state, make(), [](const State& s) {
    NIST_CO2::Result result;
    (void)NIST_CO2::calculate({s.p, s.T}, result);
    return result;
  });
}
BENCHMARK_CAPTURE(co2, gas, gas_co2);
BENCHMARK_CAPTURE(co2, liquid, liquid_co2);
BENCHMARK_CAPTURE(co2, supercritical, hot_co2);
BENCHMARK_CAPTURE(co2, near_critical, near_critical_co2);

// delta phi_d and delta^2 phi_dd term by term.
void plain_slopes(double tau, double delta, double& d, double& dd) {
  d = dd = 0.0;
  for (const fluid::Term& x : NIST_CO2::terms) {
    const double q = x.c > 0 ? x.c * std::pow(delta, x.c) : 0.0;
    const double v =
        x.n * std::pow(delta, x.d) * std::pow(tau, x.t) * (x.c > 0 ? std::exp(-std::pow(delta, x.c)) : 1.0);
    d += (x.d - q) * v;
    dd += ((x.d - q) * (x.d - q - 1.0) - x.c * q) * v;
  }
  const double x = (delta - 1.0) * (delta - 1.0);
  for (const NIST_CO2::Gaussian& g : NIST_CO2::gaussians) {
    const double v = g.n * std::pow(delta, g.d) * std::pow(tau, g.t) *
                     std::exp(-g.alpha * x - g.beta * (tau - g.gamma) * (tau - g.gamma));
    const double first = g.d - 2.0 * g.alpha * delta * (delta - 1.0);
    d += first * v;
    dd += (first * first - g.d - 2.0 * g.alpha * delta * delta) * v;
  }
  for (const NIST_CO2::Critical& c : NIST_CO2::criticals) {
    const double theta = (1.0 - tau) + c.A * std::pow(x, 0.5 / c.beta);
    const double D = theta * theta + c.B * std::pow(x, c.a);
    const double inner =
        c.A * theta * 2.0 / c.beta * std::pow(x, 0.5 / c.beta - 1.0) + 2.0 * c.B * c.a * std::pow(x, c.a - 1.0);
    const double D_d = (delta - 1.0) * inner;
    const double D_dd =
        inner + x * (4.0 * c.B * c.a * (c.a - 1.0) * std::pow(x, c.a - 2.0) +
                     2.0 * c.A * c.A / (c.beta * c.beta) * std::pow(x, 1.0 / c.beta - 2.0) +
                     c.A * theta * 4.0 / c.beta * (0.5 / c.beta - 1.0) * std::pow(x, 0.5 / c.beta - 2.0));
    const double F = std::pow(D, c.b), F_d = c.b * std::pow(D, c.b - 1.0) * D_d;
    const double F_dd = c.b * (std::pow(D, c.b - 1.0) * D_dd + (c.b - 1.0) * std::pow(D, c.b - 2.0) * D_d * D_d);
    const double P = std::exp(-c.C * x - c.D * (tau - 1.0) * (tau - 1.0));
    const double P_d = -2.0 * c.C * (delta - 1.0) * P, P_dd = (2.0 * c.C * x - 1.0) * 2.0 * c.C * P;
    d += c.n * delta * (F * (P + delta * P_d) + F_d * delta * P);
    dd += c.n * delta * delta * (F * (2.0 * P_d + delta * P_dd) + 2.0 * F_d * (P + delta * P_d) + F_dd * delta * P);
  }
}

double plain_co2(const State& s) {
  const double tau = NIST_CO2::critical_temperature / s.T, RT = NIST_CO2::R * s.T / 1000.0;
  double d, dd;
  plain_slopes(tau, 1.0 + 1e-9, d, dd);
  const bool dense = s.T < NIST_CO2::critical_temperature ? s.p >= NIST_CO2::vapour_pressure(s.T)
                                                          : s.p >= NIST_CO2::critical_density * RT * (1.0 + d);
  double rho = dense ? 1300.0 : s.p / RT;
  for (int step = 0; step < 40; ++step) {
    plain_slopes(tau, rho / NIST_CO2::critical_density, d, dd);
    const double change = (s.p - rho * RT * (1.0 + d)) / (RT * (1.0 + 2.0 * d + dd));
    rho += change;
    if (std::fabs(change) < 1e-9 * rho) break;
  }
  return rho;
}

void co2_plain(benchmark::State& state, States (*make)()) { over(state, make(), plain_co2); }
BENCHMARK_CAPTURE(co2_plain, gas, gas_co2);
BENCHMARK_CAPTURE(co2_plain, liquid, liquid_co2);
BENCHMARK_CAPTURE(co2_plain, supercritical, hot_co2);

// ---- Ethylene -----------------------------------------------------------------------------------------------------

States ethylene_states() {
  return states(0.1, 20.0, 200.0, 400.0, [](const State&) { return true; });
}

template <class Result, class Arguments>
void ethylene(benchmark::State& state, Outcome (*calculate)(const Arguments&, Result&) noexcept) {
  over(state, ethylene_states(), [calculate](const State& s) {
    Result result;
    (void)calculate({s.p, s.T}, result);
    return result;
  });
}
BENCHMARK_CAPTURE(ethylene, iupac, Ethylene_IUPAC::calculate);
BENCHMARK_CAPTURE(ethylene, nist1045, Ethylene_NIST1045::calculate);
BENCHMARK_CAPTURE(ethylene, viscosity, NIST_Ethylene_Visc::calculate);

// ---- The whole call -----------------------------------------------------------------------------------------------

void fluid_call(benchmark::State& state, std::u16string_view id, double p, double t) {
  BenchCall call(id);
  if (!call.ready(state)) return;
  call[1] = FUNCTION_ARG::Number(p);
  call[2] = FUNCTION_ARG::Number(t);
  call();
  const AllocationCounter counter(state);
  unsigned i = 0;
  for (auto _ : state) {
    ++i;
    call[1].number = p + 0.1 * (i % 37);
    call[2].number = t + i % 41;
    if (call() != ERROR_OK) state.SkipWithError("call failed");
  }
}
BENCHMARK_CAPTURE(fluid_call, IAPWS_IF97_M_steam, u"IAPWS_IF97_M", 10.0, 200.0);
BENCHMARK_CAPTURE(fluid_call, NIST_CO2_M_liquid, u"NIST_CO2_M", 100.0, -20.0);
BENCHMARK_CAPTURE(fluid_call, Ethylene_IUPAC_M, u"Ethylene_IUPAC_M", 70.0, 0.0);
BENCHMARK_CAPTURE(fluid_call, NIST_Ethylene_Visc_M, u"NIST_Ethylene_Visc_M", 70.0, 0.0);

}  // namespace
}  // namespace norvane::bench
