// API MPMS 11.1:2004: algorithm and whole call, beside the standard's procedure written down step by step.
#include <array>
#include <cstdint>

#include "bench/bench_call.h"
#include "bench/plain_liquid.h"
#include "math/liquid/api_11_1_2004.h"

namespace norvane::bench {
namespace {

using namespace API_11_1_2004;

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
