// Flow elements: a call of each function through the whole path, the calculation alone, and beside it the orifice of
// ISO 5167-2:2003 as the standard prints it, with the C library's pow and every state in every round.
#include <cmath>
#include <numbers>

#include "bench/bench_call.h"
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

double printed_orifice(const ISO5167::Measurement& gas, const ISO5167::Geometry& g) {
  const double p1 = gas.pressure, p2 = p1 - gas.dp / 1000.0;
  double p3 = p2, Re = 1e5, q = 0.0, sink = 0.0;
  for (int round = 1; round <= 25; ++round) {
    const double previous = q, n = (1.0 - gas.kappa) / gas.kappa;
    const double T1 = gas.temperature;
    sink += (T1 + 273.15) * std::pow(p1 / p2, n) + (T1 + 273.15) * std::pow(p1 / p3, n) +
            gas.density * std::pow(p2 / p1, 1.0 / gas.kappa) + gas.density * std::pow(p3 / p1, 1.0 / gas.kappa);
    const double D = g.pipe_diameter * (1.0 + g.pipe_expansion * (T1 - 20.0));
    const double d = g.device_diameter * (1.0 + g.device_expansion * (T1 - 20.0));
    const double b = d / D, b4 = std::pow(b, 4), L = 25.4 / D, M = 2.0 * L / (1.0 - b);
    const double eps =
        1.0 - (0.351 + 0.256 * b4 + 0.93 * std::pow(b, 8)) * (1.0 - std::pow(p2 / p1, 1.0 / gas.kappa));
    const double A = std::pow(19000.0 * b / Re, 0.8);
    const double C =
        0.5961 + 0.0261 * b * b - 0.216 * std::pow(b, 8) + 0.000521 * std::pow(1e6 * b / Re, 0.7) +
        (0.0188 + 0.0063 * A) * std::pow(b, 3.5) * std::fmax(std::pow(1e6 / Re, 0.3), 22.7 - 0.0047 * Re) +
        (0.043 + 0.080 * std::exp(-10.0 * L) - 0.123 * std::exp(-7.0 * L)) * (1.0 - 0.11 * A) * b4 / (1.0 - b4) -
        0.031 * (M - 0.8 * std::pow(M, 1.1)) * std::pow(b, 1.3) *
            (1.0 + 8.0 * std::fmax(std::log10(3700.0 / Re), 0.0)) +
        0.011 * (0.75 - b) * std::fmax(2.8 - D / 25.4, 0.0);
    q = C * eps * std::numbers::pi / 4.0 * d * d * 1e-6 * std::sqrt(200.0 * gas.dp * gas.density) /
        std::sqrt(1.0 - b4);
    Re = 4.0 * q / (std::numbers::pi * gas.viscosity * D / 1000.0);
    const double root = std::sqrt(1.0 - b4 * (1.0 - C * C));
    p3 = p1 - (root - C * b * b) / (root + C * b * b) * gas.dp / 1000.0;
    if (round >= 2 && std::fabs(previous - q) <= 1e-12) break;
  }
  benchmark::DoNotOptimize(sink);
  return q;
}

void Orifice2003AsPrinted(benchmark::State& state) {
  ISO5167::Measurement gas = metric_gas();
  ISO5167::Result result;
  ISO5167::orifice(gas, metric_run, ISO5167::Tappings::flange, ISO5167::Edition::y2003, 0.0, result);
  if (std::fabs(printed_orifice(gas, metric_run) / result.mass_rate - 1.0) > 1e-12)
    return state.SkipWithError("the printed equations and the library differ");
  for (auto _ : state) {
    gas.dp += 1e-9;
    benchmark::DoNotOptimize(printed_orifice(gas, metric_run));
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
