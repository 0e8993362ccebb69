// The general functions over large ranges, and unit conversion. Baselines of the same run: reading every cell
// once (memory speed), and the classical checksum that takes one byte a step.
#include <bit>
#include <cstring>
#include <vector>

#include "bench/bench_call.h"
#include "core/crc32.h"
#include "units/unit_catalogue.h"

namespace norvane::bench {
namespace {

constexpr std::uint32_t crc_cells = 1000000;
constexpr std::uint32_t curve_points = 10000;

std::vector<FUNCTION_ARG> cells(std::size_t count) {
  std::vector<FUNCTION_ARG> values(count);
  for (std::size_t i = 0; i < count; ++i) values[i] = FUNCTION_ARG::Number(0.1 * static_cast<double>(i));
  return values;
}

void per_cell(benchmark::State& state, std::int64_t count) { state.SetItemsProcessed(state.iterations() * count); }

void ReadCells(benchmark::State& state) {
  const std::vector<FUNCTION_ARG> values = cells(crc_cells);
  for (auto _ : state) {
    std::uint64_t sum = 0;
    for (const FUNCTION_ARG& value : values)
      if (value.kind == ARG_NUMBER) sum += std::bit_cast<std::uint64_t>(value.number);
    benchmark::DoNotOptimize(sum);
  }
  per_cell(state, crc_cells);
}
BENCHMARK(ReadCells);

void Crc32ByteByByte(benchmark::State& state) {
  const std::vector<FUNCTION_ARG> values = cells(crc_cells);
  for (auto _ : state) {
    std::uint32_t crc = 0;
    for (const FUNCTION_ARG& value : values) {
      std::uint8_t bytes[sizeof value.number];
      std::memcpy(bytes, &value.number, sizeof bytes);
      crc = crc32_update(crc, bytes);
    }
    benchmark::DoNotOptimize(crc);
  }
  per_cell(state, crc_cells);
}
BENCHMARK(Crc32ByteByByte);

void Crc32Call(benchmark::State& state) {
  BenchCall call(u"CRC32");
  if (!call.ready(state)) return;
  std::vector<FUNCTION_ARG> values = cells(crc_cells);
  call[0] = FUNCTION_ARG::OfArray(1, crc_cells, values.data());
  const AllocationCounter counter(state);
  for (auto _ : state) benchmark::DoNotOptimize(call());
  per_cell(state, crc_cells);
}
BENCHMARK(Crc32Call);

void InterpolationCurveCall(benchmark::State& state) {
  BenchCall call(u"InterpolationCurve");
  if (!call.ready(state)) return;
  std::vector<FUNCTION_ARG> values = cells(2 * curve_points);
  call[2] = FUNCTION_ARG::OfArray(2, curve_points, values.data());
  call[1] = FUNCTION_ARG::Number(1234.5);
  call();
  const AllocationCounter counter(state);
  for (auto _ : state) benchmark::DoNotOptimize(call());
  per_cell(state, curve_points);
}
BENCHMARK(InterpolationCurveCall);

void ConvertInCatalogue(benchmark::State& state) {
  const Unit_CTypeAndUnitContainer& units = Unit_CTypeAndUnitContainer::Instance();
  double value = 1.0;
  for (auto _ : state) {
    units.Convert(unit::bar_a, unit::psia, value);
    units.Convert(unit::psia, unit::bar_a, value);
    benchmark::DoNotOptimize(value);
  }
  per_cell(state, 2);
}
BENCHMARK(ConvertInCatalogue);

void CodeOfText(benchmark::State& state) {
  const Unit_CTypeAndUnitContainer& units = Unit_CTypeAndUnitContainer::Instance();
  const AllocationCounter counter(state);
  for (auto _ : state) {
    std::u16string_view key = u"kBtu_lbmol";
    benchmark::DoNotOptimize(key);
    std::uint32_t code = 0;
    units.CodeOfText(key, code);
    benchmark::DoNotOptimize(code);
  }
}
BENCHMARK(CodeOfText);

void convert_unit(benchmark::State& state, FUNCTION_ARG from, FUNCTION_ARG to) {
  BenchCall call(u"ConvertUnit");
  if (!call.ready(state)) return;
  call[1] = FUNCTION_ARG::Number(20.0);
  call[2] = from;
  call[3] = to;
  call();
  const AllocationCounter counter(state);
  for (auto _ : state) benchmark::DoNotOptimize(call());
}
void ConvertUnitByCode(benchmark::State& state) {
  convert_unit(state, FUNCTION_ARG::Number(unit::degC), FUNCTION_ARG::Number(unit::degF));
}
BENCHMARK(ConvertUnitByCode);
void ConvertUnitByKey(benchmark::State& state) {
  convert_unit(state, FUNCTION_ARG::String(u"degC", 4), FUNCTION_ARG::String(u"degF", 4));
}
BENCHMARK(ConvertUnitByKey);
void ConvertUnitBySymbol(benchmark::State& state) {
  convert_unit(state, FUNCTION_ARG::String(u"\u00B0C", 2), FUNCTION_ARG::String(u"\u00B0F", 2));
}
BENCHMARK(ConvertUnitBySymbol);

}  // namespace
}  // namespace norvane::bench
