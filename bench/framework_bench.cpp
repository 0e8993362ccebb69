// What a call costs before any standard is computed.
#include "bench/bench_call.h"
#include "framework/call.h"

namespace norvane::bench {
namespace {

std::uint32_t add(Function_CContext& context, FUNCTION_ARG* args, std::size_t count, FUNCTION_ARG& output) {
  Call call(context, args, count, output);
  const double a = call.number(0);
  const double b = call.number(1);
  if (call.failed()) return call.error();
  call.set(0, a + b);
  return call.done();
}

constexpr record::Input add_inputs[] = {
    record::input(u"a", u"a", u"First summand.", data_type::num).within(-1e9, 1e9).otherwise(1.0),
    record::input(u"b", u"b", u"Second summand.", data_type::num).within(-1e9, 1e9).otherwise(2.0),
};
constexpr record::Output add_outputs[] = {record::output(u"sum", u"Sum", u"Sum.", data_type::num, u"SUM")};

void ExecuteTrivial(benchmark::State& state) {
  const Function_CFunctionSpec spec(
      record::Function{.id = u"Add", .inputs = add_inputs, .outputs = add_outputs, .implementation = &add});
  host::ThreadState& thread = *host::thread_state();
  FUNCTION_ARG output{};
  std::uint32_t flags = 0;
  const AllocationCounter counter(state);
  for (auto _ : state) {
    Function_CContext& context = thread.context();
    context.Reset();
    FUNCTION_ARG args[] = {FUNCTION_ARG::Number(3.0), FUNCTION_ARG::Missing()};
    benchmark::DoNotOptimize(context.Execute(spec, args, 2, output, flags));
    benchmark::DoNotOptimize(output);
  }
}
BENCHMARK(ExecuteTrivial);

void ExecuteBitTest(benchmark::State& state) {
  BenchCall call(u"BitTest");
  if (!call.ready(state)) return;
  call[0] = FUNCTION_ARG::Number(5.0);
  call[1] = FUNCTION_ARG::Number(2.0);
  call();
  const AllocationCounter counter(state);
  for (auto _ : state) benchmark::DoNotOptimize(call());
}
BENCHMARK(ExecuteBitTest);

}  // namespace
}  // namespace norvane::bench
