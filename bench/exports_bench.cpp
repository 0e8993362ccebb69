// The direct exports beside the same call through the context: what the typed boundary adds.
#define NORVANE_BUILD
#include <norvane.h>

#include <iterator>

#include "bench/bench_call.h"

namespace norvane::bench {
namespace {

constexpr double gas[22] = {0.965, 0.003, 0.006, 0.018, 0.0045, 0, 0, 0, 0, 0, 0.001, 0.001, 0.0005, 0.0003, 0.0007};

void Aga8Context(benchmark::State& state) {
  BenchCall call(u"AGA8_M");
  if (!call.ready(state)) return;
  FUNCTION_ARG cells[std::size(gas)];
  for (std::size_t i = 0; i < std::size(gas); ++i) cells[i] = FUNCTION_ARG::Number(gas[i]);
  call[1] = FUNCTION_ARG::Number(60.0);
  call[2] = FUNCTION_ARG::Number(6.85);
  call[3] = FUNCTION_ARG::OfArray(1, std::size(gas), cells);
  call();
  const AllocationCounter counter(state);
  for (auto _ : state) benchmark::DoNotOptimize(call());
}
BENCHMARK(Aga8Context);

void Aga8Export(benchmark::State& state) {
  double z = 0, mass_density = 0, molar_density = 0, molar_mass = 0;
  std::uint32_t range = 0;
  const auto call = [&] {
    return Norvane_AGA8_M(60.0, 6.85, gas, std::size(gas), 1, 1, &z, &mass_density, &molar_density, &molar_mass,
                          &range);
  };
  if (call() != 0) state.SkipWithError("refused");
  const AllocationCounter counter(state);
  for (auto _ : state) benchmark::DoNotOptimize(call());
}
BENCHMARK(Aga8Export);

}  // namespace
}  // namespace norvane::bench
