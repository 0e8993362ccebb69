// The ways that need more than a function pointer: batches, the context, worksheets.
#include <algorithm>
#include <cstdlib>

#include "bench/compare/case.h"
#include "catalogue/catalogue.h"
#include "hosts/module/module.h"
#if defined(NORVANE_BENCH_EXCEL)
#include "hosts/excel/excel_context.h"
#include "hosts/excel/wrappers.h"
#endif

namespace norvane::bench {

Way batch(BatchExport function, const Columns& columns, std::size_t output_count, std::size_t rows) {
  struct Batch {
    std::vector<norvane_column> inputs;
    std::vector<std::vector<double>> numbers;
    std::vector<double*> outputs;
    std::vector<std::uint32_t> statuses;
  };
  const auto made = std::make_shared<Batch>();
  for (const Column& column : *columns)
    made->inputs.push_back({column.values.data(), column.row_step, column.cells, 1});
  made->numbers.assign(output_count, std::vector<double>(rows));
  for (std::vector<double>& numbers : made->numbers) made->outputs.push_back(numbers.data());
  made->statuses.resize(rows);
  const auto calculate = [=](std::size_t count) {
    return function(count, made->inputs.data(), made->inputs.size(), made->outputs.data(), output_count,
                    made->statuses.data());
  };
  return {[=, keeps = columns](std::size_t calls) {
            for (std::size_t done = 0; done < calls; done += rows) keep(calculate(std::min(rows, calls - done)));
          },
          [=](std::size_t state, double* out) {
            if (state == 0 && calculate(rows) != 0) std::abort();
            for (std::size_t k = 0; k < output_count; ++k) out[k] = made->numbers[k][state];
          }};
}

namespace {

// Arguments of every state behind the name, which is left out; lists are elements that stay.
struct Cells {
  std::size_t count = 0;
  std::vector<FUNCTION_ARG> given, elements;

  explicit Cells(const std::vector<Column>& columns) : count(columns.size() + 1) {
    std::size_t in_lists = 0;
    for (const Column& column : columns) in_lists += column.cells > 1 ? column.cells * state_count : 0;
    elements.reserve(in_lists);
    for (std::size_t i = 0; i < state_count; ++i) {
      given.push_back(FUNCTION_ARG::Missing());
      for (const Column& column : columns) {
        if (column.cells == 1) {
          given.push_back(FUNCTION_ARG::Number(*column.at(i)));
          continue;
        }
        FUNCTION_ARG* first = elements.data() + elements.size();
        for (std::size_t k = 0; k < column.cells; ++k) elements.push_back(FUNCTION_ARG::Number(column.at(i)[k]));
        given.push_back(FUNCTION_ARG::OfArray(1, static_cast<std::uint32_t>(column.cells), first));
      }
    }
  }
};

}  // namespace

Way context(std::u16string_view id, const Columns& columns) {
  const Function_CFunctionSpec* spec = catalogue::find(id);
  if (spec == nullptr) return {};
  const auto cells = std::make_shared<Cells>(*columns);
  const auto call = [=](std::size_t state, FUNCTION_ARG& output) {
    host::ThreadState& thread = *host::thread_state();
    Function_CContext& here = thread.context();
    here.Reset();
    auto* args = here.arena().AllocateArray<FUNCTION_ARG>(cells->count);
    std::copy_n(cells->given.data() + state * cells->count, cells->count, args);
    std::uint32_t flags = 0;
    return here.Execute(*spec, args, cells->count, output, flags, thread.slot(*spec));
  };
  return {[=](std::size_t calls) {
            FUNCTION_ARG output{};
            for (std::size_t i = 0; i < calls; ++i) {
              keep(call(i % state_count, output));
              keep(output);
            }
          },
          [=](std::size_t state, double* out) {
            FUNCTION_ARG output{};
            const bool good = call(state, output) == ERROR_OK && output.kind == ARG_ARRAY;
            for (std::size_t k = 0; good && k + 1 < output.count(); ++k) {
              const FUNCTION_ARG& cell = output.array.elements[k + 1];
              out[k] = cell.kind == ARG_NUMBER ? cell.number : cell.kind == ARG_INTEGER ? cell.integer : 0.0;
            }
          }};
}

#if defined(NORVANE_BENCH_EXCEL)

// The worker that measures worksheets has the spreadsheet's contexts on its thread.
Way wrapper(std::u16string_view id, const Columns& columns) {
  using Record = excel::XlRecord12;
  const Function_CFunctionSpec* spec = catalogue::find(id);
  if (spec == nullptr) return {};
  struct Sheet {
    std::vector<Record> cells, elements;
    std::vector<Record*> args;
  };
  const auto sheet = std::make_shared<Sheet>();
  const std::size_t count = columns->size() + 1;
  std::size_t in_lists = 0;
  for (const Column& column : *columns) in_lists += column.cells > 1 ? column.cells * state_count : 0;
  sheet->elements.reserve(in_lists);
  sheet->cells.reserve(count * state_count);
  const auto number = [](double value) {
    Record record{};
    record.number = value;
    record.type = excel::XL_NUMBER;
    return record;
  };
  for (std::size_t i = 0; i < state_count; ++i) {
    Record& name = sheet->cells.emplace_back();
    name.type = excel::XL_MISSING;
    for (const Column& column : *columns) {
      if (column.cells == 1) {
        sheet->cells.push_back(number(*column.at(i)));
        continue;
      }
      Record list{};
      list.array = {sheet->elements.data() + sheet->elements.size(), static_cast<std::int32_t>(column.cells), 1};
      list.type = excel::XL_ARRAY;
      for (std::size_t k = 0; k < column.cells; ++k) sheet->elements.push_back(number(column.at(i)[k]));
      sheet->cells.push_back(list);
    }
  }
  for (Record& cell : sheet->cells) sheet->args.push_back(&cell);
  const std::size_t position = spec->position;
  const auto call = [=](std::size_t state) {
    return excel::call_12(position, sheet->args.data() + state * count, count);
  };
  return {[=](std::size_t calls) {
            for (std::size_t i = 0; i < calls; ++i) keep(call(i % state_count));
          },
          [=](std::size_t state, double* out) {
            const Record* answer = call(state);
            const bool array = answer != nullptr && (answer->type & 0xfff) == excel::XL_ARRAY;
            const std::int32_t cells = array ? answer->array.rows * answer->array.columns : 0;
            for (std::int32_t k = 0; k + 1 < cells; ++k) out[k] = answer->array.elements[k + 1].number;
          }};
}

#else

Way wrapper(std::u16string_view, const Columns&) { return {}; }

#endif

}  // namespace norvane::bench
