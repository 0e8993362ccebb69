// GERG-2008: the whole call through the context, the bare algorithm and its parts, and a plain transcription of the
// equation as the baseline of the ratios.
#include <array>

#include "bench/bench_call.h"
#include "bench/plain_gerg.h"
#include "math/gas/gerg_kernel.h"

namespace norvane::bench {
namespace {

using namespace GERG2008;

using Amounts = std::array<double, component_count + 1>;
Amounts gas_of_21(double shift) {
  return {0.77824 - shift, 0.02 + shift, 0.06,    0.08,    0.03,    0.0001,  0.0025,  0.004,   0.002, 0.005, 0.0015,
          0.003,           0.0005,       0.00165, 0.00215, 0.00088, 0.00024, 0.00015, 0.00009, 0.007, 0.001, 0.0};
}
Amounts gas_of_10(double shift) {
  return {0.906724 - shift, 0.031284 + shift, 0.004676, 0.045279, 0.00828, 0, 0, 0, 0, 0, 0.001037,
          0.001563,         0.000321,         0.000443, 0.000393, 0.0,     0, 0, 0, 0, 0, 0};
}
Composition fractions(const Amounts& amounts) {
  Composition x{};
  (void)composition::prepare(amounts, composition::add_to_i_pentane, composition_error, x);
  return x;
}

// ---- Whole calls -------------------------------------------------------------------------------------------------

enum class Change { nothing, state, composition };

void gerg_call(benchmark::State& state, std::u16string_view id, Amounts (*gas)(double), Change change, double p,
               double t) {
  BenchCall call(id);
  if (!call.ready(state)) return;
  std::array<std::array<FUNCTION_ARG, component_count + 1>, 2> cells;
  for (std::size_t g = 0; g < 2; ++g)
    for (std::size_t i = 0; i < component_count + 1; ++i)
      cells[g][i] = FUNCTION_ARG::Number(gas(1e-4 * static_cast<double>(g))[i]);
  call[1] = FUNCTION_ARG::Number(p);
  call[2] = FUNCTION_ARG::Number(t);
  call[3] = FUNCTION_ARG::OfArray(1, cells[0].size(), cells[0].data());
  call();
  const AllocationCounter counter(state);
  unsigned i = 0;
  for (auto _ : state) {
    ++i;
    if (change != Change::nothing) {
      call[1].number = p + i % 37 * 0.1;
      call[2].number = t + i % 41 * 0.1;
    }
    if (change == Change::composition) call[3].array.elements = cells[i % 2].data();
    if (call() != ERROR_OK) state.SkipWithError("call failed");
  }
}
BENCHMARK_CAPTURE(gerg_call, gas_identical, u"GERG2008_Gas", gas_of_21, Change::nothing, 60.0, 20.0);
BENCHMARK_CAPTURE(gerg_call, gas_new_state_10, u"GERG2008_Gas", gas_of_10, Change::state, 60.0, 20.0);
BENCHMARK_CAPTURE(gerg_call, gas_new_state_21, u"GERG2008_Gas", gas_of_21, Change::state, 60.0, 20.0);
BENCHMARK_CAPTURE(gerg_call, gas_new_composition_10, u"GERG2008_Gas", gas_of_10, Change::composition, 60.0, 20.0);
BENCHMARK_CAPTURE(gerg_call, gas_new_composition_21, u"GERG2008_Gas", gas_of_21, Change::composition, 60.0, 20.0);
BENCHMARK_CAPTURE(gerg_call, z_new_state_10, u"GERG_ZOTPX", gas_of_10, Change::state, 60.0, 20.0);
BENCHMARK_CAPTURE(gerg_call, flash_two_phases_10, u"GERG2008_Flash", gas_of_10, Change::state, 30.0, -68.0);
BENCHMARK_CAPTURE(gerg_call, flash_gas_10, u"GERG2008_Flash", gas_of_10, Change::state, 30.0, 0.0);

// ---- The parts ---------------------------------------------------------------------------------------------------

struct Parts {
  Mixture mixture;
  Isotherm isotherm;
  explicit Parts(const Amounts& gas, double T = 300.0) {
    mixture.set(Edition::gerg_2008, fractions(gas));
    isotherm.set(mixture, T);
  }
};

void gerg_mixture(benchmark::State& state, Amounts (*gas)(double)) {
  const Composition x = fractions(gas(0.0));
  Mixture mixture;
  for (auto _ : state) {
    mixture.set(Edition::gerg_2008, x);
    benchmark::DoNotOptimize(mixture);
  }
}
BENCHMARK_CAPTURE(gerg_mixture, 10, gas_of_10);
BENCHMARK_CAPTURE(gerg_mixture, 21, gas_of_21);

void gerg_isotherm(benchmark::State& state) {
  Parts parts(gas_of_21(0.0));
  double T = 250.0;
  for (auto _ : state) {
    parts.isotherm.set(parts.mixture, T);
    T = T < 400.0 ? T + 1.0 : 250.0;
    benchmark::DoNotOptimize(parts.isotherm);
  }
}
BENCHMARK(gerg_isotherm);

void gerg_density(benchmark::State& state, Change change) {
  Composition gases[2] = {fractions(gas_of_21(0.0)), fractions(gas_of_21(1e-4))};
  Parts parts(gas_of_21(0.0));
  unsigned i = 0;
  for (auto _ : state) {
    ++i;
    if (change == Change::composition) parts.mixture.set(Edition::gerg_2008, gases[i % 2]);
    parts.isotherm.set(parts.mixture, 278.15 + i % 41);
    double rho = 0.0;
    benchmark::DoNotOptimize(parts.isotherm.vapour_density(4.0 + i % 37 * 0.1, rho));
    benchmark::DoNotOptimize(rho);
  }
}
BENCHMARK_CAPTURE(gerg_density, new_state_21, Change::state);
BENCHMARK_CAPTURE(gerg_density, new_composition_21, Change::composition);

void gerg_properties(benchmark::State& state, Entropy entropy) {
  const Parts parts(gas_of_21(0.0));
  double rho = 0.0;
  for (auto _ : state) {
    rho = rho < 10.0 ? rho + 0.1 : 0.1;
    benchmark::DoNotOptimize(GERG2008::state(parts.mixture, parts.isotherm, rho, entropy));
  }
}
BENCHMARK_CAPTURE(gerg_properties, without_entropy, Entropy::leave_out);
BENCHMARK_CAPTURE(gerg_properties, with_entropy, Entropy::include);

// Rows of a batch with one gas: densities, and properties at known densities; the time of a row.
void gerg_rows(benchmark::State& state, InstructionSet set, bool properties) {
  const Kernel* kernel = GERG2008::kernel(set);
  if (kernel == nullptr || !has_instructions(set)) return state.SkipWithError("not on this machine");
  constexpr std::size_t rows = 256;
  std::array<double, rows> T, p, rho;
  std::array<helmholtz::State, rows> states;
  for (std::size_t i = 0; i < rows; ++i) {
    T[i] = 278.15 + static_cast<double>(i * 37 % 41);
    p[i] = 4.0 + 0.1 * static_cast<double>(i * 53 % 37);
  }
  Mixture mixture;
  mixture.set(Edition::gerg_2008, fractions(gas_of_21(0.0)));
  kernel->densities(mixture, T.data(), p.data(), rho.data(), rows);
  for (auto _ : state) {
    if (properties) {
      kernel->states(mixture, T.data(), rho.data(), states.data(), rows);
    } else {
      kernel->densities(mixture, T.data(), p.data(), rho.data(), rows);
    }
    benchmark::DoNotOptimize(rho);
    benchmark::DoNotOptimize(states);
  }
  state.counters["row"] = benchmark::Counter(static_cast<double>(state.iterations()) * rows,
                                             benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK_CAPTURE(gerg_rows, densities_baseline, InstructionSet::baseline, false);
BENCHMARK_CAPTURE(gerg_rows, densities_avx2, InstructionSet::avx2, false);
BENCHMARK_CAPTURE(gerg_rows, densities_avx512, InstructionSet::avx512, false);
BENCHMARK_CAPTURE(gerg_rows, properties_baseline, InstructionSet::baseline, true);
BENCHMARK_CAPTURE(gerg_rows, properties_avx2, InstructionSet::avx2, true);
BENCHMARK_CAPTURE(gerg_rows, properties_avx512, InstructionSet::avx512, true);

void gerg_fugacity(benchmark::State& state) {
  PhaseMixture mixture;
  mixture.set(Edition::gerg_2008, fractions(gas_of_10(0.0)));
  Isotherm isotherm;
  isotherm.set(mixture, 300.0);
  PerComponent ln_phi;
  for (auto _ : state) {
    fugacity(mixture, isotherm, 3.0, 0.85, ln_phi);
    benchmark::DoNotOptimize(ln_phi);
  }
}
BENCHMARK(gerg_fugacity);

void gerg_pressure(benchmark::State& state) {
  const Parts parts(gas_of_21(0.0));
  double rho = 0.0;
  for (auto _ : state) {
    rho = rho < 10.0 ? rho + 0.1 : 0.1;
    benchmark::DoNotOptimize(parts.isotherm.at(rho));
  }
}
BENCHMARK(gerg_pressure);

// The baseline: the same term by term; the whole search as Newton's method in ln v from the ideal gas.
void gerg_pressure_term_by_term(benchmark::State& state) {
  PlainGerg plain;
  plain.set_composition(fractions(gas_of_21(0.0)));
  plain.set_temperature(300.0);
  double rho = 0.0;
  for (auto _ : state) {
    rho = rho < 10.0 ? rho + 0.1 : 0.1;
    benchmark::DoNotOptimize(plain.residual(rho));
  }
}
BENCHMARK(gerg_pressure_term_by_term);

void gerg_density_term_by_term(benchmark::State& state) {
  PlainGerg plain;
  plain.set_composition(fractions(gas_of_21(0.0)));
  unsigned i = 0;
  for (auto _ : state) {
    ++i;
    plain.set_temperature(278.15 + i % 41);
    benchmark::DoNotOptimize(plain.density(4.0 + i % 37 * 0.1));
  }
}
BENCHMARK(gerg_density_term_by_term);

}  // namespace
}  // namespace norvane::bench
