// AGA-8 detail equation: the whole call through the context, and the bare algorithm.
#include <array>
#include <cmath>

#include "bench/bench_call.h"
#include "bench/plain_detail.h"
#include "math/gas/aga8_kernel.h"

namespace norvane::bench {
namespace {

// Gases that alternate where a new composition is measured.
using Cells = std::array<FUNCTION_ARG, AGA8::component_count + 1>;

AGA8::CompositionInput gas_of_21(double shift) {
  return {0.8629 - shift, 0.02 + shift, 0.005,  0.05,  0.03,  0.0001, 0.001,  0.0001, 0.0001, 0.0002, 0.011,
          0.009,          0.0035,       0.0025, 0.002, 0.001, 0.0005, 0.0002, 0.0001, 0.0004, 0.0004, 0.0};
}
AGA8::CompositionInput gas_of_11(double shift) {  // Amarillo gas
  return {0.906724 - shift, 0.031284 + shift, 0.004676, 0.045279, 0.00828, 0, 0, 0, 0, 0, 0.001037,
          0.001563,         0.000321,         0.000443, 0.000393, 0.0,     0, 0, 0, 0, 0, 0};
}

Cells cells_of(const AGA8::CompositionInput& gas) {
  Cells cells;
  for (std::size_t i = 0; i < gas.size(); ++i) cells[i] = FUNCTION_ARG::Number(gas[i]);
  return cells;
}

enum class Change { nothing, state, composition };

void aga8_m(benchmark::State& state, AGA8::CompositionInput (*gas)(double), Change change) {
  BenchCall call(u"AGA8_M");
  if (!call.ready(state)) return;
  Cells gases[2] = {cells_of(gas(0.0)), cells_of(gas(1e-4))};
  unsigned i = 0;
  call[1] = FUNCTION_ARG::Number(60.0);
  call[2] = FUNCTION_ARG::Number(20.0);
  call[3] = FUNCTION_ARG::OfArray(1, gases[0].size(), gases[0].data());
  call();
  const AllocationCounter counter(state);
  for (auto _ : state) {
    ++i;
    if (change != Change::nothing) {
      call[1].number = 40.0 + i % 37;
      call[2].number = 5.0 + i % 41;
    }
    if (change == Change::composition) call[3].array.elements = gases[i % 2].data();
    if (call() != ERROR_OK) state.SkipWithError("call failed");
  }
}
BENCHMARK_CAPTURE(aga8_m, call_identical, gas_of_21, Change::nothing);
BENCHMARK_CAPTURE(aga8_m, call_new_state_11_components, gas_of_11, Change::state);
BENCHMARK_CAPTURE(aga8_m, call_new_state_21_components, gas_of_21, Change::state);
BENCHMARK_CAPTURE(aga8_m, call_new_composition_11_components, gas_of_11, Change::composition);
BENCHMARK_CAPTURE(aga8_m, call_new_composition_21_components, gas_of_21, Change::composition);

AGA8::Composition fractions(const AGA8::CompositionInput& gas) {
  AGA8::Composition x{};
  (void)composition::prepare(gas, composition::add_to_i_pentane, AGA8::composition_error, x);
  return x;
}

void aga8_detail(benchmark::State& state, AGA8::CompositionInput (*gas)(double), Change change) {
  const AGA8::Composition gases[2] = {fractions(gas(0.0)), fractions(gas(1e-4))};
  AGA8::CDetail detail;
  AGA8::State result;
  unsigned i = 0;
  for (auto _ : state) {
    ++i;
    const double T = change == Change::nothing ? 300.0 : 278.15 + i % 41;
    const double p = change == Change::nothing ? 60.0 : 40.0 + i % 37;
    const std::size_t which = change == Change::composition ? i % 2 : 0;
    benchmark::DoNotOptimize(detail.calculate(gases[which], T, p / 10.0, result));
    benchmark::DoNotOptimize(result);
  }
}
BENCHMARK_CAPTURE(aga8_detail, identical, gas_of_21, Change::nothing);
BENCHMARK_CAPTURE(aga8_detail, new_state_21_components, gas_of_21, Change::state);
BENCHMARK_CAPTURE(aga8_detail, new_composition_11_components, gas_of_11, Change::composition);
BENCHMARK_CAPTURE(aga8_detail, new_composition_21_components, gas_of_21, Change::composition);

// ---- Rows --------------------------------------------------------------------------------------------------------

// States, and gases of 21 components, of a batch.
struct Rows {
  static constexpr std::size_t count = 1024;
  std::array<AGA8::Composition, count> x;
  std::array<const AGA8::Composition*, count> place;
  std::array<double, count> T, p, rho, molar_mass;

