// API MPMS 11.1:2004: algorithm and whole call. The baseline is the standard's procedure written down step by step,
// everything evaluated anew in each step, with the C library's exp.
#include <array>
#include <cmath>
#include <cstdint>

#include "bench/bench_call.h"
#include "math/liquid/api_11_1_2004.h"

namespace norvane::bench {
namespace {

using namespace API_11_1_2004;

// Crude oil, 11.1.6.1 as printed.
struct Plain {
  double ctl, f, cpl, alpha60;
};
Plain plain_factors(double rho60, double t, double p) {
  constexpr double k0 = 341.0957, k1 = 0.0, k2 = 0.0, delta60 = 0.01374979547;
  constexpr double scale[] = {-0.148759, -0.267408, 1.080760, 1.269056, -4.089591, -1.871251, 7.438081, -3.536296};
  const double tau = (t - 32) / 1.8 / 630;
  double difference = 0;
  for (int i = 7; i >= 0; --i) difference = (difference + scale[i]) * tau;
  const double t68 = ((t - 32) / 1.8 - difference) * 1.8 + 32;
  const double a = delta60 / 2 * ((k0 / rho60 + k1) / rho60 + k2);
  const double b = (2 * k0 + k1 * rho60) / (k0 + (k1 + k2 * rho60) * rho60);
  const double rho_star = rho60 * (1 + (std::exp(a * (1 + 0.8 * a)) - 1) / (1 + a * (1 + 1.6 * a) * b));
  const double alpha60 = (k0 / rho_star + k1) / rho_star + k2;
  const double dt = t68 - 60.0068749;
  const double f = 1e-5 * std::exp(-1.9947 + 0.00013427 * t68 + (793920 + 2326 * t68) / (rho_star * rho_star));
  return {std::exp(-alpha60 * dt * (1 + 0.8 * alpha60 * (dt + delta60))), f, 1 / (1 - f * p), alpha60};
}
double plain_base(double observed, double t, double p) {
  double rho60 = observed;
  for (int i = 0; i < 15; ++i) {
    const Plain c = plain_factors(rho60, t, p);
    if (std::fabs(observed - c.ctl * c.cpl * rho60) < 1e-6) break;
    const double dt = t - 60;
    rho60 +=
        (observed / (c.ctl * c.cpl) - rho60) / (1 + (1 + 1.6 * c.alpha60 * dt) * (2.0 * c.alpha60 * dt) -
                                                2e5 * p * c.cpl * c.f * (0.02326 * t + 7.9392) / (rho60 * rho60));
  }
  return rho60;
}

// States that differ from call to call: 64 densities and temperatures.
struct State {
  double rho, degF, psig;
};
const std::array<State, 64>& states() {
  static const auto made = [] {
    std::array<State, 64> s{};
    for (std::size_t i = 0; i < s.size(); ++i) {
      s[i] = {700.0 + 5.0 * static_cast<double>(i * 29 % 64), 20.0 + 3.0 * static_cast<double>(i * 37 % 64),
              15.0 * static_cast<double>(i * 11 % 64)};
    }
    return s;
  }();
  return made;
}

void PlainBaseFromObserved(benchmark::State& state) {
  std::size_t i = 0;
  for (auto _ : state) {
    const State& s = states()[i++ % 64];
    benchmark::DoNotOptimize(plain_base(s.rho, s.degF, s.psig));
  }
}
BENCHMARK(PlainBaseFromObserved);

void ObservedFromBase(benchmark::State& state) {
  const Liquid liquid{static_cast<Group>(state.range(0))};
  Correction c;
  std::size_t i = 0;
  for (auto _ : state) {
    const State& s = states()[i++ % 64];
    benchmark::DoNotOptimize(observed_from_base(liquid, s.rho, s.degF, s.psig, Rounding::off, c));
    benchmark::DoNotOptimize(c);
  }
}
BENCHMARK(ObservedFromBase)->ArgName("group")->Arg(1)->Arg(2);

void BaseFromObserved(benchmark::State& state) {
  const Liquid liquid{static_cast<Group>(state.range(0))};
  Correction c;
  std::size_t i = 0;
  std::int64_t steps = 0;
  for (auto _ : state) {
    const State& s = states()[i++ % 64];
    benchmark::DoNotOptimize(base_from_observed(liquid, s.rho, s.degF, s.psig, Rounding::off, c));
    benchmark::DoNotOptimize(c);
    steps += c.steps;
  }
  state.counters["steps"] = static_cast<double>(steps) / static_cast<double>(state.iterations());
}
BENCHMARK(BaseFromObserved)->ArgName("group")->Arg(1)->Arg(2)->Arg(7);

void MetricBaseFromObserved(benchmark::State& state) {
  Correction c;
  std::size_t i = 0;
  for (auto _ : state) {
    const State& s = states()[i++ % 64];
    benchmark::DoNotOptimize(base_from_observed({Group::crude}, MetricBase::degC15, s.rho, (s.degF - 32) / 1.8,
                                                s.psig * 0.06894757, Rounding::off, c));
    benchmark::DoNotOptimize(c);
  }
}
BENCHMARK(MetricBaseFromObserved);

void Call(benchmark::State& state, std::u16string_view id, double value, double temperature, double pressure) {
  BenchCall call(id);
  if (!call.ready(state)) return;
  call[2] = FUNCTION_ARG::Number(temperature);
  call[3] = FUNCTION_ARG::Number(pressure);
  call();
  const AllocationCounter counter(state);
  double shift = 0.0;
  for (auto _ : state) {
    shift = shift > 0.02 ? 0.0 : shift + 1e-4;
    call[1] = FUNCTION_ARG::Number(value * (1.0 + shift));
    benchmark::DoNotOptimize(call());
  }
}
BENCHMARK_CAPTURE(Call, API_Table5_2004, u"API_Table5_2004", 36.3, 87.3, 210.0);
BENCHMARK_CAPTURE(Call, API_Table6_2004, u"API_Table6_2004", 36.3, 87.3, 210.0);
BENCHMARK_CAPTURE(Call, API_Table53_2004, u"API_Table53_2004", 823.7, 36.8, 14.5);
BENCHMARK_CAPTURE(Call, API_Table54_2004, u"API_Table54_2004", 823.7, 36.8, 14.5);

}  // namespace
}  // namespace norvane::bench
