// Flow elements: a call of each function through the whole path, the calculation alone, and beside it the orifice of
// ISO 5167-2:2003 as the standard prints it.
#include "bench/bench_call.h"
#include "bench/plain_flow.h"
#include "math/flow/aga3.h"
#include "math/flow/iso5167.h"

namespace norvane::bench {
namespace {

void whole_call(benchmark::State& state, const char16_t* id) {
  BenchCall call(id);
  if (!call.ready(state)) return;
  call();
  const AllocationCounter counter(state);
  double dp = 100.0;
  for (auto _ : state) {
    call[1] = FUNCTION_ARG::Number(dp += 1e-9);  // a new differential pressure every call
    benchmark::DoNotOptimize(call());
  }
}
BENCHMARK_CAPTURE(whole_call, ISO5167_Orifice, u"ISO5167_Orifice");
BENCHMARK_CAPTURE(whole_call, ISO5167_ISA1932, u"ISO5167_ISA1932");
BENCHMARK_CAPTURE(whole_call, ISO5167_LongRadius, u"ISO5167_LongRadius");
BENCHMARK_CAPTURE(whole_call, ISO5167_VenturiNozzle, u"ISO5167_VenturiNozzle");
BENCHMARK_CAPTURE(whole_call, ISO5167_Venturi, u"ISO5167_Venturi");
BENCHMARK_CAPTURE(whole_call, AGA3_C, u"AGA3_C");
BENCHMARK_CAPTURE(whole_call, VCone_M, u"VCone_M");
BENCHMARK_CAPTURE(whole_call, VCone_C, u"VCone_C");

// A flange-tapped 8-inch meter run.
ISO5167::Measurement metric_gas() {
  return {.dp = 250, .pressure = 55, .temperature = 12, .density = 44.5, .viscosity = 1.2e-5, .kappa = 1.3};
}
constexpr ISO5167::Geometry metric_run{202.7, 1.1e-5, 20, 121.6, 1.65e-5, 20};

void Orifice2003(benchmark::State& state) {
  ISO5167::Measurement gas = metric_gas();
  ISO5167::Result result;
  double rounds = 0.0;
  for (auto _ : state) {
    gas.dp += 1e-9;
    benchmark::DoNotOptimize(
        ISO5167::orifice(gas, metric_run, ISO5167::Tappings::flange, ISO5167::Edition::y2003, 0.0, result));
    benchmark::DoNotOptimize(result);
    rounds = result.rounds;
  }
  state.counters["rounds"] = rounds;
}
BENCHMARK(Orifice2003);

void Orifice2003AsPrinted(benchmark::State& state) {
  ISO5167::Measurement gas = metric_gas();
  for (auto _ : state) {
    gas.dp += 1e-9;
    benchmark::DoNotOptimize(plain_iso5167(gas, metric_run));
  }
}
BENCHMARK(Orifice2003AsPrinted);

void Aga3(benchmark::State& state) {
  AGA3::Measurement gas{
      .dp = 85, .pressure = 640, .temperature = 78, .density = 2.05, .viscosity = 0.0109, .kappa = 1.29};
  const AGA3::Geometry run{8.071, 6.2e-6, 68, 4.75, 9.25e-6, 68};
  AGA3::Result result;
  double steps = 0.0;
  for (auto _ : state) {
    gas.dp += 1e-9;
    benchmark::DoNotOptimize(AGA3::orifice(gas, run, AGA3::Edition::y1992, 0.0, 1.0, result));
    benchmark::DoNotOptimize(result);
    steps = result.steps;
  }
  state.counters["steps"] = steps;
}
BENCHMARK(Aga3);

}  // namespace
}  // namespace norvane::bench
