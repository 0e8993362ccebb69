// SGERG-88, NX-19, GOST 30319 and gas viscosity: a call of each through the whole path, the calculation alone, and
// beside it the equations as they are printed, with the C library's pow and the loops of the reference program.
#include <cmath>

#include "bench/bench_call.h"
#include "math/gas/nx19.h"
#include "math/gas/sgerg.h"

namespace norvane::bench {
namespace {

void whole_call(benchmark::State& state, const char16_t* id, double pressure) {
  BenchCall call(id);
  if (!call.ready(state)) return;
  FUNCTION_ARG cells[22];
  for (FUNCTION_ARG& cell : cells) cell = FUNCTION_ARG::Number(0.0);
  cells[0] = FUNCTION_ARG::Number(0.96), cells[3] = FUNCTION_ARG::Number(0.03), cells[1] = FUNCTION_ARG::Number(0.01);
  for (std::size_t i = 0; i < catalogue::find(id)->input_count; ++i)
    if (catalogue::find(id)->inputs[i].composition) call[i] = FUNCTION_ARG::OfArray(1, 22, cells);
  call();
  const AllocationCounter counter(state);
  for (auto _ : state) {
    call[1] = FUNCTION_ARG::Number(pressure += 1e-9);  // a new pressure every call
    benchmark::DoNotOptimize(call());
  }
}
BENCHMARK_CAPTURE(whole_call, SGERG_M, u"SGERG_M", 60.0);
BENCHMARK_CAPTURE(whole_call, NX19_M, u"NX19_M", 60.0);
BENCHMARK_CAPTURE(whole_call, GOST30319, u"GOST30319", 60.0);
BENCHMARK_CAPTURE(whole_call, GOST30319_SGERG91mod, u"GOST30319_SGERG91mod", 60.0);
BENCHMARK_CAPTURE(whole_call, GOST30319_AGA8, u"GOST30319_AGA8", 60.0);
BENCHMARK_CAPTURE(whole_call, GasViscosity_2004, u"GasViscosity_2004", 60.0);

// ---- SGERG-88 ----------------------------------------------------------------------------------------------------

constexpr SGERG::Arguments gas_1 = {
    .pressure = 60, .temperature = 290, .calorific_value = 40.66, .relative_density = 0.581, .carbon_dioxide = 0.006};

double polynomial(const SGERG::Quadratic& q, double T) { return q.a0 + q.a1 * T + q.a2 * std::pow(T, 2.0); }
double with_H(const SGERG::Quadratic (&q)[3], double H, double T) {
  return polynomial(q[0], T) + polynomial(q[1], T) * H + polynomial(q[2], T) * std::pow(H, 2.0);
}
double printed_B(double x1, double x2, double x3, double H, double T) {
  const SGERG::Coefficients& c = SGERG::coefficients;
  const double B11 = with_H(c.B11, H, T), B22 = polynomial(c.B22, T), B33 = polynomial(c.B33, T);
  return x1 * x1 * B11 + x2 * x2 * B22 + x3 * x3 * B33 +
         x1 * x2 * (0.72 + 1.875e-5 * std::pow(320 - T, 2.0)) * (B11 + B22) +
         2 * x1 * x3 * -0.865 * std::sqrt(B11 * B33) + 2 * x2 * x3 * polynomial(c.B23, T);
}
// Without hydrogen; the outer loop on V_m to the same end as the library's, the inner one on V as the reference
// program has it.
double printed_sgerg(const SGERG::Arguments& in) {
  const SGERG::Coefficients& c = SGERG::coefficients;
  const double x3 = in.carbon_dioxide, T = in.temperature;
  double x1 = 0, x2 = 0, H = 0, B0 = -0.065;
  for (int round = 0; round < 50; ++round) {
    const double V = SGERG::ideal_volume + B0, E = in.calorific_value * V;
    const double M = in.relative_density * 1.292923 * V;
    x1 = (M - SGERG::CH_mass_per_H * E - 28.0135 * (1 - x3) - 44.010 * x3) / (SGERG::CH_molar_mass - 28.0135);
    x2 = 1 - x1 - x3;
    H = E / x1;
    const double next = printed_B(x1, x2, x3, H, 273.15), change = std::fabs(next - B0);
    B0 = next;
    if (change <= 1e-13) break;
  }
  const double C1 = with_H(c.C111, H, T), C2 = polynomial(c.C222, T), C3 = polynomial(c.C333, T);
  const double y = 0.92 + 0.0013 * (T - 270), third = 1.0 / 3.0;
  const double B = printed_B(x1, x2, x3, H, T);
  const double C = std::pow(x1, 3.0) * C1 + std::pow(x2, 3.0) * C2 + std::pow(x3, 3.0) * C3 +
                   3 * x1 * x1 * x2 * y * std::pow(C1 * C1 * C2, third) +
                   3 * x1 * x2 * x2 * y * std::pow(C1 * C2 * C2, third) +
                   3 * x1 * x1 * x3 * 0.92 * std::pow(C1 * C1 * C3, third) +
                   3 * x1 * x3 * x3 * 0.92 * std::pow(C1 * C3 * C3, third) +
                   6 * x1 * x2 * x3 * 1.10 * std::pow(C1 * C2 * C3, third) +
                   3 * x2 * x2 * x3 * polynomial(c.C223, T) + 3 * x2 * x3 * x3 * polynomial(c.C233, T);
  const double ideal = SGERG::R * T / in.pressure;
  double V = ideal + B;
  for (int i = 0; i < 100; ++i) {
    const double next = ideal * (1 + B / V + C / (V * V));
    if (std::fabs(next - V) <= 1e-14 * V) break;
    V = next;
  }
  return 1 + B / V + C / (V * V);
}

void Sgerg(benchmark::State& state) {
  SGERG::Arguments in = gas_1;
  SGERG::Result result;
  for (auto _ : state) {
    in.pressure += 1e-9;
    benchmark::DoNotOptimize(SGERG::calculate(in, result));
    benchmark::DoNotOptimize(result);
  }
}
BENCHMARK(Sgerg);

void SgergAsPrinted(benchmark::State& state) {
  SGERG::Arguments in = gas_1;
  SGERG::Result result;
  if (!SGERG::calculate(in, result).good() || std::fabs(printed_sgerg(in) / result.z - 1.0) > 1e-12)
    return state.SkipWithError("the printed equations and the library differ");
  for (auto _ : state) {
    in.pressure += 1e-9;
    benchmark::DoNotOptimize(printed_sgerg(in));
  }
}
BENCHMARK(SgergAsPrinted);

// ---- NX-19 -------------------------------------------------------------------------------------------------------

constexpr NX19::Arguments gas_19 = {
    .pressure = 900, .temperature = 50, .specific_gravity = 0.6, .carbon_dioxide = 0.01, .nitrogen = 0.01};

double printed_nx19(const NX19::Arguments& in) {  // specific gravity method, region 2
  const double Mc = 100 * in.carbon_dioxide, Mn = 100 * in.nitrogen, G = in.specific_gravity;
  const double Pi = ((in.pressure - 14.7) * (156.47 / (160.8 - 7.22 * G + (Mc - 0.392 * Mn))) + 14.7) / 1000;
  const double tau = (in.temperature + 460) * (226.29 / (99.15 + 211.9 * G - (Mc + 1.681 * Mn))) / 500;
  const double E = 1 - 0.00075 * std::pow(Pi, 2.3) * (2 - std::exp(-20 * (1.09 - tau))) -
                   1.317 * std::pow(1.09 - tau, 4.0) * Pi * (1.69 - Pi * Pi);
  const double m = 0.0330378 / std::pow(tau, 2.0) - 0.0221323 / std::pow(tau, 3.0) + 0.0161353 / std::pow(tau, 5.0);
  const double n = (0.265827 / std::pow(tau, 2.0) + 0.0457697 / std::pow(tau, 4.0) - 0.133185 / tau) / m;
  const double B = (3 - m * n * n) / (9 * m * Pi * Pi);
  const double b = (9 * n - 2 * m * std::pow(n, 3.0)) / (54 * m * std::pow(Pi, 3.0)) - E / (2 * m * Pi * Pi);
  const double D = std::pow(b + std::sqrt(b * b + std::pow(B, 3.0)), 1.0 / 3.0);
  const double Fpv = std::sqrt(B / D - D + n / (3 * Pi)) / (1 + 0.00132 / std::pow(tau, 3.25));
  return 1 / (Fpv * Fpv);
}

void Nx19(benchmark::State& state) {
  NX19::Arguments in = gas_19;
  NX19::Result result;
  for (auto _ : state) {
    in.pressure += 1e-9;
    benchmark::DoNotOptimize(NX19::calculate(in, result));
    benchmark::DoNotOptimize(result);
  }
}
BENCHMARK(Nx19);

void Nx19AsPrinted(benchmark::State& state) {
  NX19::Arguments in = gas_19;
  NX19::Result result;
  if (!NX19::calculate(in, result).good() || std::fabs(printed_nx19(in) / result.z - 1.0) > 1e-12)
    return state.SkipWithError("the printed equations and the library differ");
  for (auto _ : state) {
    in.pressure += 1e-9;
    benchmark::DoNotOptimize(printed_nx19(in));
  }
}
BENCHMARK(Nx19AsPrinted);

}  // namespace
}  // namespace norvane::bench
