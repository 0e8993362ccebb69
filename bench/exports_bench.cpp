// What the typed boundary adds: the algorithm, its direct export, the same state once more, a row of a batch, and the
// call through the context, in one run.
#define NORVANE_BUILD
#include <norvane.h>

#include <array>
#include <iterator>
#include <vector>

#include "bench/bench_call.h"
#include "math/gas/aga8.h"

namespace norvane::bench {
namespace {

constexpr double gas[22] = {0.965, 0.003, 0.006, 0.018, 0.0045, 0, 0, 0, 0, 0, 0.001, 0.001, 0.0005, 0.0003, 0.0007};
constexpr std::size_t states = 4096;

// Pressures in bar, new ones each call as from a meter.
std::vector<double> pressures() {
  std::vector<double> list(states);
  for (std::size_t i = 0; i < states; ++i) list[i] = 20.0 + 0.02 * static_cast<double>(i * 1549 % states);
  return list;
}

void Aga8Algorithm(benchmark::State& state) {
  const std::vector<double> pressure = pressures();
  AGA8::Gas in{};
  std::copy(std::begin(gas), std::end(gas), in.composition.begin());
  in.neo_pentane = composition::add_to_i_pentane;
  in.temperature = 6.85;
  in.edition = 1;
  AGA8::Answer out;
  AGA8::CDetail memory;
  std::size_t i = 0;
  for (auto _ : state) {
    in.pressure = pressure[i++ % states] / 10.0;
    benchmark::DoNotOptimize(AGA8::state_of(in, out, memory));
    benchmark::DoNotOptimize(out);
  }
}
BENCHMARK(Aga8Algorithm);

std::uint32_t aga8_export(double pressure) {
  double z = 0, mass_density = 0, molar_density = 0, molar_mass = 0;
  std::uint32_t range = 0;
  const std::uint32_t status = Norvane_AGA8_M(pressure, 6.85, gas, std::size(gas), 1, 1, &z, &mass_density,
                                              &molar_density, &molar_mass, &range);
  benchmark::DoNotOptimize(z);
  return status;
}

void Aga8Export(benchmark::State& state) {
  const std::vector<double> pressure = pressures();
  if (aga8_export(60.0) != 0) state.SkipWithError("refused");
  const AllocationCounter counter(state);
  std::size_t i = 0;
  for (auto _ : state) benchmark::DoNotOptimize(aga8_export(pressure[i++ % states]));
}
BENCHMARK(Aga8Export);

void Aga8ExportSameState(benchmark::State& state) {
  if (aga8_export(60.0) != 0) state.SkipWithError("refused");
  const AllocationCounter counter(state);
  for (auto _ : state) benchmark::DoNotOptimize(aga8_export(60.0));
}
BENCHMARK(Aga8ExportSameState);

// One gas, or a gas a row of which each is the same: what reading 22 numbers more a row costs.
void Aga8Batch(benchmark::State& state) {
  const std::vector<double> pressure = pressures();
  const double temperature = 6.85;
  std::vector<double> gases;
  for (std::size_t i = 0; i < states; ++i) gases.insert(gases.end(), std::begin(gas), std::end(gas));
  const bool gas_a_row = state.range(0) != 0;
  const norvane_column inputs[] = {{pressure.data(), 1, 1, 0},
                                   {&temperature, 0, 1, 0},
                                   {gases.data(), gas_a_row ? std::size(gas) : 0, std::size(gas), 1},
                                   {},
                                   {}};
  std::array<std::vector<double>, 5> columns;
  double* outputs[5];
  for (std::size_t k = 0; k < 5; ++k) outputs[k] = (columns[k] = std::vector<double>(states)).data();
  std::vector<std::uint32_t> statuses(states);
  const auto call = [&] {
    return Norvane_AGA8_M_Batch(states, inputs, std::size(inputs), outputs, std::size(outputs), statuses.data());
  };
  if (call() != 0) state.SkipWithError("refused");
  const AllocationCounter counter(state);
  for (auto _ : state) benchmark::DoNotOptimize(call());
  state.counters["per_row"] = benchmark::Counter(static_cast<double>(state.iterations() * states),
                                                 benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK(Aga8Batch)->Arg(0)->Arg(1)->ArgName("gas_a_row");

void Aga8Context(benchmark::State& state) {
  const std::vector<double> pressure = pressures();
  BenchCall call(u"AGA8_M");
  if (!call.ready(state)) return;
  FUNCTION_ARG cells[std::size(gas)];
  for (std::size_t i = 0; i < std::size(gas); ++i) cells[i] = FUNCTION_ARG::Number(gas[i]);
  call[2] = FUNCTION_ARG::Number(6.85);
  call[3] = FUNCTION_ARG::OfArray(1, std::size(gas), cells);
  call();
  const AllocationCounter counter(state);
  std::size_t i = 0;
  for (auto _ : state) {
    call[1] = FUNCTION_ARG::Number(pressure[i++ % states]);
    benchmark::DoNotOptimize(call());
  }
}
BENCHMARK(Aga8Context);

}  // namespace
}  // namespace norvane::bench
