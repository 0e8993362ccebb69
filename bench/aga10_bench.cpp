// AGA-10: the whole call through the context, and the bare algorithm beside a plain transcription of the equations.
#include <array>
#include <span>

#include "bench/bench_call.h"
#include "bench/plain_detail.h"
#include "math/gas/aga10.h"

namespace norvane::bench {
namespace {

AGA8::CompositionInput gas(double shift) {
  return {0.8629 - shift, 0.02 + shift, 0.005,  0.05,  0.03,  0.0001, 0.001,  0.0001, 0.0001, 0.0002, 0.011,
          0.009,          0.0035,       0.0025, 0.002, 0.001, 0.0005, 0.0002, 0.0001, 0.0004, 0.0004, 0.0};
}

void aga10(benchmark::State& state, std::u16string_view id, int critical_flow) {
  BenchCall call(id);
  if (!call.ready(state)) return;
  std::array<FUNCTION_ARG, AGA8::component_count + 1> gases[2];
  for (std::size_t g = 0; g < 2; ++g) {
    const AGA8::CompositionInput fractions = gas(1e-4 * static_cast<double>(g));
    for (std::size_t i = 0; i < fractions.size(); ++i) gases[g][i] = FUNCTION_ARG::Number(fractions[i]);
  }
  call[1] = FUNCTION_ARG::Number(60.0);
  call[2] = FUNCTION_ARG::Number(20.0);
  call[3] = FUNCTION_ARG::OfArray(1, gases[0].size(), gases[0].data());
  if (critical_flow != 0) call[5] = FUNCTION_ARG::Integer(critical_flow);
  call();
  const AllocationCounter counter(state);
  unsigned i = 0;
  for (auto _ : state) {
    ++i;
    call[1].number = 40.0 + i % 37;
    call[2].number = 5.0 + i % 41;
    call[3].array.elements = gases[i % 2].data();
    if (call() != ERROR_OK) state.SkipWithError("call failed");
  }
}
BENCHMARK_CAPTURE(aga10, call_speed_of_sound, u"AGA10_M", 0);
BENCHMARK_CAPTURE(aga10, call_extended_mode_1, u"AGA10ex_M", 1);
BENCHMARK_CAPTURE(aga10, call_extended_mode_2, u"AGA10ex_M", 2);

AGA8::Composition fractions(const AGA8::CompositionInput& input) {
  AGA8::Composition x{};
  (void)composition::prepare(input, composition::add_to_i_pentane, AGA8::composition_error, x);
  return x;
}
AGA8::CompositionInput gas_of_11(double shift) {  // Amarillo gas
  return {0.906724 - shift, 0.031284 + shift, 0.004676, 0.045279, 0.00828, 0, 0, 0, 0, 0, 0.001037,
          0.001563,         0.000321,         0.000443, 0.000393, 0.0,     0, 0, 0, 0, 0, 0};
}

// All properties but the critical flow factors, which ours answer with the base state besides.
enum class Change { nothing, state, composition };

constexpr auto without_critical_flow = [] {
  std::array<AGA10::Property, 24> list{};
  std::size_t n = 0;
  for (std::size_t i = 0; i < static_cast<std::size_t>(AGA10::Property::count); ++i) {
    const auto property = static_cast<AGA10::Property>(i);
    if (property != AGA10::Property::critical_flow_factor && property != AGA10::Property::ideal_gas_flow_factor &&
        property != AGA10::Property::isentropic_flow_factor)
      list[n++] = property;
  }
  return list;
}();

void aga10_all(benchmark::State& state, AGA8::CompositionInput (*of)(double), Change change,
               std::span<const AGA10::Property> wanted) {
  const AGA8::Composition gases[2] = {fractions(of(0.0)), fractions(of(1e-4))};
  AGA10::CDetail detail;
  AGA10::Properties values{};
  unsigned i = 0;
  for (auto _ : state) {
    ++i;
    const double T = change == Change::nothing ? 300.0 : 278.15 + i % 41;
    const double p = change == Change::nothing ? 6.0 : 4.0 + 0.1 * (i % 37);
    const std::size_t which = change == Change::composition ? i % 2 : 0;
    if (detail.calculate(gases[which], {p, T}, AGA10::base_conditions, wanted, values) != AGA10::success)
      state.SkipWithError("no answer");
    benchmark::DoNotOptimize(values);
  }
}
constexpr AGA10::Property speed[] = {AGA10::Property::speed_of_sound};
constexpr AGA10::Property critical_flow[] = {AGA10::Property::critical_flow_factor};
BENCHMARK_CAPTURE(aga10_all, same_state_21_components, gas, Change::nothing, without_critical_flow);
BENCHMARK_CAPTURE(aga10_all, new_state_11_components, gas_of_11, Change::state, without_critical_flow);
BENCHMARK_CAPTURE(aga10_all, new_state_21_components, gas, Change::state, without_critical_flow);
BENCHMARK_CAPTURE(aga10_all, new_gas_11_components, gas_of_11, Change::composition, without_critical_flow);
BENCHMARK_CAPTURE(aga10_all, new_gas_21_components, gas, Change::composition, without_critical_flow);
BENCHMARK_CAPTURE(aga10_all, speed_of_sound_new_state_21_components, gas, Change::state, speed);
BENCHMARK_CAPTURE(aga10_all, critical_flow_new_state_21_components, gas, Change::state, critical_flow);

void aga10_plain(benchmark::State& state, AGA8::CompositionInput (*of)(double), Change change) {
  const AGA8::Composition gases[2] = {fractions(of(0.0)), fractions(of(1e-4))};
  PlainDetail detail;
  detail.set_composition(gases[0]);
  unsigned i = 0;
  for (auto _ : state) {
    ++i;
    const double T = 278.15 + i % 41;
    const double p = 4.0 + 0.1 * (i % 37);
    if (change == Change::composition) detail.set_composition(gases[i % 2]);
    detail.set_temperature(T);
    benchmark::DoNotOptimize(detail.properties(detail.density(p)));
  }
}
BENCHMARK_CAPTURE(aga10_plain, new_state_11_components, gas_of_11, Change::state);
BENCHMARK_CAPTURE(aga10_plain, new_state_21_components, gas, Change::state);
BENCHMARK_CAPTURE(aga10_plain, new_gas_11_components, gas_of_11, Change::composition);
BENCHMARK_CAPTURE(aga10_plain, new_gas_21_components, gas, Change::composition);

// Rows of a batch with one gas, by the kernel in use; the time of a row.
void aga10_rows(benchmark::State& state, AGA8::CompositionInput (*of)(double)) {
  constexpr std::size_t rows = 256;
  std::array<AGA10::Gas, rows> in;
  for (std::size_t i = 0; i < rows; ++i)
    in[i] = {of(0.0), composition::add_to_i_pentane, 4.0 + 0.1 * static_cast<double>(i * 53 % 37),
             5.0 + static_cast<double>(i * 37 % 41), 1};
  std::array<AGA10::Answer, rows> out;
  std::array<bool, rows> done;
  AGA10::CDetail memory;
  for (auto _ : state) {
    AGA10::all_properties_rows(in.data(), out.data(), done.data(), rows, memory);
    benchmark::DoNotOptimize(out);
  }
  state.counters["row"] = benchmark::Counter(static_cast<double>(state.iterations()) * rows,
                                             benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK_CAPTURE(aga10_rows, all_11_components, gas_of_11);
BENCHMARK_CAPTURE(aga10_rows, all_21_components, gas);

// The parts.
void aga10_residual(benchmark::State& state) {
  AGA8::Mixture mixture;
  mixture.set(fractions(gas(0.0)));
  AGA8::ResidualIsotherm isotherm;
  double rho = 0.0;
  for (auto _ : state) {
    rho = rho < 10.0 ? rho + 0.1 : 0.1;
    isotherm.set(mixture, 300.0 + rho);
    benchmark::DoNotOptimize(isotherm.at(rho));
  }
}
BENCHMARK(aga10_residual);

void aga10_ideal_mixture(benchmark::State& state) {
  AGA10::IdealMixture mixture;
  mixture.set(fractions(gas(0.0)));
  double T = 250.0;
  for (auto _ : state) {
    T = T < 400.0 ? T + 1.0 : 250.0;
    benchmark::DoNotOptimize(mixture.at(T, AGA10::Entropy::include));
  }
}
BENCHMARK(aga10_ideal_mixture);

}  // namespace
}  // namespace norvane::bench
