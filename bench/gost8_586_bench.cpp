// Orifice plates by GOST 8.586-2005: a call through the whole path, the calculation alone, and beside it the equations
// as they are printed, everything in every round.
#include <algorithm>
#include <cmath>
#include <numbers>

#include "bench/bench_call.h"
#include "math/flow/gost8_586.h"
#include "math/flow/gost8_586_table.h"

namespace norvane::bench {
namespace {

using namespace GOST_8_586_2005;

void WholeCallGost8586(benchmark::State& state) {
  BenchCall call(u"GOST8_586_2005_MassFlowRate");
  if (!call.ready(state)) return;
  call();
  const AllocationCounter counter(state);
  double dp = 100.0;
  for (auto _ : state) {
    call[1] = FUNCTION_ARG::Number(dp += 1e-9);  // a new differential pressure every call
    benchmark::DoNotOptimize(call());
  }
}
BENCHMARK(WholeCallGost8586);

// A rusty pipe and a worn edge, both factors at work.
Arguments worn_run() {
  Arguments in;
  in.measured = {.dp = 160, .pressure = 12, .temperature = 15, .density = 9, .viscosity = 1.1e-5, .kappa = 1.31};
  in.geometry = {150, 1.11e-5, 20, 85, 1.62e-5, 20};
  in.roughness = 0.25;
  in.edge_radius = 0.1;
  return in;
}

double printed_friction(double R, double Re) {
  const double kD = 0.26954 * R, kR = 5.035 / Re;
  return std::pow(1.74 - 2 * std::log10(2 * R - 37.36 / Re * std::log10(kD - kR * std::log10(kD + 3.3333 * kR))),
                  -2.0);
}

double printed_flow(const Arguments& in) {  // corner tappings, gas, Reynolds numbers between 1e5 and 3e6
  const Measurement& m = in.measured;
  double Re = 1e6, q = 0;
  for (int round = 0; round < 25; ++round) {
    const double previous = q;
    const double D = in.geometry.pipe_diameter * (1 + in.geometry.pipe_expansion * (m.temperature - 20));
    const double d = in.geometry.device_diameter * (1 + in.geometry.device_expansion * (m.temperature - 20));
    const double b = d / D, A = std::pow(19000 * b / Re, 0.8);
    const double C = 0.5961 + 0.0261 * b * b - 0.216 * std::pow(b, 8.0) + 0.000521 * std::pow(1e6 * b / Re, 0.7) +
                     (0.0188 + 0.0063 * A) * std::pow(b, 3.5) * std::pow(1e6 / Re, 0.3);
    const double eps = 1 - (0.351 + 0.256 * std::pow(b, 4.0) + 0.93 * std::pow(b, 8.0)) *
                               (1 - std::pow(1 - m.dp / 1000 / m.pressure, 1 / m.kappa));
    const double Kp = 0.9826 + std::pow(in.edge_radius / d + 0.0007773, 0.6);
    double a[3];
    for (int i = 0; i < 3; ++i) {
      a[i] = 0;
      for (int k = 0; k < 4; ++k) a[i] += roughness_bands[1].B[i][k] * std::pow(std::log10(Re), k);
    }
    const double most = std::min(15.0, a[0] * std::pow(b, a[1]) + a[2]);
    const double K =
        1 + 5.22 * std::pow(b, 3.5) *
                (printed_friction(in.roughness / D, Re) - printed_friction(std::numbers::pi * most * 1e-4, Re));
    q = std::numbers::pi / 4 * d * d * 1e-6 * C * K * Kp * eps * std::sqrt(200 * m.dp * m.density) /
        std::sqrt(1 - std::pow(b, 4.0));
    Re = 4 * q / (std::numbers::pi * m.viscosity * D / 1000);
    if (std::fabs(q - previous) <= 1e-12) break;
  }
  return q;
}

void Gost8586(benchmark::State& state) {
  Arguments in = worn_run();
  Result result;
  for (auto _ : state) {
    in.measured.dp += 1e-9;
    benchmark::DoNotOptimize(calculate(in, result));
    benchmark::DoNotOptimize(result);
  }
}
BENCHMARK(Gost8586);

void Gost8586AsPrinted(benchmark::State& state) {
  Arguments in = worn_run();
  Result result;
  if (!calculate(in, result).good() || std::fabs(printed_flow(in) / result.mass_rate - 1.0) > 1e-12)
    return state.SkipWithError("the printed equations and the library differ");
  for (auto _ : state) {
    in.measured.dp += 1e-9;
    benchmark::DoNotOptimize(printed_flow(in));
  }
}
BENCHMARK(Gost8586AsPrinted);

}  // namespace
}  // namespace norvane::bench