  Rows() {
    for (std::size_t i = 0; i < count; ++i) {
      x[i] = fractions(gas_of_21(1e-6 * static_cast<double>(i)));
      place[i] = &x[i];
      T[i] = 270.0 + static_cast<double>(i * 37 % 61);
      p[i] = 0.1 + 0.1 * static_cast<double>(i * 53 % 97);
    }
  }
};

// Time of a row.
void per_row(benchmark::State& state) {
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(Rows::count));
  state.counters["row"] = benchmark::Counter(static_cast<double>(state.iterations()) * Rows::count,
                                             benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void aga8_rows(benchmark::State& state, InstructionSet set, bool gas_a_row) {
  const AGA8::Kernel* kernel = AGA8::kernel(set);
  if (kernel == nullptr || !has_instructions(set)) return state.SkipWithError("not on this machine");
  Rows rows;
  AGA8::Mixture mixture;
  mixture.set(rows.x[0]);
  for (auto _ : state) {
    if (gas_a_row) {
      kernel->gases(rows.place.data(), rows.T.data(), rows.p.data(), rows.rho.data(), rows.molar_mass.data(),
                    Rows::count);
    } else {
      kernel->densities(mixture, rows.T.data(), rows.p.data(), rows.rho.data(), Rows::count);
    }
    benchmark::DoNotOptimize(rows.rho);
  }
  per_row(state);
}
BENCHMARK_CAPTURE(aga8_rows, state_a_row_baseline, InstructionSet::baseline, false);
BENCHMARK_CAPTURE(aga8_rows, state_a_row_avx2, InstructionSet::avx2, false);
BENCHMARK_CAPTURE(aga8_rows, state_a_row_avx512, InstructionSet::avx512, false);
BENCHMARK_CAPTURE(aga8_rows, gas_a_row_baseline, InstructionSet::baseline, true);
BENCHMARK_CAPTURE(aga8_rows, gas_a_row_avx2, InstructionSet::avx2, true);
BENCHMARK_CAPTURE(aga8_rows, gas_a_row_avx512, InstructionSet::avx512, true);

// One row after the other.
void aga8_rows_scalar(benchmark::State& state, bool gas_a_row) {
  Rows rows;
  AGA8::Mixture mixture;
  mixture.set(rows.x[0]);
  AGA8::Isotherm isotherm;
  for (auto _ : state) {
    for (std::size_t i = 0; i < Rows::count; ++i) {
      if (gas_a_row) mixture.set(rows.x[i]);
      isotherm.set(mixture, rows.T[i]);
      (void)isotherm.density(rows.p[i], rows.rho[i]);
    }
    benchmark::DoNotOptimize(rows.rho);
  }
  per_row(state);
}
BENCHMARK_CAPTURE(aga8_rows_scalar, state_a_row, false);
BENCHMARK_CAPTURE(aga8_rows_scalar, gas_a_row, true);

// The baseline of the ratios: the plain transcription, by Newton's method.
void aga8_rows_plain(benchmark::State& state, bool gas_a_row) {
  Rows rows;
  PlainDetail detail;
  detail.set_composition(rows.x[0]);
  for (auto _ : state) {
    for (std::size_t i = 0; i < Rows::count; ++i) {
      if (gas_a_row) detail.set_composition(rows.x[i]);
      detail.set_temperature(rows.T[i]);
      rows.rho[i] = detail.density(rows.p[i]);
    }
    benchmark::DoNotOptimize(rows.rho);
  }
  per_row(state);
}
BENCHMARK_CAPTURE(aga8_rows_plain, state_a_row, false);
BENCHMARK_CAPTURE(aga8_rows_plain, gas_a_row, true);

// The parts.
void aga8_mixture(benchmark::State& state) {
  const AGA8::Composition x = fractions(gas_of_21(0.0));
  AGA8::Mixture mixture;
  for (auto _ : state) {
    mixture.set(x);
    benchmark::DoNotOptimize(mixture);
  }
}
BENCHMARK(aga8_mixture);

void aga8_isotherm(benchmark::State& state) {
  AGA8::Mixture mixture;
  mixture.set(fractions(gas_of_21(0.0)));
  AGA8::Isotherm isotherm;
  double T = 250.0;
  for (auto _ : state) {
    isotherm.set(mixture, T);
    T = T < 400.0 ? T + 1.0 : 250.0;
    benchmark::DoNotOptimize(isotherm);
  }
}
BENCHMARK(aga8_isotherm);

void aga8_pressure(benchmark::State& state) {
  AGA8::Mixture mixture;
  mixture.set(fractions(gas_of_21(0.0)));
  AGA8::Isotherm isotherm;
  isotherm.set(mixture, 300.0);
  double rho = 0.0;
  for (auto _ : state) {
    rho = rho < 10.0 ? rho + 0.1 : 0.1;
    benchmark::DoNotOptimize(isotherm.pressure(rho));
  }
}
BENCHMARK(aga8_pressure);

// The baseline of the ratio: the same pressure term by term with the C library's pow and exp.
void aga8_pressure_term_by_term(benchmark::State& state) {
  AGA8::Mixture mixture;
  mixture.set(fractions(gas_of_21(0.0)));
  double rho = 0.0;
  for (auto _ : state) {
    rho = rho < 10.0 ? rho + 0.1 : 0.1;
    const double T = 300.0;
    const double r = mixture.K3 * rho;
    double z = 1.0;
    for (std::size_t n = 0; n < AGA8::term_count; ++n) {
      const AGA8::Term& term = AGA8::terms[n];
      if (n < 18) z += rho * mixture.beta[n] * std::pow(T, -term.u);
      if (n < 12) continue;
      const double C = mixture.gamma[n - 12] * std::pow(T, -term.u);
      if (n < 18) z -= r * C;
      const double q = term.k != 0 ? std::pow(r, term.k) : 0.0;
      z += C * (term.b - term.k * q) * std::pow(r, term.b) * std::exp(-q);
    }
    benchmark::DoNotOptimize(rho * AGA8::R * T * z);
  }
}
BENCHMARK(aga8_pressure_term_by_term);

}  // namespace
}  // namespace norvane::bench
