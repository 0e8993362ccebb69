// What a worksheet call costs beside the call of the context alone (ExecuteBitTest). A program
// of its own: its threads have the spreadsheet's contexts.
#include "hosts/excel/wrappers.h"

#include "bench/bench_call.h"
#include "hosts/excel/excel_context.h"

using norvane::excel::XlRecord12;
using norvane::excel::XlRecord4;

extern "C" XlRecord12* xlWrapper12_Extended_BitTest(XlRecord12*, XlRecord12*) noexcept;
extern "C" XlRecord4* xlWrapper4_Extended_BitTest(XlRecord4*, XlRecord4*) noexcept;

namespace norvane::bench {
namespace {

void ExecuteBitTest(benchmark::State& state) {
  host::set_context_factory(excel::make_context);
  BenchCall call(u"BitTest");
  if (!call.ready(state)) return;
  call[0] = FUNCTION_ARG::Number(5.0);
  call[1] = FUNCTION_ARG::Number(2.0);
  call();
  const AllocationCounter counter(state);
  for (auto _ : state) benchmark::DoNotOptimize(call());
}
BENCHMARK(ExecuteBitTest);

template <class Record, auto Wrapper>
void WrapperBitTest(benchmark::State& state) {
  host::set_context_factory(excel::make_context);
  Record number{};
  number.number = 5.0;
  number.type = excel::XL_NUMBER;
  Record bit{};
  bit.number = 2.0;
  bit.type = excel::XL_NUMBER;
  Wrapper(&number, &bit);
  const AllocationCounter counter(state);
  for (auto _ : state) benchmark::DoNotOptimize(Wrapper(&number, &bit));
}
BENCHMARK(WrapperBitTest<XlRecord12, xlWrapper12_Extended_BitTest>)->Name("Excel12BitTest");
BENCHMARK(WrapperBitTest<XlRecord4, xlWrapper4_Extended_BitTest>)->Name("Excel4BitTest");

// A range of cells as an array, converted element by element.
void Excel12ConvertRange(benchmark::State& state) {
  const auto& shared = *host::module();
  excel::XLL_CFunctionContext context(shared.library, shared.units, 0);
  std::vector<XlRecord12> cells(static_cast<std::size_t>(state.range(0)));
  for (XlRecord12& cell : cells) {
    cell.number = 1.0;
    cell.type = excel::XL_NUMBER;
  }
  XlRecord12 range{};
  range.array = {cells.data(), static_cast<std::int32_t>(state.range(0)), 1};
  range.type = excel::XL_ARRAY;
  for (auto _ : state) {
    context.Reset();
    FUNCTION_ARG arg;
    benchmark::DoNotOptimize(excel::to_argument(context, &range, arg));
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(Excel12ConvertRange)->Arg(22)->Arg(10000);

}  // namespace
}  // namespace norvane::bench
