// Water and steam, carbon dioxide, ethylene: the algorithms beside plain transcriptions of their equations, and the
// whole call through the context.
#include <array>
#include <cstddef>
#include <random>

#include "bench/bench_call.h"
#include "bench/plain_fluid.h"
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

void if97_plain(benchmark::State& state, int wanted, PlainWater (*function)(double, double)) {
  over(state, region(wanted), [function](const State& s) { return function(s.p, s.T); });
}
BENCHMARK_CAPTURE(if97_plain, region_1, 1, plain_region1);
BENCHMARK_CAPTURE(if97_plain, region_2, 2, plain_region2);
BENCHMARK_CAPTURE(if97_plain, region_3, 3, plain_region3);
BENCHMARK_CAPTURE(if97_plain, region_5, 5, plain_region5);

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

void co2_plain(benchmark::State& state, States (*make)()) {
  over(state, make(), [](const State& s) { return plain_co2(s.p, s.T); });
}
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
