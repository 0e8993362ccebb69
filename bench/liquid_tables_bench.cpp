// The liquid standards beside API MPMS 11.1:2004: algorithms with states that differ from call to call, and whole calls.
// The baselines write the standards' steps down as they are printed.
#include <array>
#include <cstddef>

#include "bench/bench_call.h"
#include "bench/plain_liquid.h"
#include "math/liquid/api_11_1_1952.h"
#include "math/liquid/api_11_1_1980.h"
#include "math/liquid/api_11_2_1.h"
#include "math/liquid/api_11_2_2.h"
#include "math/liquid/api_11_2_4.h"
#include "math/liquid/astm_d4311.h"
#include "math/liquid/composites.h"
#include "math/liquid/gpa_tp15.h"
#include "math/liquid/oiml_r22.h"

namespace norvane::bench {
namespace {

using liquid::Conversion;
using liquid::Product;

// 64 densities around the given one, and temperatures around that.
struct States {
  double value, spread, temperature, warmth;

  double value_at(std::size_t i) const { return value + spread * (static_cast<double>(i * 29 % 64) / 32.0 - 1.0); }
  double temperature_at(std::size_t i) const {
    return temperature + warmth * (static_cast<double>(i * 37 % 64) / 32.0 - 1.0);
  }
};

// One calculation, with a way to put a state into its arguments.
template <auto calculation, class Result, class Arguments, class Put>
void run(benchmark::State& state, const States& states, Arguments arguments, Put put) {
  Result result;
  std::size_t i = 0;
  int failures = 0;
  for (auto _ : state) {
    put(arguments, states.value_at(i % 64), states.temperature_at(i % 64));
    ++i;
    failures += !calculation(arguments, result).good();
    benchmark::DoNotOptimize(result);
  }
  if (failures != 0) state.SkipWithError("a state without an answer");
}

constexpr auto put_observation = [](auto& o, double value, double t) {
  o.density = value;
  o.temperature = t;
};
constexpr auto put_flow = [](auto& in, double value, double t) {
  in.flow.density = value;
  in.flow.temperature = t;
};

constexpr States generalised = {830, 180, 120, 80}, generalised_metric = {830, 180, 50, 40};

void PlainTable23_1980(benchmark::State& state) {
  std::size_t i = 0;
  for (auto _ : state) {
    const double observed = generalised.value_at(i % 64), dt = generalised.temperature_at(i % 64) - 60;
    ++i;
    benchmark::DoNotOptimize(plain_base_1980(observed, 341.0957, dt));
  }
}
BENCHMARK(PlainTable23_1980);

void Table23_1980(benchmark::State& state) {
  API_11_1_1980::Observation o;
  o.product = static_cast<Product>(state.range(0));
  run<API_11_1_1980::to_60F, API_11_1_1980::Correction>(state, generalised, o, put_observation);
}
BENCHMARK(Table23_1980)->ArgName("product")->Arg(1)->Arg(2);
void Table24_1980(benchmark::State& state) {
  run<API_11_1_1980::from_60F, API_11_1_1980::Correction>(state, generalised, API_11_1_1980::Observation{},
                                                          put_observation);
}
BENCHMARK(Table24_1980);

void Table23_1952(benchmark::State& state) {
  run<API_11_1_1952::to_60F, API_11_1_1952::Correction>(state, {0.83, 0.18, 120, 80}, API_11_1_1952::Observation{},
                                                        put_observation);
}
BENCHMARK(Table23_1952);
void Table54_1952(benchmark::State& state) {
  run<API_11_1_1952::from_15C, API_11_1_1952::Correction>(state, generalised_metric, API_11_1_1952::Observation{},
                                                          put_observation);
}
BENCHMARK(Table54_1952);

constexpr States gas_liquids = {0.545, 0.05, 60, 50}, gas_liquids_metric = {545, 50, 15, 28};

void PlainTable24E(benchmark::State& state) {
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(plain_ctl(gas_liquids.value_at(i % 64), gas_liquids.temperature_at(i % 64)));
    ++i;
  }
}
BENCHMARK(PlainTable24E);
void PlainTable23E(benchmark::State& state) {
  std::size_t i = 0;
  for (auto _ : state) {
    const double observed = gas_liquids.value_at(i % 64), t = gas_liquids.temperature_at(i % 64);
    ++i;
    benchmark::DoNotOptimize(plain_relative_density(observed, t));
  }
}
BENCHMARK(PlainTable23E);

void Table24E(benchmark::State& state) {
  run<API_11_2_4::from_60F, API_11_2_4::Correction>(state, gas_liquids, API_11_2_4::Observation{}, put_observation);
}
BENCHMARK(Table24E);
void Table23E(benchmark::State& state) {
  run<API_11_2_4::to_60F, API_11_2_4::Correction>(state, gas_liquids, API_11_2_4::Observation{}, put_observation);
}
BENCHMARK(Table23E);
void Table53E(benchmark::State& state) {
  run<API_11_2_4::to_15C, API_11_2_4::Correction>(state, gas_liquids_metric, API_11_2_4::Observation{},
                                                  put_observation);
}
BENCHMARK(Table53E);
void Table54E(benchmark::State& state) {
  run<API_11_2_4::from_15C, API_11_2_4::Correction>(state, gas_liquids_metric, API_11_2_4::Observation{},
                                                    put_observation);
}
BENCHMARK(Table54E);

void Mpms11_2_1(benchmark::State& state) {
  run<API_11_2_1::factor, liquid::Compressed>(state, generalised, liquid::Compression{.pressure = 500},
                                              put_observation);
}
BENCHMARK(Mpms11_2_1);
void Mpms11_2_2(benchmark::State& state) {
  run<API_11_2_2::factor, liquid::Compressed>(state, gas_liquids, liquid::Compression{.pressure = 500},
                                              put_observation);
}
BENCHMARK(Mpms11_2_2);
void Mpms11_2_2M(benchmark::State& state) {
  run<API_11_2_2::factor_metric, liquid::Compressed>(state, gas_liquids_metric, liquid::Compression{.pressure = 35},
                                                     put_observation);
}
BENCHMARK(Mpms11_2_2M);
void Tp15(benchmark::State& state) {
  run<GPA_TP15::pressure, GPA_TP15::Result>(state, gas_liquids, GPA_TP15::Arguments{},
                                            [](auto& in, double value, double t) {
                                              in.relative_density = value;
                                              in.temperature = t;
                                            });
}
BENCHMARK(Tp15);
void D4311(benchmark::State& state) {
  run<ASTM_D4311::factor_15C, ASTM_D4311::Result>(state, {1000, 100, 120, 100}, ASTM_D4311::Arguments{},
                                                  [](auto& in, double value, double t) {
                                                    in.value = value;
                                                    in.temperature = t;
                                                  });
}
BENCHMARK(D4311);
void R22(benchmark::State& state) {
  OIML_R22::Arguments arguments;
  arguments.mode = static_cast<OIML_R22::Mode>(state.range(0));
  run<OIML_R22::calculate, OIML_R22::Result>(state, {900, 60, 15, 20}, arguments,
                                             [](auto& in, double value, double t) {
                                               in.density = value;
                                               in.volume_content = in.mass_content = value / 10 - 40;
                                               in.temperature = t;
                                             });
}
BENCHMARK(R22)->ArgName("mode")->Arg(1)->Arg(2)->Arg(3);

// Composites, both ways.
void Dens15C_1980(benchmark::State& state) {
  composite::Arguments1980 in;
  in.flow.pressure = 40;
  in.flow.conversion = static_cast<Conversion>(state.range(0));
  in.product = static_cast<Product>(state.range(1));
  run<composite::dens15C_1980, composite::Result1980>(state, generalised_metric, in, put_flow);
}
BENCHMARK(Dens15C_1980)->ArgNames({"way", "product"})->Args({1, 1})->Args({1, 2})->Args({2, 1});
void Dens15C_1952(benchmark::State& state) {
  composite::Arguments1952 in;
  in.flow.pressure = 40;
  in.flow.conversion = static_cast<Conversion>(state.range(0));
  run<composite::dens15C_1952, composite::Result1952>(state, generalised_metric, in, put_flow);
}
BENCHMARK(Dens15C_1952)->ArgName("way")->Arg(1)->Arg(2);
void Rd60F_Ngl(benchmark::State& state) {
  composite::ArgumentsNgl in;
  in.flow.pressure = 500;
  in.flow.conversion = static_cast<Conversion>(state.range(0));
  run<composite::rd60F_ngl, composite::ResultNgl>(state, gas_liquids, in, put_flow);
}
BENCHMARK(Rd60F_Ngl)->ArgName("way")->Arg(1)->Arg(2);
void Dens15C_Ngl(benchmark::State& state) {
  composite::ArgumentsNgl in;
  in.flow.pressure = 35;
  in.flow.conversion = static_cast<Conversion>(state.range(0));
  run<composite::dens15C_ngl, composite::ResultNgl>(state, gas_liquids_metric, in, put_flow);
}
BENCHMARK(Dens15C_Ngl)->ArgName("way")->Arg(1)->Arg(2);

void Call(benchmark::State& state, std::u16string_view id, double value, double temperature, double pressure) {
  BenchCall call(id);
  if (!call.ready(state)) return;
  call[2] = FUNCTION_ARG::Number(temperature);
  if (pressure > 0) call[3] = FUNCTION_ARG::Number(pressure);
  call();
  const AllocationCounter counter(state);
  double shift = 0.0;
  for (auto _ : state) {
    shift = shift > 0.02 ? 0.0 : shift + 1e-4;
    call[1] = FUNCTION_ARG::Number(value * (1.0 + shift));
    benchmark::DoNotOptimize(call());
  }
}
BENCHMARK_CAPTURE(Call, API_Table53_1980, u"API_Table53_1980", 823.7, 36.8, 0);
BENCHMARK_CAPTURE(Call, API_Dens15C_1980, u"API_Dens15C_1980", 823.7, 36.8, 14.5);
BENCHMARK_CAPTURE(Call, API_Table53_1952, u"API_Table53_1952", 823.7, 36.8, 0);
BENCHMARK_CAPTURE(Call, API_Table23E, u"API_Table23E", 0.55, 83.0, 0);
BENCHMARK_CAPTURE(Call, API_RD60F_NGL_LPG, u"API_RD60F_NGL_LPG", 0.55, 83.0, 400);
BENCHMARK_CAPTURE(Call, API_Dens15C_NGL_LPG, u"API_Dens15C_NGL_LPG", 545, 26.0, 30);

}  // namespace
}  // namespace norvane::bench
