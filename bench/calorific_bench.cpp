// Calorific values: a call of each function through the whole path, and the calculation alone beside it.
#include <array>
#include <cstddef>
#include <initializer_list>
#include <span>

#include "bench/bench_call.h"
#include "math/gas/aga5.h"
#include "math/gas/gpa2172.h"
#include "math/gas/iso6976.h"

namespace norvane::bench {
namespace {

// In the order of AGA-8 with neo-pentane behind; moist, all light components present.
constexpr std::array<double, 22> gas = {0.84,   0.035,  0.019, 0.06,  0.02,   0.0006, 0.001,  0.01,
                                        0.001,  0.0015, 0.003, 0.004, 0.001,  0.001,  0.0005, 0.0002,
                                        0.0001, 5e-05,  5e-05, 0.001, 0.0005, 0.0005};

// Input 1 is the composition; the arrays that follow, when a function has them, are given in full.
void whole_call(benchmark::State& state, const char16_t* id, std::initializer_list<std::size_t> further) {
  BenchCall call(id);
  if (!call.ready(state)) return;
  std::array<FUNCTION_ARG, 22> cells;
  for (std::size_t i = 0; i < cells.size(); ++i) cells[i] = FUNCTION_ARG::Number(gas[i]);
  call[1] = FUNCTION_ARG::OfArray(1, 22, cells.data());
  std::array<FUNCTION_ARG, 11> traces;
  traces.fill(FUNCTION_ARG::Number(1e-6));
  std::size_t input = 2;
  for (std::size_t count : further)
    call[input++] = FUNCTION_ARG::OfArray(1, static_cast<std::uint32_t>(count), traces.data());
  call();
  const AllocationCounter counter(state);
  double drift = 0.0;
  for (auto _ : state) {
    cells[0].number = gas[0] + (drift += 1e-12);  // a new composition every call
    benchmark::DoNotOptimize(call());
  }
}

BENCHMARK_CAPTURE(whole_call, ISO6976_1995_M, u"ISO6976_1995_M", {});
BENCHMARK_CAPTURE(whole_call, ISO6976_2016_M, u"ISO6976_2016_M", {});
BENCHMARK_CAPTURE(whole_call, ISO6976ex_1995_M, u"ISO6976ex_1995_M", {4, 11, 6, 4, 8});
BENCHMARK_CAPTURE(whole_call, ISO6976ex_2016_M, u"ISO6976ex_2016_M", {9, 11, 10, 8});
BENCHMARK_CAPTURE(whole_call, GPA2172_M, u"GPA2172_M", {});
BENCHMARK_CAPTURE(whole_call, GPA2172_C, u"GPA2172_C", {});
BENCHMARK_CAPTURE(whole_call, GPA2172_96_M, u"GPA2172_96_M", {});
BENCHMARK_CAPTURE(whole_call, GPA2172_96_C, u"GPA2172_96_C", {});
BENCHMARK_CAPTURE(whole_call, AGA5_C, u"AGA5_C", {});

// The calculation alone, from normalised fractions.
void Iso6976Definitive(benchmark::State& state) {
  auto x = gas;
  for (auto _ : state) {
    benchmark::DoNotOptimize(x);
    benchmark::DoNotOptimize(ISO6976::edition_1995(std::span<const double, 22>(x), 1,
                                                   ISO6976::MolarMassMethod::calculate,
                                                   ISO6976::CalorificMethod::definitive));
  }
}
BENCHMARK(Iso6976Definitive);

void Iso6976Alternative(benchmark::State& state) {
  auto x = gas;
  for (auto _ : state) {
    benchmark::DoNotOptimize(x);
    benchmark::DoNotOptimize(ISO6976::edition_1995(std::span<const double, 22>(x), 1,
                                                   ISO6976::MolarMassMethod::calculate,
                                                   ISO6976::CalorificMethod::alternative));
  }
}
BENCHMARK(Iso6976Alternative);

void Gpa2172(benchmark::State& state) {
  auto x = gas;
  for (auto _ : state) {
    benchmark::DoNotOptimize(x);
    GPA2172::Result result;
    benchmark::DoNotOptimize(GPA2172::metric({x, 4, GPA2172::NeoPentane::to_n_pentane}, result));
    benchmark::DoNotOptimize(result);
  }
}
BENCHMARK(Gpa2172);

void Aga5(benchmark::State& state) {
  auto x = gas;
  for (auto _ : state) {
    benchmark::DoNotOptimize(x);
    AGA5::Result result{};
    benchmark::DoNotOptimize(AGA5::calculate({x, 0.65}, result));
    benchmark::DoNotOptimize(result);
  }
}
BENCHMARK(Aga5);

}  // namespace
}  // namespace norvane::bench
