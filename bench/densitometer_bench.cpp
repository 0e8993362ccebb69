// Densitometers: closed formulas, so that a call costs its arguments. ExecuteTrivial of framework_bench is the floor.
#include "bench/bench_call.h"

namespace norvane::bench {
namespace {

void Densitometer(benchmark::State& state, std::u16string_view id, double period) {
  BenchCall call(id);
  if (!call.ready(state)) return;
  call();
  const AllocationCounter counter(state);
  double shift = 0.0;
  for (auto _ : state) {
    shift = shift > 1.0 ? 0.0 : shift + 0.01;
    call[1] = FUNCTION_ARG::Number(period + shift);
    benchmark::DoNotOptimize(call());
  }
}
BENCHMARK_CAPTURE(Densitometer, Solartron_Gas_M, u"Solartron_Gas_M", 657.2723);
BENCHMARK_CAPTURE(Densitometer, Solartron_Liquid_M, u"Solartron_Liquid_M", 50.0);
BENCHMARK_CAPTURE(Densitometer, Solartron_SG, u"Solartron_SG", 548.0);
BENCHMARK_CAPTURE(Densitometer, Sarasota_M, u"Sarasota_M", 540.0);
BENCHMARK_CAPTURE(Densitometer, UGC_M, u"UGC_M", 650.0);

}  // namespace
}  // namespace norvane::bench
