// AGA-10: the whole call through the context, and the bare algorithm, always with a new composition.
#include <array>

#include "bench/bench_call.h"
#include "math/gas/aga10.h"

namespace norvane::bench {
namespace {

AGA8::CompositionInput gas(double shift) {
  return {0.8629 - shift, 0.02 + shift, 0.005,  0.05,  0.03,  0.0001, 0.001,  0.0001, 0.0001, 0.0002, 0.011,
          0.009,          0.0035,       0.0025, 0.002, 0.001, 0.0005, 0.0002, 0.0001, 0.0004, 0.0004, 0.0};
}

void aga10(benchmark::State& state, std::u16string_view id, int critical_flow) {
  BenchCall call(id);
  if (!call.ready(state)) return;
  std::array<FUNCTION_ARG, AGA8::component_count + 1> gases[2];
  for (std::size_t g = 0; g < 2; ++g) {
    const AGA8::CompositionInput fractions = gas(1e-4 * static_cast<double>(g));
    for (std::size_t i = 0; i < fractions.size(); ++i) gases[g][i] = FUNCTION_ARG::Number(fractions[i]);
  }
  call[1] = FUNCTION_ARG::Number(60.0);
  call[2] = FUNCTION_ARG::Number(20.0);
  call[3] = FUNCTION_ARG::OfArray(1, gases[0].size(), gases[0].data());
  if (critical_flow != 0) call[5] = FUNCTION_ARG::Integer(critical_flow);
  call();
  const AllocationCounter counter(state);
  unsigned i = 0;
  for (auto _ : state) {
    ++i;
    call[1].number = 40.0 + i % 37;
    call[2].number = 5.0 + i % 41;
    call[3].array.elements = gases[i % 2].data();
    if (call() != ERROR_OK) state.SkipWithError("call failed");
  }
}
BENCHMARK_CAPTURE(aga10, call_speed_of_sound, u"AGA10_M", 0);
BENCHMARK_CAPTURE(aga10, call_extended_mode_1, u"AGA10ex_M", 1);
BENCHMARK_CAPTURE(aga10, call_extended_mode_2, u"AGA10ex_M", 2);

AGA8::Composition fractions_of_gas() {
  AGA8::Composition x{};
  (void)composition::prepare(gas(0.0), composition::add_to_i_pentane, AGA8::composition_error, x);
  return x;
}

void aga10_residual(benchmark::State& state) {
  AGA8::Mixture mixture;
  mixture.set(fractions_of_gas());
  double rho = 0.0;
  for (auto _ : state) {
    rho = rho < 10.0 ? rho + 0.1 : 0.1;
    benchmark::DoNotOptimize(AGA8::residual(mixture, 300.0, rho));
  }
}
BENCHMARK(aga10_residual);

void aga10_ideal_mixture(benchmark::State& state) {
  const AGA8::Composition x = fractions_of_gas();
  double T = 250.0;
  for (auto _ : state) {
    T = T < 400.0 ? T + 1.0 : 250.0;
    benchmark::DoNotOptimize(AGA10::ideal_mixture(x, T, AGA10::Entropy::include));
  }
}
BENCHMARK(aga10_ideal_mixture);

}  // namespace
}  // namespace norvane::bench
